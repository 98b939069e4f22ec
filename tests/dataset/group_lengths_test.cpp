#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "support/captured.h"
#include "support/nodes.h"
#include "support/tree.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::Printed;
using pgkit_test::Tags;
using pgkit_test::Tree;

// Elements as they are read from a file: in the order given, whatever their tags.
void Append(PGX_Node& dataSet, uint16_t group, uint16_t element, ValueRepresentation vr,
            uint32_t length) {
    PGX_Node** link = &dataSet.first;
    while (*link != nullptr)
        link = &(*link)->next;
    *link = NewElement(group, element, vr, std::string(length, 'x')).release();
}

uint32_t GroupLength(PGX_Node& dataSet, uint16_t group) {
    PGX_Node* node = dataSet.FindNode(group, 0);
    EXPECT_NE(node, nullptr) << group;
    return node == nullptr ? 0 : node->GetULValue();
}

// The length that a group of one such element is given.
uint32_t Counted(ValueRepresentation vr, uint32_t length, uint32_t mode, uint16_t group = 0x0009) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, group, 0x1001, vr, length);
    EXPECT_EQ(dataSet->AddGroupLengths(mode), 1);
    return GroupLength(*dataSet, group);
}

TEST(AddGroupLengths, GivesEveryGroupALength) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    Append(*dataSet, 0x0010, 0x0010, VR_PN, 4);
    Append(*dataSet, 0x0010, 0x0020, VR_LO, 6);
    EXPECT_EQ(dataSet->AddGroupLengths(PG_EXPLICIT_VR), 1);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0000 0008,0060 0010,0000 0010,0010 0010,0020");
    EXPECT_EQ(GroupLength(*dataSet, 0x0008), 10u);
    EXPECT_EQ(GroupLength(*dataSet, 0x0010), 26u);
}

TEST(AddGroupLengths, MakesAnElementWithAFourByteNumber) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    dataSet->AddGroupLengths(0);
    const PGX_Node& groupLength = *dataSet->first;
    EXPECT_EQ(groupLength.nodeType, NT_DataElement);
    EXPECT_EQ(groupLength.valueRep, uint32_t{VR_UL});
    EXPECT_EQ(groupLength.length, 4u);
    EXPECT_NE(groupLength.value, nullptr);
}

TEST(AddGroupLengths, SetsExistingOnesWithoutCountingThem) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0000, VR_UL, 4);
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
    EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0000 0008,0060");
    EXPECT_EQ(GroupLength(*dataSet, 0x0008), 10u);
}

TEST(AddGroupLengths, LoneGroupLengthIsZero) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0000, VR_UL, 4);
    EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
    EXPECT_EQ(GroupLength(*dataSet, 0x0008), 0u);
}

TEST(AddGroupLengths, CountsHeadersByTheirForm) {
    EXPECT_EQ(Counted(VR_OB, 10, 0), 18u);
    EXPECT_EQ(Counted(VR_OB, 10, PG_EXPLICIT_VR), 22u);
    EXPECT_EQ(Counted(VR_US, 2, PG_EXPLICIT_VR), 10u);
    for (const auto vr : {VR_OB, VR_OW, VR_OWOB, VR_OF, VR_SQ, VR_UN, VR_UT, VR_Unknown}) {
        EXPECT_EQ(Counted(vr, 0, PG_EXPLICIT_VR), 12u) << vr;
        EXPECT_EQ(Counted(vr, 0, PG_IMPLICIT_VR), 8u) << vr;
    }
    for (const auto vr : {VR_UL, VR_UI, VR_LO, VR_FD, VR_USSS, VR_LT}) {
        EXPECT_EQ(Counted(vr, 0, PG_EXPLICIT_VR), 8u) << vr;
    }
}

TEST(AddGroupLengths, MetaGroupIsExplicitWithMetaInformation) {
    EXPECT_EQ(Counted(VR_OB, 2, PG_META, 0x0002), 14u);
    EXPECT_EQ(Counted(VR_OB, 2, PG_META | PG_META_IMPLICIT_VR, 0x0002), 14u);
    EXPECT_EQ(Counted(VR_OB, 2, PG_EXPLICIT_VR, 0x0002), 14u);
    EXPECT_EQ(Counted(VR_OB, 2, PG_META_IMPLICIT_VR, 0x0002), 10u);
    EXPECT_EQ(Counted(VR_OB, 2, PG_META, 0x0009), 10u);
}

TEST(AddGroupLengths, SequencesCountAsTheyStandAndItemsStayUntouched) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x1140, VR_SQ, 0);
    PGX_Node* item = NewDataSet().release();
    item->InsertNode(0x0008, 0x1155, "1.22", 4);
    dataSet->first->SeqAddTail(item);
    dataSet->first->length = 20;
    EXPECT_EQ(dataSet->AddGroupLengths(PG_EXPLICIT_VR | PG_UNDEFINED_LENGTHS), 1);
    EXPECT_EQ(GroupLength(*dataSet, 0x0008), 32u);
    EXPECT_EQ(Tags(item), "0008,1155");
}

