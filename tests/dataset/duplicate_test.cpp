#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstring>
#include <string>

#include "support/nodes.h"
#include "support/save_modes.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using pgkit_test::kPart10Explicit;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::OpenedFile;
using pgkit_test::RawText;
using pgkit_test::Tags;
using pgkit_test::TempDir;
using pgkit_test::Tree;
using pgkit_test::ValueOf;

Tree Duplicate(PGX_Node& node, int32_t nodeOnly = 1) { return Tree(node.DuplicateNode(nodeOnly)); }

// The length bytes of the value and the two that the copy has behind them.
std::string BufferOf(const PGX_Node& copy) {
    return std::string(reinterpret_cast<const char*>(copy.value), size_t{copy.length} + 2);
}

TEST(DuplicateNode, CopiesTheDescription) {
    const Tree target = NewDataSet();
    const Tree node = NewElement(0x0004, 0x1400, VR_UL, "abcd", ET_BigEndian);
    node->bitsAllocated = 12;
    node->syntaxFlags = kPart10Explicit;
    node->offsetPending = 1;
    node->offsetTarget = target.get();

    const Tree copy = Duplicate(*node);
    EXPECT_EQ(copy->nodeType, NT_DataElement);
    EXPECT_EQ(copy->group, 0x0004);
    EXPECT_EQ(copy->element, 0x1400);
    EXPECT_EQ(copy->valueRep, uint32_t{VR_UL});
    EXPECT_EQ(copy->length, 4u);
    EXPECT_EQ(copy->endian, ET_BigEndian);
    EXPECT_EQ(copy->bitsAllocated, 12u);
    EXPECT_EQ(copy->syntaxFlags, kPart10Explicit);
    EXPECT_EQ(copy->offsetPending, 1u);
    EXPECT_EQ(copy->offsetTarget, target.get());
}

TEST(DuplicateNode, ValueOnDiskComesIntoMemory) {
    const OpenedFile file("xxabcdxx");
    const Tree node = file.Element(VR_LO, 2, 4);
    const Tree copy = Duplicate(*node);
    EXPECT_EQ(copy->file, nullptr);
    EXPECT_EQ(copy->fileOffset, 0u);
    EXPECT_EQ(BufferOf(*copy), RawText("abcd\0\0"));
    EXPECT_EQ(node->value, nullptr);
}

TEST(DuplicateNode, ValueIsThatOfGetValue) {
    const Tree number = NewElement(0x0009, 0x1001, VR_UL, "1234", ET_BigEndian);
    EXPECT_EQ(BufferOf(*Duplicate(*number)), RawText("4321\0\0"));
    const Tree uid = NewElement(0x0008, 0x0018, VR_UI, " 1.2");
    const Tree copy = Duplicate(*uid);
    EXPECT_EQ(copy->length, 4u);
    EXPECT_EQ(BufferOf(*copy), RawText("1.2\0\0\0"));
}

TEST(DuplicateNode, ValueIsTheCopysOwn) {
    const Tree node = NewElement(0x0010, 0x0010, VR_PN, "DOE ");
    const Tree copy = Duplicate(*node);
    node->SetValue("ROE ", 4);
    EXPECT_STREQ(ValueOf(*copy).c_str(), "DOE ");
}

TEST(DuplicateNode, EmptyValueIsABufferOfTwoZeros) {
    EXPECT_EQ(BufferOf(*Duplicate(*NewElement(0x0010, 0x0010, VR_PN))), RawText("\0\0"));
}

TEST(DuplicateNode, SomeNodesHaveNoValueBuffer) {
    const OpenedFile file("abcd");
    const Tree dataSet = NewDataSet();
    const Tree sequence = NewElement(0x0008, 0x1140, VR_SQ);
    const Tree undefined = file.Element(VR_UN, 0, 0xFFFFFFFF);
    const Tree encapsulated = file.Element(VR_OB, 0, 4);
    encapsulated->encapsulated = 1;
    for (PGX_Node* node : {dataSet.get(), sequence.get(), undefined.get(), encapsulated.get()}) {
        EXPECT_EQ(Duplicate(*node)->value, nullptr);
    }
}

TEST(DuplicateNode, ValueAtAnUnrepresentablePositionIsZeros) {
    const OpenedFile file("abcd");
    EXPECT_EQ(BufferOf(*Duplicate(*file.Element(VR_LO, 0xFFFFFFFF, 2))), RawText("\0\0\0\0"));
}

TEST(DuplicateNode, ContentFileIsCopiedAndItsContentToo) {
    const TempDir directory;
    const std::string path = directory.Write("content", "1234");
    const Tree node = NewElement(0x0009, 0x1001, VR_LO);
    node->SetFileContentValue(path.c_str());
    const Tree copy = Duplicate(*node);
    EXPECT_EQ(copy->contentFile, path);
    EXPECT_NE(copy->contentFile, node->contentFile);
    EXPECT_EQ(BufferOf(*copy), RawText("1234\0\0"));
}

TEST(DuplicateNode, TagNameIsNotCopied) {
    char name[] = "PrivateCreator10xx";
    const Tree node = NewElement(0x0009, 0x0010, VR_LO);
    node->tagName = name;
    EXPECT_EQ(Duplicate(*node)->tagName, nullptr);
    node->tagName = nullptr;
}

