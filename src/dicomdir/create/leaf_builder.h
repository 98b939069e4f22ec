// Leaves of the kind that a file's SOP class asks for, filled from its data set.
#pragma once

#include <memory>

#include "dicomdir/create/file_gate.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// Every SOP class gives a leaf: what is nothing else becomes an image. Images get an icon when the
// options ask for one and it can be made.
std::unique_ptr<PGX_DicomDirLeafNode> NewLeaf(const Candidate& candidate, const FileToAdd& file,
                                              const PgDicomdirOptions& options);

// The leaf as an image; null when it is none.
PGX_DicomDirImageNode* ImageOf(PGX_DicomDirLeafNode* leaf);

}  // namespace pgkit
