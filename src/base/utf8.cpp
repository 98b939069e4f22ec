#include "base/utf8.h"

namespace pgkit {

namespace {

constexpr char32_t kMaxCharacter = 0x10FFFF;

// What the first byte of a character says: how many others follow, and between which bounds the
// first of them lies. The bounds leave out surrogates, numbers that a shorter form could hold, and
// those above the last character.
struct Lead {
    int trailing;  // negative for a byte that begins no character
    uint8_t low;
    uint8_t high;
};

constexpr Lead LeadOf(uint8_t byte) {
    if (byte < 0x80) return {0, 0, 0};
    if (byte < 0xC2) return {-1, 0, 0};
    if (byte < 0xE0) return {1, 0x80, 0xBF};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x80, 0x9F};
    if (byte < 0xF0) return {2, 0x80, 0xBF};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte < 0xF4) return {3, 0x80, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    return {-1, 0, 0};
}

constexpr char32_t LeadBits(uint8_t byte, int trailing) {
    return trailing == 0 ? byte : byte & (0x3Fu >> trailing);
}

}  // namespace

Utf8Character FirstUtf8Character(std::string_view text) {
    const auto first = static_cast<uint8_t>(text[0]);
    Lead lead = LeadOf(first);
    if (lead.trailing < 0) return {kReplacementCharacter, 1, false, false};
    char32_t character = LeadBits(first, lead.trailing);
    const size_t size = static_cast<size_t>(lead.trailing) + 1;
    for (size_t i = 1; i < size; ++i) {
        if (i == text.size()) return {kReplacementCharacter, i, false, true};
        const auto byte = static_cast<uint8_t>(text[i]);
        if (byte < lead.low || byte > lead.high) return {kReplacementCharacter, i, false, false};
        character = character << 6 | (byte & 0x3Fu);
        lead.low = 0x80;
        lead.high = 0xBF;
    }
    return {character, size, true, false};
}

bool IsValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character first = FirstUtf8Character(text);
        if (!first.isValid) return false;
        text.remove_prefix(first.size);
    }
    return true;
}

size_t WriteUtf8(char32_t character, char (&bytes)[kMaxUtf8Size]) {
    if (character > kMaxCharacter || (character >= 0xD800 && character < 0xE000)) {
        character = kReplacementCharacter;
    }
    if (character < 0x80) {
        bytes[0] = static_cast<char>(character);
        return 1;
    }
    const size_t size = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (size_t i = size - 1; i > 0; --i) {
        bytes[i] = static_cast<char>(0x80 | (character & 0x3F));
        character >>= 6;
    }
    // As many leading ones as there are bytes.
    bytes[0] = static_cast<char>((0xF00u >> size & 0xFF) | character);
    return size;
}

}  // namespace pgkit
