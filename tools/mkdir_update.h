// mkdir --add and --remove: an existing DICOMDIR is changed.
#pragma once

#include <string>

#include "command.h"
#include "pgkit/dicomdir_update.h"

namespace pgtool {

struct UpdateRequest {
    std::string directory;
    std::string profile;
    PgDicomdirOptions options = {};
};

// The exit status. What cannot be done is said before anything is changed.
int AddToMedium(const Command& command, const UpdateRequest& request, const Arguments& files);
int RemoveFromMedium(const Command& command, const UpdateRequest& request,
                     const Arguments& studies);

}  // namespace pgtool
