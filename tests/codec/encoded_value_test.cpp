#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "codec/encoded.h"
#include "support/host_order.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

class EncodedValue : public testing::Test {
  protected:
    Encoded Encode(uint32_t mode) { return pgkit_test::Encode(*root_, mode); }

    DataSet root_{pgAllocateDataSetNode()};
    TempDir directory_;
};

// ---- Values ------------------------------------------------------------------------------------

class Swapping : public EncodedValue, public testing::WithParamInterface<std::pair<int, size_t>> {};

TEST_P(Swapping, ReversesTheUnitsOfTheVrWhenTheByteOrdersDiffer) {
    const auto [vr, unit] = GetParam();
    const std::string value = "abcdefghijklmnop";
    const std::string swapped = WithUnitsReversed(value, unit);
    PGX_Node* node = NewStoredElement(*root_, 0x0009, 0x1001, static_cast<uint32_t>(vr), value);
    const auto valueOf = [](const Bytes& bytes) {
        return std::string(bytes.end() - 16, bytes.end());
    };
    EXPECT_EQ(valueOf(Encode(PG_LITTLE_ENDIAN).bytes), value);
    EXPECT_EQ(valueOf(Encode(PG_BIG_ENDIAN).bytes), swapped);
    node->endian = ET_BigEndian;
    EXPECT_EQ(valueOf(Encode(PG_BIG_ENDIAN).bytes), value);
    EXPECT_EQ(valueOf(Encode(PG_LITTLE_ENDIAN).bytes), swapped);
}

INSTANTIATE_TEST_SUITE_P(
    Vrs, Swapping,
    testing::Values(std::pair(VR_UL, 4), std::pair(VR_FL, 4), std::pair(VR_SL, 4),
                    std::pair(VR_OF, 4), std::pair(VR_US, 2), std::pair(VR_AT, 2),
                    std::pair(VR_SS, 2), std::pair(VR_USSS, 2), std::pair(VR_OW, 2),
                    std::pair(VR_OWOB, 2), std::pair(VR_FD, 8), std::pair(VR_OB, 1),
                    std::pair(VR_UN, 1), std::pair(VR_LO, 1), std::pair(VR_UI, 1),
                    std::pair(VR_UT, 1), std::pair(VR_Unknown, 1)));

TEST_F(EncodedValue, IsCopiedFromTheFileItWasReadFrom) {
    const Stream source = OpenStream(directory_.Write("source", "..abcdefgh.."), "rb");
    PGX_Node* node = root_->InsertNode(0x0028, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 2, 8);
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0028, 0x0010, "US", "abcdefgh").Data());
    EXPECT_EQ(Encode(kExplicitBig).bytes, StreamBuilder(VrMode::Explicit, Order::Big)
                                              .Element(0x0028, 0x0010, "US", "badcfehg")
                                              .Data());
    EXPECT_EQ(node->fileOffset, 2u);
}

TEST_F(EncodedValue, IsCompletedWhereItsFileEndsOneByteEarly) {
    const Stream source = OpenStream(directory_.Write("source", "abcdefg"), "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 2, 6);
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes,
              StreamBuilder().Element(0x0010, 0x0010, "PN", std::string_view("cdefg\0", 6)).Data());
}

TEST_F(EncodedValue, FailsWhereItsFileEndsEarlier) {
    const Stream source = OpenStream(directory_.Write("source", "abcdefg"), "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 2, 7);
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, kReadFailed);
    EXPECT_EQ(encoded.bytes, StreamBuilder().Header(0x0010, 0x0010, "PN", 7).Data());
}

TEST_F(EncodedValue, FailsBeyondWhatAPositionCanSay) {
    const Stream source = OpenStream(directory_.Write("source", "abcdefg"), "rb");
    SetSource(*root_->InsertNode(0x0010, 0x0010, nullptr, 0), source.get(), 0xFFFFFFFF, 2);
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

TEST_F(EncodedValue, OfUndefinedLengthFailsOutsideSequences) {
    const Stream source = OpenStream(directory_.Write("source", "abcdefg"), "rb");
    SetSource(*NewElement(*root_, 0x0009, 0x1001, VR_UN, ""), source.get(), 1, 0xFFFFFFFF);
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

TEST_F(EncodedValue, IsTakenFromItsContentFile) {
    const std::string path = directory_.Write("content", "abcde");
    PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_OW, "");
    ASSERT_EQ(node->SetFileContentValue(path.c_str()), 1);
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0009, 0x1001, "OW", std::string_view("abcde\0", 6)).Data());
    EXPECT_EQ(Encode(kExplicitBig).bytes,
              StreamBuilder(VrMode::Explicit, Order::Big)
                  .Element(0x0009, 0x1001, "OW", std::string_view("badc\0e", 6))
                  .Data());
}

