// One medium, from its plan to its files.
#pragma once

#include <functional>
#include <string>

#include "disc/partition.h"
#include "disc/readme.h"
#include "disc/request.h"
#include "disc/survey.h"

namespace pgtool {

struct MadeMedium {
    MediumContent content;
    uint64_t bytes = 0;     // of all files, in whole sectors
    size_t failures = 0;    // instances that are not on it; each has been named
    std::string complaint;  // why there is no medium; empty when there is
};

// Makes a medium in an empty folder, without its last step: the DICOMDIR has another name until
// FinishMedium, so that nobody takes one of a set for complete. progress is called for each
// instance before it is copied. An interruption ends it early, with a part of the medium and no
// complaint.
MadeMedium MakeMedium(const DiscRequest& request, const Survey& survey, const MediumPlan& plan,
                      MediumNumber number, const std::string& folder,
                      const std::function<void()>& progress);

// Returns the reason why not, or an empty text.
[[nodiscard]] std::string FinishMedium(const std::string& folder);

}  // namespace pgtool
