// pgkit, the C++ layer (data_set.hpp): elements and their values.
#ifndef PGKIT_CPP_ELEMENT_HPP
#define PGKIT_CPP_ELEMENT_HPP

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "pgkit/accessors.h"
#include "pgkit/cpp/numbers.hpp"
#include "pgkit/cpp/result.hpp"
#include "pgkit/cpp/tag.hpp"
#include "pgkit/value_representation.h"

namespace pgkit {
inline namespace v1 {

class item;
class item_range;

// Numbers in general: any arithmetic type but bool and the character types.
template <typename Number>
inline constexpr bool is_number =
    std::is_arithmetic_v<Number> && !std::is_same_v<Number, bool> &&
    !std::is_same_v<Number, char> && !std::is_same_v<Number, wchar_t> &&
    !std::is_same_v<Number, char16_t> && !std::is_same_v<Number, char32_t>;

// One element of a data set: a handle, as cheap to copy as two pointers, which owns nothing. It is
// valid as long as the element is in its data set, and as (0008,0005) of that is: get elements anew
// after replacing or removing Specific Character Set.
//
// A handle may be empty: of an element that was looked for and is not there. Asking it for
// something gives nothing (no text, no number, no items), so that what is optional in DICOM needs
// no test: data_set.find("PatientName").text() is empty without the element, too.
//
// Values that were not loaded are read from the file of the data set whenever they are asked for.
// What a damaged file does not hold of a value reads as if the value were so much shorter.
class element {
  public:
    element() noexcept = default;
    // For handles of the flat functions. The second is what pgxFindCharacterSet gives.
    explicit element(PGX_Node* node, PGX_Node* character_set = nullptr) noexcept
        : node_(node), character_set_(character_set) {}

    // Whether there is one.
    [[nodiscard]] explicit operator bool() const noexcept { return node_ != nullptr; }

    // ---- What it is -----------------------------------------------------------------------------

    [[nodiscard]] pgkit::tag tag() const noexcept {
        return {pgKitGetGroup(node_), pgKitGetElement(node_)};
    }
    // A ValueRepresentation, VR_Unknown of none.
    [[nodiscard]] std::uint32_t vr() const noexcept {
        return node_ == nullptr ? std::uint32_t{VR_Unknown} : pgKitGetValueRep(node_);
    }
    // "PN". In files of implicit VR "USSS" and "OWOB" stand for what cannot be told there. "????"
    // for VR_Unknown.
    [[nodiscard]] std::string vr_name() const;
    // The keyword of today's standard, "PatientName"; else the name that the library has for the
    // tag, those of the private dictionary among them; else empty.
    [[nodiscard]] std::string name() const;
    // Bytes, as the element says; 0xFFFFFFFF when it leaves that open, as sequences may.
    [[nodiscard]] std::uint32_t length() const noexcept { return pgKitGetLength(node_); }
    // Whether it has items: by its value representation, or because there are some.
    [[nodiscard]] bool is_sequence() const noexcept {
        return vr() == VR_SQ || (!is_encapsulated() && pgKitGetFirst(node_) != nullptr);
    }
    // Whether it is Pixel Data in fragments.
    [[nodiscard]] bool is_encapsulated() const noexcept {
        return pgKitIsEncodedPixelData(node_) != 0;
    }
    // No value and no items.
    [[nodiscard]] bool empty() const noexcept {
        return !is_encapsulated() && pgKitGetFirst(node_) == nullptr &&
               (length() == 0 || vr() == VR_SQ);
    }

    // ---- Texts ----------------------------------------------------------------------------------

    // The value as UTF-8, from the character set that holds here (text.h), without the padding at
    // its end. Values of a multi-value stand with "\" between them. Numbers are in decimal, the
    // shortest text that names them, tags as "(0010,0010)". Empty for sequences, bytes (OB, OW and
    // the like, UN), and where there is no value.
    [[nodiscard]] std::string text() const;
    // The values of a multi-value one by one, each without blanks at its end; a text of ST, LT, UT
    // and UR is one. None where text() is empty.
    [[nodiscard]] std::vector<std::string> texts() const;

    // ---- Numbers --------------------------------------------------------------------------------

    // The value of that index, which counts from 0, as a number of the type that is asked for:
    //
    //     element.number<int>()  element.number<double>(2)  element.number<std::uint64_t>()
    //
    // Of US, SS, UL, SL, UV, SV, FL, FD, of IS and DS, and of the elements of OB, OW, OL, OV, OF
    // and OD; of AT 65536 * group + element. USSS reads as US. None when there is no such value, it
    // is no number ("12a") or the type cannot hold it: number<int>() of the DS "2.5" is none, of
    // "2.0" it is 2. A floating type takes the nearest number that it has.
    template <typename Number>
    [[nodiscard]] std::optional<Number> number(std::size_t index = 0) const {
        static_assert(is_number<Number>, "a type of numbers");
        return detail::converted<Number>(any_number_at(index));
    }

    // All values. Empty when there are none, and when number() would not give each of them.
    template <typename Number>
    [[nodiscard]] std::vector<Number> numbers() const;

    // ---- Bytes ----------------------------------------------------------------------------------

    // The value in the byte order of this machine, padding included; UI without blanks around it
    // and with zeros in their place. Empty for sequences and for encapsulated Pixel Data, whose
    // fragments item::frames() gives.
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

    // ---- Items ----------------------------------------------------------------------------------

    // The items of a sequence: for (pgkit::item item : element.items()). No items of what is none.
    [[nodiscard]] item_range items() const noexcept;
    // The item of that index, which counts from 0; an empty one when there is none.
    [[nodiscard]] item operator[](std::size_t index) const noexcept;
    // Counts them, one by one.
    [[nodiscard]] std::size_t item_count() const noexcept;

    // ---- Changing it ----------------------------------------------------------------------------
    //
    // item (item.hpp) has the same by paths, which also make what is missing. An error leaves the
    // element as it was, but for no_memory: then the value may be gone.

    // A text of UTF-8, put into the character set that holds here; "\" stands between values. It is
    // not held against the rules of the value representation. Binary numbers get what the text says
    // in decimal (AT: what tag::named() finds), where that fits: else bad_value. Other errors:
    // not_expressible, invalid_utf8, too_long; wrong_type for sequences, bytes and UN.
    result<void> set_text(std::string_view text);
    // Several values; none makes the element empty. bad_value when one has a "\".
    result<void> set_texts(span<const std::string_view> texts);
    result<void> set_texts(std::initializer_list<std::string_view> texts) {
        return set_texts(span<const std::string_view>(texts.begin(), texts.size()));
    }

    // A number, or several, in the form of the value representation. Errors: bad_value for one that
    // does not fit: out of range, not whole (IS takes 32 bits), not finite (IS, DS). DS gets at
    // most 16 characters, the shortest text that reads as the number again, or the nearest.
    // wrong_type where number() reads none.
    template <typename Number, typename = std::enable_if_t<is_number<Number>>>
    result<void> set_number(Number number) {
        return set_numbers(span<const Number>(&number, 1));
    }
    template <typename Number>
    result<void> set_numbers(span<const Number> numbers);
    template <typename Number>
    result<void> set_numbers(const std::vector<Number>& numbers) {
        return set_numbers(span<const Number>(numbers));
    }
    template <typename Number>
    result<void> set_numbers(std::initializer_list<Number> numbers) {
        return set_numbers(span<const Number>(numbers.begin(), numbers.size()));
    }

    // Bytes in the byte order of this machine, copied; an odd number of them is padded. Null bytes
    // with a size of 0 make the element empty. Errors: wrong_type for sequences and encapsulated
    // Pixel Data, too_long above 0xFFFFFFFE bytes.
    result<void> set_bytes(const void* bytes, std::size_t size);

    // For the flat functions.
    [[nodiscard]] PGX_Node* node() const noexcept { return node_; }
    [[nodiscard]] PGX_Node* character_set() const noexcept { return character_set_; }

  private:
    [[nodiscard]] detail::any_number any_number_at(std::size_t index) const;
    // Ends with the first number for which the action is false, and is false then.
    template <typename Action>
    bool each_number(Action action) const;
    // Puts one more number behind the value that is being made.
    result<void> append_encoded(const detail::any_number& number, std::string& encoded) const;
    result<void> set_encoded_numbers(const std::string& encoded);
    [[nodiscard]] error cannot_set(failure kind, const char* reason) const;

    PGX_Node* node_ = nullptr;
    PGX_Node* character_set_ = nullptr;
};

// ---- Definitions of templates -------------------------------------------------------------------

template <typename Number>
std::vector<Number> element::numbers() const {
    static_assert(is_number<Number>, "a type of numbers");
    std::vector<Number> numbers;
    const bool all_fit = each_number([&](const detail::any_number& any) {
        const std::optional<Number> number = detail::converted<Number>(any);
        if (number) numbers.push_back(*number);
        return number.has_value();
    });
    if (!all_fit) numbers.clear();
    return numbers;
}

template <typename Number>
result<void> element::set_numbers(span<const Number> numbers) {
    static_assert(is_number<Number>, "a type of numbers");
    std::string encoded;
    for (const Number number : numbers) {
        if (auto appended = append_encoded(detail::to_any_number(number), encoded); !appended)
            return appended;
    }
    return set_encoded_numbers(encoded);
}

}  // namespace v1
}  // namespace pgkit

#endif