TEST_F(EncodedValue, FailsOnAContentFileThatHasBecomeShorter) {
    const std::string path = directory_.Write("content", "abcdef");
    NewElement(*root_, 0x0009, 0x1001, VR_OB, "")->SetFileContentValue(path.c_str());
    directory_.Write("content", "abcd");
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

TEST_F(EncodedValue, FailsOnAContentFileThatCannotBeOpened) {
    const std::string path = directory_.Write("content", "abcdef");
    NewElement(*root_, 0x0009, 0x1001, VR_OB, "")->SetFileContentValue(path.c_str());
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

TEST_F(EncodedValue, ThatIsNowhereLeavesItsHeaderAlone) {
    const std::string path = directory_.Write("content", "abcdef");
    NewElement(*root_, 0x0009, 0x1001, VR_OB, "")->SetFileContentValue(path.c_str());
    std::filesystem::remove(path);
    root_->InsertNode(0x0010, 0x0010, nullptr, 0)->length = 4;
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(
        encoded.bytes,
        StreamBuilder().Header(0x0009, 0x1001, "OB", 6).Header(0x0010, 0x0010, "PN", 4).Data());
}

TEST_F(EncodedValue, InMemoryGoesBeforeThatOfTheFile) {
    const Stream source = OpenStream(directory_.Write("source", "abcdefg"), "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    node->file = source.get();
    node->contentFile = nullptr;
    EXPECT_EQ(Encode(kExplicitLittle).bytes,
              StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
}

// ---- Encapsulated Pixel Data -------------------------------------------------------------------

class Encapsulated : public EncodedValue {
  protected:
    void SetUp() override { pixelData_ = root_->InsertEncodedPixelDataNode(2); }

    PGX_Node* pixelData_ = nullptr;
};

TEST_F(Encapsulated, IsExplicitInEveryModeBehindAnEmptyOffsetTable) {
    pixelData_->SetEncodedPixelData(0, 4, "abcd");
    pixelData_->SetEncodedPixelData(1, 2, "ef");
    for (const auto& [mode, order] :
         {std::pair(kImplicitLittle, Order::Little), std::pair(kExplicitLittle, Order::Little),
          std::pair(kExplicitBig, Order::Big), std::pair(0u, Order::Big)}) {
        EXPECT_EQ(Encode(mode).bytes, StreamBuilder(VrMode::Explicit, order)
                                          .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                          .Item(0)
                                          .Item(4)
                                          .Text("abcd")
                                          .Item(2)
                                          .Text("ef")
                                          .EndSequence()
                                          .Data());
    }
}

TEST_F(Encapsulated, WritesAnItemForAnEmptyFragment) {
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                                 .Item(0)
                                                 .Item(0)
                                                 .Item(0)
                                                 .EndSequence()
                                                 .Data());
}

TEST_F(Encapsulated, CopiesFragmentsThatAreNotLoaded) {
    const Stream source = OpenStream(directory_.Write("source", "..abcd..efgh"), "rb");
    pixelData_->file = source.get();
    pixelData_->fragments[0] = {2, 4, nullptr};
    pixelData_->fragments[1] = {8, 4, nullptr};
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                                 .Item(0)
                                                 .Item(4)
                                                 .Text("abcd")
                                                 .Item(4)
                                                 .Text("efgh")
                                                 .EndSequence()
                                                 .Data());
}

TEST_F(Encapsulated, FailsOnAFragmentThatIsNotThereInFull) {
    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    pixelData_->file = source.get();
    pixelData_->fragments[0] = {0, 4, nullptr};
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, kReadFailed);
    EXPECT_EQ(encoded.bytes,
              StreamBuilder().Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).Item(4).Data());
}

