#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdint>
#include <string>

#include "support/captured.h"
#include "support/cost.h"
#include "support/host_order.h"
#include "support/nodes.h"
#include "support/tree.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::ExpectCheap;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::Printed;
using pgkit_test::Tags;
using pgkit_test::Tree;

constexpr char kNotADataSet[] = "pgInsertNode: can only insert in a NT_DataSet type\n";
constexpr uint32_t kFirstUnknownId = 3782;

uint32_t IdOf(uint16_t group, uint16_t element) { return pgFindElementIdType(group, element); }

TEST(NodeLayout, EnumerationsAndFlagsHaveFixedValues) {
    EXPECT_EQ(NT_DataSet, 0);
    EXPECT_EQ(NT_DataElement, 1);
    EXPECT_EQ(ET_LittleEndian, 0);
    EXPECT_EQ(ET_BigEndian, 1);
    EXPECT_EQ(PG_META, 0x04);
    EXPECT_EQ(PG_EXPLICIT_VR, 0x08);
    EXPECT_EQ(PG_IMPLICIT_VR, 0x10);
    EXPECT_EQ(PG_LITTLE_ENDIAN, 0x20);
    EXPECT_EQ(PG_BIG_ENDIAN, 0x40);
}

void ExpectNothingBehindTheTag(const PGX_Node& node) {
    EXPECT_EQ(node.file, nullptr);
    EXPECT_EQ(node.fileOffset, 0u);
    EXPECT_EQ(node.value, nullptr);
    EXPECT_EQ(node.encapsulated, 0u);
    EXPECT_EQ(node.fragmentCount, 0u);
    EXPECT_EQ(node.fragmentCapacity, 0u);
    EXPECT_EQ(node.fragments, nullptr);
    EXPECT_EQ(node.first, nullptr);
    EXPECT_EQ(node.next, nullptr);
    EXPECT_EQ(node.contentFile, nullptr);
    EXPECT_EQ(node.bitsAllocated, 0u);
    EXPECT_EQ(node.syntaxFlags, 0xFFFFFFFF);
    EXPECT_EQ(node.offsetPending, 0u);
    EXPECT_EQ(node.offsetTarget, nullptr);
    EXPECT_EQ(node.tagName, nullptr);
}

TEST(NodeConstruction, DefaultIsAnEmptyDataSet) {
    const PGX_Node node;
    EXPECT_EQ(node.nodeType, NT_DataSet);
    EXPECT_EQ(node.group, 0);
    EXPECT_EQ(node.element, 0);
    EXPECT_EQ(node.valueRep, 255u);
    EXPECT_EQ(node.length, 0u);
    EXPECT_EQ(node.endian, ET_LittleEndian);
    ExpectNothingBehindTheTag(node);
}

TEST(NodeConstruction, SixMembersAreGivenAndTheRestIsEmpty) {
    const PGX_Node node(NT_DataElement, ET_BigEndian, 0x0010, 0x0020, VR_LO, 12);
    EXPECT_EQ(node.nodeType, NT_DataElement);
    EXPECT_EQ(node.endian, ET_BigEndian);
    EXPECT_EQ(node.group, 0x0010);
    EXPECT_EQ(node.element, 0x0020);
    EXPECT_EQ(node.valueRep, uint32_t{VR_LO});
    EXPECT_EQ(node.length, 12u);
    ExpectNothingBehindTheTag(node);
}

TEST(NodeConstruction, AllocatedDataSetHasVrCodeZero) {
    const Tree dataSet(pgAllocateDataSetNode());
    ASSERT_NE(dataSet, nullptr);
    EXPECT_EQ(dataSet->nodeType, NT_DataSet);
    EXPECT_EQ(dataSet->valueRep, 0u);
    EXPECT_EQ(dataSet->endian, ET_LittleEndian);
    EXPECT_EQ(dataSet->length, 0u);
    ExpectNothingBehindTheTag(*dataSet);
}

