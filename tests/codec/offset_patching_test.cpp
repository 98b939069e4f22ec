#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstring>
#include <string>

#include "codec/encoded.h"
#include "support/save_modes.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

uint32_t NumberAt(const Bytes& bytes, size_t position) {
    uint32_t number = 0;
    EXPECT_LE(position + 4, bytes.size());
    for (size_t i = 4; i-- > 0 && position + 4 <= bytes.size();)
        number = number << 8 | bytes[position + i];
    return number;
}

// As WriteNodeOffset writes it: in the order of this machine.
uint32_t HostNumberAt(const Bytes& bytes, size_t position) {
    uint32_t number = 0;
    EXPECT_LE(position + 4, bytes.size());
    if (position + 4 <= bytes.size()) std::memcpy(&number, &bytes[position], 4);
    return number;
}

// A directory: two records, the second of which is below the first.
//
// In explicit VR little endian without File Meta Information:
//
//     0  (0004,1200) first record        52  item of the first record
//    12  (0004,1202) last record         60     (0004,1400) next record
//    24  ... (0004,1220)                 72     (0004,1420) lower-level entity
//                                        84  item of the second record
class Offsets : public testing::Test {
  protected:
    void SetUp() override {
        firstRecord_ = AddOffset(*root_, 0x1200);
        lastRecord_ = AddOffset(*root_, 0x1202);
        root_->InsertNode(0x0004, 0x1212, "\0\0\0\0\0\0\0\0", 8)->valueRep = VR_US;
        sequence_ = root_->InsertNode(0x0004, 0x1220, nullptr, 0);
        upper_ = AddItem(*sequence_);
        next_ = AddOffset(*upper_, 0x1400);
        lower_ = AddOffset(*upper_, 0x1420);
        inner_ = AddItem(*sequence_);
        inner_->InsertNode(0x0004, 0x1430, "IMAGE ", 6);
    }

    static PGX_Node* AddOffset(PGX_Node& dataSet, uint16_t element) {
        const uint32_t none = 0;
        return dataSet.InsertNode(0x0004, element, &none, 4);
    }

    static void Link(PGX_Node* offset, PGX_Node* target) {
        offset->offsetPending = 1;
        offset->offsetTarget = target;
    }

    static constexpr size_t kUpperItem = 12 + 12 + 16 + 12;
    static constexpr size_t kInnerItem = kUpperItem + 8 + 12 + 12;

    DataSet root_{pgAllocateDataSetNode()};
    PGX_Node* firstRecord_ = nullptr;
    PGX_Node* lastRecord_ = nullptr;
    PGX_Node* sequence_ = nullptr;
    PGX_Node* upper_ = nullptr;
    PGX_Node* next_ = nullptr;
    PGX_Node* lower_ = nullptr;
    PGX_Node* inner_ = nullptr;
    TempDir directory_;
    const std::string path_ = directory_.Path("DICOMDIR");
};

TEST_F(Offsets, ArePatchedIntoASavedFileAndTheirElements) {
    Link(firstRecord_, upper_);
    Link(lastRecord_, upper_);
    Link(next_, upper_);
    Link(lower_, inner_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);

    const Bytes file = ReadFile(path_);
    EXPECT_EQ(NumberAt(file, 8), kUpperItem);
    EXPECT_EQ(NumberAt(file, 12 + 8), kUpperItem);
    EXPECT_EQ(NumberAt(file, kUpperItem + 8 + 8), kUpperItem);
    EXPECT_EQ(NumberAt(file, kUpperItem + 8 + 12 + 8), kInnerItem);
    EXPECT_EQ(NumberAt(file, kUpperItem), 0xE000FFFEu);
    EXPECT_EQ(NumberAt(file, kInnerItem), 0xE000FFFEu);
    EXPECT_EQ(firstRecord_->GetULValue(), kUpperItem);
    EXPECT_EQ(lower_->GetULValue(), kInnerItem);
    for (const PGX_Node* offset : {firstRecord_, lastRecord_, next_, lower_}) {
        EXPECT_EQ(offset->offsetPending, 0u);
    }
    EXPECT_EQ(next_->fileOffset, kUpperItem + 8);
}

