// Which values are loaded during the parse, and which stay in the file.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "support/tree.h"

namespace {

using pgkit_test::Child;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::StreamBuilder;
using pgkit_test::Tags;
using pgkit_test::TextOf;
using pgkit_test::VrMode;

StreamBuilder WithElement(uint16_t group, uint16_t element, std::string_view value) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Element(group, element, "LO", value);
    return stream.Element(0x4000, 0x0010, "LO", "END ");
}

bool IsLoaded(const StreamBuilder& stream, uint16_t group, uint16_t element, uint32_t limit) {
    OpenedStream opened(stream, limit);
    PGX_Node* node = Child(opened.Root(), group, element);
    EXPECT_EQ(Tags(opened.Root()).substr(10, 9).size(), 9u);
    EXPECT_EQ(TextOf(Child(opened.Root(), 0x4000, 0x0010)), "END ");
    return node->value != nullptr;
}

TEST(ValueLoading, ValuesBelowTheLimitAreLoaded) {
    const StreamBuilder stream = WithElement(0x0010, 0x0010, std::string(10, 'x'));
    EXPECT_TRUE(IsLoaded(stream, 0x0010, 0x0010, 11));
    EXPECT_FALSE(IsLoaded(stream, 0x0010, 0x0010, 10));
    EXPECT_FALSE(IsLoaded(stream, 0x0010, 0x0010, 0));
}

TEST(ValueLoading, PrivateGroupsAreLoadedUpTo22) {
    const StreamBuilder small = WithElement(0x0009, 0x1001, std::string(10, 'x'));
    const StreamBuilder edge = WithElement(0x0009, 0x1001, std::string(21, 'x'));
    const StreamBuilder large = WithElement(0x0009, 0x1001, std::string(22, 'x'));
    EXPECT_TRUE(IsLoaded(small, 0x0009, 0x1001, 64));
    EXPECT_TRUE(IsLoaded(edge, 0x0009, 0x1001, 64));
    EXPECT_FALSE(IsLoaded(large, 0x0009, 0x1001, 64));
    EXPECT_FALSE(IsLoaded(large, 0x0009, 0x1001, kLoadAll));
    // A limit below 22 holds as it is.
    EXPECT_FALSE(IsLoaded(small, 0x0009, 0x1001, 10));
    const StreamBuilder standard = WithElement(0x0010, 0x0010, std::string(30, 'x'));
    EXPECT_TRUE(IsLoaded(standard, 0x0010, 0x0010, 64));
}

TEST(ValueLoading, EmptyValuesHaveNoBuffer) {
    EXPECT_FALSE(IsLoaded(WithElement(0x0010, 0x0010, ""), 0x0010, 0x0010, 64));
}

TEST(ValueLoading, ValuesReadTheSameFromMemoryAndFromTheFile) {
    const StreamBuilder stream = WithElement(0x0010, 0x0010, "DOE^JOHN");
    for (uint32_t limit : {uint32_t{0}, kLoadAll}) {
        OpenedStream opened(stream, limit);
        PGX_Node* name = Child(opened.Root(), 0x0010, 0x0010);
        EXPECT_EQ(TextOf(name), "DOE^JOHN");
        EXPECT_EQ(name->file, opened->file);
        EXPECT_EQ(name->fileOffset, 10u + 8u);
    }
}

TEST(ValueLoading, LargeValuesAreLoadedWholeWhenAskedFor) {
    const std::string pixels(300 * 1024, 'p');
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Element(0x7FE0, 0x0010, "OB", pixels);
    stream.Element(0xFFFC, 0xFFFC, "OB", "abcd");
    OpenedStream opened(stream);
    PGX_Node* node = Child(opened.Root(), 0x7FE0, 0x0010);
    ASSERT_NE(node->value, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(node->value), pixels.size()), pixels);
    EXPECT_EQ(TextOf(Child(opened.Root(), 0xFFFC, 0xFFFC)), "abcd");
}

TEST(ValueLoading, ValueCutShortReadsAsZerosFromThere) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x0010, 0x0010, "PN", 8).Text("DOE");
    for (uint32_t limit : {uint32_t{0}, uint32_t{64}}) {
        OpenedStream opened(stream, limit);
        PGX_Node* name = Child(opened.Root(), 0x0010, 0x0010);
        EXPECT_EQ(name->length, 8u);
        EXPECT_EQ(name->value != nullptr, limit > 0);
        EXPECT_EQ(TextOf(name), std::string("DOE\0\0\0\0\0", 8));
    }
}

TEST(ValueLoading, LargeValueCutShortReadsAsZerosFromThere) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x0010, 0x4000, "OB", 100000).Text("abcd");
    OpenedStream opened(stream, kLoadAll);
    PGX_Node* node = Child(opened.Root(), 0x0010, 0x4000);
    ASSERT_NE(node->value, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(node->value), 100000),
              "abcd" + std::string(99996, '\0'));
}

// 300 bytes once cost the 4 GiB that one of their lengths claimed.
TEST(ValueLoading, ClaimedLengthsAreNotAllocated) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x0010, 0x4000, "OB", 0xFFFFFFFE);
    stream.Zeros(300);
    OpenedStream opened(stream, kLoadAll);
    PGX_Node* node = Child(opened.Root(), 0x0010, 0x4000);
    EXPECT_EQ(node->length, 0xFFFFFFFEu);
    EXPECT_EQ(node->value, nullptr);
    EXPECT_EQ(node->GetULValue(), 0u);
}

TEST(BitsAllocated, IsNotedOnThePixelDataOfItsDataSet) {
    for (uint32_t limit : {uint32_t{0}, kLoadAll}) {
        StreamBuilder stream(VrMode::Implicit);
        stream.ElementUS(0x0028, 0x0100, 16).Element(0x7FE0, 0x0010, "", "abcd");
        OpenedStream opened(stream, limit);
        EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->bitsAllocated, 16u) << limit;
        EXPECT_EQ(Child(opened.Root(), 0x0028, 0x0100)->bitsAllocated, 0u);
        EXPECT_EQ(opened->bitsAllocated, 0u);
    }
}

TEST(BitsAllocated, OfAnItemIsNotThatOfItsSequence) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").ElementUS(0x0028, 0x0100, 16);
    stream.Sequence(0x0088, 0x0200).Item().ElementUS(0x0028, 0x0100, 8);
    stream.Element(0x7FE0, 0x0010, "OB", "ab").EndItem().Item();
    stream.Element(0x7FE0, 0x0010, "OB", "ab").EndItem().EndSequence();
    stream.Element(0x7FE0, 0x0010, "OW", "abcd");
    OpenedStream opened(stream);
    PGX_Node* item = Child(opened.Root(), 0x0088, 0x0200)->first;
    EXPECT_EQ(Child(item, 0x7FE0, 0x0010)->bitsAllocated, 8u);
    EXPECT_EQ(Child(item->next, 0x7FE0, 0x0010)->bitsAllocated, 0u);
    EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->bitsAllocated, 16u);
}

TEST(BitsAllocated, IsReadInTheStreamsByteOrder) {
    StreamBuilder stream(VrMode::Explicit, pgkit_test::Order::Big);
    stream.ElementUS(0x0028, 0x0100, 16).Element(0x7FE0, 0x0010, "OW", "abcd");
    OpenedStream opened(stream, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->bitsAllocated, 16u);
}

}  // namespace
