// pgkit, the C++ layer (data_set.hpp): how the values of elements are changed.
#ifndef PGKIT_CPP_ELEMENT_CHANGES_HPP
#define PGKIT_CPP_ELEMENT_CHANGES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pgkit/cpp/decimals.hpp"
#include "pgkit/cpp/element.hpp"
#include "pgkit/cpp/element_values.hpp"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/text.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

// The longest text that the value representation DS allows.
inline constexpr std::size_t longest_decimal = 16;

struct text_failure {
    failure kind;
    const char* reason;
};

inline text_failure why_not_text(std::int64_t text_error) noexcept {
    switch (text_error) {
        case PGX_TEXT_NOT_EXPRESSIBLE:
            return {failure::not_expressible, "the character set lacks a character of the text"};
        case PGX_TEXT_INVALID_UTF8:
            return {failure::invalid_utf8, "the text is no UTF-8"};
        case PGX_TEXT_TOO_LONG:
            return {failure::too_long, "the text is too long"};
        case PGX_TEXT_NO_MEMORY:
            return {failure::no_memory, "memory has run out"};
        default:
            return {failure::wrong_type, "its value representation has no texts"};
    }
}

// One number in the form of a value representation, behind what is there. The reason why not, or
// null.
inline const char* append_encoded(const any_number& number, std::uint32_t vr,
                                  std::string& encoded) {
    const number_type type = number_type_of(vr);
    if (type != number_type::text) {
        return append_number(number, type, encoded) ? nullptr : "the number does not fit";
    }
    std::string text;
    if (vr == VR_IS) {
        const std::optional<std::int32_t> integer = converted<std::int32_t>(number);
        if (!integer) return "the number is no integer of 32 bits";
        text = std::to_string(*integer);
    } else {
        text = text_of_number(number, type);
        const std::optional<double> real = converted<double>(number);
        if (!real || *real - *real != 0) return "the number is not finite";
        if (text.size() > longest_decimal) text = shortest_text(*real, longest_decimal);
    }
    if (!encoded.empty()) encoded += '\\';
    encoded += text;
    return nullptr;
}

// The number that one value of a text is for a value representation of binary numbers.
inline any_number number_of_text(std::string_view text, std::uint32_t vr) noexcept {
    if (vr != VR_AT) return number_of_text(text);
    const std::optional<pgkit::tag> tag = pgkit::tag::named(without_blanks(text));
    if (!tag) return {};
    return natural_number((std::uint64_t{tag->group} << 16) | tag->element);
}

// A text with "\" between its values as binary numbers. The reason why not, or null.
inline const char* encode_number_texts(std::string_view text, std::uint32_t vr,
                                       std::string& encoded) {
    while (!text.empty()) {
        const std::size_t end = text.find('\\');
        const any_number number = number_of_text(text.substr(0, end), vr);
        if (number.is == any_number::kind::none)
            return vr == VR_AT ? "the text names no tag" : "the text is no number";
        const bool is_finite =
            number.is != any_number::kind::real || number.real - number.real == 0;
        if (!is_finite)
            return "the number does not fit";  // "1e400", which only an infinity is near
        if (const char* const reason = append_encoded(number, vr, encoded)) return reason;
        if (end == text.npos) break;
        text.remove_prefix(end + 1);
        if (text.empty()) return "a value is empty";
    }
    return nullptr;
}

// Stores a value in the byte order of this machine.
inline bool store_value(PGX_Node* node, const void* bytes, std::uint32_t size) {
    // The library takes OW for bytes that are in the order of the file already.
    if (pgKitGetValueRep(node) != VR_OW || !is_big_endian(node) || size < 2)
        return pgKitSetValue(node, bytes, size) == 1;
    std::vector<char> swapped(static_cast<const char*>(bytes),
                              static_cast<const char*>(bytes) + size);
    for (std::size_t i = 0; i + 1 < swapped.size(); i += 2)
        std::swap(swapped[i], swapped[i + 1]);
    return pgKitSetValue(node, swapped.data(), size) == 1;
}

}  // namespace detail

inline error element::cannot_set(failure kind, const char* reason) const {
    if (node_ == nullptr) return {failure::not_found, "cannot set an element that is not there"};
    std::string message = "cannot set " + tag().text();
    const std::string called = name();
    if (!called.empty()) message += " " + called;
    return {kind, message + ": " + reason};
}

inline result<void> element::set_text(std::string_view text) {
    if (node_ == nullptr || is_sequence() || is_encapsulated())
        return cannot_set(failure::wrong_type, "its value is no text");
    if (detail::is_printable_number(vr())) {
        std::string encoded;
        if (const char* const reason = detail::encode_number_texts(text, vr(), encoded))
            return cannot_set(failure::bad_value, reason);
        return set_bytes(encoded.data(), encoded.size());
    }
    const std::int64_t size = pgxSetUtf8Value(character_set_, node_, text.data(), text.size());
    if (size >= 0) return {};
    const detail::text_failure why = detail::why_not_text(size);
    return cannot_set(why.kind, why.reason);
}

inline result<void> element::set_texts(span<const std::string_view> texts) {
    std::string all;
    bool is_first = true;
    for (const std::string_view text : texts) {
        if (text.find('\\') != text.npos) {
            return cannot_set(failure::bad_value,
                              "a value has a backslash, which separates values");
        }
        if (!is_first) all += '\\';
        all += text;
        is_first = false;
    }
    return set_text(all);
}

inline result<void> element::append_encoded(const detail::any_number& number,
                                            std::string& encoded) const {
    if (node_ == nullptr || detail::number_type_of(vr()) == detail::number_type::none)
        return cannot_set(failure::wrong_type, "its value representation has no numbers");
    if (const char* const reason = detail::append_encoded(number, vr(), encoded))
        return cannot_set(failure::bad_value, reason);
    return {};
}

inline result<void> element::set_encoded_numbers(const std::string& encoded) {
    return set_bytes(encoded.data(), encoded.size());
}

inline result<void> element::set_bytes(const void* bytes, std::size_t size) {
    if (node_ == nullptr || is_sequence() || is_encapsulated())
        return cannot_set(failure::wrong_type, "it has no value of its own");
    if (size >= detail::undefined_length)
        return cannot_set(failure::too_long, "the value is too long");
    if (detail::store_value(node_, bytes, static_cast<std::uint32_t>(size))) return {};
    return cannot_set(failure::no_memory, "memory has run out");
}

}  // namespace v1
}  // namespace pgkit

#endif
