#include "acceptance.h"

#include <cstdio>

#include "pgkit/acceptance.h"

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

void AcceptanceSummary::Print() const {
    for (const auto& [code, count] : counts_)
        std::printf("%s: %u\n", DescribeAcceptance(code).c_str(), count);
}

}  // namespace pgtool
