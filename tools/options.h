// The options and operands of a command: described once, for the parser, the help, the manual page
// and the completions.
//
// Options may stand anywhere; "--" ends them, and a lone dash is an operand. Values follow as
// "--name N", "--name=N" or "-n N". Of an option that is given twice the last one counts, unless it
// collects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace pgtool {

using Arguments = std::vector<std::string>;

struct OptionDescription {
    std::string names;     // "-o,--output"
    std::string argument;  // what stands for its value: "OUT"; empty of a switch
    std::string help;      // one paragraph
    Arguments choices;     // the values that it takes, when it is one of a few
};

class OptionSet {
  public:
    explicit OptionSet(CLI::App& parser);

    // The variables hold the defaults, which are kept when the option is absent.
    void Switch(const std::string& names, bool* value, const std::string& help);
    // Decimal, or hexadecimal behind "0x"; no sign, nothing above 0xFFFFFFFF.
    void Number(const std::string& names, const std::string& argument, uint32_t* value,
                const std::string& help);
    void Text(const std::string& names, const std::string& argument, std::string* value,
              const std::string& help);
    void Choice(const std::string& names, const Arguments& choices, std::string* value,
                const std::string& help);
    // May be repeated, each time with one value.
    void Texts(const std::string& names, const std::string& argument, Arguments* values,
               const std::string& help);
    // Whatever is no option. expected is the complaint ("a UID is expected") when there are fewer
    // than least or more than most of them.
    void Operands(Arguments* values, size_t least, size_t most, const std::string& expected);

    // The complaint about the number of operands, or an empty text.
    std::string ComplaintAboutOperands() const;
    const std::vector<OptionDescription>& Descriptions() const { return descriptions_; }

  private:
    using Take = std::function<bool(const Arguments&)>;

    void Add(OptionDescription description, bool collects, const Take& take);

    CLI::App& parser_;
    std::vector<OptionDescription> descriptions_;
    Arguments* operands_ = nullptr;
    size_t leastOperands_ = 0;
    size_t mostOperands_ = 0;
    std::string expected_;
};

// The descriptions of what a function adds to a set.
std::vector<OptionDescription> DescriptionsOf(const std::function<void(OptionSet&)>& define);

// Arguments as CLI::App::parse takes them.
Arguments ForParser(const Arguments& arguments);

constexpr size_t kAnyNumber = SIZE_MAX;

}  // namespace pgtool
