#include "value_checks.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <vector>

#include "lookup.h"
#include "pgkit/edition.h"
#include "pgkit/value_representation.h"
#include "utf8_text.h"
#include "words.h"

namespace pgtool {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool AreDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), IsDigit); }

int NumberOf(std::string_view digits) {
    int number = 0;
    for (const char digit : digits)
        number = number * 10 + (digit - '0');
    return number;
}

bool IsBetween(std::string_view digits, int least, int most) {
    return AreDigits(digits) && NumberOf(digits) >= least && NumberOf(digits) <= most;
}

bool IsDate(std::string_view text) {
    if (text.size() != 8 || !AreDigits(text)) return false;
    return IsBetween(text.substr(4, 2), 1, 12) && IsBetween(text.substr(6, 2), 1, 31);
}

// HH, HHMM, HHMMSS, HHMMSS.F to HHMMSS.FFFFFF.
bool IsTime(std::string_view text) {
    const size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    if (whole.size() != 2 && whole.size() != 4 && whole.size() != 6) return false;
    if (!IsBetween(whole.substr(0, 2), 0, 23)) return false;
    if (whole.size() > 2 && !IsBetween(whole.substr(2, 2), 0, 59)) return false;
    if (whole.size() > 4 && !IsBetween(whole.substr(4, 2), 0, 60)) return false;
    if (point == text.npos) return true;
    const std::string_view fraction = text.substr(point + 1);
    return whole.size() == 6 && !fraction.empty() && fraction.size() <= 6 && AreDigits(fraction);
}

// YYYY to YYYYMMDDHHMMSS.FFFFFF, and &ZZXX behind it.
bool IsDateTime(std::string_view text) {
    const size_t sign = text.find_first_of("+-");
    if (sign != text.npos) {
        const std::string_view zone = text.substr(sign + 1);
        if (zone.size() != 4 || !AreDigits(zone)) return false;
        text = text.substr(0, sign);
    }
    if (text.size() < 4 || !AreDigits(text.substr(0, 4))) return false;
    const std::string_view month = text.size() >= 6 ? text.substr(4, 2) : "01";
    const std::string_view day = text.size() >= 8 ? text.substr(6, 2) : "01";
    if (!IsBetween(month, 1, 12) || !IsBetween(day, 1, 31)) return false;
    if (text.size() <= 8) return text.size() % 2 == 0;
    return IsTime(text.substr(8));
}

bool IsAge(std::string_view text) {
    return text.size() == 4 && AreDigits(text.substr(0, 3)) &&
           std::string_view("DWMY").find(text[3]) != std::string_view::npos;
}

bool IsUid(std::string_view text) {
    if (text.size() > 64) return false;
    const auto components = Split(text, '.');
    return std::all_of(components.begin(), components.end(), [](std::string_view component) {
        return !component.empty() && AreDigits(component) &&
               (component.size() == 1 || component[0] != '0');
    });
}

bool IsCode(std::string_view text) {
    return text.size() <= 16 && std::all_of(text.begin(), text.end(), [](char c) {
               return IsDigit(c) || (c >= 'A' && c <= 'Z') || c == ' ' || c == '_';
           });
}

// Blanks around a number are padding, and so is a plus sign.
std::string_view Digits(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    if (text.starts_with('+')) text.remove_prefix(1);
    return text;
}

template <typename Number>
bool IsWholly(std::string_view text) {
    Number number{};
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size();
}

// Infinities have letters, too.
bool IsDecimal(std::string_view text) {
    return text.size() <= 16 && text.find_first_not_of("0123456789+-.eE ") == text.npos &&
           IsWholly<double>(Digits(text));
}

bool IsInteger(std::string_view text) {
    return text.size() <= 12 && IsWholly<int32_t>(Digits(text));
}

