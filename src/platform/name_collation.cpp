#include "platform/name_collation.h"

#include <array>
#include <cstddef>

namespace pgkit::platform {

namespace {

// Weights of one byte: up to two, 0 for none. Letters and digits weigh eight times their lower-case
// ASCII code, which leaves room for the few signs that sort between two of them and for a last bit
// that tells raised characters from plain ones.
struct Weights {
    uint16_t first = 0;
    uint16_t second = 0;
};

constexpr uint16_t kRaised = 1;

// The weight of a letter or digit, or of the nth sign behind it.
constexpr uint16_t Weight(char letter, int nthSignBehind = 0) {
    return static_cast<uint16_t>(static_cast<unsigned char>(letter) * 8 + nthSignBehind * 2);
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
    for (unsigned char c = '0'; c <= '9'; ++c)
        table[c].first = Weight(static_cast<char>(c));
    constexpr size_t kToUpper = 'a' - 'A';
    for (unsigned char c = 'a'; c <= 'z'; ++c) {
        table[c].first = Weight(static_cast<char>(c));
        table[c - kToUpper] = table[c];
    }
    for (size_t i = 0; i < 128; ++i) {
        const char* letters = kUpperHalf[i];
        if (letters[0] == '-') continue;
        table[128 + i].first = Weight(letters[0]);
        if (letters[1] != '\0') table[128 + i].second = Weight(letters[1]);
    }
    // The fractions stand between 0 and 1, the trade mark sign between t and u.
    table[0xBC].first = Weight('0', 1);
    table[0xBD].first = Weight('0', 2);
    table[0xBE].first = Weight('0', 3);
    table[0x99].first = Weight('t', 1);
    // The superscript digits and the ordinal indicators.
    for (const size_t c : {0xAA, 0xB2, 0xB3, 0xB9, 0xBA})
        table[c].first |= kRaised;
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
    int32_t byRaised = 0;
    while (true) {
        const uint16_t x = left.Next();
        const uint16_t y = right.Next();
        const int32_t order = x == y ? 0 : (x < y ? -1 : 1);
        if ((x | kRaised) != (y | kRaised)) return order;
        // Raised characters sort behind plain ones only among texts that are equal otherwise.
        if (byRaised == 0) byRaised = order;
        if (x == 0) return byRaised;
    }
}

}  // namespace pgkit::platform
