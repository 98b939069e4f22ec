// Broken variants of well-formed files: the same ones in every run.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>

#include "support/temp_dir.h"

namespace pgkit_test {

class Mutator {
  public:
    explicit Mutator(uint32_t seed) : random_(seed) {}

    // One to eight changes: bytes and lengths overwritten, parts removed, doubled or moved.
    Bytes Mutate(Bytes bytes) {
        for (size_t changes = 1 + Below(8); changes > 0 && !bytes.empty(); --changes)
            Change(bytes);
        return bytes;
    }

  private:
    size_t Below(size_t limit) { return random_() % limit; }

    void Change(Bytes& bytes) {
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(Below(bytes.size()));
        const auto end = at + static_cast<std::ptrdiff_t>(Below(
                                  std::min<size_t>(64, static_cast<size_t>(bytes.end() - at)) + 1));
        switch (Below(6)) {
            case 0:
                *at = static_cast<uint8_t>(random_());
                break;
            case 1:
                *at ^= static_cast<uint8_t>(1u << Below(8));
                break;
            case 2:
                Overwrite(bytes, at);
                break;
            case 3:
                bytes.erase(at, end);
                break;
            case 4:
                Double(bytes, at, end);
                break;
            default:
                std::rotate(at, end, bytes.end());
        }
    }

    static void Double(Bytes& bytes, Bytes::iterator begin, Bytes::iterator end) {
        const Bytes part(begin, end);
        bytes.insert(end, part.begin(), part.end());
    }

    // With what lengths and delimiters are made of.
    void Overwrite(Bytes& bytes, Bytes::iterator at) {
        static constexpr uint8_t kWords[][4] = {{0xFF, 0xFF, 0xFF, 0xFF}, {0, 0, 0, 0},
                                                {0xFE, 0xFF, 0x00, 0xE0}, {0xFE, 0xFF, 0x0D, 0xE0},
                                                {0xFE, 0xFF, 0xDD, 0xE0}, {'S', 'Q', 0, 0},
                                                {'U', 'N', 0, 0},         {0xFE, 0xFF, 0xFF, 0xFF}};
        const auto& word = kWords[Below(std::size(kWords))];
        for (size_t i = 0; i < 4 && at != bytes.end(); ++i)
            *at++ = word[i];
    }

    std::mt19937 random_;
};

}  // namespace pgkit_test
