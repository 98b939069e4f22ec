// File Meta Information: what it says of the data set it precedes.
#pragma once

#include <string>

#include "pgkit/node.h"

namespace pgkit {

// The text of a UID element, at most 64 characters; empty when it has none.
std::string UidText(PGX_Node& element);

}  // namespace pgkit
