#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "support/captured.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class EncapsulatedBuilding : public testing::Test {
  protected:
    static Bytes Fragment(const PGX_Node& node, uint32_t index) {
        const FragmentEntry& entry = node.fragments[index];
        return Bytes(entry.bytes, entry.bytes + entry.length);
    }

    DataSet root_{pgAllocateDataSetNode()};
};

TEST_F(EncapsulatedBuilding, InsertsPixelDataWithATableOfEmptyEntries) {
    root_->InsertNode(0x7FE0, 0x0000, nullptr, 0);
    root_->InsertNode(0xFFFC, 0xFFFC, nullptr, 0);
    PGX_Node* node = root_->InsertEncodedPixelDataNode(3);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(Tags(root_.get()), "7FE0,0000 7FE0,0010 FFFC,FFFC");
    EXPECT_EQ(node->encapsulated, 1u);
    EXPECT_EQ(node->length, 0u);
    EXPECT_EQ(node->value, nullptr);
    EXPECT_EQ(node->fragmentCount, 3u);
    EXPECT_EQ(node->fragmentCapacity, 3u);
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(node->fragments[i].offset, 0u);
        EXPECT_EQ(node->fragments[i].length, 0u);
        EXPECT_EQ(node->fragments[i].bytes, nullptr);
    }
}

TEST_F(EncapsulatedBuilding, TakesTheBitsAllocatedOfItsDataSet) {
    const uint16_t bits = 8;
    root_->InsertNode(0x0028, 0x0100, &bits, 2);
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    EXPECT_EQ(node->bitsAllocated, 8u);
    EXPECT_EQ(node->valueRep, VR_OB);
}

TEST_F(EncapsulatedBuilding, OfNoFragmentsHasNoTable) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(0);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->encapsulated, 1u);
    EXPECT_EQ(node->fragments, nullptr);
    EXPECT_EQ(node->fragmentCount, 0u);
    EXPECT_EQ(node->fragmentCapacity, 0u);
}

TEST_F(EncapsulatedBuilding, WorksInDataSetsOnly) {
    PGX_Node* element = root_->InsertNode(0x0008, 0x0060, "CT", 2);
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(element->InsertEncodedPixelDataNode(1), nullptr); });
    EXPECT_EQ(printed.out, "pgInsertNode: can only insert a PixelData node in a NT_DataSet type\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(element->first, nullptr);
}

TEST_F(EncapsulatedBuilding, CopiesAFragment) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(2);
    uint8_t bytes[] = {1, 2, 3, 4};
    EXPECT_EQ(node->SetEncodedPixelData(1, 4, bytes), 1);
    bytes[0] = 9;
    EXPECT_EQ(Fragment(*node, 1), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(node->fragments[0].bytes, nullptr);
}

TEST_F(EncapsulatedBuilding, MakesAnOddFragmentEvenWithAZero) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    EXPECT_EQ(node->SetEncodedPixelData(0, 5, "abcde"), 1);
    EXPECT_EQ(Fragment(*node, 0), (Bytes{'a', 'b', 'c', 'd', 'e', 0}));
}

TEST_F(EncapsulatedBuilding, ReplacesAFragmentAndForgetsItsPlaceInTheFile) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    node->fragments[0].offset = 1234;
    EXPECT_EQ(node->SetEncodedPixelData(0, 4, "abcd"), 1);
    EXPECT_EQ(node->fragments[0].offset, 0u);
    EXPECT_EQ(node->SetEncodedPixelData(0, 2, node->fragments[0].bytes + 2), 1);
    EXPECT_EQ(Fragment(*node, 0), (Bytes{'c', 'd'}));
}

TEST_F(EncapsulatedBuilding, EmptiesAFragment) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    node->SetEncodedPixelData(0, 4, "abcd");
    EXPECT_EQ(node->SetEncodedPixelData(0, 0, "x"), 1);
    EXPECT_EQ(node->fragments[0].length, 0u);
    EXPECT_EQ(node->fragments[0].bytes, nullptr);
}

TEST_F(EncapsulatedBuilding, FillsAFragmentWithoutBytesWithZeros) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    EXPECT_EQ(node->SetEncodedPixelData(0, 3, nullptr), 1);
    EXPECT_EQ(Fragment(*node, 0), (Bytes{0, 0, 0, 0}));
}

TEST_F(EncapsulatedBuilding, RefusesFragmentsThatTheTableDoesNotHave) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(2);
    EXPECT_EQ(node->SetEncodedPixelData(2, 4, "abcd"), 0);
    EXPECT_EQ(node->SetEncodedPixelData(0xFFFFFFFF, 4, "abcd"), 0);
    EXPECT_EQ(root_->SetEncodedPixelData(0, 4, "abcd"), 0);

    PGX_Node* withoutTable = root_->InsertEncodedPixelDataNode(0);
    EXPECT_EQ(withoutTable->SetEncodedPixelData(0, 4, "abcd"), 0);
    withoutTable->fragments = reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    EXPECT_EQ(withoutTable->SetEncodedPixelData(0, 4, "abcd"), 0);
}

TEST_F(EncapsulatedBuilding, RefusesALengthThatCannotBeMadeEven) {
    PGX_Node* node = root_->InsertEncodedPixelDataNode(1);
    node->SetEncodedPixelData(0, 4, "abcd");
    EXPECT_EQ(node->SetEncodedPixelData(0, 0xFFFFFFFF, nullptr), 0);
    EXPECT_EQ(Fragment(*node, 0), (Bytes{'a', 'b', 'c', 'd'}));
}

}  // namespace
