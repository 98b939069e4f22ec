#include <gtest/gtest.h>

#include <string>

#include "pgkit/accessors.h"

namespace {

// A list made and ended by the accessors, of pointers to the characters of a text.
class ListAccessors : public testing::Test {
  protected:
    ~ListAccessors() override { pgKitListDelete(list_); }

    std::string Content() {
        std::string text;
        for (int32_t i = 0; i < pgKitListGetCount(list_); ++i)
            text += *static_cast<char*>(pgKitListGetElementAt(list_, i));
        return text;
    }

    PGX_List* list_ = pgKitListAllocate();
    char a_ = 'a';
    char b_ = 'b';
    char c_ = 'c';
};

TEST_F(ListAccessors, StartEmpty) {
    ASSERT_NE(list_, nullptr);
    EXPECT_EQ(pgKitListGetCount(list_), 0);
    EXPECT_EQ(pgKitListGetHead(list_), nullptr);
    EXPECT_EQ(pgKitListGetTail(list_), nullptr);
    EXPECT_EQ(pgKitListGetElementAt(list_, 0), nullptr);
    EXPECT_EQ(pgKitListRemoveHead(list_), nullptr);
    EXPECT_EQ(pgKitListRemoveTail(list_), nullptr);
}

TEST_F(ListAccessors, AddAtBothEndsAndBetween) {
    pgKitListAddTail(list_, &c_);
    pgKitListAddHead(list_, &a_);
    pgKitListInsertAt(list_, 1, &b_);
    EXPECT_EQ(Content(), "abc");
    EXPECT_EQ(pgKitListGetHead(list_), &a_);
    EXPECT_EQ(pgKitListGetTail(list_), &c_);
}

TEST_F(ListAccessors, RemoveAtBothEndsAndBetween) {
    for (char* data : {&a_, &b_, &c_, &b_})
        pgKitListAddTail(list_, data);
    EXPECT_EQ(pgKitListRemoveTail(list_), &b_);
    EXPECT_EQ(pgKitListRemoveElement(list_, &b_), &b_);
    EXPECT_EQ(pgKitListRemoveElement(list_, &b_), nullptr);
    EXPECT_EQ(Content(), "ac");
    EXPECT_EQ(pgKitListRemoveHead(list_), &a_);
    EXPECT_EQ(Content(), "c");
}

// Asking for one pointer after the other by its index takes time that grows with the square.
TEST_F(ListAccessors, AreWalkedByCells) {
    constexpr int32_t kMany = 1'000'000;
    for (int32_t i = 0; i < kMany; ++i)
        pgKitListAddTail(list_, i % 2 == 0 ? &a_ : &b_);
    int32_t walked = 0;
    for (PGX_ListElement* cell = pgxListFirst(list_); cell != nullptr; cell = pgxListNext(cell)) {
        ASSERT_EQ(pgxListData(cell), walked % 2 == 0 ? &a_ : &b_);
        ++walked;
    }
    EXPECT_EQ(walked, kMany);
}

TEST_F(ListAccessors, HaveNoCellsWhereThereIsNothing) {
    EXPECT_EQ(pgxListFirst(list_), nullptr);
    EXPECT_EQ(pgxListFirst(nullptr), nullptr);
    EXPECT_EQ(pgxListNext(nullptr), nullptr);
    EXPECT_EQ(pgxListData(nullptr), nullptr);
}

TEST_F(ListAccessors, MayLoseACellThatWasPassed) {
    for (char* data : {&a_, &b_, &c_})
        pgKitListAddTail(list_, data);
    PGX_ListElement* next = pgxListNext(pgxListFirst(list_));
    pgKitListRemoveHead(list_);
    EXPECT_EQ(pgxListData(next), &b_);
    EXPECT_EQ(pgxListData(pgxListNext(next)), &c_);
}

}  // namespace
