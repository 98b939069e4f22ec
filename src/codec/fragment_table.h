// Where the fragments or frames of encapsulated Pixel Data lie in the stream.
#pragma once

#include <cstdint>

#include "codec/stream_reader.h"
#include "pgkit/node.h"

namespace pgkit {

enum class FragmentTableResult : int32_t {
    Built = 1,
    NotScanned = 0,  // the Basic Offset Table is empty and no scan was asked for
    Failed = -1      // also when an entry, or the table itself, lies beyond 4 GiB
};

struct FragmentTable {
    FragmentTableResult result = FragmentTableResult::Failed;
    uint32_t consumed = 0;      // bytes from the first item to behind the delimiter
    bool hasDelimiter = false;  // a scan tolerates that it is missing
};

// Builds the table of pixelData, whose items start at its fileOffset, and leaves the reader behind
// its sequence delimitation item. Without a result of Built the node has no table, and the reader
// stands anywhere. Throws std::bad_alloc.
[[nodiscard]] FragmentTable BuildFragmentTable(StreamReader& reader, PGX_Node& pixelData,
                                               bool scan);

}  // namespace pgkit