TEST(AddGroupLengths, UndefinedLengthsWrapAround) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x7FE0, 0x0010, VR_OB, 0);
    dataSet->first->length = 0xFFFFFFFF;
    EXPECT_EQ(dataSet->AddGroupLengths(PG_EXPLICIT_VR), 1);
    EXPECT_EQ(GroupLength(*dataSet, 0x7FE0), 11u);
}

TEST(AddGroupLengths, BigEndianGroupLengthKeepsItsByteOrder) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0000, VR_UL, 4);
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    dataSet->first->endian = ET_BigEndian;
    dataSet->AddGroupLengths(0);
    EXPECT_EQ(GroupLength(*dataSet, 0x0008), 10u);
    EXPECT_EQ(dataSet->first->value[3], 10);
}

TEST(AddGroupLengths, EmptyDataSetGainsNothing) {
    const Tree dataSet = NewDataSet();
    EXPECT_EQ(dataSet->AddGroupLengths(PG_EXPLICIT_VR), 1);
    EXPECT_EQ(dataSet->UpdateGroupLengths(PG_EXPLICIT_VR), 1);
    EXPECT_EQ(dataSet->first, nullptr);
}

TEST(AddGroupLengths, ElementIsRefused) {
    const Tree element = NewElement(0x0008, 0x1140, VR_SQ);
    element->first = NewDataSet().release();
    const Printed add = CapturePrinted([&] { EXPECT_EQ(element->AddGroupLengths(0), 0); });
    const Printed update = CapturePrinted([&] { EXPECT_EQ(element->UpdateGroupLengths(0), 0); });
    for (const Printed& printed : {add, update}) {
        EXPECT_EQ(printed.out, "AddGroupLengths: can only work with NT_DataSet type\n");
        EXPECT_EQ(printed.err, "");
    }
    EXPECT_EQ(element->first->first, nullptr);
}

TEST(UpdateGroupLengths, SetsTheExistingOnesOnly) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    Append(*dataSet, 0x0010, 0x0000, VR_UL, 4);
    Append(*dataSet, 0x0010, 0x0010, VR_PN, 4);
    EXPECT_EQ(dataSet->UpdateGroupLengths(PG_EXPLICIT_VR), 1);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0060 0010,0000 0010,0010");
    EXPECT_EQ(GroupLength(*dataSet, 0x0010), 12u);
}

TEST(UpdateGroupLengths, GivesTheMetaGroupALength) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0002, 0x0001, VR_OB, 2);
    Append(*dataSet, 0x0002, 0x0010, VR_UI, 18);
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 2);
    EXPECT_EQ(dataSet->UpdateGroupLengths(PG_META), 1);
    EXPECT_EQ(Tags(dataSet.get()), "0002,0000 0002,0001 0002,0010 0008,0060");
    EXPECT_EQ(GroupLength(*dataSet, 0x0002), 14u + 26u);
}

// Putting a group length where tag order wants it made the walk meet the same run again.
TEST(UnorderedGroups, EveryRunGetsALengthOfItsOwn) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0010, 0x0010, VR_PN, 2);
    Append(*dataSet, 0x0008, 0x0060, VR_CS, 4);
    Append(*dataSet, 0x0010, 0x0020, VR_LO, 6);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
        EXPECT_EQ(Tags(dataSet.get()),
                  "0010,0000 0010,0010 0008,0000 0008,0060 0010,0000 0010,0020");
        EXPECT_EQ(dataSet->first->GetULValue(), 10u);
        EXPECT_EQ(GroupLength(*dataSet, 0x0008), 12u);
        EXPECT_EQ(dataSet->first->next->next->next->next->GetULValue(), 14u);
    }
}

TEST(UnorderedGroups, LengthWithinItsGroupIsAnElementLikeTheOthers) {
    const Tree dataSet = NewDataSet();
    Append(*dataSet, 0x0010, 0x0010, VR_PN, 2);
    Append(*dataSet, 0x0010, 0x0000, VR_UL, 4);
    EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0000 0010,0010 0010,0000");
    EXPECT_EQ(GroupLength(*dataSet, 0x0010), 22u);
}

TEST(UnorderedGroups, ManyRunsTakeLinearTime) {
    const Tree dataSet = NewDataSet();
    PGX_Node** link = &dataSet->first;
    for (int i = 0; i < 200'000; ++i) {
        *link = NewElement(i % 2 == 0 ? 0x0010 : 0x0002, 0x0010, VR_LO).release();
        link = &(*link)->next;
    }
    EXPECT_EQ(dataSet->UpdateGroupLengths(0), 1);
    EXPECT_EQ(dataSet->AddGroupLengths(0), 1);
    EXPECT_EQ(GroupLength(*dataSet, 0x0002), 8u);
}

}  // namespace
