// Numbers as texts: those of IS and DS to numbers of JSON, and numbers of JSON to what values hold.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace pgkit {

// The most that a value of DS may have.
constexpr size_t kMaxDecimalString = 16;

// A short text in memory of its own.
class NumberText {
  public:
    void Append(char c) {
        if (size_ < sizeof text_) text_[size_++] = c;
    }
    void Append(std::string_view text) { size_ += text.copy(text_ + size_, sizeof text_ - size_); }
    template <typename Number>
    static NumberText Of(Number number) {
        NumberText text;
        text.size_ = static_cast<size_t>(
            std::to_chars(text.text_, text.text_ + sizeof text.text_, number).ptr - text.text_);
        return text;
    }
    std::string_view View() const { return {text_, size_}; }

  private:
    char text_[40];
    size_t size_ = 0;
};

// The text of a value of IS or DS as a JSON number with the same digits, if it is a number that
// JSON and a double can hold. The text has no blanks around it.
std::optional<NumberText> JsonNumberOfIS(std::string_view text);
std::optional<NumberText> JsonNumberOfDS(std::string_view text);

// A JSON number as the text of a value of DS. None when it is beyond the range of doubles.
std::optional<NumberText> DecimalStringOf(std::string_view number);

// A JSON number as a whole number of a type, also when it is spelt 1.0 or 1e2. None when it is not
// whole or beyond the range.
template <typename Integer>
std::optional<Integer> WholeNumber(std::string_view number) {
    const char* const end = number.data() + number.size();
    Integer integer{};
    const auto [stop, error] = std::from_chars(number.data(), end, integer);
    if (stop == end && error == std::errc()) return integer;
    // Below this doubles have every integer, and no other one is taken for it.
    constexpr double kExact = 9007199254740992;
    double fraction = 0;
    const auto parsed = std::from_chars(number.data(), end, fraction);
    if (parsed.ptr != end || parsed.ec != std::errc()) return std::nullopt;
    if (!(fraction > -kExact && fraction < kExact)) return std::nullopt;
    const auto whole = static_cast<int64_t>(fraction);
    if (static_cast<double>(whole) != fraction) return std::nullopt;
    if (whole < 0 && std::is_unsigned_v<Integer>) return std::nullopt;
    integer = static_cast<Integer>(whole);
    return static_cast<int64_t>(integer) == whole ? std::optional(integer) : std::nullopt;
}

}  // namespace pgkit
