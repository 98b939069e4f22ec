#include "pgkit/list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Things to point at.
char things[8] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
char* const thingA = &things[0];
char* const thingB = &things[1];
char* const thingC = &things[2];
char* const thingD = &things[3];
char* const thingP = &things[4];

void Fill(PGX_List& list, const std::vector<char*>& pointers) {
    for (char* pointer : pointers)
        list.AddTail(pointer);
}

std::string Content(PGX_List& list) {
    std::string text;
    for (PGX_ListElement* cell = list.GetFirstPosition(); cell != nullptr; cell = cell->next)
        text += cell->data == nullptr ? '-' : *static_cast<char*>(cell->data);
    return text;
}

void ExpectEmpty(PGX_List& list) {
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetFirstPosition(), nullptr);
    EXPECT_EQ(list.GetLastPosition(), nullptr);
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.GetTail(), nullptr);
}

TEST(ListElement, IsEmptyAtFirst) {
    const PGX_ListElement cell;
    EXPECT_EQ(cell.data, nullptr);
    EXPECT_EQ(cell.next, nullptr);
}

TEST(ListElement, AssignmentCopiesBothFields) {
    PGX_ListElement last;
    PGX_ListElement cell;
    cell.data = thingA;
    cell.next = &last;
    PGX_ListElement copy;
    EXPECT_EQ(&(copy = cell), &copy);
    EXPECT_EQ(copy.data, thingA);
    EXPECT_EQ(copy.next, &last);
}

TEST(List, IsEmptyAtFirst) {
    PGX_List list;
    ExpectEmpty(list);
}

TEST(List, AddTailAppends) {
    PGX_List list;
    list.AddTail(thingA);
    EXPECT_EQ(list.head, list.tail);
    list.AddTail(thingB);
    list.AddTail(thingC);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetHead(), thingA);
    EXPECT_EQ(list.GetTail(), thingC);
    EXPECT_EQ(list.GetLastPosition()->data, thingC);
    EXPECT_EQ(list.GetLastPosition()->next, nullptr);
}

TEST(List, AddHeadPrepends) {
    PGX_List list;
    list.AddHead(thingA);
    EXPECT_EQ(list.head, list.tail);
    list.AddHead(thingB);
    EXPECT_EQ(Content(list), "ba");
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetTail(), thingA);
}

TEST(List, GetAtCountsFromZero) {
    PGX_List list;
    Fill(list, {thingA, thingB, thingC});
    EXPECT_EQ(list.GetAt(0), thingA);
    EXPECT_EQ(list.GetAt(1), thingB);
    EXPECT_EQ(list.GetAt(2), thingC);
}

TEST(List, GetAtOutsideOfTheListIsNull) {
    PGX_List list;
    EXPECT_EQ(list.GetAt(0), nullptr);
    Fill(list, {thingA, thingB});
    EXPECT_EQ(list.GetAt(-1), nullptr);
    EXPECT_EQ(list.GetAt(2), nullptr);
    EXPECT_EQ(list.GetAt(INT32_MIN), nullptr);
    EXPECT_EQ(list.GetAt(INT32_MAX), nullptr);
}

TEST(List, RemovingFromAnEmptyListGivesNull) {
    PGX_List list;
    EXPECT_EQ(list.RemoveHead(), nullptr);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_EQ(list.RemoveElement(thingA), nullptr);
    EXPECT_EQ(list.RemoveElement(nullptr), nullptr);
    ExpectEmpty(list);
}

TEST(List, RemovingTheOnlyCellLeavesAnEmptyList) {
    PGX_List list;
    list.AddTail(thingA);
    EXPECT_EQ(list.RemoveHead(), thingA);
    ExpectEmpty(list);
    list.AddTail(thingA);
    EXPECT_EQ(list.RemoveTail(), thingA);
    ExpectEmpty(list);
    list.AddTail(thingA);
    EXPECT_EQ(list.RemoveElement(thingA), thingA);
    ExpectEmpty(list);
}

TEST(List, RemoveHeadTakesTheFirst) {
    PGX_List list;
    Fill(list, {thingA, thingB, thingC});
    EXPECT_EQ(list.RemoveHead(), thingA);
    EXPECT_EQ(Content(list), "bc");
    EXPECT_EQ(list.GetCount(), 2);
}

TEST(List, RemoveTailTakesTheLast) {
    PGX_List list;
    Fill(list, {thingA, thingB, thingC});
    EXPECT_EQ(list.RemoveTail(), thingC);
    EXPECT_EQ(Content(list), "ab");
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetTail(), thingB);
    list.AddTail(thingD);
    EXPECT_EQ(Content(list), "abd");
}

