// pgtool profiles: the media application profiles.
#include <cstdio>
#include <string>

#include "commands.h"
#include "pgkit/profiles.h"

namespace pgtool {

namespace {

int PrintProfiles() {
    for (int32_t i = 0; i < pgxProfileCount(); ++i) {
        std::string name(pgxProfileName(i, nullptr, 0), '\0');
        pgxProfileName(i, name.data(), name.size() + 1);
        std::printf("%s\n", name.c_str());
    }
    return kDone;
}

Work DefineProfiles(OptionSet&) { return PrintProfiles; }

}  // namespace

const Command kProfilesCommand = {
    "profiles", "profiles", "list the media application profiles",
    "Prints the names that --profile of mkdir and check takes, one on each line.\n",
    DefineProfiles};

}  // namespace pgtool
