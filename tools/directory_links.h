// The links between the records of a DICOMDIR that is written again.
#pragma once

#include "pgkit/data_set.hpp"

namespace pgtool {

// Links lead to the header of an item; where an item was read tells where it begins behind that.
inline constexpr uint32_t kItemHeaderSize = 8;

// Links are positions in the file. Ties those of a DICOMDIR that was read to the records that they
// lead to, so that a save writes the new positions. Other data sets, and links that lead to no
// record, are left as they are.
void TieDirectoryLinks(const pgkit::data_set& root);

}  // namespace pgtool
