// Media application profiles by their names.
#pragma once

#include <string>

#include "options.h"

namespace pgtool {

// In the order of the library.
Arguments ProfileNames();

// "unknown profile: STD-GEN-DC; did you mean STD-GEN-CD?", or nothing for a profile that there is,
// and for no name at all.
std::string ComplaintAboutProfile(const std::string& name);

}  // namespace pgtool
