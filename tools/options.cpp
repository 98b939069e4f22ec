#include "options.h"

#include <algorithm>
#include <optional>

#include "digits.h"

namespace pgtool {

namespace {

using Argument = Arguments::const_iterator;

std::optional<uint32_t> ParseNumber(const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    return hexadecimal ? ParseDigits<uint32_t>(text.substr(2), 16)
                       : ParseDigits<uint32_t>(text, 10);
}

bool Assign(const Option& option, const std::string& text) {
    if (std::string* const* value = std::get_if<std::string*>(&option.value)) {
        **value = text;
        return true;
    }
    const std::optional<uint32_t> number = ParseNumber(text);
    if (number) *std::get<uint32_t*>(option.value) = *number;
    return number.has_value();
}

// Reads the option at an argument, which becomes the last that belongs to it. Gives the complaint
// about it, or an empty text.
std::string ReadOption(Argument& argument, Argument end, const std::vector<Option>& options) {
    const size_t equals = argument->find('=');
    const bool isWhole = equals == std::string::npos;
    const std::string name = argument->substr(0, equals);
    const auto option = std::find_if(options.begin(), options.end(),
                                     [&](const auto& known) { return name == known.name; });
    if (option == options.end()) return "unknown option " + name;

    if (bool* const* isSet = std::get_if<bool*>(&option->value)) {
        if (!isWhole) return name + " takes no value";
        **isSet = true;
        return "";
    }
    if (isWhole && argument + 1 == end) return name + " needs a value";
    const std::string text = isWhole ? *++argument : argument->substr(equals + 1);
    return Assign(*option, text) ? "" : name + ": \"" + text + "\" is not a number";
}

}  // namespace

std::string ParseOptions(const Arguments& arguments, const std::vector<Option>& options,
                         Arguments* operands) {
    for (Argument argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--") {
            operands->insert(operands->end(), argument + 1, arguments.end());
            break;
        }
        if (argument->size() < 2 || argument->front() != '-') {
            operands->push_back(*argument);
            continue;
        }
        std::string complaint = ReadOption(argument, arguments.end(), options);
        if (!complaint.empty()) return complaint;
    }
    return "";
}

}  // namespace pgtool
