#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "pgkit/accessors.h"
#include "support/host_order.h"
#include "support/nodes.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::OpenedFile;
using pgkit_test::RawText;
using pgkit_test::ReadFile;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::Tree;

TEST(NodeAccessors, ReadEveryField) {
    PGX_Node child;
    PGX_Node sibling;
    PGX_Node node(NT_DataElement, ET_BigEndian, 0x1234, 0x5678, VR_UT, 0xFFFFFFFE);
    node.first = &child;
    node.next = &sibling;
    EXPECT_EQ(pgKitGetNodeType(&node), 1u);
    EXPECT_EQ(pgKitGetValueRep(&node), uint32_t{VR_UT});
    EXPECT_EQ(pgKitGetGroup(&node), 0x1234);
    EXPECT_EQ(pgKitGetElement(&node), 0x5678);
    EXPECT_EQ(pgKitGetLength(&node), 0xFFFFFFFE);
    EXPECT_EQ(pgKitGetFirst(&node), &child);
    EXPECT_EQ(pgKitGetNext(&node), &sibling);
}

TEST(NodeAccessors, SetOneFieldAndNoOther) {
    PGX_Node child;
    PGX_Node sibling;
    PGX_Node node(NT_DataSet, ET_BigEndian, 0, 0, 0, 0);
    pgKitSetNodeType(&node, 1);
    pgKitSetValueRep(&node, 0x1FF);
    pgKitSetGroup(&node, 0xFFFF);
    pgKitSetElement(&node, 0xFFFE);
    pgKitSetLength(&node, 0xFFFFFFFF);
    pgKitSetFirst(&node, &child);
    pgKitSetNext(&node, &sibling);
    EXPECT_EQ(node.nodeType, NT_DataElement);
    EXPECT_EQ(node.valueRep, 0x1FFu);
    EXPECT_EQ(node.group, 0xFFFF);
    EXPECT_EQ(node.element, 0xFFFE);
    EXPECT_EQ(node.length, 0xFFFFFFFFu);
    EXPECT_EQ(node.first, &child);
    EXPECT_EQ(node.next, &sibling);
    EXPECT_EQ(node.value, nullptr);
    EXPECT_EQ(node.endian, ET_BigEndian);
}

TEST(NodeAccessors, AllocateNodes) {
    const Tree dataSet(pgKitAllocateDataSetNode());
    EXPECT_EQ(dataSet->nodeType, NT_DataSet);
    EXPECT_EQ(dataSet->valueRep, 0u);

    PGX_Node* empty = pgKitAllocEmptyNode();
    EXPECT_EQ(empty->nodeType, NT_DataSet);
    EXPECT_EQ(empty->valueRep, uint32_t{VR_Unknown});
    pgKitFreeNode(empty);

    PGX_Node* node = pgKitAllocNode(1, 0x0010, 0x0020, VR_LO, 12);
    EXPECT_EQ(node->nodeType, NT_DataElement);
    EXPECT_EQ(node->endian, ET_LittleEndian);
    EXPECT_EQ(node->group, 0x0010);
    EXPECT_EQ(node->element, 0x0020);
    EXPECT_EQ(node->valueRep, uint32_t{VR_LO});
    EXPECT_EQ(node->length, 12u);
    EXPECT_EQ(node->value, nullptr);
    pgKitFreeNodeHierarchy(node);
}

TEST(NodeAccessors, FreeingOneNodeLeavesItsChildren) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree child = NewElement(0x0010, 0x0020, VR_LO, "id");
    PGX_Node* parent = pgKitAllocEmptyNode();
    pgKitSetFirst(parent, child.get());
    pgKitFreeNode(parent);
    EXPECT_EQ(child->GetUSValue(), 'i' + 'd' * 256);
}

TEST(NodeAccessors, OpenSearchAndCloseAFile) {
    const TempDir directory;
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "CT");
    PGX_Node* root = pgKitOpenDataSetFile(directory.Write("file", stream.Data()).c_str(), 64);
    ASSERT_NE(root, nullptr);
    PGX_Node* modality = pgKitFindNodeWithGroupElement(root, 0x0008, 0x0060);
    ASSERT_NE(modality, nullptr);
    EXPECT_EQ(pgKitFindNodeWithElementId(root, pgFindElementIdType(0x0008, 0x0060)), modality);
    EXPECT_EQ(pgKitFindNodeWithGroupElement(root, 0x0008, 0x0061), nullptr);
    pgKitCloseDataSet(root);
}

TEST(NodeAccessors, InsertAndRemoveElements) {
    const Tree dataSet = NewDataSet();
    PGX_Node* name =
        pgKitInsertNodeWithElementId(dataSet.get(), pgGetTagElementId("PatientsName"), "DOE", 3);
    PGX_Node* id = pgKitInsertNodeWithGroupElement(dataSet.get(), 0x0010, 0x0020, "4711", 4);
    EXPECT_EQ(dataSet->first, name);
    EXPECT_EQ(name->next, id);
    EXPECT_EQ(name->group, 0x0010);
    EXPECT_EQ(name->element, 0x0010);
    EXPECT_EQ(id->valueRep, uint32_t{VR_LO});
    pgKitRemoveNode(dataSet.get(), name);
    EXPECT_EQ(dataSet->first, id);
    EXPECT_EQ(id->next, nullptr);
}

TEST(NodeAccessors, AddItemsAtBothEndsOfASequence) {
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    PGX_Node* last = pgKitAllocateDataSetNode();
    PGX_Node* first = pgKitAllocateDataSetNode();
    pgKitSeqAddTail(sequence.get(), last);
    pgKitSeqAddHead(sequence.get(), first);
    EXPECT_EQ(pgKitSeqGetHead(sequence.get()), first);
    EXPECT_EQ(first->next, last);
}

}  // namespace
