// The built-in profiles, row by row and in every combination of the values that occur in them.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "pgkit/dicomdir_creation.h"
#include "pgkit/sopclass.h"
#include "support/row_checksum.h"

namespace {

struct Profile {
    const char* name;
    std::string_view image;
    std::string_view photometric;
    std::string_view nonImage;
};

const std::vector<Profile> kProfiles = {
#define PGKIT_PROFILE(name, image, photometric, nonImage) {name, #image, #photometric, #nonImage},
#include "dicomdir/create/profiles.inc"
#undef PGKIT_PROFILE
};

struct Rule {
    std::string_view list;
    std::string match;
    std::string modality;
    std::string transferSyntax;
};

const std::vector<Rule> kRules = {
#define PGKIT_PROFILE_RULE(list, match, modality, transferSyntax) \
    {#list, match, modality, transferSyntax},
#include "dicomdir/create/profile_rules.inc"
#undef PGKIT_PROFILE_RULE
};

constexpr std::string_view kNoList = "None";

// The rules of a list; none for kNoList.
const std::vector<Rule>& RulesOf(std::string_view list) {
    static const auto lists = [] {
        std::map<std::string_view, std::vector<Rule>> rules = {{kNoList, {}}};
        for (const Rule& rule : kRules)
            rules[rule.list].push_back(rule);
        return rules;
    }();
    return lists.at(list);
}

bool Fits(const std::string& column, const std::string& value) {
    return column == "*" || column == value;
}

struct Values {
    std::string sopClass;
    std::string transferSyntax;
    std::string photometric;
    std::string modality;
};

bool FitsAny(std::string_view list, const Values& values, bool isImage) {
    for (const Rule& rule : RulesOf(list)) {
        const bool fitsModality = rule.modality.empty() || rule.modality == values.modality ||
                                  (isImage && values.modality.empty());
        if (fitsModality && Fits(rule.match, values.sopClass) &&
            Fits(rule.transferSyntax, values.transferSyntax)) {
            return true;
        }
    }
    return false;
}

// What the rows of the tables say.
bool Expected(const Profile& profile, const Values& values) {
    const bool isImage = pgIsImageSOPClass(values.sopClass.c_str());
    if (!FitsAny(isImage ? profile.image : profile.nonImage, values, isImage)) return false;
    if (!isImage || profile.photometric == kNoList) return true;
    for (const Rule& rule : RulesOf(profile.photometric)) {
        if (Fits(rule.match, values.photometric) &&
            Fits(rule.transferSyntax, values.transferSyntax)) {
            return true;
        }
    }
    return false;
}

int32_t Accept(const Profile& profile, const Values& values) {
    return pgDirAcceptDataset2(values.transferSyntax.c_str(), values.sopClass.c_str(),
                               values.photometric.c_str(), values.modality.c_str(), profile.name);
}

// Media are made to these rules. Whoever means to change a row changes the number with it.
TEST(ProfileTable, RowsStayAsTheyAre) {
    EXPECT_EQ(kProfiles.size(), 56u);
    pgkit_test::RowChecksum profiles;
    for (const Profile& profile : kProfiles)
        profiles.Add({profile.name, profile.image, profile.photometric, profile.nonImage});
    EXPECT_EQ(profiles.Value(), 0x2D9CF006u);
    EXPECT_EQ(kRules.size(), 46u);
    pgkit_test::RowChecksum rules;
    for (const Rule& rule : kRules)
        rules.Add({rule.list, rule.match, rule.modality, rule.transferSyntax});
    EXPECT_EQ(rules.Value(), 0x47D3423Fu);
}

TEST(ProfileTable, AcceptsWhatEachOfItsImageRulesNames) {
    int tested = 0;
    for (const Profile& profile : kProfiles) {
        for (const Rule& rule : RulesOf(profile.image)) {
            Values values{rule.match, rule.transferSyntax, "MONOCHROME2", rule.modality};
            if (values.sopClass == "*") values.sopClass = "1.2.840.10008.5.1.4.1.1.2";
            if (Expected(profile, values)) ++tested;
            EXPECT_EQ(Accept(profile, values), Expected(profile, values) ? 1 : 0)
                << profile.name << ' ' << rule.match << ' ' << rule.transferSyntax;
        }
    }
    EXPECT_GT(tested, 100);
}

TEST(ProfileTable, HoldsInEveryCombination) {
    std::set<std::string> sopClasses{"1.2.840.10008.5.1.4.1.1.88.11", "1.2.3"};
    std::set<std::string> modalities{"", "OT"};
    std::set<std::string> syntaxes{"1.2.840.10008.1.2", ""};
    std::set<std::string> photometrics{"MONOCHROME1", ""};
    for (const Rule& rule : kRules) {
        (rule.list.ends_with("Photometric") ? photometrics : sopClasses).insert(rule.match);
        modalities.insert(rule.modality);
        syntaxes.insert(rule.transferSyntax);
    }
    for (const Profile& profile : kProfiles)
        for (const std::string& sopClass : sopClasses)
            for (const std::string& syntax : syntaxes)
                for (const std::string& photometric : photometrics)
                    for (const std::string& modality : modalities) {
                        const Values values{sopClass, syntax, photometric, modality};
                        ASSERT_EQ(Accept(profile, values), Expected(profile, values) ? 1 : 0)
                            << profile.name << ' ' << sopClass << ' ' << syntax << ' '
                            << photometric << ' ' << modality;
                    }
}

}  // namespace
