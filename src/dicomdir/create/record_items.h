// Directory records: the items of (0004,1220), made from the objects of a hierarchy. All throw
// std::bad_alloc.
#pragma once

#include "dataset/node_ptr.h"
#include "pgkit/directory_records.h"

namespace pgkit {

NodeTree NewPatientItem(const PGX_DicomDirPatientNode& patient);
NodeTree NewStudyItem(const PGX_DicomDirStudyNode& study);
NodeTree NewSeriesItem(const PGX_DicomDirSeriesNode& series);
// A leaf's size is written when it is known, or when it is wanted anyway.
NodeTree NewLeafItem(const PGX_DicomDirLeafNode& leaf, bool wantsFileSize);

}  // namespace pgkit
