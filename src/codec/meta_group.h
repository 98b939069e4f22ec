// Where a stream's data set starts and how it is encoded: preamble and File Meta Information, or
// the look of the first bytes.
#pragma once

#include <cstdint>
#include <string>

#include "codec/parse_end.h"
#include "codec/stream_reader.h"
#include "codec/transfer_syntax.h"
#include "codec/tree_builder.h"
#include "dataset/node_ptr.h"

namespace pgkit {

struct StreamStart {
    enum class State {
        Whole,
        MetaCut,  // a header of the File Meta Information, or behind it, cannot be read
        Nothing   // fewer than 6 bytes
    };
    State state = State::Whole;
    bool hasMeta = false;
    Encoding encoding{true, ByteOrder::Little};
    std::string transferSyntax;    // without padding; empty without (0002,0010)
    NodeTree metaElements;         // the elements of group 0002, in stream order
    PGX_Node* lastMeta = nullptr;  // the last of them
    ParseEnd end;                  // of MetaCut
};

// Reads up to the first element of the data set. flags are PgOpenFlags. Throws std::bad_alloc.
[[nodiscard]] StreamStart ReadStreamStart(StreamReader& reader, TreeBuilder& builder,
                                          uint32_t flags);

// Whether "DICM" stands 128 bytes behind the reader's position. When it does, the reader is left
// behind it.
[[nodiscard]] bool SkipPreamble(StreamReader& reader);

}  // namespace pgkit
