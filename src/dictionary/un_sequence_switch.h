// The process-wide switch of pgTryToDecodeUNSequences.
#pragma once

#include <atomic>
#include <cstdint>

namespace pgkit {

inline std::atomic<uint32_t> unSequenceSwitch{1};

inline bool DecodesUnSequences() { return unSequenceSwitch.load(std::memory_order_relaxed) != 0; }

}  // namespace pgkit
