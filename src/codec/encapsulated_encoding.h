// Encapsulated Pixel Data on its way to the output.
#pragma once

#include "base/byte_order.h"
#include "codec/output_writer.h"
#include "codec/source_streams.h"
#include "pgkit/node.h"

namespace pgkit {

// Writes the element: an empty Basic Offset Table and one item for each fragment of its table. What
// has no table is copied from its file, item by item and with the Basic Offset Table that stands
// there; where the file ends before there is an item, nothing is copied.
WriteResult WriteEncapsulated(const PGX_Node& pixelData, ByteOrder order, SourceStreams& sources,
                              OutputWriter& out);

}  // namespace pgkit