TEST_F(Offsets, CountFromTheStartOfAPart10File) {
    root_->InsertNode(0x0002, 0x0010, "1.2.840.10008.1.2.1", 19);
    Link(firstRecord_, upper_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kPart10Explicit), 0u);
    constexpr size_t kDataSet = 132 + 12 + 28;
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(NumberAt(file, kDataSet + 8), kDataSet + kUpperItem);
    EXPECT_EQ(NumberAt(file, kDataSet + kUpperItem), 0xE000FFFEu);
}

TEST_F(Offsets, AreRightInImplicitVrToo) {
    Link(firstRecord_, upper_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kImplicitLittle), 0u);
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(NumberAt(file, 8), kUpperItem - 4);
    EXPECT_EQ(NumberAt(file, kUpperItem - 4), 0xE000FFFEu);
}

// A directory that was read keeps the positions it was read from; it is written to others.
TEST_F(Offsets, AreThoseOfTheOutputInATreeThatWasRead) {
    uint32_t position = 1000;
    for (PGX_Node* node : {firstRecord_, lastRecord_, sequence_, upper_, next_, lower_, inner_}) {
        node->fileOffset = position++;
    }
    Link(firstRecord_, upper_);
    Link(lower_, inner_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(NumberAt(file, 8), kUpperItem);
    EXPECT_EQ(NumberAt(file, kUpperItem + 8 + 12 + 8), kInnerItem);
    EXPECT_EQ(firstRecord_->fileOffset, 1000u);
    EXPECT_EQ(upper_->fileOffset, 1003u);
}

TEST_F(Offsets, OfARecordThatHasMovedFollowItInTheNextSave) {
    Link(firstRecord_, upper_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    Link(firstRecord_, upper_);
    root_->InsertNode(0x0004, 0x1130, "DISC", 4);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(NumberAt(ReadFile(path_), 12 + 8), kUpperItem + 12);
}

TEST_F(Offsets, AreRightInEverySaveOfATreeThatWasBuilt) {
    Link(firstRecord_, upper_);
    Link(lower_, inner_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kImplicitLittle), 0u);
    const Bytes implicit = ReadFile(path_);
    EXPECT_EQ(NumberAt(implicit, 8), kUpperItem - 4);
    EXPECT_EQ(NumberAt(implicit, kUpperItem - 4 + 8 + 12 + 8), kInnerItem - 4);
    EXPECT_EQ(NumberAt(implicit, kInnerItem - 4), 0xE000FFFEu);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(NumberAt(ReadFile(path_), 8), kUpperItem);
}

TEST_F(Offsets, ThatTheCallerHasChangedSinceTheLastSaveStay) {
    Link(firstRecord_, upper_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    const uint32_t none = 0;
    firstRecord_->SetValue(&none, 4);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kImplicitLittle), 0u);
    EXPECT_EQ(NumberAt(ReadFile(path_), 8), 0u);
}

