#include "media_profiles.h"

#include "pgkit/profiles.h"
#include "suggestion.h"

namespace pgtool {

Arguments ProfileNames() {
    Arguments names;
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        std::string name(pgxProfileName(i, nullptr, 0), '\0');
        pgxProfileName(i, name.data(), name.size() + 1);
        names.push_back(name);
    }
    return names;
}

std::string ComplaintAboutProfile(const std::string& name) {
    if (name.empty() || pgxIsProfile(name.c_str()) != 0) return "";
    return "unknown profile: " + name + DidYouMeanOneOf(name, ProfileNames());
}

}  // namespace pgtool
