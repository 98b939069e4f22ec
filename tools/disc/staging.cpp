#include "disc/staging.h"
#include "library_path.h"
#include "system_path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInside = "PGTOOL.NEW";
constexpr const char* kMovedLast = "DICOMDIR";

std::string Bare(std::string path) {
    path = WithSlashes(std::move(path));
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

}  // namespace

Staging::Staging(std::string directory) : directory_(Bare(std::move(directory))) {}

Staging::~Staging() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(SystemPath(path_), ignored);
}

std::string Staging::Complaint() const {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(SystemPath(directory_), error);
    if (!fs::exists(status)) return "";
    if (!fs::is_directory(SystemPath(directory_), error))
        return directory_ + " exists, and is no directory";
    if (fs::exists(SystemPath(directory_ + "/" + kInside), error)) {
        return directory_ + " is not empty: " + kInside +
               " is what a disc that was not finished has left";
    }
    const bool isEmpty = fs::is_empty(SystemPath(directory_), error);
    if (error) return directory_ + ": " + error.message();
    return isEmpty ? "" : directory_ + " is not empty";
}

std::string Staging::Begin() {
    constexpr int kMaxNames = 10000;
    std::error_code error;
    isInside_ = fs::exists(SystemPath(directory_), error);
    if (isInside_) {
        path_ = directory_ + "/" + kInside;
        if (fs::create_directory(SystemPath(path_), error)) return "";
        path_.clear();
        return directory_ + ": the directory cannot be written to: " + error.message();
    }
    const fs::path parent = SystemPath(directory_).parent_path();
    if (!parent.empty()) fs::create_directories(parent, error);
    for (int number = 0; !error && number < kMaxNames; ++number) {
        path_ = directory_ + ".new" + std::to_string(number);
        if (fs::create_directory(SystemPath(path_), error)) return "";
    }
    path_.clear();
    return directory_ + ": the directory cannot be made: " + error.message();
}

std::string Staging::MoveUp() {
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(SystemPath(path_), error);
         !error && entry != fs::directory_iterator(); entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    // Whoever looks for a medium looks for this file.
    std::stable_partition(names.begin(), names.end(),
                          [](const std::string& name) { return name != kMovedLast; });
    for (size_t i = 0; i < names.size(); ++i) {
        const std::string target = directory_ + "/" + names[i];
        // Somebody may have put something there meanwhile.
        const bool isTaken = fs::exists(fs::symlink_status(SystemPath(target), error));
        if (!isTaken) fs::rename(SystemPath(path_ + "/" + names[i]), SystemPath(target), error);
        if (!isTaken && !error) continue;
        const std::string reason = isTaken ? "it exists" : error.message();
        while (i-- > 0)
            fs::remove_all(SystemPath(directory_ + "/" + names[i]), error);
        return target + ": " + reason;
    }
    fs::remove(SystemPath(path_), error);
    return "";
}

std::string Staging::PutInPlace() {
    std::string complaint;
    if (isInside_) {
        complaint = MoveUp();
    } else {
        std::error_code error;
        fs::rename(SystemPath(path_), SystemPath(directory_), error);
        if (error) complaint = directory_ + ": " + error.message();
    }
    if (complaint.empty()) path_.clear();
    return complaint;
}

}  // namespace pgtool