TEST(NodeConstruction, AssignmentSharesThePointers) {
    const Tree element = NewElement(0x0010, 0x0010, VR_PN, "DOE");
    element->first = element.get();
    PGX_Node copy;
    copy = *element;
    EXPECT_EQ(copy.value, element->value);
    EXPECT_EQ(copy.first, element->first);
    EXPECT_EQ(copy.group, 0x0010);
    EXPECT_EQ(copy.length, 3u);
    copy.value = nullptr;  // only one of them may free it
    element->first = nullptr;
}

TEST(NodeRelease, NullIsAllowedEverywhere) {
    const Printed printed = CapturePrinted([] {
        pgFreeNode(nullptr);
        pgFreeNodeHierarchy(nullptr);
        pgCloseDataSet(nullptr);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(NodeRelease, FreeingANodeLeavesChildrenAndSiblings) {
    const Tree child = NewElement(0x0010, 0x0010, VR_PN, "A");
    const Tree sibling = NewElement(0x0010, 0x0020, VR_LO, "B");
    PGX_Node* node = NewElement(0x0008, 0x1140, VR_SQ).release();
    node->first = child.get();
    node->next = sibling.get();
    pgFreeNode(node);
    EXPECT_EQ(pgkit_test::ValueOf(*child)[0], 'A');
    EXPECT_EQ(pgkit_test::ValueOf(*sibling)[0], 'B');
}

TEST(NodeRelease, VeryDeepTreesAreFreedWithoutRecursion) {
    constexpr int kLevels = 100'000;
    // Room for one tree and half of another: each is given back as a whole.
    constexpr uint64_t kMemory = 3ull * kLevels * (sizeof(PGX_Node) + 40);
    ExpectCheap(kMemory, [] {
        for (int tree = 0; tree < 5; ++tree) {
            PGX_Node* inner = nullptr;
            for (int level = 0; level < kLevels; ++level) {
                PGX_Node* item = NewDataSet().release();
                item->first = inner;
                inner = NewElement(0x0040, 0xA730, VR_SQ).release();
                inner->SeqAddHead(item);
            }
            pgFreeNodeHierarchy(inner);
        }
    });
}

TEST(FindNode, GivesTheFirstDirectChildWithTheTag) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* name = dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    dataSet->InsertNode(0x0010, 0x0010, "B", 1);

    EXPECT_EQ(dataSet->FindNode(0x0010, 0x0010), name);
    EXPECT_EQ(dataSet->FindNode(IdOf(0x0010, 0x0010)), name);
    EXPECT_EQ(dataSet->FindNode(0x0010, 0x0020), nullptr);
    EXPECT_EQ(dataSet->FindNode(0x0008, 0x0010), nullptr);
    EXPECT_EQ(dataSet->FindNode(IdOf(0x0010, 0x0020)), nullptr);
    EXPECT_EQ(NewDataSet()->FindNode(0x0010, 0x0010), nullptr);
}

TEST(FindNode, DoesNotDescendIntoSequences) {
    const Tree dataSet = NewDataSet();
    PGX_Node* sequence = dataSet->InsertNode(0x0008, 0x1140, nullptr, 0);
    PGX_Node* item = NewDataSet().release();
    item->InsertNode(0x0008, 0x1155, "1.2", 3);
    sequence->SeqAddTail(item);
    EXPECT_EQ(dataSet->FindNode(0x0008, 0x1155), nullptr);
    EXPECT_NE(item->FindNode(0x0008, 0x1155), nullptr);
}

TEST(FindNode, DoesNotTestTheNodeType) {
    const Tree element = NewElement(0x0009, 0x1001, VR_UN);
    element->first = NewElement(0x0010, 0x0010, VR_PN).release();
    EXPECT_EQ(element->FindNode(0x0010, 0x0010), element->first);
}

TEST(FindNode, UnknownIdentifierIsNotFound) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    EXPECT_EQ(dataSet->FindNode(kFirstUnknownId), nullptr);
    EXPECT_EQ(dataSet->FindNode(0xFFFFFFFFu), nullptr);
}

TEST(FindNode, FlatFormsTolerateNoDataSet) {
    const Tree dataSet = NewDataSet();
    PGX_Node* name = dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    EXPECT_EQ(pgFindNodeWithGroupElement(dataSet.get(), 0x0010, 0x0010), name);
    EXPECT_EQ(pgFindNodeWithElementId(dataSet.get(), IdOf(0x0010, 0x0010)), name);
    EXPECT_EQ(pgFindNodeWithElementId(dataSet.get(), kFirstUnknownId), nullptr);
    EXPECT_EQ(pgFindNodeWithGroupElement(nullptr, 0x0010, 0x0010), nullptr);
    EXPECT_EQ(pgFindNodeWithElementId(nullptr, IdOf(0x0010, 0x0010)), nullptr);
}

TEST(InsertNode, MakesALittleEndianElementWithTheDictionaryVr) {
    const Tree dataSet = NewDataSet();
    PGX_Node* node = dataSet->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->nodeType, NT_DataElement);
    EXPECT_EQ(node->endian, ET_LittleEndian);
    EXPECT_EQ(node->valueRep, uint32_t{VR_PN});
    EXPECT_EQ(node->length, 8u);
    EXPECT_EQ(pgkit_test::ValueOf(*node), std::string("DOE^JOHN", 9));
    EXPECT_EQ(dataSet->first, node);
    EXPECT_EQ(node->next, nullptr);
}

