// The files that are on a medium.
#pragma once

#include <string>
#include <vector>

#include "verify/finding.h"
#include "verify/medium_files.h"

namespace pgtool {

// All regular files of a medium, by their paths below its root, with slashes, in the byte order of
// the names. Links are not followed: what they lead to on the
// medium is there by its own name. Notes links that lead out of the medium or nowhere, and
// directories that cannot be read.
std::vector<std::string> FilesOnMedium(const MediumFiles& medium, Findings& findings);

}  // namespace pgtool
