// Where a stream's data set starts and how it is encoded: preamble and File Meta Information, or
// the look of the first bytes.
#pragma once

#include <cstdint>
#include <optional>

#include "codec/stream_reader.h"
#include "codec/transfer_syntax.h"
#include "dataset/node_ptr.h"

namespace pgkit {

struct StreamStart {
    bool hasMeta = false;
    Encoding encoding{true, ByteOrder::Little};
    NodeTree metaElements;         // the elements of group 0002, in stream order
    PGX_Node* lastMeta = nullptr;  // the last of them
};

// Reads up to the first element of the data set. flags are PgOpenFlags. Nothing when the stream is
// no DICOM stream: a header of the meta group cannot be read, or fewer than 6 bytes stand there.
// Throws std::bad_alloc.
std::optional<StreamStart> ReadStreamStart(StreamReader& reader, uint32_t flags);

// Whether "DICM" stands 128 bytes behind the reader's position. When it does, the reader is left
// behind it.
bool SkipPreamble(StreamReader& reader);

}  // namespace pgkit
