// The records of a DICOMDIR that belong to no patient: palettes, hanging protocols.
#pragma once

#include <vector>

#include "pgkit/data_set.hpp"
#include "pgkit/pgkit.h"

namespace pgtool {

// Takes them out of the way of a browse, which would take them for patients and end there. They
// stay in the tree of the directory.
std::vector<pgkit::item> TakeRootRecords(PGX_DicomDir& directory);

}  // namespace pgtool
