#include <fstream>
#include <string>

#include "support/peak_memory.h"

namespace pgkit_test {

namespace {

// A line like "VmHWM:     1234 kB" of the process's status, in bytes; 0 when there is none.
uint64_t StatusOf(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        uint64_t kilobytes = 0;
        if (word == name + ":" && status >> kilobytes) return kilobytes * 1024;
    }
    return 0;
}

}  // namespace

// Writing 5 makes the peak start over.
PeakMemory::PeakMemory() : before_(StatusOf("VmRSS")) {
    std::ofstream("/proc/self/clear_refs") << 5;
}

std::optional<uint64_t> PeakMemory::Growth() const {
    const uint64_t peak = StatusOf("VmHWM");
    if (before_ == 0 || peak == 0) return std::nullopt;
    return peak > before_ ? peak - before_ : 0;
}

}  // namespace pgkit_test
