#include "dataset/tree_walk.h"

#include <gtest/gtest.h>

#include <string>

#include "dataset/node_ptr.h"

namespace {

using pgkit::NodeTree;
using pgkit::WalkStep;

// Writes down what it meets: "+1" enters the node whose element number is 1, "-1" leaves it.
struct Recorder {
    WalkStep Enter(PGX_Node& node, size_t depth) {
        path += " +" + std::to_string(node.element);
        deepest = std::max(deepest, depth);
        if (node.element == skipAt) return WalkStep::SkipChildren;
        return node.element == unwindAtEnter ? WalkStep::Unwind : WalkStep::Continue;
    }
    WalkStep Leave(PGX_Node& node, size_t) {
        path += " -" + std::to_string(node.element);
        return node.element == unwindAtLeave ? WalkStep::Unwind : WalkStep::Continue;
    }

    std::string path;
    size_t deepest = 0;
    uint16_t skipAt = 0;
    uint16_t unwindAtEnter = 0;
    uint16_t unwindAtLeave = 0;
};

PGX_Node* Numbered(uint16_t number, PGX_Node* first, PGX_Node* next) {
    auto* node = new PGX_Node(NT_DataElement, ET_LittleEndian, 0, number, VR_SQ, 0);
    node->first = first;
    node->next = next;
    return node;
}

// 1 holds 2, 5 and 6; 2 holds 3 and 4.
NodeTree SampleTree() {
    PGX_Node* inner = Numbered(3, nullptr, Numbered(4, nullptr, nullptr));
    PGX_Node* siblings = Numbered(5, nullptr, Numbered(6, nullptr, nullptr));
    return NodeTree(Numbered(1, Numbered(2, inner, siblings), nullptr));
}

std::string Walk(Recorder recorder) {
    const NodeTree tree = SampleTree();
    pgkit::WalkTree(*tree, recorder);
    return recorder.path;
}

TEST(TreeWalk, EntersAndLeavesEveryNodeInListOrder) {
    EXPECT_EQ(Walk({}), " +1 +2 +3 -3 +4 -4 -2 +5 -5 +6 -6 -1");
}

TEST(TreeWalk, SkippedChildrenAreNotVisitedButTheNodeIsLeft) {
    Recorder recorder;
    recorder.skipAt = 2;
    EXPECT_EQ(Walk(recorder), " +1 +2 -2 +5 -5 +6 -6 -1");
}

TEST(TreeWalk, UnwindingFromEnterLeavesWhatIsOpenAndEntersNothing) {
    Recorder recorder;
    recorder.unwindAtEnter = 3;
    EXPECT_EQ(Walk(recorder), " +1 +2 +3 -3 -2 -1");
}

TEST(TreeWalk, UnwindingFromLeaveLeavesWhatIsOpenAndEntersNothing) {
    Recorder recorder;
    recorder.unwindAtLeave = 2;
    EXPECT_EQ(Walk(recorder), " +1 +2 +3 -3 +4 -4 -2 -1");
}

TEST(TreeWalk, SiblingsOfTheStartAreNotVisited) {
    const NodeTree tree(Numbered(1, nullptr, Numbered(2, nullptr, nullptr)));
    Recorder recorder;
    pgkit::WalkTree(*tree, recorder);
    EXPECT_EQ(recorder.path, " +1 -1");
}

TEST(TreeWalk, FindsWhetherAnyNodeHasAProperty) {
    const NodeTree tree(Numbered(1, Numbered(2, Numbered(3, nullptr, nullptr), nullptr), nullptr));
    for (const int number : {1, 2, 3, 4}) {
        int seen = 0;
        const bool found = pgkit::AnyInTree(*tree, [&](const PGX_Node& node) {
            ++seen;
            return node.element == number;
        });
        EXPECT_EQ(found, number < 4);
        EXPECT_EQ(seen, number < 4 ? number : 3);
    }
}

TEST(TreeWalk, DepthCostsNoStack) {
    PGX_Node* root = Numbered(1, nullptr, nullptr);
    for (int level = 0; level < 1'000'000; ++level)
        root = Numbered(1, root, nullptr);
    const NodeTree tree(root);
    Recorder recorder;
    pgkit::WalkTree(*tree, recorder);
    EXPECT_EQ(recorder.deepest, 1'000'000u);
}

}  // namespace
