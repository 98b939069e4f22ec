// Trees so large that their nodes do not come one by one from the heap: what may be done with the
// nodes is the same.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "support/nodes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

constexpr int kItems = 500;
constexpr uint16_t kElementsPerItem = 100;

StreamBuilder LargeStream() {
    StreamBuilder stream(VrMode::Implicit);
    stream.Part10("1.2.840.10008.1.2").Sequence(0x5200, 0x9230);
    for (int item = 0; item < kItems; ++item) {
        stream.Item();
        for (uint16_t i = 0; i < kElementsPerItem; ++i) {
            const std::string value = std::to_string(1000 + item) + std::to_string(1000 + i);
            stream.Element(0x0018, static_cast<uint16_t>(0x1100 + i), "DS", value);
        }
        stream.EndItem();
    }
    return stream.EndSequence();
}

class LargeTree : public testing::Test {
  protected:
    static PGX_Node* LastItem(PGX_Node* root) {
        PGX_Node* item = Child(root, 0x5200, 0x9230)->first;
        while (item->next != nullptr)
            item = item->next;
        return item;
    }

    PGX_Node* Root() const { return opened_->Root(); }
    void Close() { opened_.reset(); }

  private:
    std::optional<OpenedStream> opened_{std::in_place, LargeStream()};
};

TEST_F(LargeTree, EveryValueIsThere) {
    int item = 0;
    for (PGX_Node* node = Child(Root(), 0x5200, 0x9230)->first; node != nullptr;
         node = node->next, ++item) {
        int i = 0;
        for (PGX_Node* element = node->first; element != nullptr; element = element->next, ++i)
            ASSERT_EQ(TextOf(element), std::to_string(1000 + item) + std::to_string(1000 + i));
        ASSERT_EQ(i, kElementsPerItem);
    }
    EXPECT_EQ(item, kItems);
}

TEST_F(LargeTree, NodesMoveToOtherTreesAndOutliveTheirOwn) {
    PGX_Node* item = LastItem(Root());
    PGX_Node* moved = item->first;
    item->first = moved->next;
    const Tree other = NewDataSet();
    other->InsertNode(moved);
    Close();
    EXPECT_EQ(TextOf(moved), "14991000");
}

TEST_F(LargeTree, ElementsAreRemovedReplacedAndInserted) {
    PGX_Node* item = LastItem(Root());
    item->RemoveNode(item->first->next);
    EXPECT_EQ(item->first->SetValue("a longer value", 14), 1);
    item->InsertNode(0x0010, 0x0010, "DOE", 3);
    EXPECT_EQ(TextOf(item->first), "DOE ");
    EXPECT_EQ(TextOf(item->first->next), "a longer value");
    EXPECT_EQ(TextOf(item->first->next->next), "14991002");
}

TEST_F(LargeTree, SingleNodesAreFreed) {
    PGX_Node* item = LastItem(Root());
    PGX_Node* freed = item->first;
    item->first = freed->next;
    pgFreeNode(freed);
    EXPECT_EQ(TextOf(item->first), "14991001");
}

TEST_F(LargeTree, CopiedMembersKeepTheirBuffersWhenTheSourceForgetsThem) {
    PGX_Node* source = LastItem(Root())->first;
    PGX_Node copy;
    copy = *source;
    source->value = nullptr;
    source->tagName = nullptr;
    copy.next = nullptr;
    EXPECT_EQ(TextOf(&copy), "14991000");
}

}  // namespace