TEST(List, RemoveElementPrefersTheHead) {
    PGX_List list;
    Fill(list, {thingP, thingA, thingP});
    EXPECT_EQ(list.RemoveElement(thingP), thingP);
    EXPECT_EQ(Content(list), "ae");
}

TEST(List, RemoveElementPrefersTheTailToTheMiddle) {
    PGX_List list;
    Fill(list, {thingA, thingP, thingC, thingP});
    EXPECT_EQ(list.RemoveElement(thingP), thingP);
    EXPECT_EQ(Content(list), "aec");
    EXPECT_EQ(list.GetTail(), thingC);
}

TEST(List, RemoveElementTakesTheFirstOfTheMiddle) {
    PGX_List list;
    Fill(list, {thingA, thingP, thingP, thingD});
    EXPECT_EQ(list.RemoveElement(thingP), thingP);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(Content(list), "aed");
    EXPECT_EQ(list.GetAt(1), thingP);
}

TEST(List, RemoveElementOfAnAbsentPointerChangesNothing) {
    PGX_List list;
    Fill(list, {thingA, thingB, thingC});
    EXPECT_EQ(list.RemoveElement(thingP), nullptr);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetCount(), 3);
}

TEST(List, RemoveElementOfNullRemovesAStoredNull) {
    PGX_List list;
    Fill(list, {thingA, nullptr, nullptr, thingD});
    EXPECT_EQ(list.RemoveElement(nullptr), nullptr);
    EXPECT_EQ(Content(list), "a-d");
    EXPECT_EQ(list.GetCount(), 3);
}

TEST(List, InsertAtPutsThePointerAtThatIndex) {
    PGX_List list;
    Fill(list, {thingA, thingB, thingC, thingD});
    list.InsertAt(2, thingP);
    EXPECT_EQ(Content(list), "abecd");
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_EQ(list.GetAt(2), thingP);
    EXPECT_EQ(list.GetAt(3), thingC);
}

TEST(List, InsertAtOneFollowsTheHead) {
    PGX_List list;
    Fill(list, {thingA, thingB});
    list.InsertAt(1, thingP);
    EXPECT_EQ(Content(list), "aeb");
}

TEST(List, InsertAtZeroOrBelowPrepends) {
    PGX_List list;
    Fill(list, {thingA});
    list.InsertAt(0, thingB);
    list.InsertAt(-5, thingC);
    EXPECT_EQ(Content(list), "cba");
}

TEST(List, InsertAtTheCountOrAboveAppends) {
    PGX_List list;
    Fill(list, {thingA});
    list.InsertAt(1, thingB);
    list.InsertAt(2 + 7, thingC);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetTail(), thingC);
}

TEST(List, InsertAtAnyIndexOfAnEmptyListAddsTheOnlyCell) {
    for (const int32_t index : {-3, 0, 4}) {
        PGX_List list;
        list.InsertAt(index, thingA);
        EXPECT_EQ(Content(list), "a");
        EXPECT_EQ(list.head, list.tail);
    }
}

TEST(List, AssignmentSharesTheCells) {
    PGX_List list;
    Fill(list, {thingA, thingB});
    PGX_List other;
    EXPECT_EQ(&(other = list), &other);
    EXPECT_EQ(other.GetCount(), 2);
    EXPECT_EQ(other.GetFirstPosition(), list.GetFirstPosition());
    EXPECT_EQ(other.GetLastPosition(), list.GetLastPosition());
    // Only one of the two may free the cells.
    other.count = 0;
}

TEST(List, DestroyingAListLeavesTheObjectsAlive) {
    std::string object = "alive";
    {
        PGX_List list;
        list.AddTail(&object);
    }
    EXPECT_EQ(object, "alive");
}

TEST(List, DestructorsLeaveNothingToFollow) {
    alignas(PGX_ListElement) unsigned char cell[sizeof(PGX_ListElement)];
    auto* element = new (cell) PGX_ListElement;
    element->data = thingA;
    element->next = element;
    element->~PGX_ListElement();
    EXPECT_EQ(*reinterpret_cast<void* volatile*>(cell), nullptr);
    EXPECT_EQ(*reinterpret_cast<void* volatile*>(cell + sizeof(void*)), nullptr);

    alignas(PGX_List) unsigned char storage[sizeof(PGX_List)];
    auto* list = new (storage) PGX_List;
    Fill(*list, {thingA, thingB});
    list->~PGX_List();
    EXPECT_EQ(*reinterpret_cast<volatile int32_t*>(storage), 0);
}

}  // namespace
