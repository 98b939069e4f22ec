#include "utf8_text.h"

#include <algorithm>
#include <cstdint>

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

std::string Repaired(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const size_t length = WellFormedLength(text);
        result += length == 0 ? kReplacement : text.substr(0, length);
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return result;
}

std::string FromLatin1(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const uint8_t byte = static_cast<uint8_t>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

}  // namespace

std::string ToUtf8(std::string_view text, std::string_view characterSet) {
    const bool isUtf8 = characterSet.find("ISO_IR 192") != std::string_view::npos;
    return isUtf8 ? Repaired(text) : FromLatin1(text);
}

// Those behind ASCII are U+0080 to U+009F, two bytes each.
std::string WithoutControls(std::string_view utf8) {
    std::string result;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const uint8_t byte = ByteAt(utf8, i);
        const bool isPair = byte == 0xC2 && i + 1 < utf8.size() && ByteAt(utf8, i + 1) < 0xA0;
        if (isPair) ++i;
        result += isPair || byte < 0x20 || byte == 0x7F ? '?' : utf8[i];
    }
    return result;
}

}  // namespace pgtool
