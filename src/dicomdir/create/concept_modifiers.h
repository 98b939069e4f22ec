// What the record of a document keeps of its content.
#pragma once

#include "dataset/node_ptr.h"
#include "pgkit/node.h"

namespace pgkit {

// A sequence of copies of those items of a Content Sequence that modify the concept of their
// parent, as far as a record can carry them; null when there are none.
NodeTree CopyConceptModifiers(PGX_Node* contentSequence);

}  // namespace pgkit
