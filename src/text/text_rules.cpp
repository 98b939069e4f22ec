#include "text/text_rules.h"

#include <array>
#include <cstddef>

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

constexpr uint8_t kNoRow = 0xFF;
constexpr auto kRowOfVr = [] {
    std::array<uint8_t, VR_UV + 1> rows{};
    rows.fill(kNoRow);
    for (size_t i = 0; i < std::size(kRules); ++i)
        rows[kRules[i].valueRep] = static_cast<uint8_t>(i);
    return rows;
}();

}  // namespace

const TextRules* FindTextRules(uint32_t valueRep) {
    if (valueRep >= kRowOfVr.size() || kRowOfVr[valueRep] == kNoRow) return nullptr;
    return &kRules[kRowOfVr[valueRep]];
}

bool IsDelimiter(const TextRules& rules, char c) {
    constexpr std::string_view kLayout = "\r\n\f\t";
    return kLayout.find(c) != std::string_view::npos ||
           rules.delimiters.find(c) != std::string_view::npos;
}

}  // namespace pgkit
