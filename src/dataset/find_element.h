// Elements by the names of their tags.
#pragma once

#include "dictionary/tags.h"
#include "pgkit/node.h"

namespace pgkit {

// The first element of a tag, null when there is none.
inline PGX_Node* FindElement(PGX_Node& dataSet, Tag tag) {
    return dataSet.FindNode(tag.group, tag.element);
}

}  // namespace pgkit
