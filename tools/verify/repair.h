// A new DICOMDIR for the files of a medium.
#pragma once

#include <string>
#include <vector>

#include "acceptance.h"
#include "verify/medium_files.h"

namespace pgtool {

struct RepairOptions {
    std::string profile;    // files that it does not allow are refused; empty: none
    std::string fileSetId;  // that of the former DICOMDIR
    uint32_t iconSize = 0;  // 0: no icons
};

// Writes a DICOMDIR that refers to the DICOM files among those of a medium, which takes the place
// of the former one as a whole. Fills the summary. Returns the reason why there is none, with which
// the former one stays, or an empty text.
std::string Repair(const std::vector<std::string>& all, const MediumFiles& files,
                   const RepairOptions& options, AcceptanceSummary& summary);

}  // namespace pgtool
