// From a hierarchy to the directory file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dicomdir/create/acceptance_list.h"
#include "pgkit/list.h"

namespace pgkit {

struct BuildRequest {
    std::string folder;
    std::string_view fileSetId;      // empty for the default
    PGX_List* rootLeaves = nullptr;  // that belong to no patient, if there is such a list
    bool wantsFileSizes = false;
    bool mayBeEmpty = true;
    AcceptanceList* list = nullptr;  // gets a line for every leaf, if there is one
};

// Returns the result of saving, or PG_CREATION_NOTHING_ACCEPTED for a hierarchy that has nothing
// and may not be empty. Whatever it is, the folder has the directory file that it had, or the new
// one. The list is kept when it belongs to the directory file, or tells why there is none. Throws
// std::bad_alloc.
[[nodiscard]] uint32_t BuildDirectoryFile(PGX_List& patients, const BuildRequest& request);

}  // namespace pgkit
