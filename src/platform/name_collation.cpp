#include "platform/name_collation.h"

#include <array>

namespace pgkit::platform {

namespace {

// Weights of one byte: up to two, 0 for none. Letters and digits weigh four times their lower-case
// ASCII code, which leaves room for the few signs that sort between two of them.
struct Weights {
    uint16_t first = 0;
    uint16_t second = 0;
};

constexpr uint16_t Weight(char letter) {
    return static_cast<uint16_t>(static_cast<unsigned char>(letter) * 4);
}

// What the upper half of the code page counts as, by rows of sixteen: base letters, both letters of
// a ligature, or '-' for a symbol.
constexpr const char* kUpperHalf[128] = {
    "-", "-", "-", "f", "-", "-", "-",  "-", "-", "-", "s", "-", "oe", "-", "z",  "-",   // 80
    "-", "-", "-", "-", "-", "-", "-",  "-", "-", "-", "s", "-", "oe", "-", "z",  "y",   // 90
    "-", "-", "-", "-", "-", "-", "-",  "-", "-", "-", "a", "-", "-",  "-", "-",  "-",   // A0
    "-", "-", "2", "3", "-", "-", "-",  "-", "-", "1", "o", "-", "-",  "-", "-",  "-",   // B0
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i",  "i", "i",  "i",   // C0
    "d", "n", "o", "o", "o", "o", "o",  "-", "o", "u", "u", "u", "u",  "y", "th", "ss",  // D0
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i",  "i", "i",  "i",   // E0
    "d", "n", "o", "o", "o", "o", "o",  "-", "o", "u", "u", "u", "u",  "y", "th", "y",   // F0
};

constexpr std::array<Weights, 256> MakeWeights() {
    std::array<Weights, 256> table{};
    for (char c = '0'; c <= '9'; ++c)
        table[static_cast<size_t>(c)] = {Weight(c), 0};
    for (char c = 'a'; c <= 'z'; ++c) {
        table[static_cast<size_t>(c)] = {Weight(c), 0};
        table[static_cast<size_t>(c - 'a' + 'A')] = {Weight(c), 0};
    }
    for (size_t i = 0; i < 128; ++i) {
        const char* letters = kUpperHalf[i];
        if (letters[0] == '-') continue;
        table[128 + i] = {Weight(letters[0]), letters[1] == 0 ? uint16_t{0} : Weight(letters[1])};
    }
    // The fractions stand between 0 and 1, the trade mark sign between t and u.
    table[0xBC] = {static_cast<uint16_t>(Weight('0') + 1), 0};
    table[0xBD] = {static_cast<uint16_t>(Weight('0') + 2), 0};
    table[0xBE] = {static_cast<uint16_t>(Weight('0') + 3), 0};
    table[0x99] = {static_cast<uint16_t>(Weight('t') + 1), 0};
    return table;
}

constexpr std::array<Weights, 256> kWeights = MakeWeights();

// Yields the weights of a text one after the other, then 0.
class WeightReader {
  public:
    explicit WeightReader(std::string_view text) : text_(text) {}

    uint16_t Next() {
        if (pending_ != 0) {
            const uint16_t weight = pending_;
            pending_ = 0;
            return weight;
        }
        while (position_ < text_.size()) {
            const Weights weights = kWeights[static_cast<unsigned char>(text_[position_++])];
            if (weights.first == 0) continue;
            pending_ = weights.second;
            return weights.first;
        }
        return 0;
    }

  private:
    std::string_view text_;
    size_t position_ = 0;
    uint16_t pending_ = 0;
};

}  // namespace

int32_t CollateNames(std::string_view a, std::string_view b) {
    WeightReader left(a);
    WeightReader right(b);
    while (true) {
        const uint16_t x = left.Next();
        const uint16_t y = right.Next();
        if (x != y) return x < y ? -1 : 1;
        if (x == 0) return 0;
    }
}

}  // namespace pgkit::platform
