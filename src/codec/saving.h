// What all saves do, wherever the bytes go.
#pragma once

#include <cstdint>

#include "codec/byte_sink.h"
#include "codec/deflating_sink.h"
#include "codec/offset_patching.h"
#include "codec/write_result.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"

namespace pgkit {

struct SavePlan {
    uint32_t mode;  // PgSyntaxFlags
    // As they stand: a bare data set in exactly this mode, lengths counted in mode 0, links in the
    // byte order of the host. Otherwise mode 0 is that of the tree, mode and transfer syntax are
    // brought into agreement, and Part 10 files get their preamble and may be deflated.
    bool isOldForm = false;
};

class Saving {
  public:
    // Gives pending links room for their offset. Throws std::bad_alloc.
    Saving(PGX_Node& root, const SavePlan& plan) : root_(root), plan_(plan), offsets_(root) {}

    // How the links between directory records, which are known only when everything has been
    // written, get into the output.
    enum class Links {
        Now,   // a first pass without output finds out
        Later  // the file is opened again for them
    };
    // Throws std::bad_alloc.
    WriteResult Write(ByteSink& sink, Links links);

    // Whether Patch has to follow.
    bool HasLinksLeft() const { return hasLinksLeft_; }
    // The file that was written, opened again; null: it could not be.
    WriteResult Patch(platform::FileHandle file);

  private:
    WriteResult Prepare();
    WriteResult Encode(ByteSink& sink, WrittenPositions* positions = nullptr,
                       DeflatingSink* deflating = nullptr);
    WriteResult FindLinks(uint64_t position, std::vector<BytePatch>& patches);
    WriteResult WriteDeflated(ByteSink& sink, std::vector<BytePatch> patches);
    ByteOrder LinkOrder() const;

    PGX_Node& root_;
    SavePlan plan_;
    PendingOffsets offsets_;
    bool isDeflated_ = false;
    bool hasLinksLeft_ = true;
};

}  // namespace pgkit
