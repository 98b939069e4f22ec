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

}  // namespace
