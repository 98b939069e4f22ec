// Deflated bytes, composed by hand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "support/stream_builder.h"

namespace pgkit_test {

constexpr char kDeflatedSyntax[] = "1.2.840.10008.1.2.1.99";

// In stored blocks: as they are, with a header for each of at most 65,535 bytes.
inline Bytes Deflated(std::span<const uint8_t> bytes) {
    StreamBuilder result;
    do {
        const size_t size = std::min<size_t>(bytes.size(), 0xFFFF);
        const bool isLast = size == bytes.size();
        result.Append({static_cast<uint8_t>(isLast ? 1 : 0)});
        result.U16(static_cast<uint16_t>(size)).U16(static_cast<uint16_t>(~size));
        result.Append(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        bytes = bytes.subspan(size);
    } while (!bytes.empty());
    return result.Data();
}

inline Bytes Deflated(const StreamBuilder& stream) { return Deflated(stream.Data()); }

// As many zeros as that, and up to 257 more: each 13 bits say "258 times the byte before".
inline Bytes DeflatedZeros(uint64_t count) {
    Bytes bytes;
    uint64_t bits = 0;
    int used = 0;
    const auto put = [&](uint64_t value, int size) {
        bits |= value << used;
        for (used += size; used >= 8; used -= 8, bits >>= 8)
            bytes.push_back(static_cast<uint8_t>(bits));
    };
    put(0b011, 3);       // the last block, of fixed codes
    put(0b00001100, 8);  // a zero
    for (uint64_t i = 1; i < count; i += 258)
        put(0b0000010100011,
            13);  // length 258, distance 1; Huffman codes begin with their high bit
    put(0, 7);
    put(0, 7);  // up to the end of a byte
    return bytes;
}

// A Part 10 file of this syntax with what stands behind its File Meta Information.
inline Bytes DeflatedFile(const Bytes& deflated) {
    return StreamBuilder().Part10(kDeflatedSyntax).Append(deflated).Data();
}

}  // namespace pgkit_test
