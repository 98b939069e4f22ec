// Where a list that is ordered by numbers takes a new object: in front of the first one whose
// number is not smaller, at the end when there is none. That is the place that a walk from the
// head finds, in any list, but the list is not walked for each object.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include "dataset/list_cells.h"
#include "dicomdir/object_list.h"
#include "pgkit/list.h"

namespace pgkit {

// Where an object goes whose number is that of the greatest: in front of it like any other, or to
// the end.
enum class Ties { InFront, BehindGreatest };

template <typename Object>
class InsertionOrder {
  public:
    using NumberOf = int32_t (*)(const Object& object);

    InsertionOrder(PGX_List& list, NumberOf numberOf, Ties ties)
        : list_(list), numberOf_(numberOf), ties_(ties) {
        for (const Object& object : Objects<Object>(list))
            greatest_ = std::max(greatest_, numberOf(object));
    }

    // Between two calls nobody else may change the list. Throws std::bad_alloc, and has changed
    // neither list nor order then.
    Object& Insert(std::unique_ptr<Object> object) {
        auto cell = NewCell(object.get());
        PGX_ListElement* const before = MakePlace(numberOf_(*object), cell.get());
        LinkAfter(list_, before, std::move(cell));
        return *object.release();
    }

  private:
    // The cell behind which the new one comes, null for the head.
    PGX_ListElement* MakePlace(int32_t number, PGX_ListElement* cell) {
        if (IsForTheEnd(number)) {
            if (isIndexed_) cellsBefore_.try_emplace(number, list_.tail);
            greatest_ = number;
            return list_.tail;
        }
        if (!isIndexed_) Index();
        const auto place = cellsBefore_.lower_bound(number);
        PGX_ListElement* const before = place->second;
        if (place->first == number) return before;
        cellsBefore_.emplace_hint(place, number, before);
        place->second = cell;
        return before;
    }

    bool IsForTheEnd(int32_t number) const {
        if (list_.head == nullptr || number > greatest_) return true;
        return ties_ == Ties::BehindGreatest && number == greatest_;
    }

    void Index() {
        cellsBefore_.clear();
        PGX_ListElement* before = nullptr;
        for (PGX_ListElement* cell = list_.head; cell != nullptr;
             before = cell, cell = cell->next) {
            const int32_t number = numberOf_(*static_cast<const Object*>(cell->data));
            if (cellsBefore_.empty() || number > cellsBefore_.rbegin()->first) {
                cellsBefore_.emplace_hint(cellsBefore_.end(), number, before);
            }
        }
        isIndexed_ = true;
    }

    PGX_List& list_;
    NumberOf numberOf_;
    Ties ties_;
    int32_t greatest_ = INT32_MIN;  // of the numbers in the list, if it has any
    bool isIndexed_ = false;
    // For every number that is greater than all that stand before it: the cell in front of its own,
    // null for the head. Not made while objects come in order.
    std::map<int32_t, PGX_ListElement*> cellsBefore_;
};

}  // namespace pgkit
