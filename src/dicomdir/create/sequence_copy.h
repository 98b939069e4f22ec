// Copies of the sequences of a file that records keep.
#pragma once

#include "dataset/node_ptr.h"
#include "pgkit/node.h"

namespace pgkit {

// A deep copy of a sequence or an item in host byte order, for a data set that is written from
// memory; null for null, and when it holds what cannot be written: a value that is too long for its
// VR, that has no end, or that claims to be much longer than what the file holds of it.
NodeTree CopyForRecord(PGX_Node* node);

// A sequence of copies of those items of a Content Sequence that modify the concept of their
// parent; null when there are none.
NodeTree CopyConceptModifiers(PGX_Node* contentSequence);

}  // namespace pgkit
