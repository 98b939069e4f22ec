#include "acceptance.h"

#include <cstdio>

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

void AcceptanceSummary::Count(uint32_t code) {
    ++counts_[code];
    ++files_;
}

uint32_t AcceptanceSummary::Accepted() const {
    const auto accepted = counts_.find(PG_ACCEPTED);
    return accepted == counts_.end() ? 0 : accepted->second;
}

void AcceptanceSummary::Print() const {
    for (const auto& [code, count] : counts_)
        std::printf("%s: %u\n", DescribeAcceptance(code).c_str(), count);
}

}  // namespace pgtool
