#include "command.h"

#include <cstdio>

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

}  // namespace pgtool
