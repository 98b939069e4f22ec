// Which edition of the standard the library answers by: one value for the whole process.
#pragma once

#include <atomic>
#include <cstdint>

#include "pgkit/edition.h"

namespace pgkit {

inline std::atomic<int32_t> edition{PGX_EDITION_BUILT_IN};

inline bool UsesCurrentEdition() {
    return edition.load(std::memory_order_relaxed) == PGX_EDITION_CURRENT;
}

}  // namespace pgkit
