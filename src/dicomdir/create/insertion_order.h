// Where a list that is ordered by numbers takes a new object: in front of the first one whose
// number is not smaller, at the end when there is none. Gives the place that a walk from the head
// finds, in any list, without walking it for each object.
#pragma once

#include <cstdint>
#include <map>

#include "pgkit/list.h"

namespace pgkit {

class InsertionOrder {
  public:
    using NumberOf = int32_t (*)(const void* object);

    InsertionOrder(PGX_List& list, NumberOf numberOf);

    // Between two calls nobody else may change the list.
    void Insert(void* object);

  private:
    void Append(int32_t number, void* object);
    void Index();

    PGX_List& list_;
    NumberOf numberOf_;
    int32_t greatest_;  // of the numbers in the list, if it has any
    bool isIndexed_ = false;
    // For every number that is greater than all that stand before it: the cell in front of its own,
    // null for the head. Not made while objects come in order.
    std::map<int32_t, PGX_ListElement*> cellsBefore_;
};

}  // namespace pgkit
