#include "disc/readable_path.h"
#include "system_path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr bool kIsSeparator = fs::path::preferred_separator == '\\';

// A link of a name that nothing else has; empty when none can be made.
std::string MakeLink(const std::string& path) {
    constexpr int kMaxNames = 10000;
    std::error_code error;
    const fs::path target = fs::absolute(SystemPath(path), error);
    const fs::path folder = fs::temp_directory_path(error);
    for (int number = 0; !error && number < kMaxNames; ++number) {
        const fs::path link = folder / ("pgtool.link" + std::to_string(number));
        fs::create_symlink(target, link, error);
        if (!error) return link.string();
        if (error == std::errc::file_exists) error.clear();
    }
    return "";
}

}  // namespace

ReadablePath::ReadablePath(const std::string& path) : path_(path) {
    if (kIsSeparator || path.find('\\') == path.npos) return;
    link_ = MakeLink(path);
    path_ = link_;
}

ReadablePath::~ReadablePath() {
    std::error_code ignored;
    if (!link_.empty()) fs::remove(SystemPath(link_), ignored);
}

}  // namespace pgtool
