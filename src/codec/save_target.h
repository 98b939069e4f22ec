// The file that a tree is saved to, which may be the one that its values are still read from.
//
// Truncating that file would destroy them. A file that the tree reads from is therefore left alone
// until the new one is complete beside it, and is then replaced by it; streams that are open on the
// old file go on reading the old content.
#pragma once

#include "codec/write_result.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"
#include "platform/file_replacement.h"

namespace pgkit {

class SaveTarget {
  public:
    // Throws std::bad_alloc. A null path names nothing that can be created.
    SaveTarget(const char* path, PGX_Node& root);
    // Removes what has not been put in place.
    ~SaveTarget() = default;
    SaveTarget(const SaveTarget&) = delete;
    SaveTarget& operator=(const SaveTarget&) = delete;

    platform::FileHandle Create();
    platform::FileHandle OpenForUpdate() const;

    // Makes what was written the content of the target: kWritten, kWriteFailed when it does not get
    // to the disk, or kCannotCreate when the target cannot be replaced; it is then as it was.
    WriteResult PutInPlace();

  private:
    const char* WrittenPath() const {
        return replacement_.Exists() ? replacement_.Path().c_str() : path_;
    }

    const char* path_;
    bool isSource_ = false;
    platform::FileReplacement replacement_;  // of a source, between its creation and the end
};

}  // namespace pgkit
