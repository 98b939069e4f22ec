// pgkit, the C++ layer (data_set.hpp): how the values of elements are read.
#ifndef PGKIT_CPP_ELEMENT_VALUES_HPP
#define PGKIT_CPP_ELEMENT_VALUES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "pgkit/cpp/decimals.hpp"
#include "pgkit/cpp/element.hpp"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/dictionary.h"
#include "pgkit/lookup.h"
#include "pgkit/text.h"

namespace pgkit {
inline namespace v1 {
namespace detail {

inline constexpr std::uint32_t undefined_length = 0xFFFFFFFF;
inline constexpr std::uint32_t last_position = 0xFFFFFFFF;

// Values of this length are read without first asking whether the file holds them.
inline constexpr std::uint32_t unchecked_length = 0x10000;

inline bool has_byte(PGX_Node* node, std::uint64_t position) noexcept {
    char byte;
    return position <= last_position &&
           read_file(node, static_cast<std::uint32_t>(position), &byte, 1);
}

// How many bytes of a value in a file that file holds. Files of 4 GiB and more have room enough for
// any value that a node can point at.
inline std::uint32_t length_in_file(PGX_Node* node) noexcept {
    const std::uint64_t start = position_in_file(node);
    const std::uint32_t length = pgKitGetLength(node);
    if (start == last_position || length == 0) return 0;
    const std::uint64_t end = start + length;
    if (has_byte(node, end <= last_position ? end - 1 : last_position)) return length;
    std::uint32_t held = 0;
    std::uint32_t lacking = length;  // the byte of this number is not there
    while (held < lacking) {
        const std::uint32_t middle = held + (lacking - held) / 2;
        if (has_byte(node, start + middle)) {
            held = middle + 1;
        } else {
            lacking = middle;
        }
    }
    return held;
}

// How long a value is that is not longer than what its file holds; 0 where there is none.
inline std::uint32_t available_length(PGX_Node* node) noexcept {
    if (node == nullptr || pgKitGetNodeType(node) == 0 || pgKitIsEncodedPixelData(node) != 0)
        return 0;
    const std::uint32_t length = pgKitGetLength(node);
    if (length == undefined_length || pgKitGetValueRep(node) == VR_SQ) return 0;
    return length > unchecked_length && is_in_file(node) ? length_in_file(node) : length;
}

// The first bytes of a value: at most those that available_length told, and a NUL behind them.
// Returns how many there really are.
inline std::size_t read_prefix(PGX_Node* node, char* buffer, std::size_t size) noexcept {
    constexpr std::size_t longest_prefix = 0x7FFFFFFF;
    if (size > longest_prefix) size = longest_prefix;
    if (size == 0 || pgKitGetStringValue(node, buffer, static_cast<std::int32_t>(size)) == 0)
        return 0;
    // What the file lacks reads as zeros, of which some are then in the last number.
    if (!is_in_file(node)) return size;
    const std::string_view last(buffer + (size < 8 ? 0 : size - 8), size < 8 ? size : 8);
    if (last.find('\0') == last.npos) return size;
    const std::size_t held = length_in_file(node);
    return held < size ? held : size;
}

// The whole value in a string or a vector of bytes.
template <typename Container>
Container read_value(PGX_Node* node) {
    Container value;
    const std::size_t available = available_length(node);
    if (available == 0) return value;
    if (available > 0x7FFFFFFF) {
        value.resize(std::size_t{pgKitGetLength(node)} + 1);
        const bool is_read = pgKitGetValue(node, value.data()) == 1;
        value.resize(is_read ? available : 0);
        return value;
    }
    value.resize(available + 1);
    value.resize(read_prefix(node, reinterpret_cast<char*>(value.data()), available));
    return value;
}

// A value, or the beginning of one, without an allocation as long as it is short.
class value_prefix {
  public:
    value_prefix(PGX_Node* node, std::size_t size) {
        const std::size_t available = available_length(node);
        if (size > available) size = available;
        is_whole_ = size == available;
        if (size < sizeof short_) {
            data_ = short_;
        } else {
            long_.resize(size + 1);
            data_ = long_.data();
        }
        size_ = read_prefix(node, data_, size);
    }
    value_prefix(const value_prefix&) = delete;
    value_prefix& operator=(const value_prefix&) = delete;

    [[nodiscard]] std::string_view text() const noexcept { return {data_, size_}; }
    // Whether there is no more of the value.
    [[nodiscard]] bool is_whole() const noexcept { return is_whole_; }

  private:
    char short_[512];
    std::vector<char> long_;
    char* data_ = nullptr;
    std::size_t size_ = 0;
    bool is_whole_ = false;
};

// The value of that index of a text with "\" between its values; none when there are fewer.
inline std::optional<std::string_view> value_at(std::string_view text, std::size_t index) noexcept {
    for (; index > 0; --index) {
        const std::size_t end = text.find('\\');
        if (end == text.npos) return std::nullopt;
        text.remove_prefix(end + 1);
    }
    return text.substr(0, text.find('\\'));
}

// Whether a value may have several, with "\" between them.
inline bool has_several_texts(std::uint32_t vr) noexcept {
    return vr != VR_ST && vr != VR_LT && vr != VR_UT && vr != VR_UR;
}

// Binary numbers that have a text: those that are numbers, not bytes.
inline bool is_printable_number(std::uint32_t vr) noexcept {
    switch (vr) {
        case VR_US:
        case VR_SS:
        case VR_USSS:
        case VR_UL:
        case VR_SL:
        case VR_UV:
        case VR_SV:
        case VR_FL:
        case VR_FD:
        case VR_AT:
            return true;
        default:
            return false;
    }
}

inline std::string text_of_tag(std::uint64_t number) {
    return pgkit::tag{static_cast<std::uint16_t>(number >> 16),
                      static_cast<std::uint16_t>(number & 0xFFFF)}
        .text();
}

}  // namespace detail

// ---- What an element is -------------------------------------------------------------------------

inline std::string element::vr_name() const {
    return detail::bounded_text([this](char* buffer, std::size_t size) {
        const std::size_t length = pgxGetVRPrintableName(vr(), buffer, size);
        return length == 0 ? std::size_t{4} : length;  // the placeholder
    });
}

inline std::string element::name() const {
    if (node_ == nullptr) return {};
    std::string keyword = tag().keyword();
    if (!keyword.empty()) return keyword;
    return detail::bounded_text([this](char* buffer, std::size_t size) {
        return pgxGetTagPrintableName(tag().group, tag().element, buffer, size);
    });
}

// ---- Texts --------------------------------------------------------------------------------------

inline std::string element::text() const {
    std::string text;
    if (detail::is_printable_number(vr())) {
        const bool is_tag = vr() == VR_AT;
        each_number([&](const detail::any_number& number) {
            if (!text.empty()) text += '\\';
            text += is_tag ? detail::text_of_tag(number.natural)
                           : detail::text_of_number(number, detail::number_type_of(vr()));
            return true;
        });
        return text;
    }
    char buffer[256];
    const std::int64_t size = pgxGetUtf8Value(character_set_, node_, buffer, sizeof buffer);
    if (size <= 0) return text;
    const auto length = static_cast<std::size_t>(size);
    if (length < sizeof buffer) return text.assign(buffer, length);
    text.resize(length);
    if (pgxGetUtf8Value(character_set_, node_, text.data(), length + 1) != size) text.clear();
    return text;
}

inline std::vector<std::string> element::texts() const {
    std::vector<std::string> values;
    const std::string all = text();
    if (all.empty()) return values;
    if (!detail::has_several_texts(vr())) {
        values.push_back(all);
        return values;
    }
    std::string_view rest = all;
    while (true) {
        const std::size_t end = rest.find('\\');
        values.emplace_back(detail::without_padding(rest.substr(0, end)));
        if (end == rest.npos) return values;
        rest.remove_prefix(end + 1);
    }
}

// ---- Numbers ------------------------------------------------------------------------------------

inline detail::any_number element::any_number_at(std::size_t index) const {
    const detail::number_type type = detail::number_type_of(vr());
    const std::size_t size = detail::size_of(type);
    if (size != 0) {
        if (index >= detail::available_length(node_) / size) return {};
        const detail::value_prefix value(node_, (index + 1) * size);
        if (value.text().size() < (index + 1) * size) return {};
        return detail::load_number(value.text().data() + index * size, type);
    }
    if (type == detail::number_type::none) return {};
    // Most values are short, and so is what stands before the one that is asked for.
    constexpr std::size_t usual_length = 32;
    for (std::size_t length = (index + 1) * usual_length;; length = SIZE_MAX) {
        const detail::value_prefix value(node_, length);
        const std::optional<std::string_view> text = detail::value_at(value.text(), index);
        const bool is_ended =
            text && text->data() + text->size() != value.text().data() + value.text().size();
        if (is_ended || value.is_whole())
            return text ? detail::number_of_text(*text) : detail::any_number();
    }
}

template <typename Action>
bool element::each_number(Action action) const {
    const detail::number_type type = detail::number_type_of(vr());
    if (type == detail::number_type::none) return true;
    const auto value = detail::read_value<std::string>(node_);
    if (const std::size_t size = detail::size_of(type); size != 0) {
        for (std::size_t i = 0; i + size <= value.size(); i += size)
            if (!action(detail::load_number(value.data() + i, type))) return false;
        return true;
    }
    std::string_view rest = detail::without_padding(value);
    if (rest.empty()) return true;
    while (true) {
        const std::size_t end = rest.find('\\');
        if (!action(detail::number_of_text(rest.substr(0, end)))) return false;
        if (end == rest.npos) return true;
        rest.remove_prefix(end + 1);
    }
}

// ---- Bytes --------------------------------------------------------------------------------------

inline std::vector<std::uint8_t> element::bytes() const {
    return detail::read_value<std::vector<std::uint8_t>>(node_);
}

}  // namespace v1
}  // namespace pgkit

#endif
