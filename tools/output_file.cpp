#include "output_file.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "disk.h"
#include "library_path.h"
#include "system_path.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr int kMaxNames = 10000;
constexpr const char* kSuffix = ".new";

std::string BehindLinks(const std::string& path) {
    std::error_code error;
    if (!fs::is_symlink(SystemPath(path), error)) return path;
    const fs::path target = fs::canonical(SystemPath(path), error);
    return error ? path : target.string();
}

// The path of a new, empty file: the beginning and a number. Empty when none can be created.
std::string CreateNew(const std::string& beginning, Readers readers) {
    for (int number = 0; number < kMaxNames; ++number) {
        std::string candidate = beginning + std::to_string(number);
        const NewFile file = CreateNewFile(candidate, readers);
        if (file.isNameTaken) continue;
        if (file.stream == nullptr) return "";
        std::fclose(file.stream);
        return candidate;
    }
    return "";
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& directory)
    : path_(CreateNew(directory + "/pgtool.", Readers::UserAlone)) {}

TemporaryFile::~TemporaryFile() {
    std::error_code error;
    if (!path_.empty()) fs::remove(SystemPath(path_), error);
}

OutputFile::OutputFile(const std::string& path) : target_(BehindLinks(WithSlashes(path))) {
    std::error_code error;
    const fs::file_status status = fs::status(SystemPath(target_), error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        path_ = target_;
    } else if (!fs::exists(status)) {
        path_ = CreateNew(target_ + kSuffix, Readers::Everybody);
    } else if (IsWritable(target_)) {
        path_ = CreateNew(target_ + kSuffix, Readers::UserAlone);
        fs::permissions(SystemPath(path_), fs::perms::owner_read | fs::perms::owner_write, error);
    }
}

OutputFile::~OutputFile() {
    std::error_code error;
    if (path_ != target_ && !path_.empty()) fs::remove(SystemPath(path_), error);
}

// Where the system does not let an open file be overwritten it can be moved out of the way; it
// vanishes when it is closed.
bool OutputFile::Replace() const {
    std::error_code error;
    fs::rename(SystemPath(path_), SystemPath(target_), error);
    if (!error) return true;
    const std::string aside = path_ + ".old";
    fs::rename(SystemPath(target_), SystemPath(aside), error);
    if (error) return false;
    fs::rename(SystemPath(path_), SystemPath(target_), error);
    std::error_code ignored;
    if (error) {
        fs::rename(SystemPath(aside), SystemPath(target_), ignored);
        return false;
    }
    fs::remove(SystemPath(aside), ignored);
    return true;
}

bool OutputFile::PutInPlace() {
    if (path_ == target_) return true;
    if (path_.empty() || !FlushToDisk(path_)) return false;
    std::error_code error;
    const fs::file_status former = fs::status(SystemPath(target_), error);
    if (fs::exists(former)) fs::permissions(SystemPath(path_), former.permissions(), error);
    if (!Replace()) return false;
    path_.clear();
    return true;
}

}  // namespace pgtool
