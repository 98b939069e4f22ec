#include "pgkit/uid.h"

#include <algorithm>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"

namespace {

constexpr size_t kShortestUid = 3;
constexpr size_t kLongestUid = 64;

bool IsComponent(std::string_view text) {
    if (text.empty() || (text.size() > 1 && text[0] == '0')) return false;
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

int32_t CheckUid(std::string_view rest) {
    if (rest.size() < kShortestUid || rest.size() > kLongestUid) return 0;
    size_t dot = rest.find('.');
    if (dot == std::string_view::npos) return 0;
    while (dot != std::string_view::npos) {
        if (!IsComponent(rest.substr(0, dot))) return 0;
        rest.remove_prefix(dot + 1);
        dot = rest.find('.');
    }
    return IsComponent(rest) ? 1 : 0;
}

}  // namespace

int32_t pgCheckUID(const char* text) {
    return pgkit::Guarded([=] { return CheckUid(pgkit::OrEmpty(text)); });
}
