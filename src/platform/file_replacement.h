// A file that grows beside the one it is going to replace: whatever happens before it is in place,
// there is the former file.
#pragma once

#include <string>
#include <utility>

#include "platform/file_handle.h"

namespace pgkit::platform {

class FileReplacement {
  public:
    enum class Outcome { InPlace, NotOnDisk, NotReplaced };

    FileReplacement() = default;
    // Removes what has not been put in place.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    // Creates it for the file of this path, which need not exist; see CreateReplacement for the
    // stem. False when it cannot be created. Throws std::bad_alloc.
    [[nodiscard]] bool Create(const char* path, const char* stem = nullptr);

    bool Exists() const { return !path_.empty(); }
    // Under this path others may write it.
    const std::string& Path() const { return path_; }
    // The empty file as a stream of bytes. While that is open, here or there, the file does not
    // pass for a stray.
    FileHandle TakeStream() { return std::move(stream_); }
    FILE* Stream() const { return stream_.get(); }

    // Removes it.
    void Discard();

    // When others have closed their streams on it. On failure the former file is as it was.
    [[nodiscard]] Outcome PutInPlace();

  private:
    std::string target_;
    std::string path_;  // empty when there is nothing to be put in place
    FileHandle stream_;
};

}  // namespace pgkit::platform
