#include <gtest/gtest.h>

#include <set>
#include <string>

#include "anonymize/new_uids.h"
#include "anonymize/profile.h"
#include "anonymize/sha256.h"
#include "support/temp_dir.h"

namespace {

using namespace pgtool;

std::string Hex(const Digest& digest) {
    std::string text;
    for (const uint8_t byte : digest) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 0xF];
    }
    return text;
}

// The examples of FIPS 180-4, and one of more than a block.
TEST(Sha256, GivesThePublishedDigests) {
    EXPECT_EQ(Hex(Sha256("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Hex(Sha256("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Hex(Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(Hex(Sha256(std::string(1000000, 'a'))),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

// Test cases 1, 2 and 6 of RFC 4231.
TEST(Sha256, GivesThePublishedKeyedDigests) {
    EXPECT_EQ(Hex(HmacSha256(std::string(20, '\x0b'), "Hi There")),
              "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
    EXPECT_EQ(Hex(HmacSha256("Jefe", "what do ya want for nothing?")),
              "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
    EXPECT_EQ(Hex(HmacSha256(std::string(131, '\xaa'),
                             "Test Using Larger Than Block-Size Key - Hash Key First")),
              "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
}

TEST(NewUids, AreValidAndDiffer) {
    const NewUids uids;
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string uid = uids.Of("1.2." + std::to_string(i));
        EXPECT_EQ(uid.substr(0, 5), "2.25.");
        EXPECT_NE(uid[5], '0');
        EXPECT_LE(uid.size(), 44u);
        EXPECT_EQ(uid.find_first_not_of("0123456789."), std::string::npos);
        seen.insert(uid);
    }
    EXPECT_EQ(seen.size(), 1000u);
    EXPECT_EQ(uids.Of("1.2.840.10008.1.2"), "1.2.840.10008.1.2");
    EXPECT_EQ(uids.Of(""), "");
    EXPECT_NE(NewUids().Of("1.2.3"), NewUids().Of("1.2.3"));
}

// The number is that of the first half of the keyed digest, as a UUID.
TEST(NewUids, FollowTheKey) {
    const pgkit_test::TempDir directory;
    NewUids uids;
    ASSERT_EQ(uids.UseKeyFile(directory.Write("key", std::string(64, '0') + "\n")), "");
    const Digest digest = HmacSha256(std::string(32, '\0'), "1.2.3");
    std::string hex = Hex(digest).substr(0, 32);
    hex[12] = '8';
    hex[16] = "89ab"[(digest[8] >> 4) & 3];
    unsigned __int128 number = 0;
    for (const char digit : hex)
        number = number * 16 + static_cast<unsigned>(std::string("0123456789abcdef").find(digit));
    std::string decimal;
    for (; number != 0; number /= 10)
        decimal.insert(decimal.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
    EXPECT_EQ(uids.Of("1.2.3"), "2.25." + decimal);
}

TEST(Profile, HasAllRowsOfItsEdition) { EXPECT_EQ(ProfileRowCount(), 621u); }

TEST(Profile, TakesTheChoiceThatSuitsEveryType) {
    const ProfileOptions none;
    EXPECT_EQ(ActionFor({0x0010, 0x0010}, none), Action::Empty);   // Z
    EXPECT_EQ(ActionFor({0x0010, 0x0020}, none), Action::Dummy);   // Z/D
    EXPECT_EQ(ActionFor({0x0008, 0x1140}, none), Action::NewUid);  // X/Z/U*
    EXPECT_EQ(ActionFor({0x0008, 0x0018}, none), Action::NewUid);  // U
    EXPECT_EQ(ActionFor({0x0010, 0x4000}, none), Action::Remove);  // X
    EXPECT_EQ(ActionFor({0x0088, 0x0200}, none), Action::Remove);  // X, a row broken by a note
    EXPECT_EQ(ActionFor({0x0028, 0x0010}, none), Action::Keep);    // not in the table
}

TEST(Profile, PatternsStandForManyTags) {
    const ProfileOptions none;
    for (const pgkit::tag tag : {pgkit::tag{0x0009, 0x0010}, {0x5002, 0x3000}, {0x60FE, 0x3000}})
        EXPECT_EQ(ActionFor(tag, none), Action::Remove) << tag.text();
    EXPECT_EQ(ActionFor({0x5100, 0x3000}, none), Action::Keep);
    EXPECT_EQ(ActionFor({0x6000, 0x0010}, none), Action::Keep);
}

TEST(Profile, OptionsKeepWhatTheirColumnSays) {
    ProfileOptions dates;
    dates.retainDates = true;
    EXPECT_EQ(ActionFor({0x0008, 0x0020}, dates), Action::Keep);
    ProfileOptions moved;
    moved.modifyDates = true;
    EXPECT_EQ(ActionFor({0x0008, 0x0020}, moved), Action::MoveDate);
    EXPECT_EQ(ActionFor({0x0010, 0x0010}, moved), Action::Empty);
}

}  // namespace
