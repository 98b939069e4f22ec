#include "utf8_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "pgkit/text.h"
#include "pgkit/value_representation.h"

namespace pgtool {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

uint8_t ByteAt(std::string_view text, size_t index) { return static_cast<uint8_t>(text[index]); }

// How many bytes the sequence takes that begins with a byte; 0 when none does. What is left out of
// the ranges of lead bytes and of the second bytes are overlong forms, surrogates and numbers above
// U+10FFFF.
size_t SequenceLength(uint8_t lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

bool MayFollow(uint8_t lead, uint8_t second) {
    const uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= lowest && second <= highest;
}

// The length of the well-formed sequence at the beginning of a text that is not empty, else 0.
size_t WellFormedLength(std::string_view text) {
    const uint8_t lead = ByteAt(text, 0);
    const size_t length = SequenceLength(lead);
    if (length == 0 || length > text.size()) return 0;
    if (length > 1 && !MayFollow(lead, ByteAt(text, 1))) return 0;
    for (size_t i = 2; i < length; ++i) {
        if ((ByteAt(text, i) & 0xC0) != 0x80) return 0;
    }
    return length;
}

// One character. Those behind ASCII that are escaped are U+0080 to U+009F, U+202A to U+202E and
// U+2066 to U+2069.
std::string Escaped(std::string_view character) {
    switch (character[0]) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    const uint8_t first = ByteAt(character, 0);
    const uint8_t last = ByteAt(character, character.size() - 1);
    char text[8];
    if (character.size() == 1 && (first < 0x20 || first >= 0x7F)) {
        std::snprintf(text, sizeof text, "\\x%02x", first);
        return text;
    }
    if (character.size() == 2 && first == 0xC2 && last < 0xA0) {
        std::snprintf(text, sizeof text, "\\x%02x", last);
        return text;
    }
    if (character.size() != 3 || first != 0xE2) return std::string(character);
    const uint8_t middle = ByteAt(character, 1);
    const bool isTurn = (middle == 0x80 && last >= 0xAA && last <= 0xAE) ||
                        (middle == 0x81 && last >= 0xA6 && last <= 0xA9);
    if (!isTurn) return std::string(character);
    std::snprintf(text, sizeof text, "\\u20%02x", (middle == 0x80 ? 0 : 0x40) + (last & 0x3F));
    return text;
}

}  // namespace

std::string FieldToUtf8(const char* field, uint32_t valueRep, const char* characterSet) {
    std::string text(256, '\0');
    const auto convert = [&] {
        return pgxFieldToUtf8(characterSet, valueRep, field, text.data(), text.size());
    };
    int64_t size = convert();
    if (size >= static_cast<int64_t>(text.size())) {
        text.resize(static_cast<size_t>(size) + 1);
        size = convert();
    }
    text.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return text;
}

// UT is the one text in which nothing is a delimiter or padding in front.
std::string AnyToUtf8(const std::string& text) { return FieldToUtf8(text.c_str(), VR_UT, nullptr); }

std::string WellFormedUtf8(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const size_t length = WellFormedLength(text);
        result += length == 0 ? kReplacement : text.substr(0, length);
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return result;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = WellFormedLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

size_t CharacterCount(std::string_view utf8) {
    return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

std::string WithEscapes(std::string_view utf8) {
    std::string result;
    while (!utf8.empty()) {
        const size_t length = std::max<size_t>(WellFormedLength(utf8), 1);
        result += Escaped(utf8.substr(0, length));
        utf8.remove_prefix(length);
    }
    return result;
}

}  // namespace pgtool
