// Lets the calls for files fail, as those of a failing disc or a full one do: opening, reading,
// writing, seeking, flushing, closing, replacing. Linked into one program, it stands between that
// program's objects and the platform layer and the C library.
#pragma once

#include <cstddef>

#include "support/failure_plan.h"

namespace pgkit_test {

// While it lives, the calls after the first `allowed` ones fail. A stream whose closing fails is
// closed all the same.
class FailingFiles {
  public:
    explicit FailingFiles(size_t allowed, Failures failures = Failures::AllFurther);
    ~FailingFiles();
    FailingFiles(const FailingFiles&) = delete;
    FailingFiles& operator=(const FailingFiles&) = delete;

    // Whether a call was made to fail, up to now.
    bool HasFailed() const;
};

// How many calls to open or create a file there were since the last FailingFiles was made.
size_t FilesOpened();

// How many files it was waited for to be on the disk since then.
size_t FilesFlushedToDisk();

}  // namespace pgkit_test
