#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "codec/encoded.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

class Encoder : public testing::Test {
  protected:
    Encoded Encode(uint32_t mode) { return pgkit_test::Encode(*root_, mode); }

    DataSet root_{pgAllocateDataSetNode()};
    TempDir directory_;
};

// ---- Headers -----------------------------------------------------------------------------------

TEST_F(Encoder, WritesTagVrAndSixteenBitLengthInExplicitVr) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
}

TEST_F(Encoder, WritesTagAndThirtyTwoBitLengthInImplicitVr) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(Encode(kImplicitLittle).bytes,
              StreamBuilder(VrMode::Implicit).Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
}

TEST_F(Encoder, WritesImplicitVrBigEndianInModeZero) {
    const uint16_t rows = 0x0102;
    root_->InsertNode(0x0028, 0x0010, &rows, 2);
    EXPECT_EQ(Encode(0).bytes, (Bytes{0x00, 0x28, 0x00, 0x10, 0, 0, 0, 2, 0x01, 0x02}));
}

TEST_F(Encoder, WritesBigEndianWheneverLittleEndianIsNotAskedFor) {
    const uint16_t rows = 0x0102;
    root_->InsertNode(0x0028, 0x0010, &rows, 2);
    const Bytes expected = {0x00, 0x28, 0x00, 0x10, 'U', 'S', 0, 2, 0x01, 0x02};
    EXPECT_EQ(Encode(PG_EXPLICIT_VR).bytes, expected);
    EXPECT_EQ(Encode(kExplicitBig).bytes, expected);
    EXPECT_EQ(Encode(kExplicitBig | PG_LITTLE_ENDIAN).bytes,
              (Bytes{0x28, 0x00, 0x10, 0x00, 'U', 'S', 2, 0, 0x02, 0x01}));
}

class LongHeader : public Encoder,
                   public testing::WithParamInterface<std::pair<int, const char*>> {};

TEST_P(LongHeader, HasTwoZeroBytesAndAThirtyTwoBitLength) {
    const auto [vr, characters] = GetParam();
    NewStoredElement(*root_, 0x0009, 0x1001, static_cast<uint32_t>(vr), "abcd");
    const Bytes expected =
        StreamBuilder().U16(0x0009).U16(0x1001).Text(characters).U16(0).U32(4).Text("abcd").Data();
    EXPECT_EQ(Encode(kExplicitLittle).bytes, expected);
}

INSTANTIATE_TEST_SUITE_P(Vrs, LongHeader,
                         testing::Values(std::pair(VR_OB, "OB"), std::pair(VR_OW, "OW"),
                                         std::pair(VR_OWOB, "OW"), std::pair(VR_OF, "OF"),
                                         std::pair(VR_UN, "UN"), std::pair(VR_UT, "UT"),
                                         std::pair(VR_Unknown, "UN")));

class ShortHeader : public Encoder, public testing::WithParamInterface<int> {};

TEST_P(ShortHeader, HasTheCharactersOfTheVrAndASixteenBitLength) {
    char name[8];
    const auto vr = static_cast<uint32_t>(GetParam());
    ASSERT_EQ(pgGetVRPrintableName(vr, name), 1u);
    NewStoredElement(*root_, 0x0009, 0x1001, vr, "abcdefgh");
    const Bytes expected = StreamBuilder()
                               .U16(0x0009)
                               .U16(0x1001)
                               .Text(std::string_view(name, 2))
                               .U16(8)
                               .Text("abcdefgh")
                               .Data();
    EXPECT_EQ(Encode(kExplicitLittle).bytes, expected);
}

INSTANTIATE_TEST_SUITE_P(Vrs, ShortHeader,
                         testing::Values(VR_UL, VR_UI, VR_US, VR_AE, VR_AT, VR_LO, VR_SH, VR_CS,
                                         VR_DA, VR_TM, VR_DT, VR_ST, VR_PN, VR_IS, VR_DS, VR_LT,
                                         VR_FL, VR_AS, VR_SL, VR_FD, VR_SS));

TEST_F(Encoder, WritesTheAmbiguousNumberVrAsUs) {
    const uint16_t smallest = 7;
    PGX_Node* node = root_->InsertNode(0x0028, 0x0106, &smallest, 2);
    node->valueRep = VR_USSS;
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder().ElementUS(0x0028, 0x0106, 7).Data());
}

