#include "profile_names.h"

#include <cstdint>

#include "pgkit/profiles.h"
#include "suggestion.h"

namespace pgtool {

std::vector<std::string> ProfileNames() {
    std::vector<std::string> names;
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        std::string name(pgxProfileName(i, nullptr, 0), '\0');
        pgxProfileName(i, name.data(), name.size() + 1);
        names.push_back(name);
    }
    return names;
}

std::string ComplaintAboutProfile(const std::string& name) {
    constexpr size_t kMostNames = 3;
    if (name.empty() || pgxIsProfile(name.c_str()) != 0) return "";
    return "unknown profile: " + name + DidYouMean(name, ProfileNames(), kMostNames);
}

}  // namespace pgtool
