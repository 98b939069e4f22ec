// Where the tool lies.
#pragma once

#include <string>

namespace pgtool {

// The folder of the program, with a separator at its end; empty when the system does not tell.
std::string ProgramDirectory();

}  // namespace pgtool
