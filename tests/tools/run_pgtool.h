// The tool under test.
#pragma once

#include <string>
#include <vector>

#include "support/process.h"

namespace pgkit_test {

// Runs it to its end.
inline Finished Pgtool(const std::vector<std::string>& arguments) {
    return RunProgram(PGKIT_PGTOOL, arguments);
}

}  // namespace pgkit_test
