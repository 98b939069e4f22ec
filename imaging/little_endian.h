// Numbers as DICOM's compressed frames and bitmaps hold them, at any address.
#pragma once

#include <cstdint>

namespace pgview {

inline uint16_t Load16(const uint8_t* bytes) {
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

inline uint32_t Load32(const uint8_t* bytes) {
    return Load16(bytes) | static_cast<uint32_t>(Load16(bytes + 2)) << 16;
}

inline void Store16(uint8_t* bytes, uint16_t n) {
    bytes[0] = static_cast<uint8_t>(n & 0xFF);
    bytes[1] = static_cast<uint8_t>(n >> 8);
}

inline void Store32(uint8_t* bytes, uint32_t n) {
    Store16(bytes, static_cast<uint16_t>(n & 0xFFFF));
    Store16(bytes + 2, static_cast<uint16_t>(n >> 16));
}

}  // namespace pgview
