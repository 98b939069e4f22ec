// The command line in UTF-8, on every platform.
#pragma once

#include "command.h"

namespace pgtool {

// The arguments behind the name of the program. Where the system hands them over in a code page
// that has few of the world's letters they are fetched in full.
Arguments CommandLine(int argumentCount, char** arguments);

}  // namespace pgtool
