// Lookup of private elements through the creators of a data set.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dictionary/private_dictionary.h"
#include "dictionary/un_sequence_switch.h"
#include "pgkit/dictionary.h"
#include "pgkit/value_representation.h"
#include "support/private_dictionary.h"

namespace {

using pgkit::FindPrivateElement;
using pgkit::PrivateCreator;
using pgkit::PrivateDictionaryEntry;
using pgkit_test::PrivateDictionaryText;
using Creators = std::vector<PrivateCreator>;

std::string NameOf(const PrivateDictionaryEntry* entry) {
    return entry == nullptr ? "" : entry->name;
}

// The entry that one line gives for group and offset of a creator, described in short.
std::string EntryOfLine(const std::string& line, uint16_t group, const std::string& creator = "X") {
    const PrivateDictionaryText dictionary(line + "\n");
    const PrivateDictionaryEntry* entry = FindPrivateElement(group, 0x1010, {{creator, 0x10}});
    if (entry == nullptr) return "none";
    return entry->name + " " + std::to_string(entry->valueRep);
}

TEST(PrivateElement, LineIsKeptUnderGroupElementAndCreator) {
    EXPECT_EQ(EntryOfLine("(0019,\"X\",10) LO Name 1", 0x0019), "Name 5");
}

TEST(PrivateElement, RangeOfGroupsIsKeptUnderItsFirst) {
    EXPECT_EQ(EntryOfLine("(6000-60FF,\"X\",10) LO Name 1", 0x6000), "Name 5");
    EXPECT_EQ(EntryOfLine("(6000-60FF,\"X\",10) LO Name 1", 0x6002), "none");
}

TEST(PrivateElement, GroupsThatBeginWithUpperCase7FAreSkipped) {
    EXPECT_EQ(EntryOfLine("(7FE1,\"X\",10) OB Name 1", 0x7FE1), "none");
    EXPECT_EQ(EntryOfLine("(7F00-7FFF,\"X\",10) OB Name 1", 0x7F00), "none");
    EXPECT_EQ(EntryOfLine("(7F,\"X\",10) OB Name 1", 0x007F), "none");
    EXPECT_EQ(EntryOfLine("(7fe1,\"X\",10) OB Name 1", 0x7FE1), "Name 6");
    EXPECT_EQ(EntryOfLine("(07FE1,\"X\",10) OB Name 1", 0x7FE1), "Name 6");
}

TEST(PrivateElement, CreatorIsTrimmedOfBlanksAndInUpperCase) {
    EXPECT_EQ(EntryOfLine("(0029,\" acme 1.1 \",10) ox Name 1", 0x0029, "ACME 1.1"), "Name 27");
    EXPECT_EQ(EntryOfLine("(0029,\"\tacme\",10) LO Name 1", 0x0029, "\tACME"), "Name 5");
    EXPECT_EQ(EntryOfLine("(0029,\"\xE4\",10) LO Name 1", 0x0029, "\xE4"), "Name 5");
    EXPECT_EQ(EntryOfLine("(0029,\"  \",10) LO Name 1", 0x0029, ""), "Name 5");
}

TEST(PrivateElement, SomeValueRepresentationsSkipTheLine) {
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) up Name 1", 0x0029), "none");
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) xs Name 1", 0x0029), "none");
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) na Name 1", 0x0029), "none");
}

TEST(PrivateElement, OtherValueRepresentationsThatAreNoneAreKeptAsUnknown) {
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) lo Name 1", 0x0029), "Name 255");
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) UP Name 1", 0x0029), "Name 255");
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) OX Name 1", 0x0029), "Name 255");
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) LO, Name 1", 0x0029), "Name 255");
}

TEST(PrivateElement, LineOfFiveFieldsIsSkipped) {
    EXPECT_EQ(EntryOfLine("(0029,\"X\",10) LO Name", 0x0029), "none");
}

TEST(PrivateElement, CreatorsAreComparedExactly) {
    const std::string line = "(0019,\"ACME\",10) LO Name 1";
    EXPECT_EQ(EntryOfLine(line, 0x0019, "ACME"), "Name 5");
    EXPECT_EQ(EntryOfLine(line, 0x0019, "acme"), "none");
    EXPECT_EQ(EntryOfLine(line, 0x0019, "ACME "), "none");
    EXPECT_EQ(EntryOfLine(line, 0x0019, "ACM"), "none");
}

TEST(PrivateElement, BlockAndOffsetComeFromTheElement) {
    const PrivateDictionaryText dictionary("(0019,\"A\",10) LO Name 1\n");
    const Creators creators = {{"A", 0x11}};
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x1110, creators)), "Name");
    EXPECT_EQ(FindPrivateElement(0x0019, 0x1111, creators), nullptr);
    EXPECT_EQ(FindPrivateElement(0x0019, 0x1010, creators), nullptr);
    EXPECT_EQ(FindPrivateElement(0x001B, 0x1110, creators), nullptr);
}

TEST(PrivateElement, EntriesWithFullElementNumbersAreNotFoundThroughCreators) {
    const PrivateDictionaryText dictionary("(0019,\"A\",1010) LO Name 1\n");
    EXPECT_EQ(FindPrivateElement(0x0019, 0x1010, {{"A", 0x10}}), nullptr);
}

TEST(PrivateElement, ElementsBelow1000AreInNoBlock) {
    const PrivateDictionaryText dictionary("(0019,\"A\",FF) LO Name 1\n");
    EXPECT_EQ(FindPrivateElement(0x0019, 0x0FFF, {{"A", 0x0F}}), nullptr);
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x10FF, {{"A", 0x10}})), "Name");
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0xFFFF, {{"A", 0xFF}})), "Name");
}

TEST(PrivateElement, WithoutCreatorsThereIsNone) {
    const PrivateDictionaryText dictionary("(0019,\"A\",10) LO Name 1\n");
    EXPECT_EQ(FindPrivateElement(0x0019, 0x1010, {}), nullptr);
}

TEST(PrivateElement, FirstCreatorOfTheBlockThatHasAnEntryWins) {
    const PrivateDictionaryText dictionary(
        "(0019,\"A\",10) LO OfA 1\n"
        "(0019,\"B\",10) LO OfB 1\n"
        "(0019,\"B\",11) LO OnlyB 1\n");
    const Creators creators = {{"UNLISTED", 0x10}, {"B", 0x11}, {"A", 0x10}, {"B", 0x10}};
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x1010, creators)), "OfA");
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x1011, creators)), "OnlyB");
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x1110, creators)), "OfB");
}

TEST(PrivateElement, EarlierLineOfTheSameElementWins) {
    const PrivateDictionaryText dictionary(
        "(0019,\"A\",10) LO First 1\n"
        "(0019,\"a\",10) CS Second 1\n");
    EXPECT_EQ(NameOf(FindPrivateElement(0x0019, 0x1010, {{"A", 0x10}})), "First");
}

TEST(UnSequenceSwitch, IsOnAfterLoadingAndTakesAnyValue) {
    EXPECT_TRUE(pgkit::DecodesUnSequences());
    EXPECT_EQ(pgTryToDecodeUNSequences(0), 0u);
    EXPECT_FALSE(pgkit::DecodesUnSequences());
    EXPECT_EQ(pgTryToDecodeUNSequences(0x80000000), 0x80000000u);
    EXPECT_TRUE(pgkit::DecodesUnSequences());
    EXPECT_EQ(pgTryToDecodeUNSequences(1), 1u);
    EXPECT_TRUE(pgkit::DecodesUnSequences());
}

}  // namespace
