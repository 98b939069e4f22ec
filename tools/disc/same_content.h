// Whether two files hold the same instance.
#pragma once

#include <string>

namespace pgtool {

// Whether the files have the same bytes or, if not, the same data set: in whatever encoding and
// with whatever File Meta Information. A file that is damaged has the same content as its equal
// only. Neither is held in memory.
bool HaveSameContent(const std::string& a, const std::string& b);

}  // namespace pgtool
