#include "command.h"

#include <cstdio>

#include "utf8_text.h"

namespace pgtool {

int Fail(const Command& command, const std::string& reason) {
    std::fflush(stdout);
    std::fprintf(stderr, "pgtool %s: %s\n", command.name, WithEscapes(reason).c_str());
    return kFailed;
}

int Misuse(const Command& command, const std::string& reason) {
    std::fprintf(stderr, "pgtool %s: %s\nusage: pgtool %s\n", command.name,
                 WithEscapes(reason).c_str(), command.synopsis);
    return kMisuse;
}

int AnswerEach(const Command& command, const Arguments& operands,
               const std::function<bool(const std::string& operand)>& print) {
    int status = kDone;
    for (const std::string& operand : operands) {
        if (!print(operand)) status = Fail(command, "unknown: " + operand);
    }
    return status;
}

}  // namespace pgtool
