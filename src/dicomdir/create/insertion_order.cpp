#include "dicomdir/create/insertion_order.h"

#include <algorithm>

#include "dataset/list_cells.h"

namespace pgkit {

InsertionOrder::InsertionOrder(PGX_List& list, NumberOf numberOf)
    : list_(list), numberOf_(numberOf), greatest_(INT32_MIN) {
    for (const PGX_ListElement* cell = list.head; cell != nullptr; cell = cell->next)
        greatest_ = std::max(greatest_, numberOf(cell->data));
}

void InsertionOrder::Insert(void* object) {
    const int32_t number = numberOf_(object);
    if (list_.head == nullptr || number > greatest_) return Append(number, object);
    if (!isIndexed_) Index();
    const auto place = cellsBefore_.lower_bound(number);
    PGX_ListElement* const before = place->second;
    place->second = InsertAfter(list_, before, object);
    // Behind an equal number the old one is no greatest any more.
    cellsBefore_.insert_or_assign(number, before);
}

void InsertionOrder::Append(int32_t number, void* object) {
    if (isIndexed_) cellsBefore_.try_emplace(number, list_.tail);
    list_.AddTail(object);
    greatest_ = number;
}

void InsertionOrder::Index() {
    PGX_ListElement* before = nullptr;
    for (PGX_ListElement* cell = list_.head; cell != nullptr; before = cell, cell = cell->next) {
        const int32_t number = numberOf_(cell->data);
        if (cellsBefore_.empty() || number > cellsBefore_.rbegin()->first) {
            cellsBefore_.emplace_hint(cellsBefore_.end(), number, before);
        }
    }
    isIndexed_ = true;
}

}  // namespace pgkit
