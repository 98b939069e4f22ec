// What a File ID may look like (PS3.10, 8.2 and PS3.12).
#pragma once

#include <string>
#include <string_view>

namespace pgtool {

// What is wrong with the value of Referenced File ID (0004,1500), as it stands in the record; empty
// when nothing is.
std::string ComplaintAboutFileId(std::string_view value);

// Whether a component is one: up to 8 of A to Z, 0 to 9 and "_".
bool IsFileIdComponent(std::string_view component);

}  // namespace pgtool
