// Whether a medium of a profile may carry a data set.
#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "dicomdir/create/profiles.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/sopclass.h"

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

}  // namespace

}  // namespace pgkit

int32_t pgDirAcceptDataset(const char* transferSyntaxUid, const char* sopClassUid,
                           const char* photometricInterpretation, const char* profile) {
    return pgDirAcceptDataset2(transferSyntaxUid, sopClassUid, photometricInterpretation, nullptr,
                               profile);
}

int32_t pgDirAcceptDataset2(const char* transferSyntaxUid, const char* sopClassUid,
                            const char* photometricInterpretation, const char* modality,
                            const char* profile) {
    using pgkit::OrEmpty;
    if (OrEmpty(profile).empty()) return 1;
    const pgkit::Profile* found = pgkit::FindProfile(profile);
    if (found == nullptr) return 0;
    const pgkit::Traits traits{OrEmpty(transferSyntaxUid), OrEmpty(sopClassUid),
                               OrEmpty(photometricInterpretation), OrEmpty(modality)};
    return pgkit::Accepts(*found, pgIsImageSOPClass(sopClassUid), traits) ? 1 : 0;
}