bool IsName(std::string_view text) {
    const auto groups = Split(text, '=');
    return groups.size() <= 3 &&
           std::all_of(groups.begin(), groups.end(), [](std::string_view group) {
               return CharacterCount(group) <= 64 &&
                      std::count(group.begin(), group.end(), '^') <= 4;
           });
}

bool HasNoControls(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        const unsigned char byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

// What a value of a representation has to be; null when this one is as it should be.
const char* WhatItShouldBe(uint32_t valueRep, std::string_view value) {
    const bool isLine = HasNoControls(value);
    switch (valueRep) {
        case VR_AE:
            return isLine && value.size() <= 16 ? nullptr : "at most 16 characters";
        case VR_AS:
            return IsAge(value) ? nullptr : "an age, such as 045Y";
        case VR_CS:
            return IsCode(value) ? nullptr : "at most 16 capitals, digits, blanks and underscores";
        case VR_DA:
            return IsDate(value) ? nullptr : "a date, YYYYMMDD";
        case VR_DS:
            return IsDecimal(value) ? nullptr : "a number of at most 16 characters";
        case VR_DT:
            return IsDateTime(value) ? nullptr : "a date and time, YYYYMMDDHHMMSS";
        case VR_IS:
            return IsInteger(value) ? nullptr : "an integer of 32 bits";
        case VR_LO:
            return isLine && CharacterCount(value) <= 64 ? nullptr : "at most 64 characters";
        case VR_LT:
            return CharacterCount(value) <= 10240 ? nullptr : "at most 10240 characters";
        case VR_PN:
            return isLine && IsName(value) ? nullptr : "a name of at most 64 characters";
        case VR_SH:
            return isLine && CharacterCount(value) <= 16 ? nullptr : "at most 16 characters";
        case VR_ST:
            return CharacterCount(value) <= 1024 ? nullptr : "at most 1024 characters";
        case VR_TM:
            return IsTime(value) ? nullptr : "a time, HHMMSS";
        case VR_UI:
            return IsUid(value) ? nullptr : "a UID";
        default:
            return nullptr;
    }
}

bool IsOneText(uint32_t valueRep) {
    return valueRep == VR_LT || valueRep == VR_ST || valueRep == VR_UT || valueRep == VR_UR;
}

// "1", "1-3", "2-n", "2-2n".
std::string ComplaintAboutCount(pgkit::tag tag, size_t count) {
    char text[16];
    if (pgxTagMultiplicity(tag.group, tag.element, text, sizeof text) == 0) return "";
    const std::string_view multiplicity = text;
    const size_t dash = multiplicity.find('-');
    const std::string_view first = multiplicity.substr(0, dash);
    const std::string_view last = dash == multiplicity.npos ? first : multiplicity.substr(dash + 1);
    if (!AreDigits(first)) return "";
    const size_t least = static_cast<size_t>(NumberOf(first));
    const bool isOpen = last.ends_with('n');
    const std::string_view step = isOpen ? last.substr(0, last.size() - 1) : "";
    const size_t divisor =
        step.empty() || !AreDigits(step) ? 1 : static_cast<size_t>(NumberOf(step));
    const bool isRight =
        isOpen ? count >= least && count % divisor == 0
               : count >= least && AreDigits(last) && count <= static_cast<size_t>(NumberOf(last));
    if (isRight) return "";
    return "the element has " + std::string(multiplicity) + " values, not " + std::to_string(count);
}

}  // namespace

std::string ComplaintAboutValue(pgkit::tag tag, uint32_t valueRep, const std::string& utf8) {
    if (utf8.empty()) return "";
    const auto values =
        IsOneText(valueRep) ? std::vector<std::string_view>{utf8} : Split(utf8, '\\');
    for (const std::string_view value : values) {
        const char* const expected = value.empty() ? nullptr : WhatItShouldBe(valueRep, value);
        if (expected != nullptr) {
            return "\"" + std::string(value) + "\" is not " + expected;
        }
    }
    return ComplaintAboutCount(tag, values.size());
}

}  // namespace pgtool
