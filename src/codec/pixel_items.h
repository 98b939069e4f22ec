// The items of encapsulated Pixel Data as they stand in a stream, and the frames that they make.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "codec/stream_reader.h"
#include "pgkit/frames.h"
#include "pgkit/node.h"

namespace pgkit {

struct PixelItems {
    struct Fragment {
        uint64_t start;     // of its item header, counted from that of the first fragment
        uint64_t position;  // of its value, in the stream
        uint32_t length;    // of that, as far as the stream holds it
    };
    enum class End {
        Delimiter,
        OtherTag,    // the reader stands behind a header that is no item's
        StreamsEnd,  // without a delimiter, or in a fragment
        Nothing      // there is no offset table, not even an empty one
    };

    std::vector<uint64_t> offsets;  // of the Basic Offset Table
    std::vector<Fragment> fragments;
    uint32_t bytes = 0;  // from the first header to behind the delimiter, by the declared lengths
    End end = End::Nothing;
    uint64_t endPosition = 0;  // of the header that ends them, in the stream
};

// Reads the headers from the reader's position on. Throws std::bad_alloc.
PixelItems ReadPixelItems(StreamReader& reader);

// The fragments that frames begin with, in order.
struct FrameStarts {
    PgxFrameSource source = PGX_FRAMES_NONE;
    std::vector<size_t> fragments;
    std::vector<uint64_t> lengths;  // of the frames, where they are known without padding
};

// What of pgkit/frames.h is consistent for the Pixel Data of a data set. Throws std::bad_alloc.
FrameStarts FindFrameStarts(PGX_Node& dataSet, const PixelItems& items);

// Loads the fragments that stand at the reader's position into the table of pixelData: one entry
// for each or, where the Basic Offset Table says which fragments make a frame, for each frame.
// Leaves the reader behind them. Throws std::bad_alloc.
PixelItems LoadFragments(StreamReader& reader, PGX_Node& dataSet, PGX_Node& pixelData);

}  // namespace pgkit