TEST_F(Encoder, WritesACodeWithoutNameAsQuestionMarks) {
    NewElement(*root_, 0x0009, 0x1001, 77, "ab");
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().U16(9).U16(0x1001).Text("??").U16(2).Text("ab").Data());
}

TEST_F(Encoder, WritesTheLongestValueOfAShortHeader) {
    const std::string value(65534, 'x');
    NewElement(*root_, 0x0009, 0x1001, VR_LO, value);
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes, StreamBuilder().Element(0x0009, 0x1001, "LO", value).Data());
}

TEST_F(Encoder, RefusesALongerValueAfterTagAndVr) {
    for (const uint32_t length : {65535u, 65536u, 0xFFFFFFFFu}) {
        PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_LO, std::string(65536, 'x'));
        node->length = length;
        const Encoded encoded = Encode(kExplicitLittle);
        EXPECT_EQ(encoded.result, kValueTooLong);
        EXPECT_EQ(encoded.bytes, StreamBuilder().U16(9).U16(0x1001).Text("LO").Data());
        root_->RemoveNode(node);
    }
}

TEST_F(Encoder, WritesALongerValueInImplicitVrAndUnderALongHeader) {
    const std::string value(65536, 'x');
    PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_LO, value);
    for (const uint32_t length : {65535u, 65536u}) {
        node->length = length;
        const std::string_view written = std::string_view(value).substr(0, length);
        EXPECT_EQ(Encode(kImplicitLittle).bytes,
                  StreamBuilder(VrMode::Implicit).Element(0x0009, 0x1001, "LO", written).Data());
        node->valueRep = VR_UT;
        EXPECT_EQ(Encode(kExplicitLittle).bytes,
                  StreamBuilder().Element(0x0009, 0x1001, "UT", written).Data());
        node->valueRep = VR_LO;
    }
}

TEST_F(Encoder, WritesNothingAfterTheFirstFailure) {
    PGX_Node* tooLong = NewElement(*root_, 0x0009, 0x1001, VR_LO, "");
    tooLong->length = 65535;
    root_->InsertNode(0x0010, 0x0010, "DOE", 3);
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, kValueTooLong);
    EXPECT_EQ(encoded.bytes.size(), 6u);
}

TEST_F(Encoder, WritesAnEmptyValueAsItsHeader) {
    root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0010, 0x0010, "PN", "").Data());
}

TEST_F(Encoder, WritesAnOddLengthAsItStands) {
    root_->InsertNode(0x0010, 0x0010, "DOE^", 4)->length = 3;
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE").Data());
}

TEST_F(Encoder, WritesNothingForAnEmptyDataSet) {
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_TRUE(encoded.bytes.empty());
}

TEST_F(Encoder, WritesOneElementWithoutItsSiblings) {
    PGX_Node* modality = root_->InsertNode(0x0008, 0x0060, "CT", 2);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(pgkit_test::Encode(*modality, kExplicitLittle).bytes,
              StreamBuilder().Element(0x0008, 0x0060, "CS", "CT").Data());
}

TEST_F(Encoder, WritesADataSetThatWasInsertedAsAChildInPlace) {
    PGX_Node* inner = pgAllocateDataSetNode();
    inner->InsertNode(0x0008, 0x0060, "CT", 2);
    root_->InsertNode(inner);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Element(0x0008, 0x0060, "CS", "CT")
                                                 .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                                 .Data());
}

// ---- Group 0002 --------------------------------------------------------------------------------

class MetaGroup : public Encoder {
  protected:
    void SetUp() override {
        root_->InsertNode(0x0002, 0x0010, "1.2.840.10008.1.2.", 18);
        const uint16_t rows = 1;
        root_->InsertNode(0x0028, 0x0010, &rows, 2);
    }

    const std::string uid_ = "1.2.840.10008.1.2.";
};

TEST_F(MetaGroup, IsLeftOutWithoutAMetaMode) {
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder().ElementUS(0x0028, 0x0010, 1).Data());
}

