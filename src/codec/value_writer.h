// Value bytes on their way to the output: from memory or from a stream, swapped unit by unit when
// the output's byte order is the other one. At most OutputWriter::kCapacity bytes are held.
#pragma once

#include <cstdint>

#include "codec/output_writer.h"
#include "codec/stream_reader.h"

namespace pgkit {

// A rest that fills no unit is written as it is, so that exactly length bytes are written.
WriteResult WriteValue(const uint8_t* value, uint32_t vr, uint32_t length, OutputWriter& out,
                       bool swap);

// Copies from where source stands. A source that ends one byte early is completed with a zero byte:
// files whose last value has an odd length without its pad byte stay writable. kNoSource for a null
// source, kReadFailed for one that ends earlier.
WriteResult CopyValue(StreamReader* source, uint32_t vr, uint64_t length, OutputWriter& out,
                      bool swap);

// The same without swapping, and without the tolerance: a fragment is there in full or not at all.
WriteResult CopyFragment(StreamReader* source, uint32_t length, OutputWriter& out);

}  // namespace pgkit
