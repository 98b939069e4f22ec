#include "acceptance.h"

#include <cstdio>

#include "pgkit/acceptance.h"

namespace pgtool {

std::string DescribeAcceptance(uint32_t code) {
    const std::string number = std::to_string(code);
    char text[128];
    return pgxAcceptanceText(code, text, sizeof text) > 0 ? number + " " + text : number;
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
