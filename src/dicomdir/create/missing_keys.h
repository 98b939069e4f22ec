// Completes a hierarchy in which readers would miss keys.
#pragma once

#include "pgkit/list.h"

namespace pgkit {

// Gives every patient an ID, every study an ID, a date and a time, every series a number, where
// they are empty.
void FillMissingKeys(PGX_List& patients);

}  // namespace pgkit
