// Directory records made from the objects of a hierarchy. All throw std::bad_alloc.
#pragma once

#include "dataset/node_ptr.h"
#include "dicomdir/keys.h"

namespace pgkit {

NodeTree NewPatientRecord(Patient& patient);
NodeTree NewStudyRecord(Study& study);
NodeTree NewSeriesRecord(Series& series);
// A leaf's size is written when it is known, or when it is wanted anyway.
NodeTree NewLeafRecord(Leaf& leaf, bool wantsFileSize);

}  // namespace pgkit
