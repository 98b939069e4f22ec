#include "acceptance.h"

#include <cstdio>

#include "data_set.h"
#include "pgkit/acceptance.h"
#include "pgkit/dicomdir_creation.h"

namespace pgtool {

std::string TextOfAcceptance(uint32_t code) {
    char text[128];
    pgxAcceptanceText(code, text, sizeof text);
    return text;
}

std::string DescribeAcceptance(uint32_t code) {
    const std::string text = TextOfAcceptance(code);
    return std::to_string(code) + (text.empty() ? "" : " ") + text;
}

std::string DescribeCreation(uint32_t result, const std::string& directoryFile) {
    if (result == 0) return "";
    if (result == PG_CREATION_NOTHING_ACCEPTED) {
        return "nothing is accepted: no DICOMDIR is written";
    }
    return directoryFile + ": " + DescribeSaveResult(result);
}

void AcceptanceSummary::Count(uint32_t code) {
    ++counts_[code];
    ++files_;
}

void AcceptanceSummary::Print() const {
    for (const auto& [code, count] : counts_)
        std::printf("%s: %u\n", DescribeAcceptance(code).c_str(), count);
}

}  // namespace pgtool
