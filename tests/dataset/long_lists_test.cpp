// Insertion into long lists of children: always where a walk from the first child leads, whatever
// has happened to the tree in between.
#include "dataset/long_lists.h"

#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "dictionary/tags.h"
#include "support/threads.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::kAlwaysWalked;
using pgkit::kSeenChildren;
using pgkit::TagKey;

constexpr size_t kLong = 4 * kAlwaysWalked;

uint32_t KeyOf(const PGX_Node& node) { return TagKey(node.group, node.element); }

PGX_Node* NewNode(uint32_t key) {
    return new PGX_Node(NT_DataElement, ET_LittleEndian, static_cast<uint16_t>(key >> 16),
                        static_cast<uint16_t>(key), VR_UN, 0);
}

// Where the walk leads: behind which child, null for the front.
PGX_Node* Predecessor(PGX_Node& parent, uint64_t key) {
    PGX_Node* predecessor = nullptr;
    for (PGX_Node* child = parent.first; child != nullptr && KeyOf(*child) <= key;
         child = child->next)
        predecessor = child;
    return predecessor;
}

void InsertAndCheck(PGX_Node& dataSet, uint32_t key) {
    PGX_Node* const predecessor = Predecessor(dataSet, key);
    PGX_Node* const follower = predecessor != nullptr ? predecessor->next : dataSet.first;
    PGX_Node* const node = NewNode(key);
    ASSERT_EQ(dataSet.InsertNode(node), node);
    ASSERT_EQ(predecessor != nullptr ? predecessor->next : dataSet.first, node);
    ASSERT_EQ(node->next, follower);
}

void AddTailAndCheck(PGX_Node& sequence) {
    PGX_Node* const last = Predecessor(sequence, UINT64_MAX);
    PGX_Node* const item = pgAllocateDataSetNode();
    sequence.SeqAddTail(item);
    ASSERT_EQ(last != nullptr ? last->next : sequence.first, item);
    ASSERT_EQ(item->next, nullptr);
}

class LongList : public testing::Test {
  protected:
    void Grow(size_t count) {
        for (size_t i = 0; i < count; ++i)
            root_->InsertNode(NewNode(nextKey_ += 2));
    }

    PGX_Node* At(size_t index) const {
        PGX_Node* child = root_->first;
        while (index-- > 0)
            child = child->next;
        return child;
    }

    DataSet root_{pgAllocateDataSetNode()};
    uint32_t nextKey_ = 0x00100000;
};

// Each insertion walked the whole list: a data set of 40,000 elements took ten seconds.
TEST_F(LongList, GrowsAtItsEndInTheSameTimeForEachElement) {
    constexpr size_t kCount = 200'000;
    const auto start = std::chrono::steady_clock::now();
    Grow(kCount);
    DataSet sequence(NewNode(0x00081140));
    for (size_t i = 0; i < kCount; ++i)
        sequence->SeqAddTail(pgAllocateDataSetNode());
    // Many times what it takes; walking takes some minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    size_t count = 0;
    for (const PGX_Node* child = root_->first; child != nullptr; child = child->next)
        ++count;
    EXPECT_EQ(count, kCount);
}

TEST_F(LongList, TakesEqualAndLowerTagsWhereTheWalkDoes) {
    Grow(kLong);
    for (const uint32_t key : {nextKey_, nextKey_ - 1, nextKey_ - 1000, 0x00100001u, 0u, nextKey_})
        InsertAndCheck(*root_, key);
}

// The walk ends at the first child with a greater tag, and never gets to the end behind it.
TEST_F(LongList, ThatIsNotInOrderTakesElementsInFrontOfTheFirstGreaterOne) {
    Grow(kLong);
    pgKitSetGroup(At(10), 0x7777);
    for (int i = 0; i < 10; ++i)
        InsertAndCheck(*root_, nextKey_ += 2);
}

TEST_F(LongList, MayBeRelinkedByTheHostNearItsEnd) {
    Grow(kLong);
    PGX_Node* const cut = At(kLong - kSeenChildren / 2);
    PGX_Node* const rest = std::exchange(cut->next, nullptr);
    InsertAndCheck(*root_, nextKey_ += 2);
    Predecessor(*root_, UINT64_MAX)->next = rest;
    InsertAndCheck(*root_, nextKey_ += 2);
    InsertAndCheck(*root_, 0x00110000);
}

TEST_F(LongList, MayBecomeAnotherList) {
    Grow(kLong);
    PGX_Node* const other = pgAllocateDataSetNode();
    std::swap(other->first, root_->first);
    InsertAndCheck(*root_, nextKey_ += 2);
    InsertAndCheck(*other, nextKey_);
    std::swap(other->first, root_->first);
    InsertAndCheck(*root_, nextKey_ += 2);
    pgCloseDataSet(other);
}

// What was remembered lies in memory that is no longer there: sanitizers see who looks at it.
TEST_F(LongList, MayLoseItsElements) {
    Grow(kLong);
    while (root_->first->next != nullptr)
        root_->RemoveNode(root_->first);
    InsertAndCheck(*root_, nextKey_ += 2);
    Grow(kLong);
    PGX_Node* const kept = At(kLong / 2);
    pgFreeNodeHierarchy(std::exchange(kept->next, nullptr));
    InsertAndCheck(*root_, nextKey_ += 2);
    Grow(kLong);
    pgFreeNodeHierarchy(std::exchange(root_->first, nullptr));
    InsertAndCheck(*root_, nextKey_ += 2);
}

