#include "pgkit/list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Things to point at.
char things[8] = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
char* const a = &things[0];
char* const b = &things[1];
char* const c = &things[2];
char* const d = &things[3];
char* const p = &things[4];

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
    cell.data = a;
    cell.next = &last;
    PGX_ListElement copy;
    EXPECT_EQ(&(copy = cell), &copy);
    EXPECT_EQ(copy.data, a);
    EXPECT_EQ(copy.next, &last);
}

TEST(List, IsEmptyAtFirst) {
    PGX_List list;
    ExpectEmpty(list);
}

TEST(List, AddTailAppends) {
    PGX_List list;
    list.AddTail(a);
    EXPECT_EQ(list.head, list.tail);
    list.AddTail(b);
    list.AddTail(c);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetHead(), a);
    EXPECT_EQ(list.GetTail(), c);
    EXPECT_EQ(list.GetLastPosition()->data, c);
    EXPECT_EQ(list.GetLastPosition()->next, nullptr);
}

TEST(List, AddHeadPrepends) {
    PGX_List list;
    list.AddHead(a);
    EXPECT_EQ(list.head, list.tail);
    list.AddHead(b);
    EXPECT_EQ(Content(list), "ba");
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetTail(), a);
}

TEST(List, GetAtCountsFromZero) {
    PGX_List list;
    Fill(list, {a, b, c});
    EXPECT_EQ(list.GetAt(0), a);
    EXPECT_EQ(list.GetAt(1), b);
    EXPECT_EQ(list.GetAt(2), c);
}

TEST(List, GetAtOutsideOfTheListIsNull) {
    PGX_List list;
    EXPECT_EQ(list.GetAt(0), nullptr);
    Fill(list, {a, b});
    EXPECT_EQ(list.GetAt(-1), nullptr);
    EXPECT_EQ(list.GetAt(2), nullptr);
    EXPECT_EQ(list.GetAt(INT32_MIN), nullptr);
    EXPECT_EQ(list.GetAt(INT32_MAX), nullptr);
}

TEST(List, RemovingFromAnEmptyListGivesNull) {
    PGX_List list;
    EXPECT_EQ(list.RemoveHead(), nullptr);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_EQ(list.RemoveElement(a), nullptr);
    EXPECT_EQ(list.RemoveElement(nullptr), nullptr);
    ExpectEmpty(list);
}

TEST(List, RemovingTheOnlyCellLeavesAnEmptyList) {
    PGX_List list;
    list.AddTail(a);
    EXPECT_EQ(list.RemoveHead(), a);
    ExpectEmpty(list);
    list.AddTail(a);
    EXPECT_EQ(list.RemoveTail(), a);
    ExpectEmpty(list);
    list.AddTail(a);
    EXPECT_EQ(list.RemoveElement(a), a);
    ExpectEmpty(list);
}

TEST(List, RemoveHeadTakesTheFirst) {
    PGX_List list;
    Fill(list, {a, b, c});
    EXPECT_EQ(list.RemoveHead(), a);
    EXPECT_EQ(Content(list), "bc");
    EXPECT_EQ(list.GetCount(), 2);
}

TEST(List, RemoveTailTakesTheLast) {
    PGX_List list;
    Fill(list, {a, b, c});
    EXPECT_EQ(list.RemoveTail(), c);
    EXPECT_EQ(Content(list), "ab");
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetTail(), b);
    list.AddTail(d);
    EXPECT_EQ(Content(list), "abd");
}

TEST(List, RemoveElementPrefersTheHead) {
    PGX_List list;
    Fill(list, {p, a, p});
    EXPECT_EQ(list.RemoveElement(p), p);
    EXPECT_EQ(Content(list), "ae");
}

TEST(List, RemoveElementPrefersTheTailToTheMiddle) {
    PGX_List list;
    Fill(list, {a, p, c, p});
    EXPECT_EQ(list.RemoveElement(p), p);
    EXPECT_EQ(Content(list), "aec");
    EXPECT_EQ(list.GetTail(), c);
}

TEST(List, RemoveElementTakesTheFirstOfTheMiddle) {
    PGX_List list;
    Fill(list, {a, p, p, d});
    EXPECT_EQ(list.RemoveElement(p), p);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(Content(list), "aed");
    EXPECT_EQ(list.GetAt(1), p);
}

TEST(List, RemoveElementOfAnAbsentPointerChangesNothing) {
    PGX_List list;
    Fill(list, {a, b, c});
    EXPECT_EQ(list.RemoveElement(p), nullptr);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetCount(), 3);
}

TEST(List, RemoveElementOfNullRemovesAStoredNull) {
    PGX_List list;
    Fill(list, {a, nullptr, nullptr, d});
    EXPECT_EQ(list.RemoveElement(nullptr), nullptr);
    EXPECT_EQ(Content(list), "a-d");
    EXPECT_EQ(list.GetCount(), 3);
}

TEST(List, InsertAtPutsThePointerAtThatIndex) {
    PGX_List list;
    Fill(list, {a, b, c, d});
    list.InsertAt(2, p);
    EXPECT_EQ(Content(list), "abecd");
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_EQ(list.GetAt(2), p);
    EXPECT_EQ(list.GetAt(3), c);
}

TEST(List, InsertAtOneFollowsTheHead) {
    PGX_List list;
    Fill(list, {a, b});
    list.InsertAt(1, p);
    EXPECT_EQ(Content(list), "aeb");
}

TEST(List, InsertAtZeroOrBelowPrepends) {
    PGX_List list;
    Fill(list, {a});
    list.InsertAt(0, b);
    list.InsertAt(-5, c);
    EXPECT_EQ(Content(list), "cba");
}

TEST(List, InsertAtTheCountOrAboveAppends) {
    PGX_List list;
    Fill(list, {a});
    list.InsertAt(1, b);
    list.InsertAt(2 + 7, c);
    EXPECT_EQ(Content(list), "abc");
    EXPECT_EQ(list.GetTail(), c);
}

TEST(List, InsertAtAnyIndexOfAnEmptyListAddsTheOnlyCell) {
    for (const int32_t index : {-3, 0, 4}) {
        PGX_List list;
        list.InsertAt(index, a);
        EXPECT_EQ(Content(list), "a");
        EXPECT_EQ(list.head, list.tail);
    }
}

TEST(List, AssignmentSharesTheCells) {
    PGX_List list;
    Fill(list, {a, b});
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
    element->data = a;
    element->next = element;
    element->~PGX_ListElement();
    EXPECT_EQ(*reinterpret_cast<void* volatile*>(cell), nullptr);
    EXPECT_EQ(*reinterpret_cast<void* volatile*>(cell + sizeof(void*)), nullptr);

    alignas(PGX_List) unsigned char storage[sizeof(PGX_List)];
    auto* list = new (storage) PGX_List;
    Fill(*list, {a, b});
    list->~PGX_List();
    EXPECT_EQ(*reinterpret_cast<volatile int32_t*>(storage), 0);
}

}  // namespace
