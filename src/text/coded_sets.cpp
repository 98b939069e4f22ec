#include "text/coded_sets.h"

#include <algorithm>

#include "base/utf8.h"

namespace pgkit {

namespace {

using enum CodeElement;
using platform::Charset;

constexpr Charset kNoCharset{};

constexpr CodedSet SingleByte(int registration, std::string_view designation, Charset charset) {
    return {registration, G1, designation, UnitShape::SingleByte, Conversion::System, charset};
}

constexpr CodedSet Pairs(int registration, CodeElement element, std::string_view designation,
                         Charset charset) {
    return {registration, element, designation, UnitShape::Pair, Conversion::System, charset};
}

// ISO_IR 14 differs from ASCII in two characters, the yen sign for the backslash and the overline
// for the tilde. Data sets need the backslash, and everybody shows and types it there.
constexpr CodedSet kSets[] = {
    {6, G0, "\x1B(B", UnitShape::Ascii, Conversion::None, kNoCharset},
    {14, G0, "\x1B(J", UnitShape::Ascii, Conversion::None, kNoCharset},
    Pairs(87, G0, "\x1B$B", Charset::JisX0208),
    Pairs(159, G0, "\x1B$(D", Charset::JisX0212),
    {13, G1, "\x1B)I", UnitShape::SingleByte, Conversion::Katakana, kNoCharset},
    {100, G1, "\x1B-A", UnitShape::SingleByte, Conversion::Latin1, kNoCharset},
    SingleByte(101, "\x1B-B", Charset::Iso8859_2),
    SingleByte(109, "\x1B-C", Charset::Iso8859_3),
    SingleByte(110, "\x1B-D", Charset::Iso8859_4),
    SingleByte(126, "\x1B-F", Charset::Iso8859_7),
    SingleByte(127, "\x1B-G", Charset::Iso8859_6),
    SingleByte(138, "\x1B-H", Charset::Iso8859_8),
    SingleByte(144, "\x1B-L", Charset::Iso8859_5),
    SingleByte(148, "\x1B-M", Charset::Iso8859_9),
    SingleByte(166, "\x1B-T", Charset::Tis620),
    SingleByte(203, "\x1B-b", Charset::Iso8859_15),
    Pairs(58, G1, "\x1B$)A", Charset::Gb2312),
    Pairs(149, G1, "\x1B$)C", Charset::KsX1001),
    {192, Alone, "", UnitShape::Utf8, Conversion::Utf8, kNoCharset},
    {0, Alone, "", UnitShape::Gb18030, Conversion::System, Charset::Gb18030},
    {0, Alone, "", UnitShape::Gbk, Conversion::System, Charset::Gbk},
};

consteval const CodedSet& SetWhere(auto isMeant) { return *std::ranges::find_if(kSets, isMeant); }

constexpr bool IsWithin(char c, uint8_t first, uint8_t last) {
    const auto byte = static_cast<uint8_t>(c);
    return byte >= first && byte <= last;
}

constexpr bool IsDigit(char c) { return IsWithin(c, '0', '9'); }
constexpr bool IsChineseLead(char c) { return IsWithin(c, 0x81, 0xFE); }

constexpr Unit Whole(size_t size) { return {size, true, false}; }
constexpr Unit CutShort(std::string_view text) { return {text.size(), false, true}; }
constexpr Unit kBroken = {1, false, false};

Unit FirstPair(std::string_view text, uint8_t first, uint8_t last) {
    if (!IsWithin(text[0], first, last)) return kBroken;
    if (text.size() == 1) return CutShort(text);
    return IsWithin(text[1], first, last) ? Whole(2) : kBroken;
}

Unit FirstFourBytes(std::string_view text) {
    if (text.size() > 2 && !IsChineseLead(text[2])) return kBroken;
    if (text.size() < 4) return CutShort(text);
    return IsDigit(text[3]) ? Whole(4) : kBroken;
}

Unit FirstChineseUnit(std::string_view text, bool hasFourBytes) {
    if (!IsChineseLead(text[0])) return kBroken;
    if (text.size() == 1) return CutShort(text);
    if (hasFourBytes && IsDigit(text[1])) return FirstFourBytes(text);
    return IsWithin(text[1], 0x40, 0x7E) || IsWithin(text[1], 0x80, 0xFE) ? Whole(2) : kBroken;
}

Unit FirstUtf8Unit(std::string_view text) {
    const Utf8Character first = FirstUtf8Character(text);
    return {first.size, first.isValid, first.isCutShort};
}

}  // namespace

std::span<const CodedSet> CodedSets() { return kSets; }

const CodedSet* FindRegistration(int registration) {
    const auto* const found = std::ranges::find(kSets, registration, &CodedSet::registration);
    return registration == 0 || found == std::end(kSets) ? nullptr : found;
}

const CodedSet& AsciiSet() { return kSets[0]; }

const CodedSet& Latin1Set() {
    return SetWhere([](const CodedSet& set) { return set.conversion == Conversion::Latin1; });
}

const CodedSet& Utf8Set() {
    return SetWhere([](const CodedSet& set) { return set.conversion == Conversion::Utf8; });
}

const CodedSet& Gb18030Set() {
    return SetWhere([](const CodedSet& set) { return set.charset == Charset::Gb18030; });
}

const CodedSet& GbkSet() {
    return SetWhere([](const CodedSet& set) { return set.charset == Charset::Gbk; });
}

Unit FirstUnit(const CodedSet& set, std::string_view text) {
    switch (set.shape) {
        case UnitShape::Ascii:
            return kBroken;
        case UnitShape::SingleByte:
            return Whole(1);
        case UnitShape::Pair:
            return set.element == G0 ? FirstPair(text, 0x21, 0x7E) : FirstPair(text, 0xA1, 0xFE);
        case UnitShape::Gbk:
            return FirstChineseUnit(text, false);
        case UnitShape::Gb18030:
            return FirstChineseUnit(text, true);
        case UnitShape::Utf8:
            return FirstUtf8Unit(text);
    }
    return kBroken;
}

}  // namespace pgkit