TEST_F(LongList, MayLoseThemInAnotherThread) {
    Grow(kLong);
    pgkit_test::RunOnThreads(
        1, [&](size_t) { pgFreeNodeHierarchy(std::exchange(root_->first, nullptr)); });
    InsertAndCheck(*root_, nextKey_ += 2);
}

TEST_F(LongList, IsNotTakenForOneThatLaterHasItsAddress) {
    for (int times = 0; times < 3; ++times) {
        alignas(PGX_Node) unsigned char place[sizeof(PGX_Node)];
        PGX_Node* const parent = new (place) PGX_Node;
        std::swap(parent->first, root_->first);
        for (size_t i = 0; i < kLong; ++i)
            parent->InsertNode(NewNode(nextKey_ += 2));
        InsertAndCheck(*parent, nextKey_ += 2);
        pgFreeNodeHierarchy(parent->first);
        parent->~PGX_Node();
    }
}

TEST_F(LongList, FollowsChangesThroughTheFlatFunctions) {
    Grow(kLong);
    PGX_Node* const cut = At(100);
    PGX_Node* const rest = cut->next;
    pgKitSetNext(cut, nullptr);
    InsertAndCheck(*root_, nextKey_ += 2);
    pgKitSetNext(Predecessor(*root_, UINT64_MAX), rest);
    InsertAndCheck(*root_, nextKey_ += 2);
    pgKitSetGroup(At(50), 0x7777);
    InsertAndCheck(*root_, nextKey_ += 2);
}

// Growth of several lists at once, with everything that hosts do to trees in between. Links are
// written by hand only where the header lets them: near the end, at the front, or for all of it.
TEST(LongLists, GrowLikeWalkedOnesWhateverHappensInBetween) {
    std::mt19937 random(4711);
    const auto below = [&](size_t limit) { return static_cast<size_t>(random() % limit); };
    std::vector<DataSet> parents;
    for (int i = 0; i < 12; ++i)
        parents.emplace_back(pgAllocateDataSetNode());
    std::vector<uint32_t> keys(parents.size(), 0x00100000);
    for (int round = 0; round < 500 && !testing::Test::HasFatalFailure(); ++round) {
        const size_t which = below(parents.size());
        PGX_Node& parent = *parents[which];
        const size_t growth = below(400);
        for (size_t i = 0; i < growth; ++i)
            parent.InsertNode(NewNode(keys[which] += static_cast<uint32_t>(below(3))));
        InsertAndCheck(parent, keys[which]);
        PGX_Node* const near = [&] {
            std::vector<PGX_Node*> children;
            for (PGX_Node* child = parent.first; child != nullptr; child = child->next)
                children.push_back(child);
            return children[children.size() - 1 - below(std::min(children.size(), kSeenChildren))];
        }();
        switch (below(9)) {
            case 0:  // a chain cut off, and freed or put to another list
                if (PGX_Node* rest = std::exchange(near->next, nullptr); below(2) == 0) {
                    pgFreeNodeHierarchy(rest);
                } else if (rest != nullptr) {
                    PGX_Node& other = *parents[below(parents.size())];
                    PGX_Node* const last = Predecessor(other, UINT64_MAX);
                    (last != nullptr ? last->next : other.first) = rest;
                }
                break;
            case 1:  // one taken out
                if (PGX_Node* const out = near->next; out != nullptr) {
                    near->next = out->next;
                    delete out;
                }
                break;
            case 2:  // one put in
                near->next = [&, next = near->next] {
                    PGX_Node* const node = NewNode(static_cast<uint32_t>(below(0x00200000)));
                    node->next = next;
                    return node;
                }();
                break;
            case 3:
                near->element = static_cast<uint16_t>(below(0x10000));
                break;
            case 4:
                parent.RemoveNode(parent.first);
                break;
            case 5: {
                PGX_Node* const node = NewNode(static_cast<uint32_t>(below(0x00200000)));
                node->next = parent.first;
                parent.first = node;
                break;
            }
            case 6:
                std::swap(parent.first, parents[below(parents.size())]->first);
                break;
            case 7:
                if (below(4) == 0) parents[which].reset(pgAllocateDataSetNode());
                break;
            default:
                InsertAndCheck(parent, static_cast<uint32_t>(below(0x00200000)));
        }
        InsertAndCheck(*parents[which], keys[which]);
        InsertAndCheck(*parents[which], 0x7FFFFFFF);
        parents[which]->RemoveNode(Predecessor(*parents[which], 0x7FFFFFFF));
    }
}

TEST(LongLists, OfItemsGrowLikeWalkedOnes) {
    DataSet sequence(NewNode(0x00081140));
    for (size_t i = 0; i < kLong; ++i)
        AddTailAndCheck(*sequence);
    sequence->SeqAddHead(pgAllocateDataSetNode());
    AddTailAndCheck(*sequence);
    PGX_Node* const end = Predecessor(*sequence, UINT64_MAX);
    end->next = pgAllocateDataSetNode();
    AddTailAndCheck(*sequence);
}

}  // namespace
