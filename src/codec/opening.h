// What all open functions do, wherever the bytes come from.
#pragma once

#include <cstdint>
#include <string>

#include "codec/parse_end.h"
#include "codec/stream_reader.h"
#include "dataset/node_ptr.h"
#include "pgkit/open_report.h"
#include "platform/file_handle.h"

namespace pgkit {

struct OpenRequest {
    uint32_t maxLoadLength = 0;
    uint32_t flags = 0;  // PgOpenFlags
    // Trees that outlive their bytes.
    bool keepsEverything = false;
    // Without File Meta Information only what begins like a data set is one, in the encoding in
    // which it does; File Meta Information that is cut short gives what there is.
    bool isDiscerning = false;
    bool detectsBigEndian = false;
};

// The reader's stream has not been closed, and is not part of it: the root's file is that stream or
// the temporary one.
struct OpenedTree {
    NodeTree root;  // null when there is none
    platform::FileHandle temporary;
    PgxOpenResult result = PGX_OPEN_NOT_A_DATA_SET;
    uint32_t notes = 0;  // PgxOpenNotes
    PgxCertainty certainty = PGX_CERTAINTY_NONE;
    uint64_t elements = 0;
    ParseEnd end;
    std::string transferSyntax;
};

// Throws std::bad_alloc.
[[nodiscard]] OpenedTree OpenTree(StreamReader& reader, const OpenRequest& request);

}  // namespace pgkit