TEST_F(Offsets, GetRoomForFourBytes) {
    firstRecord_->SetValue("xx", 2);
    lower_->SetValue(nullptr, 0);
    Link(firstRecord_, upper_);
    Link(lower_, inner_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(NumberAt(file, 8), kUpperItem);
    EXPECT_EQ(NumberAt(file, kUpperItem), 0xE000FFFEu);
    EXPECT_EQ(NumberAt(file, kUpperItem + 8 + 12 + 8), kInnerItem);
}

TEST_F(Offsets, StandBehindALongHeaderWhereTheirVrHasOne) {
    firstRecord_->valueRep = VR_UN;
    Link(firstRecord_, upper_);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(NumberAt(ReadFile(path_), 12), kUpperItem + 4);
}

TEST_F(Offsets, WithoutTargetKeepTheirValueAndAreNoLongerPending) {
    const uint32_t old = 77;
    firstRecord_->SetValue(&old, 4);
    Link(firstRecord_, nullptr);
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(NumberAt(ReadFile(path_), 8), 77u);
    EXPECT_EQ(firstRecord_->offsetPending, 0u);
}

TEST_F(Offsets, OfOtherElementsAreNotConsidered) {
    PGX_Node* other = AddOffset(*root_, 0x1201);
    PGX_Node* otherGroup = root_->InsertNode(0x0009, 0x1200, "abcd", 4);
    Link(other, upper_);
    Link(otherGroup, upper_);
    firstRecord_->offsetTarget = upper_;
    ASSERT_EQ(root_->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u);
    EXPECT_EQ(other->offsetPending, 1u);
    EXPECT_EQ(otherGroup->offsetPending, 1u);
    EXPECT_EQ(other->GetULValue(), 0u);
    EXPECT_EQ(firstRecord_->GetULValue(), 0u);
}

TEST_F(Offsets, ArePatchedByTheOlderSaveToo) {
    Link(firstRecord_, upper_);
    root_->SaveDataSetAs(1, path_.c_str());
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(HostNumberAt(file, 8), kUpperItem - 4);
    EXPECT_EQ(NumberAt(file, kUpperItem - 4), 0x00E0FEFFu);
}

// ---- Patching a stream by itself ---------------------------------------------------------------

class OffsetStream : public Offsets {
  protected:
    void SetUp() override {
        Offsets::SetUp();
        const Stream output = OpenStream(path_, "wb");
        ASSERT_EQ(root_->WriteNodeEx(output.get(), kExplicitLittle), 0u);
        file_ = OpenStream(path_, "r+b");
    }

    Stream file_;
};

TEST_F(OffsetStream, IsPatchedAtThePositionsOfTheNodes) {
    Link(lower_, inner_);
    EXPECT_EQ(root_->WriteNodeOffsetEx(file_.get()), 0u);
    EXPECT_EQ(HostNumberAt(ReadFile(path_), kUpperItem + 8 + 12 + 8), kInnerItem);
    EXPECT_EQ(lower_->offsetPending, 0u);
    EXPECT_EQ(lower_->GetULValue(), kInnerItem);
    EXPECT_EQ(lower_->fileOffset, kUpperItem + 8 + 12);
}

TEST_F(OffsetStream, GetsThePositionThatATargetCarries) {
    inner_->fileOffset = 500;
    Link(lower_, inner_);
    root_->WriteNodeOffset(file_.get());
    EXPECT_EQ(HostNumberAt(ReadFile(path_), kUpperItem + 8 + 12 + 8), 492u);
}

TEST_F(OffsetStream, OfOneElementIsPatchedThroughIt) {
    Link(lower_, inner_);
    Link(next_, inner_);
    EXPECT_EQ(lower_->WriteNodeOffsetEx(file_.get()), 0u);
    EXPECT_EQ(next_->offsetPending, 1u);
    EXPECT_EQ(lower_->offsetPending, 0u);
}

TEST_F(OffsetStream, StopsAtTheFirstFailure) {
    Link(next_, upper_);
    Link(lower_, inner_);
    const Stream readOnly = OpenStream(path_, "rb");
    EXPECT_EQ(root_->WriteNodeOffsetEx(readOnly.get()), kWriteFailed);
    EXPECT_EQ(next_->offsetPending, 1u);
    EXPECT_EQ(lower_->offsetPending, 1u);
    EXPECT_EQ(root_->WriteNodeOffsetEx(nullptr), kWriteFailed);
}

TEST_F(OffsetStream, TakesNoPositionThatDidNotFit) {
    const Bytes before = ReadFile(path_);
    inner_->fileOffset = 0xFFFFFFFF;
    Link(lower_, inner_);
    EXPECT_EQ(root_->WriteNodeOffsetEx(file_.get()), kWriteFailed);
    inner_->fileOffset = kInnerItem + 8;
    lower_->fileOffset = 0xFFFFFFFF;
    EXPECT_EQ(root_->WriteNodeOffsetEx(file_.get()), kWriteFailed);
    EXPECT_EQ(ReadFile(path_), before);
}

}  // namespace
