#include "options.h"

#include <algorithm>
#include <charconv>

namespace pgtool {

namespace {

template <typename Number>
std::optional<Number> ParseDigits(const std::string& text, int base) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace

std::optional<uint32_t> ParseNumber(const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    return hexadecimal ? ParseDigits<uint32_t>(text.substr(2), 16)
                       : ParseDigits<uint32_t>(text, 10);
}

std::optional<uint16_t> ParseHexWord(const std::string& text) {
    return text.size() <= 4 ? ParseDigits<uint16_t>(text, 16) : std::nullopt;
}

std::string ParseOptions(const Arguments& arguments, const std::vector<NumberOption>& options,
                         Arguments* operands) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--") {
            operands->insert(operands->end(), arguments.begin() + static_cast<ptrdiff_t>(i) + 1,
                             arguments.end());
            break;
        }
        if (!argument.starts_with("--")) {
            operands->push_back(argument);
            continue;
        }
        const size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const auto option = std::find_if(options.begin(), options.end(),
                                         [&](const auto& known) { return name == known.name; });
        if (option == options.end()) return "unknown option " + name;

        const bool isNext = equals == std::string::npos;
        if (isNext && i + 1 == arguments.size()) return name + " needs a number";
        const std::string text = isNext ? arguments[++i] : argument.substr(equals + 1);
        const std::optional<uint32_t> number = ParseNumber(text);
        if (!number) return name + ": \"" + text + "\" is not a number";
        *option->value = *number;
    }
    return "";
}

}  // namespace pgtool
