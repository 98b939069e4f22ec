#include "anonymize/values.h"

#include <chrono>
#include <cstdio>
#include <string_view>
#include <vector>

#include "value_kinds.h"
#include "words.h"

namespace pgtool {

namespace {

// A text that every data set may have there; null for value representations without texts.
const char* DummyText(uint32_t valueRep) {
    switch (valueRep) {
        case VR_AS:
            return "000D";
        case VR_DA:
            return "19000101";
        case VR_DT:
            return "19000101000000";
        case VR_TM:
            return "000000";
        case VR_DS:
        case VR_IS:
            return "0";
        case VR_AE:
        case VR_CS:
        case VR_LO:
        case VR_LT:
        case VR_PN:
        case VR_SH:
        case VR_ST:
        case VR_UC:
        case VR_UT:
            return "ANONYMIZED";
        case VR_UR:
            return "urn:anonymized";
        default:
            return nullptr;
    }
}

std::vector<std::string> ValuesOf(const pgkit::element& element) {
    const std::string text = element.text();
    const auto values = Split(text, '\\');
    return {values.begin(), values.end()};
}

// The first eight digits of a text, moved; empty when they are no date.
std::string MovedDate(const std::string& text, int days) {
    int year = 0;
    unsigned month = 0;
    unsigned day = 0;
    if (text.size() < 8 || text.find_first_not_of("0123456789") < 8) return "";
    if (std::sscanf(text.c_str(), "%4d%2u%2u", &year, &month, &day) != 3) return "";
    using namespace std::chrono;
    const year_month_day date{std::chrono::year(year), std::chrono::month(month),
                              std::chrono::day(day)};
    if (!date.ok()) return "";
    const year_month_day moved = sys_days(date) + std::chrono::days(days);
    const int movedYear = static_cast<int>(moved.year());
    if (movedYear < 0 || movedYear > 9999) return "";
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%04d%02u%02u", movedYear,
                  static_cast<unsigned>(moved.month()), static_cast<unsigned>(moved.day()));
    return buffer + text.substr(8);
}

}  // namespace

void MakeEmpty(pgkit::element& element) {
    if (element.is_sequence()) {
        while (PGX_Node* const item = pgKitGetFirst(element.node()))
            pgKitRemoveNode(element.node(), item);
        return;
    }
    (void)element.set_bytes(nullptr, 0);
}

void MakeDummy(pgkit::element& element, const NewUids& uids) {
    if (element.vr() == VR_UI) return MakeNewUids(element, uids);
    if (const char* const text = DummyText(element.vr())) {
        if (!element.set_text(text)) MakeEmpty(element);
        return;
    }
    const std::string zeros(SizeOfNumber(element.vr()), '\0');
    if (!element.set_bytes(zeros.data(), zeros.size())) MakeEmpty(element);
}

void MakeNewUids(pgkit::element& element, const NewUids& uids) {
    if (element.vr() != VR_UI) return MakeEmpty(element);
    std::vector<std::string> values = ValuesOf(element);
    for (std::string& value : values)
        value = uids.Of(value);
    if (!element.set_text(Joined(values, "\\"))) MakeEmpty(element);
}

bool MoveDates(pgkit::element& element, int days) {
    if (element.vr() != VR_DA && element.vr() != VR_DT) return false;
    std::vector<std::string> values = ValuesOf(element);
    for (std::string& value : values) {
        if (value.empty()) continue;
        value = MovedDate(value, days);
        if (value.empty()) return false;
    }
    return static_cast<bool>(element.set_text(Joined(values, "\\")));
}

}  // namespace pgtool
