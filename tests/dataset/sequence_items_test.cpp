#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "support/captured.h"
#include "support/nodes.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::Printed;
using pgkit_test::Tree;

TEST(SequenceItems, HeadAndTailAreAdded) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    EXPECT_EQ(sequence->SeqGetHead(), nullptr);
    PGX_Node* middle = NewDataSet().release();
    PGX_Node* first = NewDataSet().release();
    PGX_Node* last = NewDataSet().release();
    sequence->SeqAddTail(middle);
    sequence->SeqAddHead(first);
    sequence->SeqAddTail(last);
    EXPECT_EQ(sequence->SeqGetHead(), first);
    EXPECT_EQ(first->next, middle);
    EXPECT_EQ(middle->next, last);
    EXPECT_EQ(last->next, nullptr);
}

TEST(SequenceItems, TailIsCutOffFromWhatFollowedIt) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    const Tree follower = NewDataSet();
    sequence->SeqAddTail(NewDataSet().release());
    PGX_Node* tail = NewDataSet().release();
    tail->next = follower.get();
    sequence->SeqAddTail(tail);
    EXPECT_EQ(tail->next, nullptr);
}

TEST(SequenceItems, FirstItemOfAnEmptySequenceBringsItsFollowersAlong) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    PGX_Node* item = NewDataSet().release();
    item->next = NewDataSet().release();
    PGX_Node* follower = item->next;
    sequence->SeqAddTail(item);
    EXPECT_EQ(sequence->SeqGetHead(), item);
    EXPECT_EQ(item->next, follower);
}

TEST(SequenceItems, VrOfTheElementIsNotTested) {
    const Tree element = NewElement(0x0009, 0x1001, VR_UN);
    PGX_Node* item = NewDataSet().release();
    element->SeqAddTail(item);
    EXPECT_EQ(element->SeqGetHead(), item);
}

TEST(SequenceItems, DataSetHasNoHead) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    const Printed printed = CapturePrinted([&] { EXPECT_EQ(dataSet->SeqGetHead(), nullptr); });
    EXPECT_EQ(printed.out, "pgSeqGetHead: can only deal with NT_DataElement type\n");
    EXPECT_EQ(printed.err, "");
}

TEST(SequenceItems, ElementIsNoItem) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    const Tree element = NewElement(0x0010, 0x0010, VR_PN);
    const Printed head = CapturePrinted([&] { sequence->SeqAddHead(element.get()); });
    const Printed tail = CapturePrinted([&] { sequence->SeqAddTail(element.get()); });
    EXPECT_EQ(head.out, "pgSeqAddHead: can only insert in a NT_DataSet type\n");
    EXPECT_EQ(tail.out, "pgSeqAddTail: can only insert in a NT_DataSet type\n");
    EXPECT_EQ(head.err + tail.err, "");
    EXPECT_EQ(sequence->first, nullptr);
    EXPECT_EQ(element->next, nullptr);
}

TEST(SequenceItems, NoItemIsIgnored) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    const Printed printed = CapturePrinted([&] {
        sequence->SeqAddHead(nullptr);
        sequence->SeqAddTail(nullptr);
    });
    EXPECT_EQ(printed.out + printed.err, "");
    EXPECT_EQ(sequence->first, nullptr);
}

}  // namespace
