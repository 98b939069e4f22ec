// The built-in profiles, row by row and in every combination of the values that occur in them.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "pgkit/dicomdir_creation.h"
#include "pgkit/sopclass.h"
#include "sopclass/table_file.h"

namespace {

using pgkit_test::ReadTable;
using pgkit_test::TableRow;

constexpr char kAbsent[] = "-";

struct Rule {
    std::string match;
    std::string modality;
    std::string transferSyntax;
};

using RuleLists = std::map<std::string, std::vector<Rule>>;

RuleLists ReadRules() {
    RuleLists lists;
    for (const TableRow& row : ReadTable("profile_rules.tsv"))
        lists[row[0]].push_back({row[3], row[4], row[5]});
    return lists;
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

bool FitsAny(const std::vector<Rule>& rules, const Values& values, bool isImage) {
    for (const Rule& rule : rules) {
        const bool fitsModality = rule.modality == kAbsent || rule.modality == values.modality ||
                                  (isImage && values.modality.empty());
        if (fitsModality && Fits(rule.match, values.sopClass) &&
            Fits(rule.transferSyntax, values.transferSyntax)) {
            return true;
        }
    }
    return false;
}

// What the rows of the table say.
bool Expected(RuleLists& lists, const TableRow& profile, const Values& values) {
    const bool isImage = pgIsImageSOPClass(values.sopClass.c_str());
    const std::string& list = profile[isImage ? 2 : 4];
    if (list == kAbsent || !FitsAny(lists[list], values, isImage)) return false;
    if (!isImage || profile[3] == kAbsent) return true;
    for (const Rule& rule : lists[profile[3]]) {
        if (Fits(rule.match, values.photometric) &&
            Fits(rule.transferSyntax, values.transferSyntax)) {
            return true;
        }
    }
    return false;
}

int32_t Accept(const std::string& profile, const Values& values) {
    return pgDirAcceptDataset2(values.transferSyntax.c_str(), values.sopClass.c_str(),
                               values.photometric.c_str(), values.modality.c_str(),
                               profile.c_str());
}

TEST(ProfileTable, HasFiftySixProfilesAndFortySixRules) {
    EXPECT_EQ(ReadTable("profiles.tsv").size(), 56u);
    EXPECT_EQ(ReadTable("profile_rules.tsv").size(), 46u);
}

TEST(ProfileTable, AcceptsWhatEachOfItsImageRulesNames) {
    RuleLists lists = ReadRules();
    int tested = 0;
    for (const TableRow& profile : ReadTable("profiles.tsv")) {
        if (profile[2] == kAbsent) continue;
        for (const Rule& rule : lists[profile[2]]) {
            Values values{rule.match, rule.transferSyntax, "MONOCHROME2", rule.modality};
            if (values.sopClass == "*") values.sopClass = "1.2.840.10008.5.1.4.1.1.2";
            if (Expected(lists, profile, values)) ++tested;
            EXPECT_EQ(Accept(profile[1], values), Expected(lists, profile, values) ? 1 : 0)
                << profile[1] << ' ' << rule.match << ' ' << rule.transferSyntax;
        }
    }
    EXPECT_GT(tested, 100);
}

TEST(ProfileTable, HoldsInEveryCombination) {
    RuleLists lists = ReadRules();
    std::set<std::string> sopClasses{"1.2.840.10008.5.1.4.1.1.88.11", "1.2.3"};
    std::set<std::string> modalities{"", "OT"};
    std::set<std::string> syntaxes{"1.2.840.10008.1.2", ""};
    std::set<std::string> photometrics{"MONOCHROME1", ""};
    for (const TableRow& row : ReadTable("profile_rules.tsv")) {
        (row[1] == "photometric" ? photometrics : sopClasses).insert(row[3]);
        modalities.insert(row[4]);
        syntaxes.insert(row[5]);
    }
    for (const TableRow& profile : ReadTable("profiles.tsv"))
        for (const std::string& sopClass : sopClasses)
            for (const std::string& syntax : syntaxes)
                for (const std::string& photometric : photometrics)
                    for (const std::string& modality : modalities) {
                        const Values values{sopClass, syntax, photometric, modality};
                        ASSERT_EQ(Accept(profile[1], values),
                                  Expected(lists, profile, values) ? 1 : 0)
                            << profile[1] << ' ' << sopClass << ' ' << syntax << ' ' << photometric
                            << ' ' << modality;
                    }
}

}  // namespace
