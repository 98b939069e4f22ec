// Insertion and removal at a cell that is known, for whoever would otherwise walk a list from its
// head. Null stands for the place in front of the head.
#pragma once

#include "pgkit/list.h"

namespace pgkit {

// Adds a cell behind another one of the list and returns it.
PGX_ListElement* InsertAfter(PGX_List& list, PGX_ListElement* before, void* data);

// Removes the cell, which must exist, behind another one of the list and returns what it held.
void* RemoveAfter(PGX_List& list, PGX_ListElement* before);

}  // namespace pgkit
