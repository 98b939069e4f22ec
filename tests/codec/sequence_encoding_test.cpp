#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "codec/encoded.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/tree.h"
#include "support/tree_comparison.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

class EncodedSequence : public testing::Test {
  protected:
    Encoded Encode(uint32_t mode) { return pgkit_test::Encode(*root_, mode); }

    void SetUp() override {
        sequence_ = root_->InsertNode(0x0008, 0x1140, nullptr, 0);
        for (const char* number : {"1 ", "2 "}) {
            AddItem(*sequence_)->InsertNode(0x0020, 0x0013, number, 2);
        }
    }

    DataSet root_{pgAllocateDataSetNode()};
    PGX_Node* sequence_ = nullptr;
};

TEST_F(EncodedSequence, CarryTheLengthsOfTheirNodesWithoutDelimiters) {
    sequence_->length = 36;
    sequence_->first->length = 10;
    sequence_->first->next->length = 10;
    EXPECT_EQ(Encode(kImplicitLittle).bytes, StreamBuilder(VrMode::Implicit)
                                                 .Sequence(0x0008, 0x1140, 36)
                                                 .Item(10)
                                                 .Element(0x0020, 0x0013, "IS", "1 ")
                                                 .Item(10)
                                                 .Element(0x0020, 0x0013, "IS", "2 ")
                                                 .Data());
}

TEST_F(EncodedSequence, HaveUndefinedLengthsAndDelimitersInThatMode) {
    for (const auto& [mode, vr, order] :
         {std::tuple(kImplicitLittle, VrMode::Implicit, Order::Little),
          std::tuple(kExplicitLittle, VrMode::Explicit, Order::Little),
          std::tuple(kExplicitBig, VrMode::Explicit, Order::Big),
          std::tuple(0u, VrMode::Implicit, Order::Big)}) {
        const Encoded encoded = Encode(mode | PG_UNDEFINED_LENGTHS);
        EXPECT_EQ(encoded.result, 0u);
        EXPECT_EQ(encoded.bytes, StreamBuilder(vr, order)
                                     .Sequence(0x0008, 0x1140)
                                     .Item()
                                     .Element(0x0020, 0x0013, "IS", "1 ")
                                     .EndItem()
                                     .Item()
                                     .Element(0x0020, 0x0013, "IS", "2 ")
                                     .EndItem()
                                     .EndSequence()
                                     .Data());
    }
}

TEST_F(EncodedSequence, OfAnEmptyKindAreAHeaderAndTheirDelimiter) {
    DataSet root(pgAllocateDataSetNode());
    root->InsertNode(0x0008, 0x1140, nullptr, 0);
    EXPECT_EQ(pgkit_test::Encode(*root, kExplicitLittle).bytes,
              StreamBuilder().Sequence(0x0008, 0x1140, 0).Data());
    EXPECT_EQ(pgkit_test::Encode(*root, kExplicitLittle | PG_UNDEFINED_LENGTHS).bytes,
              StreamBuilder().Sequence(0x0008, 0x1140).EndSequence().Data());
}

// Such files were saved with result 0 and could not be opened.
TEST_F(EncodedSequence, OfTheFileMetaInformationHaveNoDelimiters) {
    const TempDir directory;
    const std::string path = directory.Path("file");
    root_->AddPart10Elements(nullptr);
    root_->InsertNode(0x0002, 0xFF00, nullptr, 0)->valueRep = VR_SQ;
    ASSERT_EQ(root_->SaveDataSetAsEx(path.c_str(), kPart10Explicit | PG_UNDEFINED_LENGTHS), 0u);
    const DataSet reread(pgOpenDataSetFile(path.c_str(), kLoadAll));
    ASSERT_NE(reread, nullptr);
    EXPECT_EQ(FirstDifference(*root_, *reread), "");
}

// The delimiters of what they held were not counted, and what followed them was not found again.
TEST_F(EncodedSequence, InsideThoseOfTheFileMetaInformationHaveNoDelimitersEither) {
    const TempDir directory;
    const std::string path = directory.Path("file");
    root_->AddPart10Elements(nullptr);
    PGX_Node* const sequence = root_->InsertNode(0x0002, 0xFF00, nullptr, 0);
    sequence->valueRep = VR_SQ;
    sequence->SeqAddTail(pgAllocateDataSetNode());
    sequence->first->InsertNode(0x0040, 0xA730, nullptr, 0);
    ASSERT_EQ(root_->SaveDataSetAsEx(path.c_str(), kPart10Explicit | PG_UNDEFINED_LENGTHS), 0u);
    const DataSet reread(pgOpenDataSetFile(path.c_str(), kLoadAll));
    ASSERT_NE(reread, nullptr);
    EXPECT_EQ(pgkit_test::Tags(reread.get()), pgkit_test::Tags(root_.get()));
}

// Such files were saved with result 0 and could not be opened, either.
TEST_F(EncodedSequence, OfTheFileMetaInformationThatCannotBeCountedFail) {
    const TempDir directory;
    root_->AddPart10Elements(nullptr);
    PGX_Node* const sequence = root_->InsertNode(0x0002, 0xFF00, nullptr, 0);
    sequence->valueRep = VR_SQ;
    sequence->SeqAddTail(pgAllocateDataSetNode());
    sequence->first->InsertEncodedPixelDataNode(1)->SetEncodedPixelData(0, 2, "ab");
    EXPECT_EQ(root_->SaveDataSetAsEx(directory.Path("file").c_str(), kPart10Explicit),
              kValueTooLong);
}

