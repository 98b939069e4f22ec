#include "text/text_rules.h"

#include <algorithm>

#include "pgkit/text.h"
#include "pgkit/value_representation.h"

namespace pgkit {

namespace {

constexpr std::string_view kBetweenValues = "\\";

constexpr TextRules kRules[] = {
    {VR_SH, true, kBetweenValues},
    {VR_LO, true, kBetweenValues},
    {VR_UC, true, kBetweenValues},
    {VR_PN, true, "\\^="},
    {VR_ST, true, ""},
    {VR_LT, true, ""},
    {VR_UT, true, ""},
    {VR_AE, false, kBetweenValues},
    {VR_AS, false, kBetweenValues},
    {VR_CS, false, kBetweenValues},
    {VR_DA, false, kBetweenValues},
    {VR_DS, false, kBetweenValues},
    {VR_DT, false, kBetweenValues},
    {VR_IS, false, kBetweenValues},
    {VR_TM, false, kBetweenValues},
    {VR_UI, false, kBetweenValues},
    {VR_UR, false, ""},
};

}  // namespace

const TextRules* FindTextRules(uint32_t valueRep) {
    const auto* const found = std::ranges::find(kRules, valueRep, &TextRules::valueRep);
    return found == std::end(kRules) ? nullptr : found;
}

bool IsDelimiter(const TextRules& rules, char c) {
    constexpr std::string_view kLayout = "\r\n\f\t";
    return kLayout.find(c) != std::string_view::npos ||
           rules.delimiters.find(c) != std::string_view::npos;
}

}  // namespace pgkit
