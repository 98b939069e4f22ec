// pgkit, the C++ layer (data_set.hpp): numbers of decimal texts (IS and DS) and back. Independent
// of the locale. Nothing here is for programs to call.
#ifndef PGKIT_CPP_DECIMALS_HPP
#define PGKIT_CPP_DECIMALS_HPP

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "pgkit/accessors.h"
#include "pgkit/cpp/numbers.hpp"
#include "pgkit/value_representation.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

// ---- Reading ------------------------------------------------------------------------------------

inline bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

inline std::string_view without_padding(std::string_view text) noexcept {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0'))
        text.remove_suffix(1);
    return text;
}

inline std::string_view without_blanks(std::string_view text) noexcept {
    text = without_padding(text);
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return text;
}

// A decimal text in its parts: (-1)^is_negative * mantissa * 10^exponent.
struct decimal {
    bool is_negative = false;
    bool is_whole = true;  // neither a point nor an exponent
    bool is_exact = true;  // the mantissa has all digits, and the exponent is not beyond reason
    std::uint64_t mantissa = 0;
    std::int32_t exponent = 0;
};

inline bool take_exponent(std::string_view& text, decimal& parsed) noexcept {
    if (text.empty() || (text.front() != 'e' && text.front() != 'E')) return true;
    text.remove_prefix(1);
    const bool is_negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    if (text.empty()) return false;
    std::int32_t exponent = 0;
    for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1)) {
        if (exponent > 10000) {
            parsed.is_exact = false;
        } else {
            exponent = exponent * 10 + (text.front() - '0');
        }
    }
    parsed.exponent += is_negative ? -exponent : exponent;
    parsed.is_whole = false;
    return true;
}

// None for what is no decimal number from its first character to its last.
inline std::optional<decimal> parse_decimal(std::string_view text) noexcept {
    decimal parsed;
    parsed.is_negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    bool has_digits = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        const char c = text.front();
        if (c == '.' && parsed.is_whole) {
            parsed.is_whole = false;
            continue;
        }
        if (!is_digit(c)) break;
        has_digits = true;
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (parsed.mantissa > (UINT64_MAX - digit) / 10 || parsed.exponent < -10000)
            parsed.is_exact = false;
        if (!parsed.is_exact) continue;
        parsed.mantissa = parsed.mantissa * 10 + digit;
        if (!parsed.is_whole) --parsed.exponent;
    }
    if (!has_digits || !take_exponent(text, parsed) || !text.empty()) return std::nullopt;
    return parsed;
}

// The nearest double to a text that is a number, as the library reads it.
inline double nearest_real(std::string_view text) noexcept {
    PGX_Node* const node = pgKitAllocNode(1, 0x0028, 0x1053, VR_DS, 0);
    double real = 0;
    if (pgKitSetValue(node, text.data(), static_cast<std::uint32_t>(text.size())) == 1)
        real = pgKitGetDSDoubleValue(node);
    pgFreeNode(node);
    return real;
}

// The number that a text is, blanks around it left out; none when it is no number.
inline any_number number_of_text(std::string_view text) noexcept {
    text = without_blanks(text);
    const std::optional<decimal> parsed = parse_decimal(text);
    if (!parsed) return {};
    if (parsed->is_whole && parsed->is_exact) {
        if (!parsed->is_negative) return natural_number(parsed->mantissa);
        if (parsed->mantissa <= std::uint64_t{1} << 63)
            return integer_number(static_cast<std::int64_t>(0 - parsed->mantissa));
    }
    // Both are doubles without error, and so is the rounding of what is made of them the only one.
    constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const bool is_short = parsed->is_exact && parsed->mantissa <= std::uint64_t{1} << 53 &&
                          parsed->exponent >= -22 && parsed->exponent <= 22;
    if (!is_short) return real_number(nearest_real(text));
    const double mantissa = static_cast<double>(parsed->mantissa);
    const double real = parsed->exponent < 0 ? mantissa / powers[-parsed->exponent]
                                             : mantissa * powers[parsed->exponent];
    return real_number(parsed->is_negative ? -real : real);
}

// ---- Writing ------------------------------------------------------------------------------------

// With as many digits as asked for and a point, whatever the locale has.
inline std::string text_of_real(double n, int digits) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, n);
    std::string text;
    bool is_point = false;
    for (const char* c = buffer; *c != '\0'; ++c) {
        const bool belongs = is_digit(*c) || *c == '-' || *c == '+' || (*c >= 'a' && *c <= 'z');
        if (belongs) {
            text += *c;
        } else if (!is_point) {
            text += '.';
        }
        is_point = !belongs;
    }
    return text;
}

// Integers of up to 15 digits are written as such.
inline bool is_short_integer(double n) noexcept {
    return n > -1e15 && n < 1e15 && static_cast<double>(static_cast<std::int64_t>(n)) == n;
}

// The shortest text that is read as this number again, or, where that is longer than allowed, the
// nearest one that is not. (17 digits tell every double from all others.)
inline std::string shortest_text(double n, std::size_t longest = 32) {
    if (is_short_integer(n)) return std::to_string(static_cast<std::int64_t>(n));
    std::string text;
    for (int digits = 1; digits <= 17; ++digits) {
        std::string more = text_of_real(n, digits);
        if (more.size() > longest) break;
        text = std::move(more);
        const std::optional<double> again = converted<double>(number_of_text(text));
        if (again && *again == n) break;
    }
    return text;
}

inline std::string text_of_number(const any_number& number, number_type type) {
    switch (number.is) {
        case any_number::kind::integer:
            return std::to_string(number.integer);
        case any_number::kind::natural:
            return std::to_string(number.natural);
        case any_number::kind::real:
            break;
        default:
            return {};
    }
    if (type != number_type::f32 || is_short_integer(number.real))
        return shortest_text(number.real);
    // Of the digits that tell floats apart.
    const float least = static_cast<float>(number.real);
    for (int digits = 1; digits < 9; ++digits) {
        std::string text = text_of_real(number.real, digits);
        const std::optional<double> again = converted<double>(number_of_text(text));
        if (again && static_cast<float>(*again) == least) return text;
    }
    return text_of_real(number.real, 9);
}

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#endif
