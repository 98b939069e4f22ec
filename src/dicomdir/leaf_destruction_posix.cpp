#include "dicomdir/leaf_destruction.h"

void pgkit::Destroy(PGX_DicomDirLeafNode* leaf) { delete leaf; }
