// The coded character sets that texts of data sets are written in: a row for each.
//
// Most are sets of ISO 2022, known by their number in the international register (ISO-IR). Such a
// set stands in one of two places, "code elements": G0 is what bytes below 80 mean, G1 what those
// above 7F mean. An escape sequence designates a set, that is, puts it into its place. The others
// stand alone: they have all characters and know no escape sequences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/charset_conversion.h"

namespace pgkit {

constexpr char kEscape = '\x1B';

enum class CodeElement : uint8_t { G0, G1, Alone };

// How the bytes of one character beyond ASCII look.
enum class UnitShape : uint8_t {
    Ascii,       // there are none
    SingleByte,  // 80 to FF
    Pair,        // two of 94 values: A1 to FE in G1, 21 to 7E in G0
    Gbk,         // two bytes, the second of which may be below 80
    Gb18030,     // the same or four bytes, the second and fourth of which are digits
    Utf8
};

// Who converts.
enum class Conversion : uint8_t {
    None,      // ASCII alone
    Latin1,    // the bytes are the characters
    Katakana,  // half-width, in the order of Unicode
    Utf8,
    System
};

// The rows of the table are read in this order.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct CodedSet {
    int registration;  // ISO-IR number; 0 for a set without
    CodeElement element;
    std::string_view designation;  // empty for a set that stands alone
    UnitShape shape;
    Conversion conversion;
    platform::Charset charset;  // of Conversion::System
};

// In no particular order; the rows' addresses identify the sets.
std::span<const CodedSet> CodedSets();

// Null when the registration is none of those that the standard uses.
const CodedSet* FindRegistration(int registration);

// The basic set, which stands in G0 unless something else is said.
const CodedSet& AsciiSet();
// Bytes above 7F that nothing was said about are one of these.
const CodedSet& Latin1Set();
const CodedSet& Utf8Set();
const CodedSet& Gb18030Set();
const CodedSet& GbkSet();

// The beginning of a text that is to be one character of a set: how many bytes it takes, whether
// they are a unit of the set, and, where they are none, whether the text ends too early for one.
struct Unit {
    size_t size;
    bool isWhole;
    bool isCutShort;
};
// The text begins with a byte of the set's half: above 7F, but in G0.
Unit FirstUnit(const CodedSet& set, std::string_view text);

}  // namespace pgkit
