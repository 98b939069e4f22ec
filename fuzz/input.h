// The bytes that a fuzz target is given. Choices are taken from the end, so that the beginning of
// an input is a file as it stands and ordinary files are inputs too.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

namespace pgkit_fuzz {

class Input {
  public:
    explicit Input(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    // The last byte that was not taken yet; 0 when none is left.
    uint8_t Byte() {
        if (bytes_.empty()) return 0;
        const uint8_t last = bytes_.back();
        bytes_ = bytes_.first(bytes_.size() - 1);
        return last;
    }
    uint16_t U16() {
        const uint16_t low = Byte();
        return static_cast<uint16_t>(low | Byte() << 8);
    }
    uint32_t U32() {
        const uint32_t low = U16();
        return low | uint32_t{U16()} << 16;
    }
    // A number below the limit.
    uint32_t Below(uint32_t limit) { return U16() % limit; }

    template <typename T, size_t kCount>
    const T& Pick(const T (&choices)[kCount]) {
        return choices[Byte() % kCount];
    }

    // At most so many of the last bytes.
    std::string Text(size_t maxLength) {
        const size_t count = std::min(maxLength, bytes_.size());
        const auto text = bytes_.last(count);
        bytes_ = bytes_.first(bytes_.size() - count);
        return std::string(text.begin(), text.end());
    }

    // What is left.
    std::span<const uint8_t> Rest() const { return bytes_; }
    bool IsEmpty() const { return bytes_.empty(); }

  private:
    std::span<const uint8_t> bytes_;
};

}  // namespace pgkit_fuzz
