// The files that are on a medium.
#pragma once

#include <string>
#include <vector>

#include "verify/finding.h"

namespace pgtool {

// All regular files below a directory, by their paths below it, with slashes, in the byte order of
// the names. root is a real path (RealPath). Links are not followed: what they lead to on the
// medium is there by its own name. Notes links that lead out of the medium or nowhere, and
// directories that cannot be read.
std::vector<std::string> FilesOnMedium(const std::string& root, Findings& findings);

}  // namespace pgtool
