// The end of a leaf by whatever its own class, which may be the host's, wants done.
#pragma once

#include "pgkit/directory_records.h"

namespace pgkit {

// Destroys a leaf and frees its memory.
void Destroy(PGX_DicomDirLeafNode* leaf);

}  // namespace pgkit
