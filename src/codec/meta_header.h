// File Meta Information: what it says of the data set it precedes.
#pragma once

#include <optional>
#include <string>

#include "pgkit/node.h"

namespace pgkit {

// The text of a UID element, at most 64 characters; empty when it has none.
std::string UidText(PGX_Node& element);

// The same; none when the bytes that its source has cannot be read. Throws std::bad_alloc.
std::optional<std::string> FetchUidText(PGX_Node& element);

}  // namespace pgkit