TEST(InsertNode, TagWithoutDictionaryEntryHasTheUnknownVr) {
    const Tree dataSet = NewDataSet();
    EXPECT_EQ(dataSet->InsertNode(0x0007, 0x1234, "x", 1)->valueRep, uint32_t{VR_Unknown});
}

TEST(InsertNode, KeepsTagOrderAndPutsEqualTagsBehind) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0010, 0x0020, "ID", 2);
    dataSet->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* former = dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    PGX_Node* latter = dataSet->InsertNode(0x0010, 0x0010, "B", 1);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0060 0010,0010 0010,0010 0010,0020");
    EXPECT_EQ(former->next, latter);
}

TEST(InsertNode, ComparesTagsAsUnsignedNumbers) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0xFFFC, 0xFFFC, "x", 1);
    dataSet->InsertNode(0x7FE0, 0x0010, "x", 1);
    dataSet->InsertNode(0x0008, 0xFFFF, "x", 1);
    dataSet->InsertNode(0x0008, 0x0001, "x", 1);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0001 0008,FFFF 7FE0,0010 FFFC,FFFC");
}

TEST(InsertNode, StopsInFrontOfTheFirstHigherTagAlsoWhereTheOrderIsBroken) {
    const Tree dataSet = NewDataSet();
    dataSet->first = NewElement(0x0020, 0x0010, VR_SH).release();
    dataSet->first->next = NewElement(0x0008, 0x0060, VR_CS).release();
    dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010 0020,0010 0008,0060");
}

TEST(InsertNode, AcceptsAnElementIdentifier) {
    const Tree dataSet = NewDataSet();
    PGX_Node* node = dataSet->InsertNode(IdOf(0x0010, 0x0010), "A ", 2);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010");
    EXPECT_EQ(node->valueRep, uint32_t{VR_PN});
}

TEST(InsertNode, UnknownIdentifierIsReportedOnStandardError) {
    const Tree dataSet = NewDataSet();
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(dataSet->InsertNode(kFirstUnknownId, "A", 1), nullptr); });
    EXPECT_EQ(printed.err, "pgInsertNode () : Element Id unknown (3782)\n");
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(dataSet->first, nullptr);
}

TEST(InsertNode, UnknownIdentifierIsPrintedAsASignedNumber) {
    const Tree dataSet = NewDataSet();
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(dataSet->InsertNode(0xFFFFFFFFu, "A", 1), nullptr); });
    EXPECT_EQ(printed.err, "pgInsertNode () : Element Id unknown (-1)\n");
}

