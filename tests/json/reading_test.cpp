// Reading JSON into trees: what is accepted beyond what is written, and what the tree is like.
#include <gtest/gtest.h>

#include "support/current_edition.h"
#include "support/json.h"

namespace {

using pgkit_test::Child;
using pgkit_test::CurrentEdition;
using pgkit_test::DataSet;
using pgkit_test::Describe;
using pgkit_test::JsonOf;
using pgkit_test::Parsed;
using pgkit_test::ParseJson;
using pgkit_test::Rewritten;
using pgkit_test::Tags;
using pgkit_test::TextOf;
using pgkit_test::ValueFromJson;

TEST(JsonReading, GivesATreeInMemory) {
    const Parsed parsed = ParseJson(R"({"00080060":{"vr":"CS","Value":["MR"]}})");
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(Describe(parsed.dataSet.get()), "[(0008,0060)CS:2]");
    PGX_Node* const modality = Child(parsed.dataSet.get(), 0x0008, 0x0060);
    EXPECT_EQ(TextOf(modality), "MR");
    EXPECT_EQ(modality->endian, ET_LittleEndian);
    EXPECT_EQ(modality->file, nullptr);
}

TEST(JsonReading, PutsElementsInOrder) {
    const Parsed parsed =
        ParseJson(R"({"00100020":{"vr":"LO"},"00080060":{"vr":"CS"},"00100010":{"vr":"PN"},)"
                  R"("7FE00010":{"vr":"OB"},"00080005":{"vr":"CS"}})");
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(Tags(parsed.dataSet.get()), "0008,0005 0008,0060 0010,0010 0010,0020 7FE0,0010");
}

TEST(JsonReading, TakesMembersInAnyOrder) {
    EXPECT_EQ(
        Rewritten(R"({"00100010":{"Value":[{"Alphabetic":"A"}],"vr":"PN"},)"
                  R"("00280010":{"Value":[5],"vr":"US"},)"
                  R"("00081140":{"Value":[{},{"00080060":{"Value":["MR"],"vr":"CS"}}],"vr":"SQ"},)"
                  R"("7FE00010":{"InlineBinary":"YWI=","vr":"OW"}})"),
        R"({"00081140":{"vr":"SQ","Value":[{},{"00080060":{"vr":"CS","Value":["MR"]}}]},)"
        R"("00100010":{"vr":"PN","Value":[{"Alphabetic":"A"}]},)"
        R"("00280010":{"vr":"US","Value":[5]},"7FE00010":{"vr":"OW","InlineBinary":"YWI="}})");
}

TEST(JsonReading, TakesBlanksAByteOrderMarkAndDigitsInLowerCase) {
    EXPECT_EQ(
        Rewritten(
            "\xEF\xBB\xBF \r\n{\t\"0008103e\" : { \"vr\" : \"LO\" , \"Value\" : [ \"a\" ] } } \n"),
        R"({"0008103E":{"vr":"LO","Value":["a"]}})");
}

TEST(JsonReading, TakesAMissingVrFromTheTables) {
    EXPECT_EQ(
        Rewritten(R"({"00100010":{"Value":[{"Alphabetic":"A"}]},"00280010":{"Value":[5]},)"
                  R"("00090010":{"Value":["A MAKER"]},"7FE00010":{"InlineBinary":"YWI="}})"),
        R"({"00090010":{"vr":"LO","Value":["A MAKER"]},)"
        R"("00100010":{"vr":"PN","Value":[{"Alphabetic":"A"}]},)"
        R"("00280010":{"vr":"US","Value":[5]},"7FE00010":{"vr":"OW","InlineBinary":"YWI="}})");
    EXPECT_EQ(Rewritten(R"({"00091001":{"Value":["a"]}})"),
              "an unknown value representation at 00091001");
}

// Tags that the built-in dictionary does not have; their VRs are known in either edition.
TEST(JsonReading, TakesAMissingVrFromTheTablesOfTodayInEitherEdition) {
    EXPECT_EQ(Rewritten(R"({"00620020":{"Value":["a"]}})"),
              R"({"00620020":{"vr":"UT","Value":["a"]}})");
    EXPECT_EQ(Rewritten(R"({"00720083":{}})"),
              "an unknown value representation at SelectorUVValue");
}

TEST(JsonReading, TakesUsOrSsByPixelRepresentationOrSign) {
    EXPECT_EQ(Rewritten(R"({"00280106":{"Value":[1]}})"),
              R"({"00280106":{"vr":"US","Value":[1]}})");
    EXPECT_EQ(Rewritten(R"({"00280106":{"Value":[-1]}})"),
              R"({"00280106":{"vr":"SS","Value":[-1]}})");
    EXPECT_EQ(Rewritten(R"({"00280103":{"Value":[1]},"00280106":{"Value":[1]}})"),
              R"({"00280103":{"vr":"US","Value":[1]},"00280106":{"vr":"SS","Value":[1]}})");
}

TEST(JsonReading, KnowsTheVrsOfTheEditionThatIsUsed) {
    constexpr const char* kJson = R"({"00091001":{"vr":"UR","Value":["x"]}})";
    EXPECT_EQ(Rewritten(kJson), "an unknown value representation at 00091001");
    const CurrentEdition edition;
    EXPECT_EQ(Rewritten(kJson), kJson);
}

TEST(JsonReading, SaysUtf8WhereATextNeedsIt) {
    const Parsed parsed = ParseJson(
        R"({"00080005":{"vr":"CS","Value":["ISO_IR 100"]},"00081030":{"vr":"LO","Value":["ä"]}})");
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(TextOf(Child(parsed.dataSet.get(), 0x0008, 0x0005)), "ISO_IR 192");
    EXPECT_EQ(TextOf(Child(parsed.dataSet.get(), 0x0008, 0x1030)), "\xC3\xA4");

    const Parsed added = ParseJson(R"({"00081030":{"vr":"LO","Value":["ä"]}})");
    ASSERT_NE(added.dataSet, nullptr);
    EXPECT_EQ(Describe(added.dataSet.get()), "[(0008,0005)CS:10 (0008,1030)LO:2]");
}

TEST(JsonReading, KeepsTheCharacterSetOfTextsInAscii) {
    const Parsed parsed = ParseJson(
        R"({"00080005":{"vr":"CS","Value":["ISO_IR 100"]},"00081030":{"vr":"LO","Value":["a"]}})");
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(TextOf(Child(parsed.dataSet.get(), 0x0008, 0x0005)), "ISO_IR 100");
    EXPECT_EQ(Describe(ParseJson(R"({"00081030":{"vr":"LO","Value":["a"]}})").dataSet.get()),
              "[(0008,1030)LO:2]");
}

TEST(JsonReading, SaysUtf8WhereTheCharacterSetOfAnItemHolds) {
    const Parsed own = ParseJson(
        R"({"00081140":{"vr":"SQ","Value":[{"00080005":{"vr":"CS","Value":["ISO_IR 100"]},)"
        R"("00081030":{"vr":"LO","Value":["ä"]}}]}})");
    ASSERT_NE(own.dataSet, nullptr);
    EXPECT_EQ(Describe(own.dataSet.get()), "[(0008,1140)SQ:0{[(0008,0005)CS:10 (0008,1030)LO:2]}]");
    const Parsed inherited =
        ParseJson(R"({"00081140":{"vr":"SQ","Value":[{"00081030":{"vr":"LO","Value":["ä"]}}]}})");
    ASSERT_NE(inherited.dataSet, nullptr);
    EXPECT_EQ(Describe(inherited.dataSet.get()),
              "[(0008,0005)CS:10 (0008,1140)SQ:0{[(0008,1030)LO:2]}]");
}

TEST(JsonReading, TakesPairsOfSurrogatesAndEscapedBase64) {
    EXPECT_EQ(ValueFromJson("LO", R"("Value":["\uD83D\uDE02"])"), "\xF0\x9F\x98\x82");
    EXPECT_EQ(ValueFromJson("OB", R"("InlineBinary":"\/\/8\u003d")"), "\xFF\xFF");
    EXPECT_EQ(ValueFromJson("OB", R"("InlineBinary" : "\/\/8\u003D")"), "\xFF\xFF");
}

TEST(JsonReading, PassesBitsAllocatedOn) {
    const Parsed parsed = ParseJson(
        R"({"00280100":{"vr":"US","Value":[8]},"7FE00010":{"vr":"OW","InlineBinary":"YWI="}})");
    ASSERT_NE(parsed.dataSet, nullptr);
    EXPECT_EQ(parsed->bitsAllocated, 8u);
    EXPECT_EQ(Child(parsed.dataSet.get(), 0x7FE0, 0x0010)->bitsAllocated, 8u);
}

// The function hands out one byte at a time: what is wanted may end anywhere.
size_t OneByte(void* context, void* bytes, size_t size) {
    auto& rest = *static_cast<std::string_view*>(context);
    if (rest.empty()) return 0;
    EXPECT_GT(size, 0u);
    std::memcpy(bytes, rest.data(), 1);
    rest.remove_prefix(1);
    return 1;
}

TEST(JsonReading, TakesTheJsonInAnyPieces) {
    const std::string json =
        "\xEF\xBB\xBF"
        R"({"00100010":{"vr":"PN","Value":[{"Alphabetic":"Ä"}]},)"
        R"("7FE00010":{"vr":"OB", "InlineBinary" : "YWJjZ\/8="}})";
    std::string_view rest = json;
    const DataSet read(pgxReadJson(OneByte, &rest, nullptr, nullptr));
    ASSERT_NE(read, nullptr);
    const Parsed parsed = ParseJson(json);
    EXPECT_EQ(JsonOf(read.get()), JsonOf(parsed.dataSet.get()));
    EXPECT_NE(JsonOf(read.get()).find("YWJjZ/8A"), std::string::npos);
}

TEST(JsonReading, TakesAnArrayOfOneDataSet) {
    EXPECT_EQ(Rewritten(R"( [ {"00080060":{"vr":"CS"}} ] )"), R"({"00080060":{"vr":"CS"}})");
    EXPECT_EQ(Rewritten("{}"), "{}");
}

}  // namespace
