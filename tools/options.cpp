#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>

#include "digits.h"
#include "words.h"

namespace pgtool {

namespace {

std::optional<uint32_t> ParseNumber(const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    return hexadecimal ? ParseDigits<uint32_t>(text.substr(2), 16)
                       : ParseDigits<uint32_t>(text, 10);
}

// The parser takes "[a,b]" among operands for a list, which is a name of a file here. So nothing
// begins with a bracket when it comes.
constexpr char kGuard = '\x01';

std::string Guarded(const std::string& argument) {
    const bool needsGuard = argument.starts_with('[') || argument.starts_with(kGuard);
    return needsGuard ? kGuard + argument : argument;
}

std::string Unguarded(const std::string& argument) {
    return argument.starts_with(kGuard) ? argument.substr(1) : argument;
}

}  // namespace

OptionSet::OptionSet(CLI::App& parser) : parser_(parser) {}

// Values reach us as they were typed: the parser's own conversions know octal numbers.
void OptionSet::Add(OptionDescription description, bool collects, const Take& take) {
    CLI::Option* const option = parser_.add_option(description.names, take, description.help);
    option->expected(1)->allow_extra_args(false);
    option->multi_option_policy(collects ? CLI::MultiOptionPolicy::TakeAll
                                         : CLI::MultiOptionPolicy::TakeLast);
    descriptions_.push_back(std::move(description));
}

void OptionSet::Switch(const std::string& names, bool* value, const std::string& help) {
    parser_.add_flag(names, *value, help)->disable_flag_override();
    descriptions_.push_back({names, "", help, {}});
}

void OptionSet::Number(const std::string& names, const std::string& argument, uint32_t* value,
                       const std::string& help) {
    Add({names, argument, help, {}}, false, [value](const Arguments& texts) {
        const std::optional<uint32_t> number = ParseNumber(texts.back());
        if (number) *value = *number;
        return number.has_value();
    });
}

void OptionSet::Text(const std::string& names, const std::string& argument, std::string* value,
                     const std::string& help) {
    Add({names, argument, help, {}}, false, [value](const Arguments& texts) {
        *value = Unguarded(texts.back());
        return true;
    });
}

void OptionSet::Choice(const std::string& names, const Arguments& choices, std::string* value,
                       const std::string& help) {
    Add({names, Joined(choices, "|"), help, choices}, false,
        [value, choices](const Arguments& texts) {
            *value = Unguarded(texts.back());
            return std::find(choices.begin(), choices.end(), *value) != choices.end();
        });
}

void OptionSet::Texts(const std::string& names, const std::string& argument, Arguments* values,
                      const std::string& help) {
    Add({names, argument, help, {}}, true, [values](const Arguments& texts) {
        values->clear();
        for (const std::string& text : texts)
            values->push_back(Unguarded(text));
        return true;
    });
}

void OptionSet::Operands(Arguments* values, size_t least, size_t most,
                         const std::string& expected) {
    CLI::Option* const option = parser_.add_option("operands", [values](const Arguments& texts) {
        values->clear();
        for (const std::string& text : texts)
            values->push_back(Unguarded(text));
        return true;
    });
    option->expected(0, CLI::detail::expected_max_vector_size)->allow_extra_args();
    operands_ = values;
    leastOperands_ = least;
    mostOperands_ = most;
    expected_ = expected;
}

std::vector<OptionDescription> DescriptionsOf(const std::function<void(OptionSet&)>& define) {
    CLI::App parser;
    OptionSet options(parser);
    define(options);
    return options.Descriptions();
}

// It takes the last argument first.
Arguments ForParser(const Arguments& arguments) {
    Arguments reversed;
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
        reversed.push_back(Guarded(*argument));
    return reversed;
}

std::string OptionSet::ComplaintAboutOperands() const {
    if (operands_ == nullptr) return "";
    const size_t count = operands_->size();
    return count < leastOperands_ || count > mostOperands_ ? expected_ : "";
}

}  // namespace pgtool