TEST(InsertNode, IsRefusedByAnElement) {
    const Tree element = NewElement(0x0010, 0x0010, VR_PN);
    const Tree other = NewElement(0x0010, 0x0020, VR_LO);
    const Printed byTag =
        CapturePrinted([&] { EXPECT_EQ(element->InsertNode(0x0010, 0x0010, "A", 1), nullptr); });
    const Printed byId =
        CapturePrinted([&] { EXPECT_EQ(element->InsertNode(kFirstUnknownId, "A", 1), nullptr); });
    const Printed byNode =
        CapturePrinted([&] { EXPECT_EQ(element->InsertNode(other.get()), nullptr); });
    for (const Printed& printed : {byTag, byId, byNode}) {
        EXPECT_EQ(printed.out, kNotADataSet);
        EXPECT_EQ(printed.err, "");
    }
    EXPECT_EQ(element->first, nullptr);
}

TEST(InsertNode, PixelDataTakesBitsAllocatedOver) {
    const uint16_t eight = 8;
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0028, 0x0100, &eight, 2);
    EXPECT_EQ(dataSet->bitsAllocated, 8u);
    PGX_Node* pixels = dataSet->InsertNode(0x7FE0, 0x0010, "\1\2", 2);
    EXPECT_EQ(pixels->bitsAllocated, 8u);
    EXPECT_EQ(pixels->valueRep, uint32_t{VR_OB});
    EXPECT_EQ(dataSet->FindNode(0x0028, 0x0100)->bitsAllocated, 0u);
}

TEST(InsertNode, PixelDataOfOtherDepthsKeepsTheDictionaryVr) {
    const uint16_t sixteen = 16;
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0028, 0x0100, &sixteen, 2);
    PGX_Node* pixels = dataSet->InsertNode(0x7FE0, 0x0010, "\1\2", 2);
    EXPECT_EQ(pixels->bitsAllocated, 16u);
    EXPECT_EQ(pixels->valueRep, pgFindValueRepresentation(0x7FE0, 0x0010));
    EXPECT_NE(pixels->valueRep, uint32_t{VR_OB});
}

TEST(InsertNode, BitsAllocatedWithoutAValueIsNotRemembered) {
    const Tree dataSet = NewDataSet();
    dataSet->bitsAllocated = 12;
    dataSet->InsertNode(0x0028, 0x0100, nullptr, 2);
    EXPECT_EQ(dataSet->bitsAllocated, 12u);
}

TEST(InsertNode, BitsAllocatedIsNotReadBeyondItsSize) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const auto oneByte = std::make_unique<uint8_t>(uint8_t{8});  // a sanitizer sees one byte more
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0028, 0x0100, oneByte.get(), 1);
    EXPECT_EQ(dataSet->bitsAllocated, 8u);
}

TEST(InsertNode, RefusedValueLeavesTheDataSetUnchanged) {
    const uint16_t eight = 8;
    const Tree dataSet = NewDataSet();
    EXPECT_EQ(dataSet->InsertNode(0x0028, 0x0100, &eight, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(dataSet->first, nullptr);
    EXPECT_EQ(dataSet->bitsAllocated, 0u);
}

TEST(InsertNode, ExistingNodeIsLinkedInOrderAsItStands) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0060, "CT", 2);
    dataSet->InsertNode(0x0028, 0x0010, "\1\0", 2);
    PGX_Node* bits = NewElement(0x0028, 0x0010, VR_US, std::string("\x08\0", 2)).release();
    bits->group = 0x0028;
    bits->element = 0x0005;
    EXPECT_EQ(dataSet->InsertNode(bits), bits);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0060 0028,0005 0028,0010");
    EXPECT_EQ(dataSet->InsertNode(static_cast<PGX_Node*>(nullptr)), nullptr);
}

TEST(InsertNode, ExistingNodeLeavesBitsAllocatedAlone) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(NewElement(0x0028, 0x0100, VR_US, std::string("\x08\0", 2)).release());
    EXPECT_EQ(dataSet->bitsAllocated, 0u);
}

TEST(AddOrReplaceNode, AddsWhatIsMissing) {
    const Tree dataSet = NewDataSet();
    PGX_Node* name = dataSet->AddOrReplaceNode(0x0010, 0x0010, "A ", 2);
    PGX_Node* id = dataSet->AddOrReplaceNode(IdOf(0x0010, 0x0020), "7 ", 2);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010 0010,0020");
    EXPECT_EQ(dataSet->first, name);
    EXPECT_EQ(name->next, id);
}

