// The table of commands.
#include "commands.h"

#include "command.h"

namespace pgtool {

const std::vector<CommandGroup>& CommandGroups() {
    static const std::vector<CommandGroup> groups = {
        {"Reading data sets", {&kDumpCommand, &kJsonCommand, &kScanCommand, &kImageCommand}},
        {"Writing data sets",
         {&kSetCommand, &kDeleteCommand, &kAnonymizeCommand, &kSaveCommand, &kFromJsonCommand}},
        {"Media",
         {&kDiscCommand, &kBrowseCommand, &kMkdirCommand, &kCheckCommand, &kVerifyCommand}},
        {"Tables", {&kTagsCommand, &kUidCommand, &kModalityCommand, &kProfilesCommand}},
        {"The tool itself", {&kDocumentationCommand}},
    };
    return groups;
}

Arguments CommandNames() {
    Arguments names;
    for (const CommandGroup& group : CommandGroups()) {
        for (const Command* command : group.commands)
            names.emplace_back(command->name);
    }
    return names;
}

const Command* FindCommand(const std::string& name) {
    for (const CommandGroup& group : CommandGroups()) {
        for (const Command* command : group.commands) {
            if (name == command->name) return command;
        }
    }
    return nullptr;
}

}  // namespace pgtool
