// The links between the records of a DICOMDIR.
#pragma once

#include "verify/directory.h"

namespace pgtool {

// Follows every link, marks the records that the root leads to and those above each, and notes
// links that lead to no record, back, or to a record that another one leads to, and records that
// nothing leads to. Takes time in proportion to the number of records.
void CheckLinks(Directory& directory, Findings& findings);

}  // namespace pgtool
