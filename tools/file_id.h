// Where Referenced File IDs lead.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace pgtool {

// The components of the path below the directory of the DICOMDIR, each without the blanks around
// it; slashes divide them like backslashes, and ".." takes the one before away. None when the ID
// leads outside of the medium: up from its directory, to the root of a file system, to a drive.
// referencedFileId is that of a leaf, which has lost one backslash at its beginning.
std::optional<std::vector<std::string_view>> PathOnMedium(std::string_view referencedFileId);

}  // namespace pgtool
