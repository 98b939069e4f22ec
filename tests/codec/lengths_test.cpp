#include "codec/lengths.h"

#include <gtest/gtest.h>

#include "codec/encoded.h"
#include "support/captured.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::ComputeLengths;

constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;

TEST(Lengths, OfAnEmptyDataSetAreZero) {
    const DataSet root(pgAllocateDataSetNode());
    EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), 0u);
}

TEST(Lengths, CountEightBytesForEveryHeaderInImplicitVr) {
    const DataSet root(pgAllocateDataSetNode());
    NewElement(*root, 0x0009, 0x1001, VR_OB, "abcdefghij");
    NewElement(*root, 0x0009, 0x1002, VR_LO, "ab");
    EXPECT_EQ(ComputeLengths(*root, kImplicitLittle), 18u + 10u);
    EXPECT_EQ(root->length, 28u);
}

TEST(Lengths, CountTwelveBytesForLongHeadersInExplicitVr) {
    for (const uint32_t vr : {VR_OB, VR_OW, VR_OWOB, VR_OF, VR_UN, VR_UT, VR_Unknown}) {
        const DataSet root(pgAllocateDataSetNode());
        NewElement(*root, 0x0009, 0x1001, vr, "abcdefghij");
        EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), 22u) << vr;
    }
    const DataSet root(pgAllocateDataSetNode());
    NewElement(*root, 0x0009, 0x1001, VR_US, "ab");
    EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), 10u);
}

TEST(Lengths, OfSequencesAreThoseOfTheirItemsWithTheItemHeaders) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* first = AddItem(*sequence);
    PGX_Node* second = AddItem(*sequence);
    first->InsertNode(0x0020, 0x0013, "1 ", 2);
    PGX_Node* inner = second->InsertNode(0x0008, 0x1140, nullptr, 0);
    AddItem(*inner)->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);

    EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), 12u + 62u);
    EXPECT_EQ(first->length, 10u);
    EXPECT_EQ(inner->first->length, 16u);
    EXPECT_EQ(inner->length, 24u);
    EXPECT_EQ(second->length, 12u + 24u);
    EXPECT_EQ(sequence->length, 8u + 10u + 8u + 36u);
    EXPECT_EQ(root->length, 12u + sequence->length);

    EXPECT_EQ(ComputeLengths(*root, kImplicitLittle), 8u + 58u);
    EXPECT_EQ(second->length, 8u + 24u);
}

TEST(Lengths, CountNoDelimitersInTheModeThatWritesThem) {
    const DataSet root(pgAllocateDataSetNode());
    AddItem(*root->InsertNode(0x0008, 0x1140, nullptr, 0));
    EXPECT_EQ(ComputeLengths(*root, kImplicitLittle | PG_UNDEFINED_LENGTHS), 16u);
}

TEST(Lengths, CountGroupTwoByTheModeOfTheOthers) {
    const DataSet root(pgAllocateDataSetNode());
    NewElement(*root, 0x0002, 0x0001, VR_OB, "ab");
    EXPECT_EQ(ComputeLengths(*root, kImplicitLittle | PG_META), 10u);
}

TEST(Lengths, ReplaceThoseThatWereRead) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    sequence->length = kUndefinedLength;
    AddItem(*sequence)->length = kUndefinedLength;
    ComputeLengths(*root, kImplicitLittle);
    EXPECT_EQ(sequence->length, 8u);
    EXPECT_EQ(sequence->first->length, 0u);
}

TEST(Lengths, BecomeUndefinedWhereTheSumDoesNotFit) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* small = AddItem(*sequence);
    PGX_Node* large = AddItem(*sequence);
    small->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    NewElement(*large, 0x0009, 0x1001, VR_UN, "")->length = 0x80000000;
    PGX_Node* second = NewElement(*large, 0x0009, 0x1002, VR_UN, "");
    second->length = 0x7FFFFFFF - 24 - 1;
    EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), kUndefinedLength);
    EXPECT_EQ(small->length, 16u);
    EXPECT_EQ(large->length, 0xFFFFFFFEu);
    EXPECT_EQ(sequence->length, kUndefinedLength);

    second->length += 16;
    ComputeLengths(*root, kExplicitLittle);
    EXPECT_EQ(large->length, kUndefinedLength);
}

TEST(Lengths, CountAnUndefinedOneAsTheNumberItIsWrittenAs) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* item = AddItem(*root->InsertNode(0x0008, 0x1140, nullptr, 0));
    item->InsertEncodedPixelDataNode(0)->length = kUndefinedLength;
    ComputeLengths(*root, kExplicitLittle);
    EXPECT_EQ(item->length, 0xFFFFFFFFu + 12u);  // in 32 bits
    EXPECT_EQ(item->next, nullptr);
    EXPECT_EQ(root->first->length, 11u + 8u);
    EXPECT_EQ(root->length, 19u + 12u);
}

TEST(Lengths, AreComputedForDataSetsOnly) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* element = root->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(ComputeLengths(*element, kExplicitLittle), 0u); });
    EXPECT_EQ(printed.out, "pgComputeLengths: can only work with NT_DataSet type\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(element->length, 8u);
}

TEST(Lengths, CountAnItemThatIsNoDataSetAsItsHeader) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    sequence->first = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0010, 0x0010, VR_PN, 8);
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(ComputeLengths(*root, kImplicitLittle), 16u); });
    EXPECT_EQ(printed.out, "pgComputeLengths: can only work with NT_DataSet type\n");
}

TEST(Lengths, AreComputedAtAnyDepth) {
    constexpr uint32_t kDepth = 100'000;
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* dataSet = root.get();
    for (uint32_t i = 0; i < kDepth; ++i) {
        dataSet = AddItem(*dataSet->InsertNode(0x0008, 0x1140, nullptr, 0));
    }
    EXPECT_EQ(ComputeLengths(*root, kExplicitLittle), 20 * kDepth);
}

}  // namespace
