#include "json/number_text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <system_error>

namespace pgkit {

namespace {

// As many digits survive in any double.
constexpr size_t kSafeDigits = 15;
// Below this doubles have every integer, and no other one is taken for it.
constexpr uint64_t kExactIntegers = uint64_t{1} << 53;

std::string_view TakeDigits(std::string_view& text) {
    const size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

bool Take(std::string_view& text, std::string_view oneOf) {
    const bool isThere = !text.empty() && oneOf.find(text[0]) != std::string_view::npos;
    if (isThere) text.remove_prefix(1);
    return isThere;
}

std::string_view WithoutLeadingZeros(std::string_view digits) {
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

// The parts of a number of DS.
struct Decimal {
    bool isNegative;
    std::string_view whole;
    std::string_view fraction;
    std::string_view exponent;  // with its sign; empty without one
};

std::optional<Decimal> ParseDecimal(std::string_view text) {
    Decimal decimal{};
    decimal.isNegative = text.starts_with('-');
    Take(text, "+-");
    decimal.whole = TakeDigits(text);
    if (Take(text, ".")) decimal.fraction = TakeDigits(text);
    if (decimal.whole.empty() && decimal.fraction.empty()) return std::nullopt;
    if (Take(text, "eE")) {
        decimal.exponent = text;
        Take(text, "+-");
        if (TakeDigits(text).empty()) return std::nullopt;
    }
    return text.empty() ? std::optional(decimal) : std::nullopt;
}

NumberText Spell(const Decimal& decimal) {
    NumberText text;
    if (decimal.isNegative) text.Append('-');
    const std::string_view whole = WithoutLeadingZeros(decimal.whole);
    text.Append(whole.empty() ? "0" : whole);
    if (!decimal.fraction.empty()) {
        text.Append('.');
        text.Append(decimal.fraction);
    }
    if (!decimal.exponent.empty()) {
        text.Append('e');
        text.Append(decimal.exponent);
    }
    return text;
}

// From the first digit that is not 0 to the last.
size_t SignificantDigits(const Decimal& decimal) {
    const std::string_view whole = WithoutLeadingZeros(decimal.whole);
    const std::string_view fraction =
        whole.empty() ? WithoutLeadingZeros(decimal.fraction) : decimal.fraction;
    return whole.size() + fraction.size();
}

bool FitsDouble(const Decimal& decimal, std::string_view spelt) {
    const size_t digits = SignificantDigits(decimal);
    // Texts are short: without an exponent no number is too large or too small.
    if (digits <= kSafeDigits && decimal.exponent.empty()) return true;
    double number = 0;
    const auto parsed = std::from_chars(spelt.data(), spelt.data() + spelt.size(), number);
    if (parsed.ec != std::errc()) return false;
    // Smaller ones have fewer digits, and some readers refuse a zero with a large exponent.
    if (std::abs(number) < std::numeric_limits<double>::min()) return false;
    if (digits <= kSafeDigits) return true;
    return decimal.fraction.empty() && decimal.exponent.empty() &&
           std::abs(number) < static_cast<double>(kExactIntegers);
}

}  // namespace

std::optional<NumberText> JsonNumberOfIS(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || error != std::errc() || text.empty()) return std::nullopt;
    return NumberText::Of(number);
}

std::optional<NumberText> JsonNumberOfDS(std::string_view text) {
    if (text.size() > kMaxDecimalString) return std::nullopt;
    const auto decimal = ParseDecimal(text);
    if (!decimal) return std::nullopt;
    const NumberText spelt = Spell(*decimal);
    // It must be short enough to become a value again.
    if (spelt.View().size() > kMaxDecimalString) return std::nullopt;
    return FitsDouble(*decimal, spelt.View()) ? std::optional(spelt) : std::nullopt;
}

std::optional<NumberText> DecimalStringOf(std::string_view number) {
    NumberText text;
    if (number.size() <= kMaxDecimalString) {
        text.Append(number);
        return text;
    }
    double value = 0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec != std::errc()) return std::nullopt;
    text = NumberText::Of(value);
    for (int digits = static_cast<int>(kMaxDecimalString); text.View().size() > kMaxDecimalString;
         --digits) {
        char rounded[32];
        const auto printed = std::to_chars(rounded, rounded + sizeof rounded, value,
                                           std::chars_format::general, digits);
        text = NumberText();
        text.Append(std::string_view(rounded, static_cast<size_t>(printed.ptr - rounded)));
    }
    return text;
}

}  // namespace pgkit
