// Numbers of operands and options.
#pragma once

#include <charconv>
#include <optional>
#include <string>

namespace pgtool {

// The number that a whole text is: digits of the base and nothing else.
template <typename Number>
std::optional<Number> ParseDigits(const std::string& text, int base) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace pgtool
