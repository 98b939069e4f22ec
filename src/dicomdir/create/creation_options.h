// What the options and paths that callers give say to every operation of creation.
#pragma once

#include <string>
#include <string_view>

#include "base/paths.h"
#include "pgkit/dicomdir_creation.h"

namespace pgkit {

inline PgDicomdirOptions OptionsOrDefault(const PgDicomdirOptions* options) {
    return options != nullptr ? *options : PgDicomdirOptions{};
}

inline bool WantsList(const PgDicomdirOptions& options) {
    return (options.flags & PG_DICOMDIR_NO_LIST) == 0;
}

inline bool MayBeEmpty(const PgDicomdirOptions& options) {
    return (options.flags & PG_DICOMDIR_NEVER_EMPTY) == 0;
}

// The field is as long as its text may be: the terminating zero may be missing.
inline std::string_view FileSetIdOf(const PgDicomdirOptions& options) {
    const std::string_view field(options.fileSetId, sizeof options.fileSetId);
    return field.substr(0, field.find('\0'));
}

inline std::string WithoutTrailingBackslash(std::string_view directory) {
    if (!directory.empty() && IsSeparator(directory.back())) directory.remove_suffix(1);
    return std::string(directory);
}

}  // namespace pgkit
