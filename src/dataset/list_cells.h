// Insertion at a cell that is known, for whoever would otherwise walk a list from its head.
#pragma once

#include "pgkit/list.h"

namespace pgkit {

// Adds a cell behind another one of the list, or at the head for null, and returns it.
PGX_ListElement* InsertAfter(PGX_List& list, PGX_ListElement* before, void* data);

}  // namespace pgkit
