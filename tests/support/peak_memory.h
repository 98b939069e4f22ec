// How much memory a piece of code takes.
#pragma once

#include <cstdint>
#include <optional>

namespace pgkit_test {

class PeakMemory {
  public:
    // From here on.
    PeakMemory();

    // The most that was in use since then beyond what was in use at first; nothing where the system
    // does not tell, or where a sanitizer takes memory of its own.
    std::optional<uint64_t> Growth() const;

  private:
    uint64_t before_;
};

}  // namespace pgkit_test
