#include "dicomdir/create/profiles.h"

#include <algorithm>
#include <iterator>

namespace pgkit {

namespace {

using enum RuleList;

constexpr ProfileRule kRules[] = {
#define PGKIT_PROFILE_RULE(list, match, modality, transferSyntax) \
    {list, match, modality, transferSyntax},
#include "dicomdir/create/profile_rules.inc"
#undef PGKIT_PROFILE_RULE
};
static_assert(std::size(kRules) == 46);
static_assert(std::is_sorted(std::begin(kRules), std::end(kRules),
                             [](const ProfileRule& a, const ProfileRule& b) {
                                 return a.list < b.list;
                             }));

constexpr Profile kProfiles[] = {
#define PGKIT_PROFILE(name, image, photometric, nonImage) {name, image, photometric, nonImage},
#include "dicomdir/create/profiles.inc"
#undef PGKIT_PROFILE
};
static_assert(std::size(kProfiles) == 56);

}  // namespace

std::span<const Profile> Profiles() { return kProfiles; }

const Profile* FindProfile(std::string_view name) {
    for (const Profile& profile : kProfiles) {
        if (profile.name == name) return &profile;
    }
    return nullptr;
}

std::span<const ProfileRule> RulesOf(RuleList list) {
    const auto [first, last] = std::equal_range(
        std::begin(kRules), std::end(kRules), ProfileRule{list, {}, {}, {}},
        [](const ProfileRule& a, const ProfileRule& b) { return a.list < b.list; });
    return {first, last};
}

}  // namespace pgkit
