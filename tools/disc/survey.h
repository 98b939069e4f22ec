// What there is in the sources of a disc.
#pragma once

#include "disc/catalogue.h"
#include "disc/request.h"

namespace pgtool {

struct Survey {
    Catalogue catalogue;
    MissingKeys missing;
    size_t noDicom = 0;
    size_t directories = 0;  // DICOMDIRs
    size_t duplicates = 0;
    size_t failures = 0;  // each has been named, with its reason
};

// Reads the headers of all files. What cannot be stored, or not as it should be, is named on the
// standard error stream. Ends early when an interruption comes.
Survey TakeSurvey(const DiscRequest& request);

}  // namespace pgtool
