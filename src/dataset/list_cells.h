// Insertion and removal at a cell that is known, for whoever would otherwise walk a list from its
// head. Null stands for the place in front of the head.
#pragma once

#include <memory>

#include "pgkit/list.h"

namespace pgkit {

// A cell of no list.
std::unique_ptr<PGX_ListElement> NewCell(void* data);

// Puts a cell behind another one of the list.
void LinkAfter(PGX_List& list, PGX_ListElement* before,
               std::unique_ptr<PGX_ListElement> cell) noexcept;

// Removes the cell, which must exist, behind another one of the list and returns what it held.
void* RemoveAfter(PGX_List& list, PGX_ListElement* before);

}  // namespace pgkit