TEST_F(MetaGroup, IsExplicitLittleEndianWhateverTheRestIs) {
    for (const auto& [mode, vr, order] :
         {std::tuple(kImplicitLittle, VrMode::Implicit, Order::Little),
          std::tuple(kExplicitLittle, VrMode::Explicit, Order::Little),
          std::tuple(kExplicitBig, VrMode::Explicit, Order::Big),
          std::tuple(0u, VrMode::Implicit, Order::Big)}) {
        EXPECT_EQ(Encode(mode | PG_META).bytes, StreamBuilder(vr, order)
                                                    .MetaElement(0x0010, "UI", uid_)
                                                    .ElementUS(0x0028, 0x0010, 1)
                                                    .Data());
    }
}

TEST_F(MetaGroup, IsImplicitWithItsImplicitBitEvenBesideTheExplicitOne) {
    const Bytes meta = StreamBuilder(VrMode::Implicit).Element(0x0002, 0x0010, "UI", uid_).Data();
    const Bytes expected = StreamBuilder(VrMode::Explicit, Order::Big)
                               .Append(meta)
                               .ElementUS(0x0028, 0x0010, 1)
                               .Data();
    EXPECT_EQ(Encode(kExplicitBig | PG_META_IMPLICIT_VR).bytes, expected);
    EXPECT_EQ(Encode(kExplicitBig | PG_META_IMPLICIT_VR | PG_META).bytes, expected);
}

// ---- Positions ---------------------------------------------------------------------------------

TEST_F(Encoder, SetsPositionsThatAreZeroToThoseOfTheOutput) {
    PGX_Node* sequence = root_->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* item = AddItem(*sequence);
    PGX_Node* inner = item->InsertNode(0x0020, 0x0013, "1 ", 2);
    PGX_Node* name = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    PGX_Node* read = root_->InsertNode(0x0010, 0x0020, "1", 1);
    read->fileOffset = 1234;

    const Stream output = OpenStream(directory_.Path("output"), "wb");
    std::fwrite("0123456789", 1, 10, output.get());
    ASSERT_EQ(root_->WriteNodeEx(output.get(), kExplicitLittle), 0u);

    EXPECT_EQ(root_->fileOffset, 10u);
    EXPECT_EQ(sequence->fileOffset, 10u);
    EXPECT_EQ(item->fileOffset, 10u + 12 + 8);
    EXPECT_EQ(inner->fileOffset, 10u + 12 + 8);
    EXPECT_EQ(name->fileOffset, 10u + 12 + 8 + 10);
    EXPECT_EQ(read->fileOffset, 1234u);
}

TEST_F(Encoder, KeepsThePositionsOfAnEarlierWrite) {
    PGX_Node* name = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    PGX_Node* identifier = root_->InsertNode(0x0010, 0x0020, "1", 1);
    Encode(kExplicitLittle);
    EXPECT_EQ(name->fileOffset, 0u);
    EXPECT_EQ(identifier->fileOffset, 16u);
    root_->RemoveNode(name);
    Encode(kExplicitLittle);
    EXPECT_EQ(identifier->fileOffset, 16u);
}

TEST_F(Encoder, AppendsToWhatTheStreamHolds) {
    root_->InsertNode(0x0008, 0x0060, "CT", 2);
    const std::string path = directory_.Path("output");
    {
        const Stream output = OpenStream(path, "wb");
        std::fwrite("ab", 1, 2, output.get());
        root_->WriteNode(output.get(), kExplicitLittle);
        std::fwrite("cd", 1, 2, output.get());
    }
    EXPECT_EQ(ReadFile(path),
              StreamBuilder().Text("ab").Element(0x0008, 0x0060, "CS", "CT").Text("cd").Data());
}

// ---- Outputs that fail -------------------------------------------------------------------------

TEST_F(Encoder, ReportsAStreamThatTakesNothing) {
    root_->InsertNode(0x0008, 0x0060, "CT", 2);
    const Stream readOnly = OpenStream(directory_.Write("file", "abc"), "rb");
    EXPECT_EQ(root_->WriteNodeEx(readOnly.get(), kExplicitLittle), kWriteFailed);
    EXPECT_EQ(root_->WriteNodeEx(nullptr, kExplicitLittle), kWriteFailed);
}

TEST_F(Encoder, LeavesNothingInItsOwnBuffer) {
    root_->InsertNode(0x0008, 0x0060, "CT", 2);
    const std::string path = directory_.Path("output");
    const Stream output = OpenStream(path, "wb");
    root_->WriteNodeEx(output.get(), kExplicitLittle);
    EXPECT_EQ(ReadFile(path).size(), 10u);
}

}  // namespace
