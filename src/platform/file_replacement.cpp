#include "platform/file_replacement.h"

#include "platform/platform.h"

namespace pgkit::platform {

FileReplacement::~FileReplacement() {
    try {
        Discard();
    } catch (...) {
        // Without memory for the name it stays, as a stray.
    }
}

void FileReplacement::Discard() {
    stream_.reset();
    if (Exists()) RemoveFile(path_.c_str());
    path_.clear();
}

bool FileReplacement::Create(const char* path, const char* stem) {
    target_ = path != nullptr ? path : "";
    stream_.reset(CreateReplacement(path, path_, stem));
    return stream_ != nullptr;
}

// An open file cannot be moved on Windows.
FileReplacement::Outcome FileReplacement::PutInPlace() {
    const bool isOnDisk = FlushToDisk(path_.c_str());
    stream_.reset();
    if (!isOnDisk) return Outcome::NotOnDisk;
    if (!ReplaceWith(target_.c_str(), path_.c_str())) return Outcome::NotReplaced;
    path_.clear();
    return Outcome::InPlace;
}

}  // namespace pgkit::platform
