#include "profile_names.h"

#include <cstdint>

#include "data_set.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/profiles.h"
#include "suggestion.h"
#include "tags.h"

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

bool IsAllowed(const std::string& profile, const pgkit::item& root,
               const std::string& transferSyntax) {
    const std::string photometric = UnpaddedBytesOf(root, tags::kPhotometric);
    const std::string inMeta = UnpaddedBytesOf(root, tags::kMediaStorageClass);
    const std::string sopClass = inMeta.empty() ? UnpaddedBytesOf(root, tags::kSopClass) : inMeta;
    return pgDirAcceptDataset2(transferSyntax.c_str(), sopClass.c_str(),
                               photometric.empty() ? "no Photo. info" : photometric.c_str(),
                               UnpaddedBytesOf(root, tags::kModality).c_str(),
                               profile.c_str()) != 0;
}

}  // namespace pgtool
