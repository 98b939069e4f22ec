// The names of the built-in profiles, for callers that let people choose among them.
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dicomdir/create/profiles.h"
#include "pgkit/profiles.h"

using pgkit::Guarded;

namespace {

// Empty for an index that is none.
std::string_view NameOf(int32_t index) {
    const auto profiles = pgkit::Profiles();
    const bool isOne = index >= 0 && static_cast<size_t>(index) < profiles.size();
    return isOne ? profiles[static_cast<size_t>(index)].name : std::string_view();
}

}  // namespace

int32_t pgxProfileCount(void) {
    return Guarded([] { return static_cast<int32_t>(pgkit::Profiles().size()); });
}

size_t pgxProfileName(int32_t index, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::CopyBounded(buffer, size, NameOf(index)); });
}

int32_t pgxIsProfile(const char* name) {
    return Guarded([=] { return pgkit::FindProfile(pgkit::OrEmpty(name)) != nullptr ? 1 : 0; });
}
