#include "disc/shown_values.h"

#include <algorithm>

#include "words.h"

namespace pgtool {

namespace {

bool IsDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// "family^given^middle^prefix^suffix".
std::string ShownGroup(std::string_view group) {
    std::string shown;
    const auto components = Split(group, '^');
    for (size_t i = 0; i < components.size(); ++i) {
        if (components[i].empty()) continue;
        if (!shown.empty()) shown += i == 1 ? ", " : " ";
        shown += components[i];
    }
    return shown;
}

}  // namespace

std::string ShownName(std::string_view name) {
    std::string shown;
    for (const std::string_view group : Split(name, '=')) {
        const std::string part = ShownGroup(group);
        if (part.empty()) continue;
        if (!shown.empty()) shown += " / ";
        shown += part;
    }
    return shown;
}

std::string ShownDate(std::string_view date) {
    if (date.size() != 8 || !IsDigits(date)) return std::string(date);
    std::string shown(date);
    return shown.insert(6, "-").insert(4, "-");
}

std::string ShownTime(std::string_view time) {
    const std::string_view whole = time.substr(0, time.find('.'));
    if ((whole.size() != 4 && whole.size() != 6) || !IsDigits(whole)) return std::string(time);
    std::string shown(whole);
    if (shown.size() == 6) shown.insert(4, ":");
    return shown.insert(2, ":");
}

std::string ShownDateTime(std::string_view dateTime) {
    constexpr size_t kDate = 8;
    if (dateTime.size() <= kDate) return ShownDate(dateTime);
    const std::string time =
        ShownTime(dateTime.substr(kDate, dateTime.find_first_of("+-&") - kDate));
    return ShownDate(dateTime.substr(0, kDate)) + " " + time;
}

}  // namespace pgtool
