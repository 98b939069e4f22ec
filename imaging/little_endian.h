// Numbers of DICOM's compressed frames and of BMP files, at any address.
#pragma once

#include <cstdint>

#include "base/byte_order.h"

namespace pgview {

inline uint16_t Load16(const uint8_t* bytes) {
    return pgkit::NumberAt<uint16_t>(bytes, pgkit::ByteOrder::Little);
}

inline uint32_t Load32(const uint8_t* bytes) {
    return pgkit::NumberAt<uint32_t>(bytes, pgkit::ByteOrder::Little);
}

inline void Store32(uint8_t* bytes, uint64_t n) {
    pgkit::PutNumber(bytes, static_cast<uint32_t>(n), pgkit::ByteOrder::Little);
}

}  // namespace pgview
