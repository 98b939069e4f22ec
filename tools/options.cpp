#include "options.h"

#include <algorithm>
#include <charconv>

#include "pgkit/dictionary.h"

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

bool Assign(const Option& option, const std::string& text) {
    if (std::string* const* value = std::get_if<std::string*>(&option.value)) {
        **value = text;
        return true;
    }
    const std::optional<uint32_t> number = ParseNumber(text);
    if (number) *std::get<uint32_t*>(option.value) = *number;
    return number.has_value();
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

std::string ParseOptions(const Arguments& arguments, const std::vector<Option>& options,
                         Arguments* operands) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--") {
            operands->insert(operands->end(), arguments.begin() + static_cast<ptrdiff_t>(i) + 1,
                             arguments.end());
            break;
        }
        if (argument.size() < 2 || argument[0] != '-') {
            operands->push_back(argument);
            continue;
        }
        const size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const auto option = std::find_if(options.begin(), options.end(),
                                         [&](const auto& known) { return name == known.name; });
        if (option == options.end()) return "unknown option " + name;

        if (bool* const* isSet = std::get_if<bool*>(&option->value)) {
            if (equals != std::string::npos) return name + " takes no value";
            **isSet = true;
            continue;
        }
        const bool isNext = equals == std::string::npos;
        if (isNext && i + 1 == arguments.size()) return name + " needs a value";
        const std::string text = isNext ? arguments[++i] : argument.substr(equals + 1);
        if (!Assign(*option, text)) return name + ": \"" + text + "\" is not a number";
    }
    return "";
}

std::optional<Tag> ParseTag(std::string text) {
    if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
        text = text.substr(1, text.size() - 2);
    }
    const size_t comma = text.find(',');
    if (comma == std::string::npos) return std::nullopt;
    const auto group = ParseHexWord(text.substr(0, comma));
    const auto element = ParseHexWord(text.substr(comma + 1));
    if (!group || !element) return std::nullopt;
    return Tag{*group, *element};
}

std::optional<Tag> FindTagByName(const std::string& name) {
    constexpr uint32_t kNoIdentifier = 0xFFFFFFFF;
    const uint32_t identifier = pgGetTagElementId(name.c_str());
    Tag tag;
    if (identifier == kNoIdentifier ||
        pgFindElementIdInfo(static_cast<int32_t>(identifier), &tag.group, &tag.element) == 0) {
        return std::nullopt;
    }
    return tag;
}

int AnswerEach(const Command& command, const Arguments& arguments, const std::string& expected,
               bool (*print)(const std::string& operand)) {
    Arguments operands;
    const std::string complaint = ParseOptions(arguments, {}, &operands);
    if (!complaint.empty()) return Misuse(command, complaint);
    if (operands.empty()) return Misuse(command, expected + " is expected");

    int status = kDone;
    for (const std::string& operand : operands) {
        if (!print(operand)) status = Fail(command, "unknown: " + operand);
    }
    return status;
}

}  // namespace pgtool
