// A file that may come to the disc.
#pragma once

#include <string>

#include "disc/catalogue.h"
#include "disc/request.h"

namespace pgtool {

struct Candidate {
    enum class Kind { Instance, Directory, NoDicom, Refused };

    Kind kind = Kind::Refused;
    InstanceKeys keys;
    DiscInstance instance;
    // Whether it belongs to no patient, and its record stands at the root.
    bool isCommon = false;
    // Type 1 keys of its patient, study and series that it has no value for.
    bool lacksStudyId = false;
    bool lacksStudyDate = false;
    bool lacksStudyTime = false;
    bool lacksSeriesNumber = false;
    // Why it is refused, or what is wrong with an instance; empty otherwise.
    std::string complaint;
};

// Reads the header of a file.
Candidate ReadCandidate(const std::string& path, const DiscRequest& request);

}  // namespace pgtool
