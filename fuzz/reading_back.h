// Whether what was saved reads back equal and complete.
#pragma once

#include <pgkit/pgkit.h>

#include <string>

#include "support/tree.h"

namespace pgkit_fuzz {

// Whether a data set has an element that is not File Meta Information: a file that ends behind
// that is refused.
bool HasContent(PGX_Node& root);

// One of two private transfer syntaxes that are read and not written.
bool HasPrivateSyntax(PGX_Node& root);

// Elements that are not written: never, or not in a bare data set.
bool HasElementsToLeaveOut(PGX_Node& root, bool isBare);

// A file with File Meta Information that does not say the encoding of this mode, and is not in the
// one that readers take for granted: without a transfer syntax the mode decides.
bool IsUndeclared(PGX_Node& root, int32_t mode);

// Encapsulated Pixel Data without a table of fragments.
bool HasUnindexedFragments(PGX_Node& root);

// An element that is written as a header alone: its length says more than any source has.
bool HasMissingValue(PGX_Node& root);

// Whether what was read lacks the VRs by which the original had elements that are sequences to the
// dictionary and not in the tree, or the other way round, or other UIDs than it knows.
bool IsAmbiguous(PGX_Node& original, const PGX_Node& reread);

// Opens the file that a tree with content was saved to, with result 0 in this mode, and throws a
// Violation when it differs. Not compared is what is ambiguous, and all of an undeclared encoding,
// which may give null. So does a bare data set that happens to have "DICM" where a file with a
// preamble has it.
pgkit_test::DataSet RequireReadsBack(PGX_Node& original, const std::string& path, int32_t mode,
                                     uint32_t limit);

}  // namespace pgkit_fuzz
