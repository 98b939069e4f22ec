// What the command line of "disc" asks for.
#pragma once

#include <cstdint>
#include <string>

#include "inputs.h"

namespace pgtool {

struct DiscRequest {
    InputOptions sources;
    std::string output;
    std::string profile;
    std::string fileSetId = "DISC";
    std::string image;      // the file of the image; empty: none
    uint64_t size = 0;      // of a medium, in bytes; 0: as large as it becomes
    uint32_t iconSize = 0;  // 0: no icons
    bool isRecoded = false;
    bool hasWeb = false;
};

}  // namespace pgtool