TEST(DuplicateNode, FragmentTableIsCopiedWithoutTheLoadedBytes) {
    uint8_t loaded[2] = {};
    FragmentEntry table[3] = {{100, 2, loaded}, {110, 4, nullptr}, {0, 0, nullptr}};
    const Tree node = NewElement(0x7FE0, 0x0010, VR_OB);
    node->encapsulated = 1;
    node->length = 0xFFFFFFFF;
    node->fragments = table;
    node->fragmentCount = 2;
    node->fragmentCapacity = 3;

    const Tree copy = Duplicate(*node);
    node->fragments = nullptr;  // not the node's to free
    EXPECT_EQ(copy->encapsulated, 1u);
    EXPECT_EQ(copy->fragmentCount, 2u);
    EXPECT_EQ(copy->fragmentCapacity, 3u);
    ASSERT_NE(copy->fragments, nullptr);
    ASSERT_NE(copy->fragments, table);
    EXPECT_EQ(copy->fragments[0].offset, 100u);
    EXPECT_EQ(copy->fragments[0].length, 2u);
    EXPECT_EQ(copy->fragments[0].bytes, nullptr);
    EXPECT_EQ(copy->fragments[1].offset, 110u);
    EXPECT_EQ(copy->fragments[1].length, 4u);
    EXPECT_EQ(copy->fragments[2].offset, 0u);
}

TEST(DuplicateNode, MarkerOfAnUnindexedTableIsCopied) {
    auto* marker = reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    const Tree node = NewElement(0x7FE0, 0x0010, VR_OB);
    node->encapsulated = 1;
    node->fragments = marker;
    EXPECT_EQ(Duplicate(*node)->fragments, marker);
}

Tree SampleDataSet() {
    Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* sequence = dataSet->InsertNode(0x0008, 0x1140, nullptr, 0);
    dataSet->InsertNode(0x0010, 0x0010, "A ", 2);
    for (const char* uid : {"1.1", "1.2"}) {
        PGX_Node* item = NewDataSet().release();
        item->InsertNode(0x0008, 0x1155, uid, 3);
        sequence->SeqAddTail(item);
    }
    return dataSet;
}

TEST(DuplicateNode, CopiesAllDescendantsInOrder) {
    const Tree dataSet = SampleDataSet();
    const Tree copy = Duplicate(*dataSet);
    EXPECT_EQ(Tags(copy.get()), "0008,0060 0008,1140 0010,0010");
    PGX_Node* item = copy->FindNode(0x0008, 0x1140)->first;
    ASSERT_NE(item, nullptr);
    EXPECT_STREQ(ValueOf(*item->first).c_str(), "1.1");
    ASSERT_NE(item->next, nullptr);
    EXPECT_STREQ(ValueOf(*item->next->first).c_str(), "1.2");
    EXPECT_EQ(item->next->next, nullptr);
    EXPECT_NE(item, dataSet->FindNode(0x0008, 0x1140)->first);
}

TEST(DuplicateNode, SiblingsComeAlongOnlyWhenAskedFor) {
    const Tree dataSet = SampleDataSet();
    PGX_Node* sequence = dataSet->FindNode(0x0008, 0x1140);
    const Tree alone = Duplicate(*sequence, 1);
    EXPECT_EQ(alone->next, nullptr);
    EXPECT_NE(alone->first->next, nullptr);

    const Tree chain = Duplicate(*sequence, 0);
    ASSERT_NE(chain->next, nullptr);
    EXPECT_EQ(chain->next->group, 0x0010);
    EXPECT_STREQ(ValueOf(*chain->next).c_str(), "A ");
    EXPECT_EQ(chain->next->next, nullptr);
}

TEST(DuplicateNode, VeryDeepTreesAreCopiedWithoutRecursion) {
    constexpr int kLevels = 100'000;
    Tree root = NewElement(0x0040, 0xA730, VR_SQ);
    for (int level = 1; level < kLevels; ++level) {
        PGX_Node* item = NewDataSet().release();
        item->first = root.release();
        root = NewElement(0x0040, 0xA730, VR_SQ);
        root->SeqAddHead(item);
    }
    const Tree copy = Duplicate(*root);
    int levels = 0;
    const PGX_Node* node = copy.get();
    while (node != nullptr) {
        ++levels;
        node = node->first == nullptr ? nullptr : node->first->first;
    }
    EXPECT_EQ(levels, kLevels);
}

TEST(DuplicateNode, VeryLongSiblingChainsAreCopiedWithoutRecursion) {
    Tree head = NewElement(0x0009, 0x1001, VR_LO);
    for (int i = 1; i < 200'000; ++i) {
        PGX_Node* following = head.release();
        head = NewElement(0x0009, 0x1001, VR_LO);
        head->next = following;
    }
    const Tree copy = Duplicate(*head, 0);
    int count = 0;
    for (const PGX_Node* node = copy.get(); node != nullptr; node = node->next)
        ++count;
    EXPECT_EQ(count, 200'000);
}

TEST(ClaimedLength, CopyHoldsWhatTheFileHasAndZeros) {
    const OpenedFile file("abcd");
    const Tree copy = Duplicate(*file.Element(VR_UN, 0, 0xFFFFFFF0));
    ASSERT_NE(copy->value, nullptr);
    EXPECT_EQ(std::memcmp(copy->value, "abcd\0\0\0\0", 8), 0);
    EXPECT_EQ(copy->value[0xFFFFFFF1], 0);
}

}  // namespace