TEST_F(EncodedSequence, AreDelimitedWhereverALengthIsUndefined) {
    sequence_->length = kUndefined;
    sequence_->first->length = kUndefined;
    sequence_->first->next->length = 10;
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Sequence(0x0008, 0x1140)
                                                 .Item()
                                                 .Element(0x0020, 0x0013, "IS", "1 ")
                                                 .EndItem()
                                                 .Item(10)
                                                 .Element(0x0020, 0x0013, "IS", "2 ")
                                                 .EndSequence()
                                                 .Data());
}

TEST_F(EncodedSequence, GetTheirDelimitersAfterAnItemThatFails) {
    PGX_Node* tooLong = NewElement(*sequence_->first, 0x0009, 0x1001, VR_LO, "");
    tooLong->length = 65535;
    root_->InsertNode(0x0010, 0x0010, "DOE", 3);
    const Encoded encoded = Encode(kExplicitLittle | PG_UNDEFINED_LENGTHS);
    EXPECT_EQ(encoded.result, kValueTooLong);
    EXPECT_EQ(encoded.bytes, StreamBuilder()
                                 .Sequence(0x0008, 0x1140)
                                 .Item()
                                 .U16(0x0009)
                                 .U16(0x1001)
                                 .Text("LO")
                                 .EndItem()
                                 .EndSequence()
                                 .Data());
}

TEST_F(EncodedSequence, EndWhereAnItemFailsWhenTheyHaveNoDelimiters) {
    PGX_Node* tooLong = NewElement(*sequence_->first, 0x0009, 0x1001, VR_LO, "");
    tooLong->length = 65535;
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, kValueTooLong);
    EXPECT_EQ(encoded.bytes, StreamBuilder()
                                 .Sequence(0x0008, 0x1140, 0)
                                 .Item(0)
                                 .U16(0x0009)
                                 .U16(0x1001)
                                 .Text("LO")
                                 .Data());
}

TEST_F(EncodedSequence, OfGroupTwoHaveItemHeadersInItsByteOrder) {
    sequence_->group = 0x0002;
    EXPECT_EQ(Encode(kPart10Big | PG_UNDEFINED_LENGTHS).bytes,
              StreamBuilder()
                  .Sequence(0x0002, 0x1140)
                  .Item()
                  .Append(StreamBuilder(VrMode::Explicit, Order::Big)
                              .Element(0x0020, 0x0013, "IS", "1 ")
                              .Data())
                  .EndItem()
                  .Item()
                  .Append(StreamBuilder(VrMode::Explicit, Order::Big)
                              .Element(0x0020, 0x0013, "IS", "2 ")
                              .Data())
                  .EndItem()
                  .EndSequence()
                  .Data());
}

class EncodedTree : public testing::Test {
  protected:
    Encoded Encode(uint32_t mode) { return pgkit_test::Encode(*root_, mode); }

    DataSet root_{pgAllocateDataSetNode()};
};

TEST_F(EncodedTree, IsWrittenWhateverItsDepth) {
    constexpr size_t kDepth = 100'000;
    PGX_Node* dataSet = root_.get();
    for (size_t i = 0; i < kDepth; ++i) {
        dataSet = AddItem(*dataSet->InsertNode(0x0008, 0x1140, nullptr, 0));
    }
    const Encoded encoded = Encode(kImplicitLittle | PG_UNDEFINED_LENGTHS);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes.size(), kDepth * 32);
    EXPECT_EQ(Encode(kImplicitLittle).bytes.size(), kDepth * 16);
}

// ---- Containers whose length cannot be computed ------------------------------------------------

TEST_F(EncodedTree, IsDelimitedOnlyAroundEncapsulatedPixelData) {
    PGX_Node* outer = root_->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* inner = AddItem(*outer)->InsertNode(0x0008, 0x1140, nullptr, 0);
    AddItem(*inner)->InsertEncodedPixelDataNode(0);
    AddItem(*inner)->InsertNode(0x0020, 0x0013, "1 ", 2);
    inner->first->next->length = 10;
    AddItem(*outer);
    root_->InsertNode(0x0008, 0x1145, nullptr, 0);

    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Sequence(0x0008, 0x1140)
                                                 .Item()
                                                 .Sequence(0x0008, 0x1140)
                                                 .Item()
                                                 .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                                 .Item(0)
                                                 .EndSequence()
                                                 .EndItem()
                                                 .Item(10)
                                                 .Element(0x0020, 0x0013, "IS", "1 ")
                                                 .EndSequence()
                                                 .EndItem()
                                                 .Item(0)
                                                 .EndSequence()
                                                 .Sequence(0x0008, 0x1145, 0)
                                                 .Data());
}

TEST_F(EncodedTree, IsDelimitedAroundElementsOfGroupTwo) {
    PGX_Node* sequence = root_->InsertNode(0x0008, 0x1140, nullptr, 0);
    AddItem(*sequence)->InsertNode(0x0002, 0x0010, "1.2 ", 4);
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Sequence(0x0008, 0x1140).Item().EndItem().EndSequence().Data());
}

}  // namespace
