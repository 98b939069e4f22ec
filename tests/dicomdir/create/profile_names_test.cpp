// The profiles by name, as a program shows them to choose from.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <set>
#include <string>

namespace {

TEST(ProfileNames, AreThoseOfTheTableInItsOrder) {
    ASSERT_EQ(pgxProfileCount(), 56);
    std::set<std::string> names;
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        char name[32];
        const size_t length = pgxProfileName(i, name, sizeof name);
        EXPECT_EQ(std::string(name).size(), length);
        EXPECT_EQ(pgxIsProfile(name), 1);
        names.insert(name);
    }
    char name[32];
    pgxProfileName(0, name, sizeof name);
    EXPECT_STREQ(name, "STD-XABC");
    pgxProfileName(55, name, sizeof name);
    EXPECT_STREQ(name, "ZRV-GEN-CD-J2K");
    EXPECT_EQ(names.size(), 56u);
}

TEST(ProfileNames, AreCutToTheBuffer) {
    char name[5] = "####";
    EXPECT_EQ(pgxProfileName(0, name, 4), 8u);
    EXPECT_STREQ(name, "STD");
    EXPECT_EQ(pgxProfileName(0, name, 0), 8u);
    EXPECT_STREQ(name, "STD");
    EXPECT_EQ(pgxProfileName(0, nullptr, 100), 8u);
}

TEST(ProfileNames, AreNoneOutsideOfTheTable) {
    for (const int32_t index : {-1, 56, INT32_MAX, INT32_MIN}) {
        char name[5] = "####";
        EXPECT_EQ(pgxProfileName(index, name, sizeof name), 0u);
        EXPECT_STREQ(name, "");
    }
    for (const char* name :
         {static_cast<const char*>(nullptr), "", "std-gen-cd", "STD-GEN-CD ", "X"})
        EXPECT_EQ(pgxIsProfile(name), 0);
}

TEST(ProfileRules, AreLinesOfFourColumns) {
    char text[1024];
    const size_t length = pgxProfileRules(32, text, sizeof text);
    ASSERT_LT(length, sizeof text);
    EXPECT_STREQ(text,
                 "image\t1.2.840.10008.5.1.4.1.1.2\tCT\t1.2.840.10008.1.2.4.70\n"
                 "image\t1.2.840.10008.5.1.4.1.1.2\tCT\t1.2.840.10008.1.2.1\n"
                 "image\t1.2.840.10008.5.1.4.1.1.4\tMR\t1.2.840.10008.1.2.4.70\n"
                 "image\t1.2.840.10008.5.1.4.1.1.4\tMR\t1.2.840.10008.1.2.1\n"
                 "image\t1.2.840.10008.5.1.4.1.1.7\t\t1.2.840.10008.1.2.4.70\n"
                 "image\t1.2.840.10008.5.1.4.1.1.7\t\t1.2.840.10008.1.2.1\n"
                 "photometric\tMONOCHROME2\t\t*\n"
                 "photometric\tPALETTE COLOR\t\t*\n");
    EXPECT_EQ(length, std::string(text).size());
    char cut[8] = "#######";
    EXPECT_EQ(pgxProfileRules(32, cut, sizeof cut), length);
    EXPECT_STREQ(cut, "image\t1");
    EXPECT_EQ(pgxProfileRules(32, nullptr, 100), length);
    EXPECT_EQ(pgxProfileRules(32, cut, 0), length);
}

// What a rule says is what the test of the profile does.
TEST(ProfileRules, AreThoseThatFilesAreHeldAgainst) {
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        char name[32];
        char text[4096];
        pgxProfileName(i, name, sizeof name);
        ASSERT_LT(pgxProfileRules(i, text, sizeof text), sizeof text);
        const bool allowsAny =
            pgDirAcceptDataset("1.2.840.10008.1.2.1", "1.2.840.10008.5.1.4.1.1.88.11", "", name);
        EXPECT_EQ(allowsAny,
                  std::string(text).find("other\t*\t\t1.2.840.10008.1.2.1\n") != std::string::npos)
            << name;
    }
}

TEST(ProfileRules, AreNoneOutsideOfTheTable) {
    for (const int32_t index : {-1, 56, INT32_MAX, INT32_MIN}) {
        char text[5] = "####";
        EXPECT_EQ(pgxProfileRules(index, text, sizeof text), 0u);
        EXPECT_STREQ(text, "");
    }
}

}  // namespace
