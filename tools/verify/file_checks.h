// The files that the records of a DICOMDIR refer to.
#pragma once

#include <string>

#include "verify/directory.h"
#include "verify/medium_files.h"

namespace pgtool {

struct VerifyOptions {
    std::string profile;    // one that there is, or empty
    bool rawTexts = false;  // in messages: bytes as they stand, instead of UTF-8
};

// Finds the file of every record in use, opens it, and holds it against what the record and those
// above it say, and against the profile. Fills used. Nothing outside of the medium is opened.
void CheckFiles(const Directory& directory, const VerifyOptions& options, MediumFiles& files,
                Findings& findings);

}  // namespace pgtool
