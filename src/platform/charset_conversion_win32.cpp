#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "platform/charset_conversion.h"

namespace pgkit::platform {

namespace {

constexpr UINT kThai = 874;
constexpr UINT kChinese = 936;
constexpr UINT kKorean = 949;
constexpr UINT kJapanese = 20932;
constexpr UINT kGb18030 = 54936;

// By Charset. Where the page is a larger set, kCorrections and the caller's choice of bytes leave
// the set that is meant.
constexpr std::array<UINT, kCharsetCount> kCodePages = {
    28592, 28593, 28594,     28595,     28596,   28597,    28598,    28599,
    28605, kThai, kJapanese, kJapanese, kKorean, kChinese, kChinese, kGb18030};

// What the code pages give otherwise than the standards of the sets do; 0 for what is not in the
// set. Bytes are those of a unit, the first one highest. Editions of Windows differ: the rows hold
// whatever the page says.
struct Correction {
    Charset charset;
    uint16_t first;
    uint16_t last;
    char16_t character;  // of the first; the others follow it
};
constexpr Correction kCorrections[] = {
    {Charset::Iso8859_7, 0xA1, 0xA2, 0x2018},  // quotation marks, not modifier letters
    {Charset::Iso8859_7, 0xA4, 0xA4, 0x20AC},  // later additions: euro, drachma, iota below
    {Charset::Iso8859_7, 0xA5, 0xA5, 0x20AF},
    {Charset::Iso8859_7, 0xAA, 0xAA, 0x037A},
    {Charset::Iso8859_8, 0xAF, 0xAF, 0x00AF},  // macron, not overline
    {Charset::Iso8859_8, 0xFD, 0xFE, 0x200E},  // marks of direction
    {Charset::Tis620, 0x80, 0xA0, 0},
    {Charset::JisX0208, 0xA1BD, 0xA1BD, 0x2015},  // horizontal bar, not dash
    {Charset::JisX0208, 0xA1C0, 0xA1C0, 0xFF3C},  // a wide backslash is no backslash
    {Charset::JisX0208, 0xA1C1, 0xA1C1, 0x301C},  // wave dash, not a wide tilde
    {Charset::JisX0208, 0xA1C2, 0xA1C2, 0x2016},  // double vertical line, not parallel to
    {Charset::JisX0208, 0xA1DD, 0xA1DD, 0x2212},  // minus, not a wide hyphen
    {Charset::JisX0208, 0xA1F1, 0xA1F2, 0x00A2},  // cent and pound, not their wide forms
    {Charset::JisX0208, 0xA2CC, 0xA2CC, 0x00AC},  // likewise the not sign
    {Charset::JisX0212, 0xA2B7, 0xA2B7, 0xFF5E},  // a wide tilde is no tilde
    {Charset::JisX0212, 0xA2C3, 0xA2C3, 0x00A6},  // broken bar, not its wide form
    {Charset::KsX1001, 0xA2E8, 0xA2E8, 0x327E},   // a later addition: the postal code mark
    {Charset::Gb2312, 0xA1A4, 0xA1A4, 0x30FB},    // the dot and the dash have other names in GBK
    {Charset::Gb2312, 0xA1AA, 0xA1AA, 0x2015},
    {Charset::Gb2312, 0xA2A1, 0xA2AA, 0},  // additions of GBK
    {Charset::Gb2312, 0xA6E0, 0xA6F5, 0},
    {Charset::Gb2312, 0xA8BB, 0xA8C0, 0},
};

// The row of a unit, or null.
const Correction* FindCorrection(Charset charset, uint32_t unit) {
    const auto* const found = std::ranges::find_if(kCorrections, [&](const Correction& row) {
        return row.charset == charset && unit >= row.first && unit <= row.last;
    });
    return found == std::end(kCorrections) ? nullptr : found;
}

// The unit of a character that a row gives, or 0.
uint16_t FindCorrectedUnit(Charset charset, char32_t character) {
    for (const Correction& row : kCorrections) {
        if (row.charset != charset || row.character == 0 || character < row.character) continue;
        const char32_t distance = character - row.character;
        if (distance <= static_cast<char32_t>(row.last - row.first)) {
            return static_cast<uint16_t>(row.first + distance);
        }
    }
    return 0;
}

uint32_t Number(std::string_view unit) {
    uint32_t number = 0;
    for (const char byte : unit)
        number = number << 8 | static_cast<uint8_t>(byte);
    return number;
}

UINT CodePageOf(Charset charset) {
    // Wine has no GB 18030; what takes two bytes there is nearly the same in GBK.
    if (charset == Charset::Gb18030 && !IsValidCodePage(kGb18030)) return kChinese;
    return kCodePages[static_cast<size_t>(charset)];
}

// Page 20932 has both Japanese sets in two bytes: the second byte of JIS X 0212 is below 80.
void FlipSecondByte(char* unit) { unit[1] = static_cast<char>(unit[1] ^ 0x80); }

bool IsPrivateUse(char32_t character) { return character >= 0xE000 && character < 0xF900; }
// The part of it that stands for the users' own characters of GB 18030.
bool IsUsersOwn(char32_t character) { return character >= 0xE000 && character < 0xE766; }

char32_t CharacterOf(const wchar_t* units, int count) {
    if (count == 1) return units[0] >= 0xD800 && units[0] < 0xE000 ? 0 : char32_t{units[0]};
    if (count != 2 || !IS_SURROGATE_PAIR(units[0], units[1])) return 0;
    const char32_t high = units[0] & 0x3FF;
    const char32_t low = units[1] & 0x3FF;
    return 0x10000 + (high << 10 | low);
}

int WriteUnits(char32_t character, wchar_t (&units)[2]) {
    if (character < 0x10000) {
        units[0] = static_cast<wchar_t>(character);
        return 1;
    }
    units[0] = static_cast<wchar_t>(0xD7C0 + (character >> 10));
    units[1] = static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
    return 2;
}

}  // namespace

// The system remembers nothing between two calls.
CharsetConversion::~CharsetConversion() = default;

char32_t CharsetConversion::Decode(std::string_view unit) {
    const uint32_t number = Number(unit);
    if (const Correction* row = FindCorrection(charset_, number)) {
        return row->character == 0 ? 0 : row->character + (number - row->first);
    }
    char bytes[kMaxCharsetUnit];
    const int length = static_cast<int>(unit.copy(bytes, sizeof bytes));
    if (charset_ == Charset::JisX0212) FlipSecondByte(bytes);
    wchar_t units[4];
    const int count = MultiByteToWideChar(CodePageOf(charset_), MB_ERR_INVALID_CHARS, bytes, length,
                                          units, static_cast<int>(std::size(units)));
    const char32_t character = CharacterOf(units, count);
    if (!IsPrivateUse(character)) return character;
    const bool isMeant =
        charset_ == Charset::Gb18030 && (IsUsersOwn(character) || IsValidCodePage(kGb18030));
    return isMeant ? character : 0;
}

size_t CharsetConversion::Encode(char32_t character, char (&unit)[kMaxCharsetUnit]) {
    if (const uint16_t corrected = FindCorrectedUnit(charset_, character)) {
        const size_t size = corrected > 0xFF ? 2 : 1;
        unit[0] = static_cast<char>(size == 2 ? corrected >> 8 : corrected);
        unit[1] = static_cast<char>(corrected);
        return size;
    }
    wchar_t units[2];
    const int count = WriteUnits(character, units);
    // What the page lacks becomes something else, and decodes to something else.
    const int size = WideCharToMultiByte(CodePageOf(charset_), 0, units, count, unit,
                                         static_cast<int>(sizeof unit), nullptr, nullptr);
    if (size <= 0) return 0;
    if (charset_ == Charset::JisX0212 && size == 2) FlipSecondByte(unit);
    return Decode(std::string_view(unit, static_cast<size_t>(size))) == character
               ? static_cast<size_t>(size)
               : 0;
}

}  // namespace pgkit::platform
