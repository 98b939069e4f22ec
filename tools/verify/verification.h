// A medium checked as a whole.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "verify/file_checks.h"
#include "verify/finding.h"
#include "verify/medium_files.h"
#include "verify/repair.h"

namespace pgtool {

struct Verification {
    Findings findings;
    MediumFiles files;
    std::vector<std::string> all;  // the files that are there
    size_t records = 0;
    RepairOptions former;           // what a new DICOMDIR takes over from the one that is there
    bool directoryIsInside = true;  // false when it is a link that leads out of the medium
};

// operand is the directory of the medium or its DICOMDIR. Returns the reason why nothing could be
// checked, or an empty text.
std::string Verify(const std::string& operand, const VerifyOptions& options, Verification& result);

}  // namespace pgtool
