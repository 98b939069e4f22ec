#include "dicomdir/create/insertion_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using pgkit::InsertionOrder;

int32_t NumberOf(const void* object) { return *static_cast<const int32_t*>(object); }

std::vector<const void*> ObjectsOf(const PGX_List& list) {
    std::vector<const void*> objects;
    for (const PGX_ListElement* cell = list.head; cell != nullptr; cell = cell->next)
        objects.push_back(cell->data);
    return objects;
}

// The place as the walk finds it.
void InsertByWalk(std::vector<const void*>& objects, const int32_t* object) {
    const auto place = std::find_if(objects.begin(), objects.end(),
                                    [&](const void* other) { return NumberOf(other) >= *object; });
    objects.insert(place, object);
}

// Adds numbers behind those that stand in the list already.
void ExpectAsByWalk(std::vector<int32_t> present, std::vector<int32_t> numbers) {
    PGX_List list;
    for (int32_t& number : present)
        list.AddTail(&number);
    std::vector<const void*> expected = ObjectsOf(list);
    InsertionOrder order(list, NumberOf);
    for (int32_t& number : numbers) {
        order.Insert(&number);
        InsertByWalk(expected, &number);
        ASSERT_EQ(ObjectsOf(list), expected);
        ASSERT_EQ(list.count, static_cast<int32_t>(expected.size()));
        ASSERT_EQ(list.tail->data, expected.back());
    }
}

TEST(InsertionOrderOfLists, IsThatOfTheNumbers) { ExpectAsByWalk({}, {3, 1, 2, 5, 4, 0}); }

TEST(InsertionOrderOfLists, PutsEqualNumbersInFront) { ExpectAsByWalk({}, {5, 5, 7, 5, 7, 7, 5}); }

TEST(InsertionOrderOfLists, HoldsForNumbersInOrder) { ExpectAsByWalk({}, {1, 2, 3, 4, 4, 5}); }

TEST(InsertionOrderOfLists, HoldsForNumbersInReverseOrder) { ExpectAsByWalk({}, {5, 4, 3, 2, 1}); }

TEST(InsertionOrderOfLists, HoldsForTheLowestAndHighestNumbers) {
    ExpectAsByWalk({}, {INT32_MIN, INT32_MAX, INT32_MIN, 0, INT32_MAX});
}

TEST(InsertionOrderOfLists, GoesOnWithAListInOrder) { ExpectAsByWalk({1, 3, 3, 5}, {3, 9, 0, 4}); }

TEST(InsertionOrderOfLists, FindsThePlaceInAListInAnyOrder) {
    ExpectAsByWalk({5, 1, 9, 2, 9}, {3, 6, 9, 1, 10, 7, 5, 5, 0});
}

TEST(InsertionOrderOfLists, FindsThePlacesOfManyNumbers) {
    std::minstd_rand random(1);
    for (int round = 0; round < 50; ++round) {
        std::vector<int32_t> present(random() % 20);
        std::vector<int32_t> numbers(60);
        for (int32_t& number : present)
            number = static_cast<int32_t>(random() % 30);
        for (int32_t& number : numbers)
            number = static_cast<int32_t>(random() % 40);
        ExpectAsByWalk(present, numbers);
    }
}

}  // namespace