TEST(AddOrReplaceNode, SetsTheFirstElementWithTheTag) {
    const Tree dataSet = NewDataSet();
    PGX_Node* former = dataSet->InsertNode(0x0010, 0x0010, "A ", 2);
    PGX_Node* latter = dataSet->InsertNode(0x0010, 0x0010, "B ", 2);
    EXPECT_EQ(dataSet->AddOrReplaceNode(0x0010, 0x0010, "CCCC", 4), former);
    EXPECT_STREQ(pgkit_test::ValueOf(*former).c_str(), "CCCC");
    EXPECT_STREQ(pgkit_test::ValueOf(*latter).c_str(), "B ");
    EXPECT_EQ(dataSet->AddOrReplaceNode(IdOf(0x0010, 0x0010), "DD", 2), former);
    EXPECT_STREQ(pgkit_test::ValueOf(*former).c_str(), "DD");
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010 0010,0010");
}

TEST(AddOrReplaceNode, DoesNotReportAFailedReplacement) {
    const Tree dataSet = NewDataSet();
    PGX_Node* name = dataSet->InsertNode(0x0010, 0x0010, "A ", 2);
    EXPECT_EQ(dataSet->AddOrReplaceNode(0x0010, 0x0010, "B", 0xFFFFFFFF), name);
    EXPECT_STREQ(pgkit_test::ValueOf(*name).c_str(), "A ");
}

TEST(AddOrReplaceNode, RemembersBitsAllocatedOnlyWhenItAdds) {
    const uint16_t eight = 8;
    const uint16_t sixteen = 16;
    const Tree dataSet = NewDataSet();
    dataSet->AddOrReplaceNode(0x0028, 0x0100, &eight, 2);
    EXPECT_EQ(dataSet->bitsAllocated, 8u);
    dataSet->AddOrReplaceNode(0x0028, 0x0100, &sixteen, 2);
    EXPECT_EQ(dataSet->bitsAllocated, 8u);
}

TEST(AddOrReplaceNode, RefusesWhatInsertNodeRefuses) {
    const Tree dataSet = NewDataSet();
    const Tree element = NewElement(0x0010, 0x0010, VR_PN);
    const Printed unknown = CapturePrinted(
        [&] { EXPECT_EQ(dataSet->AddOrReplaceNode(kFirstUnknownId, "A", 1), nullptr); });
    EXPECT_EQ(unknown.err, "pgInsertNode () : Element Id unknown (3782)\n");
    const Printed wrongType = CapturePrinted(
        [&] { EXPECT_EQ(element->AddOrReplaceNode(0x0010, 0x0010, "A", 1), nullptr); });
    EXPECT_EQ(wrongType.out, kNotADataSet);
}

TEST(RemoveNode, UnlinksAndFreesAChildWithItsDescendants) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* sequence = dataSet->InsertNode(0x0008, 0x1140, nullptr, 0);
    dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    sequence->SeqAddTail(NewDataSet().release());
    sequence->first->InsertNode(0x0008, 0x1155, "1.2", 3);

    dataSet->RemoveNode(sequence);
    EXPECT_EQ(Tags(dataSet.get()), "0008,0060 0010,0010");
    dataSet->RemoveNode(dataSet->first);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010");
    dataSet->RemoveNode(dataSet->first);
    EXPECT_EQ(dataSet->first, nullptr);
}

TEST(RemoveNode, LeavesAloneWhatIsNoDirectChild) {
    const Tree dataSet = NewDataSet();
    const Tree stranger = NewElement(0x0010, 0x0020, VR_LO, "ID");
    dataSet->RemoveNode(stranger.get());
    dataSet->InsertNode(0x0010, 0x0010, "A", 1);
    dataSet->RemoveNode(stranger.get());
    dataSet->RemoveNode(nullptr);
    EXPECT_EQ(Tags(dataSet.get()), "0010,0010");
    EXPECT_EQ(stranger->length, 2u);
}

}  // namespace
