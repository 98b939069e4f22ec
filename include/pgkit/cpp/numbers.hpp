// pgkit, the C++ layer (data_set.hpp): binary numbers of every value representation, to the types
// that programs ask for and back. Nothing here is for programs to call.
#ifndef PGKIT_CPP_NUMBERS_HPP
#define PGKIT_CPP_NUMBERS_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>

#include "pgkit/value_representation.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

// What the values of an element are.
enum class number_type { none, text, u8, u16, i16, u32, i32, u64, i64, f32, f64, tags };

// USSS and OWOB, which stand for either of two, are taken for US and for no numbers.
inline number_type number_type_of(std::uint32_t vr) noexcept {
    switch (vr) {
        case VR_IS:
        case VR_DS:
            return number_type::text;
        case VR_OB:
            return number_type::u8;
        case VR_US:
        case VR_USSS:
        case VR_OW:
            return number_type::u16;
        case VR_SS:
            return number_type::i16;
        case VR_UL:
        case VR_OL:
            return number_type::u32;
        case VR_SL:
            return number_type::i32;
        case VR_UV:
        case VR_OV:
            return number_type::u64;
        case VR_SV:
            return number_type::i64;
        case VR_FL:
        case VR_OF:
            return number_type::f32;
        case VR_FD:
        case VR_OD:
            return number_type::f64;
        case VR_AT:
            return number_type::tags;
        default:
            return number_type::none;
    }
}

// Bytes of one number; 0 for texts and where there are no numbers.
inline std::size_t size_of(number_type type) noexcept {
    switch (type) {
        case number_type::u8:
            return 1;
        case number_type::u16:
        case number_type::i16:
            return 2;
        case number_type::u32:
        case number_type::i32:
        case number_type::f32:
        case number_type::tags:
            return 4;
        case number_type::u64:
        case number_type::i64:
        case number_type::f64:
            return 8;
        default:
            return 0;
    }
}

// A number as it was found: which of the members holds it depends on the kind.
struct any_number {
    enum class kind { none, integer, natural, real };
    kind is = kind::none;
    std::int64_t integer = 0;
    std::uint64_t natural = 0;  // where it may be beyond the range of integer
    double real = 0;
};

inline any_number integer_number(std::int64_t n) noexcept {
    any_number number;
    number.is = any_number::kind::integer;
    number.integer = n;
    return number;
}

inline any_number natural_number(std::uint64_t n) noexcept {
    any_number number;
    number.is = any_number::kind::natural;
    number.natural = n;
    return number;
}

inline any_number real_number(double n) noexcept {
    any_number number;
    number.is = any_number::kind::real;
    number.real = n;
    return number;
}

template <typename Number>
any_number to_any_number(Number n) noexcept {
    if constexpr (std::is_floating_point_v<Number>) {
        return real_number(static_cast<double>(n));
    } else if constexpr (std::is_signed_v<Number>) {
        return integer_number(n);
    } else {
        return natural_number(n);
    }
}

// ---- To the type that was asked for -------------------------------------------------------------

// None when the type cannot hold the number: too large, negative, not whole. What a floating type
// cannot hold exactly becomes its nearest number.
template <typename Number>
std::optional<Number> converted(const any_number& number) noexcept {
    using limits = std::numeric_limits<Number>;
    using kind = any_number::kind;
    if (number.is == kind::none) return std::nullopt;
    if constexpr (std::is_floating_point_v<Number>) {
        if (number.is == kind::integer) return static_cast<Number>(number.integer);
        if (number.is == kind::natural) return static_cast<Number>(number.natural);
        const bool is_finite = number.real - number.real == 0;
        if (is_finite && (number.real > static_cast<double>((limits::max)()) ||
                          number.real < static_cast<double>(limits::lowest()))) {
            return std::nullopt;
        }
        return static_cast<Number>(number.real);
    } else {
        if (number.is == kind::integer) {
            const bool fits = number.integer < 0
                                  ? std::is_signed_v<Number> &&
                                        number.integer >= static_cast<std::int64_t>((limits::min)())
                                  : static_cast<std::uint64_t>(number.integer) <=
                                        static_cast<std::uint64_t>((limits::max)());
            if (!fits) return std::nullopt;
            return static_cast<Number>(number.integer);
        }
        if (number.is == kind::natural) {
            if (number.natural > static_cast<std::uint64_t>((limits::max)())) return std::nullopt;
            return static_cast<Number>(number.natural);
        }
        // The powers of two that bound the type are doubles, its greatest number may be none.
        constexpr double beyond =
            2.0 * static_cast<double>((std::uint64_t{1} << (limits::digits - 1)));
        const double least = std::is_signed_v<Number> ? -beyond : 0.0;
        if (!(number.real >= least && number.real < beyond)) return std::nullopt;
        const Number whole = static_cast<Number>(number.real);
        if (static_cast<double>(whole) != number.real) return std::nullopt;
        return whole;
    }
}

// ---- Binary numbers, in host byte order ---------------------------------------------------------

template <typename Number>
Number load(const char* bytes) noexcept {
    Number n;
    std::memcpy(&n, bytes, sizeof n);
    return n;
}

inline any_number load_number(const char* bytes, number_type type) noexcept {
    switch (type) {
        case number_type::u8:
            return natural_number(load<std::uint8_t>(bytes));
        case number_type::u16:
            return natural_number(load<std::uint16_t>(bytes));
        case number_type::i16:
            return integer_number(load<std::int16_t>(bytes));
        case number_type::u32:
            return natural_number(load<std::uint32_t>(bytes));
        case number_type::i32:
            return integer_number(load<std::int32_t>(bytes));
        case number_type::u64:
            return natural_number(load<std::uint64_t>(bytes));
        case number_type::i64:
            return integer_number(load<std::int64_t>(bytes));
        case number_type::f32:
            return real_number(static_cast<double>(load<float>(bytes)));
        case number_type::f64:
            return real_number(load<double>(bytes));
        case number_type::tags:
            return natural_number((std::uint64_t{load<std::uint16_t>(bytes)} << 16) |
                                  load<std::uint16_t>(bytes + 2));
        default:
            return {};
    }
}

template <typename Number>
bool append_converted(const any_number& number, std::string& bytes) {
    const std::optional<Number> n = converted<Number>(number);
    if (!n) return false;
    bytes.append(reinterpret_cast<const char*>(&*n), sizeof *n);
    return true;
}

// False, and nothing is appended, when the number does not fit.
inline bool append_number(const any_number& number, number_type type, std::string& bytes) {
    switch (type) {
        case number_type::u8:
            return append_converted<std::uint8_t>(number, bytes);
        case number_type::u16:
            return append_converted<std::uint16_t>(number, bytes);
        case number_type::i16:
            return append_converted<std::int16_t>(number, bytes);
        case number_type::u32:
            return append_converted<std::uint32_t>(number, bytes);
        case number_type::i32:
            return append_converted<std::int32_t>(number, bytes);
        case number_type::u64:
            return append_converted<std::uint64_t>(number, bytes);
        case number_type::i64:
            return append_converted<std::int64_t>(number, bytes);
        case number_type::f32:
            return append_converted<float>(number, bytes);
        case number_type::f64:
            return append_converted<double>(number, bytes);
        case number_type::tags: {
            const std::optional<std::uint32_t> tag = converted<std::uint32_t>(number);
            return tag && append_converted<std::uint16_t>(natural_number(*tag >> 16), bytes) &&
                   append_converted<std::uint16_t>(natural_number(*tag & 0xFFFF), bytes);
        }
        default:
            return false;
    }
}

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#endif
