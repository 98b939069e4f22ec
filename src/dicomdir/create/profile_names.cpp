// The names of the built-in profiles, for callers that let people choose among them.
#include <string_view>

#include "dicomdir/create/profiles.h"
#include "pgkit/profiles.h"

int32_t pgxProfileCount(void) { return static_cast<int32_t>(pgkit::Profiles().size()); }

size_t pgxProfileName(int32_t index, char* buffer, size_t size) {
    std::string_view name;
    if (index >= 0 && index < pgxProfileCount()) {
        name = pgkit::Profiles()[static_cast<size_t>(index)].name;
    }
    if (buffer != nullptr && size > 0) buffer[name.copy(buffer, size - 1)] = '\0';
    return name.size();
}

int32_t pgxIsProfile(const char* name) {
    return name != nullptr && pgkit::FindProfile(name) != nullptr ? 1 : 0;
}
