// One constant for each command, defined in the file of its name.
#pragma once

#include "command.h"

namespace pgtool {

extern const Command kAnonymizeCommand;
extern const Command kBrowseCommand;
extern const Command kCheckCommand;
extern const Command kDeleteCommand;
extern const Command kDiscCommand;
extern const Command kDocumentationCommand;
extern const Command kDumpCommand;
extern const Command kFromJsonCommand;
extern const Command kImageCommand;
extern const Command kJsonCommand;
extern const Command kMkdirCommand;
extern const Command kModalityCommand;
extern const Command kProfilesCommand;
extern const Command kSaveCommand;
extern const Command kScanCommand;
extern const Command kSetCommand;
extern const Command kTagsCommand;
extern const Command kUidCommand;
extern const Command kVerifyCommand;

}  // namespace pgtool
