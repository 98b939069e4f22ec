// Directory records: the items of (0004,1220), made from the objects of a hierarchy. All throw
// std::bad_alloc.
#pragma once

#include "dataset/node_ptr.h"
#include "pgkit/directory_records.h"

namespace pgkit {

NodeTree NewPatientRecord(const PGX_DicomDirPatientNode& patient);
NodeTree NewStudyRecord(const PGX_DicomDirStudyNode& study);
NodeTree NewSeriesRecord(const PGX_DicomDirSeriesNode& series);
// A leaf's size is written when it is known, or when it is wanted anyway.
NodeTree NewLeafRecord(const PGX_DicomDirLeafNode& leaf, bool wantsFileSize);

}  // namespace pgkit
