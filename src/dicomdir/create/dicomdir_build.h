// From a hierarchy to the DICOMDIR file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dicomdir/create/acceptance_list.h"
#include "pgkit/list.h"

namespace pgkit {

struct BuildRequest {
    std::string directory;
    std::string_view fileSetId;  // empty for the default
    bool wantsFileSizes = false;
    AcceptanceList* list = nullptr;  // gets a line for every leaf, if there is one
};

// Returns the result of saving. Throws std::bad_alloc.
uint32_t BuildDicomdir(PGX_List& patients, const BuildRequest& request);

}  // namespace pgkit
