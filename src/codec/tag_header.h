// The header of a data element, item or delimiter: tag, value representation, length.
#pragma once

#include <cstdint>

#include "base/byte_order.h"
#include "codec/stream_reader.h"

namespace pgkit {

struct TagHeader {
    uint16_t group;
    uint16_t element;
    uint32_t valueRep;  // VR_Unknown for items, delimiters and in implicit VR
    uint32_t length;

    bool IsItem() const { return group == 0xFFFE && element == 0xE000; }
    bool IsItemDelimitation() const { return group == 0xFFFE && element == 0xE00D; }
    bool IsSequenceDelimitation() const { return group == 0xFFFE && element == 0xE0DD; }
};

// Reads a header. Fails at the end of the stream, on the tag (FFFF,FFFF), and on an explicit UT
// whose reserved bytes are not zero. The bytes read up to the failure stay consumed: a sequence
// whose item header fails goes on behind them.
[[nodiscard]] bool ReadTagHeader(StreamReader& reader, ByteOrder order, bool implicitVr,
                                 TagHeader& header);

// The same of an item of encapsulated Pixel Data, or of what ends them. Items are little endian,
// and have no VR field, in every transfer syntax with fragments.
[[nodiscard]] bool ReadItemHeader(StreamReader& reader, TagHeader& header);

}  // namespace pgkit
