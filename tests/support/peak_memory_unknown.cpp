#include "support/peak_memory.h"

namespace pgkit_test {

PeakMemory::PeakMemory() : before_(0) {}

std::optional<uint64_t> PeakMemory::Growth() const {
    static_cast<void>(before_);
    return std::nullopt;
}

}  // namespace pgkit_test