TEST_F(Encapsulated, FailsOnAFragmentBeyondWhatAPositionCanSay) {
    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    pixelData_->file = source.get();
    pixelData_->fragments[0] = {0xFFFFFFFF, 2, nullptr};
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

TEST_F(Encapsulated, FailsOnAFragmentWithoutSource) {
    pixelData_->fragments[1].length = 4;
    EXPECT_EQ(Encode(kExplicitLittle).result, kNoSource);
}

class Unindexed : public Encapsulated {
  protected:
    // As the parser leaves Pixel Data whose fragments it did not index.
    void SetUp() override {
        pixelData_ = root_->InsertEncodedPixelDataNode(0);
        pixelData_->fragments = reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    }

    void SetSource(const StreamBuilder& bytes) {
        source_ = OpenStream(directory_.Write("source", bytes.Data()), "rb");
        pixelData_->file = source_.get();
        pixelData_->fileOffset = 2;
    }

    Stream source_;
};

TEST_F(Unindexed, FragmentsAreCopiedFromTheFile) {
    SetSource(StreamBuilder()
                  .U16(0)
                  .Item(4)
                  .U32(0)
                  .Item(4)
                  .Text("abcd")
                  .Item(0)
                  .Item(2)
                  .Text("ef")
                  .EndSequence());
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes, StreamBuilder()
                                 .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                 .Item(4)
                                 .U32(0)
                                 .Item(4)
                                 .Text("abcd")
                                 .Item(0)
                                 .Item(2)
                                 .Text("ef")
                                 .EndSequence()
                                 .Data());
}

// The offsets of the table stayed behind, and frames of several fragments could no longer be told
// apart. Items keep their sizes, odd ones too, so that the offsets stay right.
TEST_F(Unindexed, FragmentsKeepTheirOffsetTableAndOddSizes) {
    const StreamBuilder items = StreamBuilder()
                                    .Item(8)
                                    .U32(0)
                                    .U32(21)
                                    .Item(3)
                                    .Text("abc")
                                    .Item(2)
                                    .Text("de")
                                    .Item(2)
                                    .Text("fg")
                                    .EndSequence();
    SetSource(StreamBuilder().U16(0).Append(items.Data()));
    const Encoded encoded = Encode(kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes,
              StreamBuilder().Header(0x7FE0, 0x0010, "OB", kUndefined).Append(items.Data()).Data());
}

TEST_F(Unindexed, FragmentsEndWithTheirFile) {
    SetSource(StreamBuilder().U16(0).Item(0).Item(4).Text("abcd"));
    EXPECT_EQ(Encode(kExplicitLittle).bytes, StreamBuilder()
                                                 .Header(0x7FE0, 0x0010, "OB", kUndefined)
                                                 .Item(0)
                                                 .Item(4)
                                                 .Text("abcd")
                                                 .EndSequence()
                                                 .Data());
}

TEST_F(Unindexed, FragmentsThatAreCutShortFail) {
    SetSource(StreamBuilder().U16(0).Item(0).Item(4).Text("abc"));
    EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
}

// A file that ends before the first item could not be saved at all.
TEST_F(Unindexed, PixelDataWithoutAnyItemAreWrittenEmpty) {
    const Bytes empty =
        StreamBuilder().Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).EndSequence().Data();
    for (const StreamBuilder& nothing :
         {StreamBuilder(), StreamBuilder().Text("abc"), StreamBuilder().EndSequence(),
          StreamBuilder().Item(8).U32(0)}) {
        SetSource(StreamBuilder().U16(0).Append(nothing.Data()));
        const Encoded encoded = Encode(kExplicitLittle);
        EXPECT_EQ(encoded.result, 0u);
        EXPECT_EQ(encoded.bytes, empty);
    }
}

TEST_F(Unindexed, PixelDataThatDoNotBeginWithAnItemFail) {
    for (const StreamBuilder& other :
         {StreamBuilder().Text("abcdefgh"), StreamBuilder().U32(0xFFFFFFFF).Text("abcdefgh")}) {
        SetSource(StreamBuilder().U16(0).Append(other.Data()));
        EXPECT_EQ(Encode(kExplicitLittle).result, kReadFailed);
    }
}

TEST_F(Unindexed, FragmentsWithoutFileFail) {
    EXPECT_EQ(Encode(kExplicitLittle).result, kNoSource);
}

}  // namespace
