// One file of a medium joins a hierarchy of the caller's.
#include <algorithm>
#include <string>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/hierarchy_builder.h"
#include "pgkit/dicomdir_creation.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// A character as paths compare: separators are alike, and letters of either kind where the system
// takes them for the same.
char Folded(char c) {
    if (IsSeparator(c)) return '\\';
    return platform::PathsIgnoreCase() ? ToUpper(c) : c;
}

std::string_view WithoutTrailingSeparator(std::string_view directory) {
    if (!directory.empty() && IsSeparator(directory.back())) directory.remove_suffix(1);
    return directory;
}

// What follows the directory and a separator, with backslashes; empty for a path that is not in it.
std::string PathBelow(std::string_view directory, std::string_view path) {
    const bool isBelow = path.size() > directory.size() && IsSeparator(path[directory.size()]) &&
                         std::ranges::equal(directory, path.substr(0, directory.size()),
                                            [](char a, char b) { return Folded(a) == Folded(b); });
    if (!isBelow) return "";
    std::string name(path.substr(directory.size() + 1));
    std::ranges::replace(name, '/', '\\');
    // A second separator in front of a bare name does not count.
    return name.rfind('\\') == 0 ? name.substr(1) : name;
}

PgAcceptanceCode AddFile(PGX_List& patients, std::string_view directory, std::string_view path,
                         std::string_view profile, const PgDicomdirOptions& options) {
    const std::string name = PathBelow(directory, path);
    if (name.empty()) return PG_INVALID_FILE_NAME;
    const std::string medium(directory);
    const std::string fullPath = medium + "\\" + name;
    AcceptanceList list(medium);
    HierarchyBuilder builder(patients, std::string(profile), options,
                             WantsList(options) ? &list : nullptr);
    return builder.Add({name.c_str(), fullPath.c_str()}).code;
}

}  // namespace

}  // namespace pgkit

uint32_t pgAddFile(PGX_List* patients, const char* directory, const char* fullPath,
                   const char* profile, const PgDicomdirOptions* options) {
    return pgkit::Guarded(
        [=]() -> uint32_t {
            if (patients == nullptr || directory == nullptr || fullPath == nullptr) {
                return PG_INVALID_FILE_NAME;
            }
            return pgkit::AddFile(*patients, pgkit::WithoutTrailingSeparator(directory), fullPath,
                                  pgkit::OrEmpty(profile), pgkit::OptionsOrDefault(options));
        },
        PG_NOT_A_DATA_SET);
}
