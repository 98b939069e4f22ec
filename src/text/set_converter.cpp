#include "text/set_converter.h"

#include "base/utf8.h"

namespace pgkit {

namespace {

// Half-width katakana, where JIS X 0201 has them and where Unicode does.
constexpr char32_t kFirstKatakanaByte = 0xA1;
constexpr char32_t kLastKatakanaByte = 0xDF;
constexpr char32_t kFirstKatakana = 0xFF61;

char32_t DecodeKatakana(char32_t byte) {
    const bool isOne = byte >= kFirstKatakanaByte && byte <= kLastKatakanaByte;
    return isOne ? kFirstKatakana + (byte - kFirstKatakanaByte) : 0;
}

// 0 for what is no half-width katakana.
char32_t EncodeKatakana(char32_t character) {
    const char32_t byte = character - kFirstKatakana + kFirstKatakanaByte;
    return DecodeKatakana(byte) == character ? byte : 0;
}

size_t PutByte(char32_t byte, char (&unit)[kMaxUnitSize]) {
    unit[0] = static_cast<char>(byte);
    return byte == 0 ? 0 : 1;
}

// The bytes of a pair in G0 are those that the system knows, less the highest bit.
bool IsShifted(const CodedSet& set) {
    return set.element == CodeElement::G0 && set.shape == UnitShape::Pair;
}

void FlipHighBits(char* bytes, size_t size) {
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(bytes[i] ^ 0x80);
}

}  // namespace

platform::CharsetConversion& SetConverter::System(platform::Charset charset) {
    auto& system = systems_[static_cast<size_t>(charset)];
    return system ? *system : system.emplace(charset);
}

char32_t SetConverter::Decode(const CodedSet& set, std::string_view unit) {
    const char32_t first = static_cast<unsigned char>(unit[0]);
    switch (set.conversion) {
        case Conversion::None:
            return 0;
        case Conversion::Latin1:
            return first;
        case Conversion::Katakana:
            return DecodeKatakana(first);
        case Conversion::Utf8:
            return FirstUtf8Character(unit).character;
        case Conversion::System:
            break;
    }
    char bytes[kMaxUnitSize];
    const size_t size = unit.copy(bytes, sizeof bytes);
    if (IsShifted(set)) FlipHighBits(bytes, size);
    const char32_t character = System(set.charset).Decode(std::string_view(bytes, size));
    // Whatever the system says: what stands for ASCII here would be taken for a delimiter.
    return character < 0x80 ? 0 : character;
}

size_t SetConverter::Encode(const CodedSet& set, char32_t character, char (&unit)[kMaxUnitSize]) {
    switch (set.conversion) {
        case Conversion::None:
            return 0;
        case Conversion::Latin1:
            return character < 0x100 ? PutByte(character, unit) : 0;
        case Conversion::Katakana:
            return PutByte(EncodeKatakana(character), unit);
        case Conversion::Utf8:
            return WriteUtf8(character, unit);
        case Conversion::System:
            break;
    }
    const size_t size = System(set.charset).Encode(character, unit);
    if (size == 0) return 0;
    if (IsShifted(set)) FlipHighBits(unit, size);
    // The system's set may be larger, and have the character in bytes that are none of this set.
    const Unit found = FirstUnit(set, std::string_view(unit, size));
    return found.isWhole && found.size == size ? size : 0;
}

}  // namespace pgkit
