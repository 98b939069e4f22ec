#include "dicomdir/insertion_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

using pgkit::InsertionOrder;
using pgkit::Ties;

struct Numbered {
    int32_t number;
};

int32_t NumberOf(const Numbered& object) { return object.number; }

// A list that owns its objects.
class NumberedList {
  public:
    explicit NumberedList(const std::vector<int32_t>& numbers) {
        for (const int32_t number : numbers)
            list_.AddTail(new Numbered{number});
    }
    ~NumberedList() { pgkit::DestroyObjects<Numbered>(list_); }

    PGX_List& List() { return list_; }
    std::vector<const void*> Objects() const {
        std::vector<const void*> objects;
        for (const PGX_ListElement* cell = list_.head; cell != nullptr; cell = cell->next)
            objects.push_back(cell->data);
        return objects;
    }

  private:
    PGX_List list_;
};

// The place as the walk finds it.
void InsertByWalk(std::vector<const void*>& objects, const Numbered& added, Ties ties) {
    const auto numberAt = [](const void* object) {
        return static_cast<const Numbered*>(object)->number;
    };
    auto place = std::find_if(objects.begin(), objects.end(),
                              [&](const void* other) { return numberAt(other) >= added.number; });
    const bool isGreatest = std::all_of(objects.begin(), objects.end(), [&](const void* other) {
        return numberAt(other) <= added.number;
    });
    if (isGreatest && ties == Ties::BehindGreatest) place = objects.end();
    objects.insert(place, &added);
}

// Adds numbers behind those that stand in the list already.
void ExpectAsByWalk(const std::vector<int32_t>& present, const std::vector<int32_t>& numbers) {
    for (const Ties ties : {Ties::InFront, Ties::BehindGreatest}) {
        NumberedList objects(present);
        std::vector<const void*> expected = objects.Objects();
        InsertionOrder<Numbered> order(objects.List(), NumberOf, ties);
        for (const int32_t number : numbers) {
            InsertByWalk(expected, order.Insert(std::unique_ptr<Numbered>(new Numbered{number})),
                         ties);
            ASSERT_EQ(objects.Objects(), expected);
            ASSERT_EQ(objects.List().count, static_cast<int32_t>(expected.size()));
            ASSERT_EQ(objects.List().tail->data, expected.back());
        }
    }
}

TEST(InsertionOrderOfLists, IsThatOfTheNumbers) { ExpectAsByWalk({}, {3, 1, 2, 5, 4, 0}); }

TEST(InsertionOrderOfLists, HoldsForEqualNumbers) { ExpectAsByWalk({}, {5, 5, 7, 5, 7, 7, 5}); }

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
