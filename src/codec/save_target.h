// The file that a tree is saved to, which may be the one that its values are still read from.
//
// Truncating that file would destroy them. A file from which something is still to be read (a value
// or a fragment that is not in memory, a content file) is therefore left alone until the new one is
// complete beside it, and is then replaced by it; streams that are open on the old file go on
// reading the old content. Any other file is truncated and written in place, so that its links,
// attributes and place in a directory that cannot be written stay as they are.
#pragma once

#include "codec/write_result.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"
#include "platform/file_replacement.h"

namespace pgkit {

class SaveTarget {
  public:
    // Reads values of group 0002 that nothing but they would keep the file for. Throws
    // std::bad_alloc. A null path names nothing that can be created.
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
