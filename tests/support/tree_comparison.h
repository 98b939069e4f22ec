// Whether a data set that was saved and read again is the same.
#pragma once

#include <pgkit/pgkit.h>

#include <string>

namespace pgkit_test {

// The first place where a tree and its reread copy differ in what the copy's encoding can carry:
// elements, order, VRs where they are written, values in host byte order, items, fragments. Empty
// when there is none. What saving sets is left out: File Meta Information and group lengths.
std::string FirstDifference(PGX_Node& original, PGX_Node& reread);

}  // namespace pgkit_test
