// The built-in media application profiles: their names, and which kinds of files a medium of each
// may carry.
#include "pgkit/profiles.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "pgkit/dicomdir_creation.h"
#include "sopclass/sop_class_tables.h"

namespace pgkit {

namespace {

// ---- Tables -------------------------------------------------------------------------------------

// The distinct rule lists; profiles share them.
enum class RuleList : uint8_t {
    None,
    XaBcImage,
    Xa1kImage,
    Xa1kNonImage,
    UsSingleFrameImage,
    UsMultiFrameImage,
    UsPhotometric,
    CtMrImage,
    CtMrPhotometric,
    GeneralImage,
    GeneralNonImage,
    JpegImage,
    Jpeg2000Image,
    Mpeg2Image,
    DentalImage
};

struct ProfileRule {
    RuleList list;
    std::string_view match;     // a SOP class, or a photometric interpretation; "*" is any
    std::string_view modality;  // empty is any
    std::string_view transferSyntax;
};

struct Profile {
    std::string_view name;
    RuleList image;
    RuleList photometric;
    RuleList nonImage;
};

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

// Null when there is no profile of exactly this name.
const Profile* FindProfile(std::string_view name) {
    for (const Profile& profile : kProfiles) {
        if (profile.name == name) return &profile;
    }
    return nullptr;
}

// The rules of a list in order; none for RuleList::None.
std::span<const ProfileRule> RulesOf(RuleList list) {
    const auto [first, last] = std::equal_range(
        std::begin(kRules), std::end(kRules), ProfileRule{list, {}, {}, {}},
        [](const ProfileRule& a, const ProfileRule& b) { return a.list < b.list; });
    return {first, last};
}

// Empty for an index that is none.
std::string_view NameOf(int32_t index) {
    const bool isOne = index >= 0 && static_cast<size_t>(index) < std::size(kProfiles);
    return isOne ? kProfiles[static_cast<size_t>(index)].name : std::string_view();
}

// A text that is longer than the buffer is cut; its length is that of the whole.
class BoundedText {
  public:
    BoundedText(char* buffer, size_t size) : buffer_(buffer), size_(size) {
        CopyBounded(buffer, size, "");
    }

    void Append(std::string_view part) {
        if (length_ < size_ && buffer_ != nullptr) {
            CopyBounded(buffer_ + length_, size_ - length_, part);
        }
        length_ += part.size();
    }
    size_t Length() const { return length_; }

  private:
    char* buffer_;
    size_t size_;
    size_t length_ = 0;
};

void AppendRules(std::string_view kind, RuleList list, BoundedText& text) {
    for (const ProfileRule& rule : RulesOf(list)) {
        for (const std::string_view column : {kind, rule.match, rule.modality}) {
            text.Append(column);
            text.Append("\t");
        }
        text.Append(rule.transferSyntax);
        text.Append("\n");
    }
}

size_t TellRules(int32_t index, char* buffer, size_t size) {
    BoundedText text(buffer, size);
    if (const Profile* const profile = FindProfile(NameOf(index))) {
        AppendRules("image", profile->image, text);
        AppendRules("photometric", profile->photometric, text);
        AppendRules("other", profile->nonImage, text);
    }
    return text.Length();
}

// ---- Acceptance ---------------------------------------------------------------------------------

constexpr std::string_view kAny = "*";

// What the profile test knows of a data set.
struct DataSetTraits {
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

bool MatchesObject(const ProfileRule& rule, const DataSetTraits& traits) {
    return Matches(rule.match, traits.sopClass) &&
           Matches(rule.transferSyntax, traits.transferSyntax);
}

// Here an unknown modality is a modality of its own, which fits no rule that names one.
bool AcceptsNonImage(const ProfileRule& rule, const DataSetTraits& traits) {
    return MatchesObject(rule, traits) &&
           (IsModalityFree(rule) || EqualsTrimmed(rule.modality, traits.modality));
}

bool AcceptsImage(const ProfileRule& rule, const DataSetTraits& traits) {
    return MatchesObject(rule, traits) && (IsModalityFree(rule) || traits.modality.empty() ||
                                           EqualsTrimmed(rule.modality, traits.modality));
}

bool AcceptsPhotometricInterpretation(const Profile& profile, const DataSetTraits& traits) {
    if (profile.photometric == RuleList::None) return true;
    return std::ranges::any_of(RulesOf(profile.photometric), [&](const ProfileRule& rule) {
        return Matches(rule.match, traits.photometricInterpretation) &&
               Matches(rule.transferSyntax, traits.transferSyntax);
    });
}

bool Accepts(const Profile& profile, bool isImage, const DataSetTraits& traits) {
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

int32_t AcceptsDataSet(const DataSetTraits& traits, std::string_view profile) {
    if (profile.empty()) return 1;
    const Profile* found = FindProfile(profile);
    if (found == nullptr) return 0;
    return Accepts(*found, IsInCategory(traits.sopClass, SopCategory::Image), traits) ? 1 : 0;
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::OrEmpty;

int32_t pgDirAcceptDataset(const char* transferSyntaxUid, const char* sopClassUid,
                           const char* photometricInterpretation, const char* profile) {
    return pgDirAcceptDataset2(transferSyntaxUid, sopClassUid, photometricInterpretation, nullptr,
                               profile);
}

int32_t pgDirAcceptDataset2(const char* transferSyntaxUid, const char* sopClassUid,
                            const char* photometricInterpretation, const char* modality,
                            const char* profile) {
    return Guarded([=] {
        return pgkit::AcceptsDataSet({OrEmpty(transferSyntaxUid), OrEmpty(sopClassUid),
                                      OrEmpty(photometricInterpretation), OrEmpty(modality)},
                                     OrEmpty(profile));
    });
}

int32_t pgxProfileCount(void) {
    return Guarded([] { return static_cast<int32_t>(std::size(pgkit::kProfiles)); });
}

size_t pgxProfileName(int32_t index, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::CopyBounded(buffer, size, pgkit::NameOf(index)); });
}

size_t pgxProfileRules(int32_t index, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::TellRules(index, buffer, size); });
}

int32_t pgxIsProfile(const char* name) {
    return Guarded([=] { return pgkit::FindProfile(OrEmpty(name)) != nullptr ? 1 : 0; });
}
