// The header of a data element, item or delimiter: tag, value representation, length.
#pragma once

#include <cstdint>

#include "base/byte_order.h"
#include "codec/stream_reader.h"

namespace pgkit {

struct TagHeader {
    // As one number: what was just stored in two parts would have to come to memory before both
    // could be compared at once.
    uint32_t tag;
    uint32_t valueRep;  // VR_Unknown for items, delimiters and in implicit VR
    uint32_t length;

    uint16_t Group() const { return static_cast<uint16_t>(tag >> 16); }
    uint16_t Element() const { return static_cast<uint16_t>(tag); }
    bool IsItem() const { return tag == 0xFFFEE000; }
    bool IsItemDelimitation() const { return tag == 0xFFFEE00D; }
    bool IsSequenceDelimitation() const { return tag == 0xFFFEE0DD; }
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
