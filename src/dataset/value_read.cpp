// The getters of PGX_Node: the value as bytes, text and numbers in host byte order.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <system_error>

#include "base/byte_order.h"
#include "base/firewall.h"
#include "dataset/value_source.h"
#include "pgkit/dictionary.h"
#include "pgkit/edition.h"
#include "pgkit/node.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr size_t kMaxTagName = 127;

template <typename Number>
Number FirstNumber(const PGX_Node& node) {
    // Enough for the first unit of any VR, which is swapped as a whole.
    uint8_t bytes[8] = {};
    if (!ReadValuePrefix(node, bytes, std::min<size_t>(node.length, sizeof bytes))) return 0;
    return HostNumberAt<Number>(bytes);
}

// Of null it is 0, too.
template <typename Number>
Number FirstNumberOf(const PGX_Node* node) {
    return node == nullptr ? 0 : FirstNumber<Number>(*node);
}

// ---- Numbers as text ----------------------------------------------------------------------------

// How much of a text is read at first; a decimal string that keeps to its VR has 16 bytes.
constexpr size_t kFirstRead = 128;

// A text that goes on for this long behind a number cannot be more of that number.
constexpr size_t kLookAhead = 16;

struct LeadingNumber {
    double number;
    std::string_view rest;
};

int64_t ReadExponent(std::string_view text) {
    const bool isNegative = text.front() == '-';
    if (isNegative || text.front() == '+') text.remove_prefix(1);
    int64_t exponent = INT64_MAX / 2;  // stays when the digits are too many for it
    std::from_chars(text.data(), text.data() + text.size(), exponent);
    return isNegative ? -exponent : exponent;
}

// Of a number beyond the range of double: whether it is too large, and not too small. Where its
// first digit stands tells, and the exponent.
bool IsTooLarge(std::string_view number, std::chars_format format) {
    const bool isHex = format == std::chars_format::hex;
    const size_t e = std::min(number.find_first_of(isHex ? "pP" : "eE"), number.size());
    const std::string_view mantissa = number.substr(0, e);
    const size_t point = std::min(mantissa.find('.'), mantissa.size());
    const size_t firstDigit = mantissa.find_first_not_of("-0.");
    const int64_t exponent = e == number.size() ? 0 : ReadExponent(number.substr(e + 1));
    // The exponent of a hexadecimal number counts bits, of which a digit is four.
    const int64_t digitSize = isHex ? 4 : 1;
    const int64_t digits = static_cast<int64_t>(point) - static_cast<int64_t>(firstDigit);
    return digits * digitSize + exponent > 0;
}

std::string_view SkipBlanksAndPlus(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool hasPlus = text.substr(0, 1) == "+" && text.substr(1, 1) != "-";
    return text.substr(hasPlus ? 1 : 0);
}

// 0 when the text does not begin with a number. Unlike strtod this depends on no locale.
LeadingNumber ParseNumber(std::string_view text, std::chars_format format) {
    double number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, format);
    const size_t used = static_cast<size_t>(end - text.data());
    if (error == std::errc::result_out_of_range) {
        const double magnitude = IsTooLarge(text.substr(0, used), format) ? HUGE_VAL : 0.0;
        number = text.front() == '-' ? -magnitude : magnitude;
    }
    return {number, text.substr(used)};
}

bool IsHexadecimal(std::string_view unsignedText) {
    return (unsignedText.starts_with("0x") || unsignedText.starts_with("0X")) &&
           unsignedText.substr(2).find_first_of(".0123456789abcdefABCDEF") == 0;
}

LeadingNumber ParseNumber(std::string_view text) {
    text = SkipBlanksAndPlus(text);
    const bool isNegative = text.starts_with('-');
    const std::string_view digits = text.substr(isNegative ? 1 : 0);
    if (!IsHexadecimal(digits)) return ParseNumber(text, std::chars_format::general);
    const LeadingNumber number = ParseNumber(digits.substr(2), std::chars_format::hex);
    return {isNegative ? -number.number : number.number, number.rest};
}

// Reads no more of the text than the number needs.
double NumberOfText(const PGX_Node& node) {
    std::string buffer;
    for (size_t size = kFirstRead;; size *= 2) {
        buffer.resize(std::min<size_t>(size, node.length));
        if (!ReadValuePrefix(node, reinterpret_cast<uint8_t*>(buffer.data()), buffer.size())) {
            return 0;
        }
        const size_t end = buffer.find('\0');
        const bool isWhole = end != std::string::npos || buffer.size() == node.length;
        const LeadingNumber leading = ParseNumber(std::string_view(buffer).substr(0, end));
        if (isWhole || leading.rest.size() > kLookAhead) return leading.number;
    }
}

}  // namespace

}  // namespace pgkit

int32_t PGX_Node::GetTagName(char* buffer) {
    if (buffer == nullptr) return 0;
    if (tagName == nullptr) {
        return static_cast<int32_t>(pgGetTagPrintableName(group, element, buffer));
    }
    const size_t copied = std::string_view(tagName).copy(buffer, pgkit::kMaxTagName);
    buffer[copied] = '\0';
    return 1;
}

int32_t PGX_Node::GetValue(void* buffer) {
    if (buffer == nullptr || !pgkit::HasValue(*this)) return 0;
    uint8_t* bytes = static_cast<uint8_t*>(buffer);
    pgkit::ReadValue(*this, bytes);
    bytes[length] = 0;
    return 1;
}

int32_t PGX_Node::GetStringValue(char* buffer, int32_t size) {
    if (buffer == nullptr) return 0;
    const size_t count = size <= 0 ? 0 : std::min(length, static_cast<uint32_t>(size));
    const bool isRead =
        size > 0 && pgkit::ReadValuePrefix(*this, reinterpret_cast<uint8_t*>(buffer), count);
    buffer[isRead ? count : 0] = '\0';
    return isRead ? 1 : 0;
}

uint16_t PGX_Node::GetUSValue() { return pgkit::FirstNumber<uint16_t>(*this); }

uint32_t PGX_Node::GetULValue() { return pgkit::FirstNumber<uint32_t>(*this); }

int16_t PGX_Node::GetSSValue() { return pgkit::FirstNumber<int16_t>(*this); }

int32_t PGX_Node::GetDSIntValue() {
    const double number = GetDSDoubleValue();
    if (std::isnan(number)) return 0;
    return static_cast<int32_t>(std::clamp<double>(number, INT32_MIN, INT32_MAX));
}

double PGX_Node::GetDSDoubleValue() { return length == 0 ? 0 : pgkit::NumberOfText(*this); }

int32_t PGX_Node::GetFileData(void* buffer, uint32_t offset, uint32_t count) {
    if (nodeType != NT_DataSet || file == nullptr || buffer == nullptr) return 0;
    return pgkit::platform::Seek(file, offset) && std::fread(buffer, 1, count, file) == count;
}

int64_t pgxGetSVValue(PGX_Node* element) {
    return pgkit::Guarded([=] { return pgkit::FirstNumberOf<int64_t>(element); });
}

uint64_t pgxGetUVValue(PGX_Node* element) {
    return pgkit::Guarded([=] { return pgkit::FirstNumberOf<uint64_t>(element); });
}
