#include "command.h"

#include <cstdio>

#include "options.h"

namespace pgtool {

int Fail(const Command& command, const std::string& reason) {
    std::fprintf(stderr, "pgtool %s: %s\n", command.name, reason.c_str());
    return kFailed;
}

int Misuse(const Command& command, const std::string& reason) {
    std::fprintf(stderr, "pgtool %s: %s\nusage: pgtool %s\n", command.name, reason.c_str(),
                 command.synopsis);
    return kMisuse;
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
