// What a directory record takes of a sequence, beyond what files can hold: trees that hosts build,
// depths and sizes.
#include "dicomdir/record_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::CopyForRecord;
using pgkit::NodeTree;

// A concept name sequence of one item, as a host would build it.
class RecordCopy : public testing::Test {
  protected:
    RecordCopy()
        : sequence_(new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0040, 0xA043, VR_SQ, 0)),
          item_(pgAllocateDataSetNode()) {
        sequence_->SeqAddTail(item_);
        item_->InsertNode(0x0008, 0x0100, "A1", 2);
    }

    PGX_Node* Add(uint16_t group, uint16_t element, uint8_t vr, const std::string& value) {
        auto* node = new PGX_Node(NT_DataElement, ET_LittleEndian, group, element, vr, 0);
        node->SetValue(value.data(), static_cast<uint32_t>(value.size()));
        return item_->InsertNode(node), node;
    }

    std::string Copied() {
        NodeTree copy = CopyForRecord(sequence_.get());
        for (PGX_Node* node = copy.get(); node != nullptr; node = node->first)
            if (node->valueRep == VR_SQ) node->length = 0;
        return Describe(copy.get());
    }

    NodeTree sequence_;
    PGX_Node* item_;
};

constexpr char kCodeAlone[] = "(0040,A043)SQ:0{[(0008,0100)SH:2]}";

size_t Depth(const PGX_Node* sequence) {
    size_t depth = 0;
    while (sequence != nullptr) {
        ++depth;
        const PGX_Node* const item = sequence->first;
        sequence = item == nullptr ? nullptr : item->first;
        while (sequence != nullptr && sequence->valueRep != VR_SQ)
            sequence = sequence->next;
    }
    return depth;
}

NodeTree SequencesIn(size_t depth) {
    NodeTree top;
    for (size_t i = 0; i < depth; ++i) {
        NodeTree sequence(new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0040, 0xA730, VR_SQ, 0));
        PGX_Node* const item = pgAllocateDataSetNode();
        sequence->SeqAddTail(item);
        item->InsertNode(0x0008, 0x0104, "in", 2);
        if (top != nullptr) item->InsertNode(top.release());
        top = std::move(sequence);
    }
    return top;
}

TEST_F(RecordCopy, IsTiedToNothing) {
    const NodeTree copy = CopyForRecord(sequence_.get());
    ASSERT_NE(copy, nullptr);
    sequence_.reset();
    EXPECT_EQ(TextOf(Child(copy->first, 0x0008, 0x0100)), "A1");
    EXPECT_EQ(CopyForRecord(nullptr), nullptr);
}

TEST_F(RecordCopy, HasNoVrWithoutAName) {
    for (const uint8_t vr : {uint8_t{29}, uint8_t{40}, uint8_t{254}}) {
        PGX_Node* const node = Add(0x0008, 0x0104, vr, "name");
        EXPECT_EQ(Copied(), kCodeAlone) << int{vr};
        item_->RemoveNode(node);
    }
}

// Lengths of 16 bits end at 65,534.
TEST_F(RecordCopy, HasValuesThatFitTheirLengthField) {
    PGX_Node* const node = Add(0x0008, 0x0104, VR_LO, std::string(65534, 'x'));
    EXPECT_EQ(Copied(), "(0040,A043)SQ:0{[(0008,0100)SH:2 (0008,0104)LO:65534]}");
    node->SetValue(std::string(65536, 'x').data(), 65536);
    EXPECT_EQ(Copied(), kCodeAlone);
    node->valueRep = VR_UT;
    EXPECT_EQ(Copied(), "(0040,A043)SQ:0{[(0008,0100)SH:2 (0008,0104)UT:65536]}");
}

TEST_F(RecordCopy, HasNoValueThatIsTooLarge) {
    Add(0x0008, 0x0104, VR_UT, std::string(pgkit::kMaxRecordCopy + 2, 'x'));
    EXPECT_EQ(Copied(), kCodeAlone);
}

TEST_F(RecordCopy, IsNoneWhenItWouldBeTooLargeAsAWhole) {
    Add(0x0008, 0x0104, VR_UT, std::string(pgkit::kMaxRecordCopy / 2, 'x'));
    EXPECT_NE(CopyForRecord(sequence_.get()), nullptr);
    Add(0x0008, 0x0105, VR_UT, std::string(pgkit::kMaxRecordCopy / 2, 'x'));
    EXPECT_EQ(CopyForRecord(sequence_.get()), nullptr);
}

TEST_F(RecordCopy, NestsSoDeepAndNoDeeper) {
    for (const size_t depth : {63u, 64u, 65u, 2047u, 2048u, 100000u}) {
        const NodeTree deep = SequencesIn(depth);
        const NodeTree copy = CopyForRecord(deep.get());
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(Depth(copy.get()), std::min(depth, pgkit::kMaxRecordNesting));
    }
}

TEST_F(RecordCopy, HasOnlyItemsInSequencesAndElementsInItems) {
    sequence_->first->next =
        new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0008, 0x0104, VR_LO, 0);
    item_->InsertNode(pgAllocateDataSetNode());
    EXPECT_EQ(Copied(), kCodeAlone);
}

TEST_F(RecordCopy, HasWhatIsSoundOfANestedSequence) {
    NodeTree nested = SequencesIn(1);
    nested->first->first->group = 0xFFFE;
    nested->SeqAddTail(pgAllocateDataSetNode());
    item_->InsertNode(nested.release());
    // The item that had nothing from the start stays; the other one has nothing left to tell.
    EXPECT_EQ(Describe(CopyForRecord(sequence_.get()).get()),
              "(0040,A043)SQ:0{[(0008,0100)SH:2 (0040,A730)SQ:0{[]}]}");
}

TEST_F(RecordCopy, TakesTheValuesOfContentFiles) {
    const TempDir files;
    auto* node = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0008, 0x0104, VR_UT, 0);
    item_->InsertNode(node);
    const std::string path = files.Write("text", Bytes{'o', 'd', 'd'});
    ASSERT_EQ(node->SetFileContentValue(path.c_str()), 1);
    EXPECT_EQ(Copied(), "(0040,A043)SQ:0{[(0008,0100)SH:2 (0008,0104)UT:4]}");
    files.Write("text", Bytes{'o'});
    EXPECT_EQ(Copied(), kCodeAlone);
}

TEST_F(RecordCopy, HasNumbersInHostOrder) {
    auto* node = new PGX_Node(NT_DataElement, ET_BigEndian, 0x0028, 0x0010, VR_US, 0);
    const uint16_t number = 0x0102;
    node->SetValue(&number, sizeof number);
    item_->InsertNode(node);
    // A copy of a copy, as in a hierarchy that was browsed and is written.
    const NodeTree once = CopyForRecord(sequence_.get());
    const NodeTree twice = CopyForRecord(once.get());
    EXPECT_EQ(Child(twice->first, 0x0028, 0x0010)->GetUSValue(), 0x0102);
    EXPECT_EQ(std::memcmp(Child(twice->first, 0x0028, 0x0010)->value, &number, 2), 0);
}

}  // namespace
