// Whether a medium of a profile may carry a data set.
#include <algorithm>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dicomdir/create/profiles.h"
#include "pgkit/dicomdir_creation.h"
#include "sopclass/sop_class_tables.h"

namespace pgkit {

namespace {

constexpr std::string_view kAny = "*";

// What the profile test knows of a data set.
struct Traits {
    std::string_view transferSyntax;
    std::string_view sopClass;
    std::string_view photometricInterpretation;
    std::string_view modality;
};

// Values are stored with the blank that makes their length even.
bool EqualsTrimmed(std::string_view a, std::string_view b) {
    return TrimBlanks(a) == TrimBlanks(b);
}

bool Matches(std::string_view column, std::string_view value) {
    return column == kAny || EqualsTrimmed(column, value);
}

bool IsModalityFree(const ProfileRule& rule) {
    return rule.modality.empty() || rule.modality == kAny;
}

bool MatchesObject(const ProfileRule& rule, const Traits& traits) {
    return Matches(rule.match, traits.sopClass) &&
           Matches(rule.transferSyntax, traits.transferSyntax);
}

// Here an unknown modality is a modality of its own, which fits no rule that names one.
bool AcceptsNonImage(const ProfileRule& rule, const Traits& traits) {
    return MatchesObject(rule, traits) &&
           (IsModalityFree(rule) || EqualsTrimmed(rule.modality, traits.modality));
}

bool AcceptsImage(const ProfileRule& rule, const Traits& traits) {
    return MatchesObject(rule, traits) && (IsModalityFree(rule) || traits.modality.empty() ||
                                           EqualsTrimmed(rule.modality, traits.modality));
}

bool AcceptsPhotometricInterpretation(const Profile& profile, const Traits& traits) {
    if (profile.photometric == RuleList::None) return true;
    return std::ranges::any_of(RulesOf(profile.photometric), [&](const ProfileRule& rule) {
        return Matches(rule.match, traits.photometricInterpretation) &&
               Matches(rule.transferSyntax, traits.transferSyntax);
    });
}

bool Accepts(const Profile& profile, bool isImage, const Traits& traits) {
    if (!isImage) {
        return std::ranges::any_of(RulesOf(profile.nonImage), [&](const ProfileRule& rule) {
            return AcceptsNonImage(rule, traits);
        });
    }
    return std::ranges::any_of(
               RulesOf(profile.image),
               [&](const ProfileRule& rule) { return AcceptsImage(rule, traits); }) &&
           AcceptsPhotometricInterpretation(profile, traits);
}

int32_t AcceptsDataSet(const Traits& traits, std::string_view profile) {
    if (profile.empty()) return 1;
    const Profile* found = FindProfile(profile);
    if (found == nullptr) return 0;
    return Accepts(*found, IsInCategory(traits.sopClass, SopCategory::Image), traits) ? 1 : 0;
}

}  // namespace

}  // namespace pgkit

using pgkit::OrEmpty;

int32_t pgDirAcceptDataset(const char* transferSyntaxUid, const char* sopClassUid,
                           const char* photometricInterpretation, const char* profile) {
    return pgDirAcceptDataset2(transferSyntaxUid, sopClassUid, photometricInterpretation, nullptr,
                               profile);
}

int32_t pgDirAcceptDataset2(const char* transferSyntaxUid, const char* sopClassUid,
                            const char* photometricInterpretation, const char* modality,
                            const char* profile) {
    return pgkit::Guarded([=] {
        return pgkit::AcceptsDataSet({OrEmpty(transferSyntaxUid), OrEmpty(sopClassUid),
                                      OrEmpty(photometricInterpretation), OrEmpty(modality)},
                                     OrEmpty(profile));
    });
}
