// What the encoding rules make of a value representation. All constant time, all by code.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pgkit/value_representation.h"

namespace pgkit {

constexpr uint32_t kVrCount = 29;

// Whether the explicit header has two reserved bytes and a 32-bit length. A VR field that names no
// VR is taken for a long one.
constexpr bool HasLongHeader(uint32_t vr) {
    switch (vr) {
        case VR_OB:
        case VR_OW:
        case VR_OWOB:
        case VR_OF:
        case VR_SQ:
        case VR_UN:
        case VR_UT:
        case VR_Unknown:
            return true;
        default:
            return false;
    }
}

constexpr uint32_t kShortHeaderSize = 8;
constexpr uint32_t kLongHeaderSize = 12;

// Values of this length and longer ones are not written with a length of 16 bits.
constexpr uint32_t kFirstTooLongForShortHeader = 65535;

// Bytes of tag, VR field and length field. In implicit VR there is no VR field, and every length
// has 32 bits.
constexpr uint32_t HeaderSize(uint32_t vr, bool explicitVr) {
    return HasLongHeader(vr) && explicitVr ? kLongHeaderSize : kShortHeaderSize;
}

// Bytes of the unit in which values are swapped when they are read, copied or written between byte
// orders; 1 for values that are bytes or text.
constexpr size_t SwapUnit(uint32_t vr) {
    switch (vr) {
        case VR_UL:
        case VR_FL:
        case VR_SL:
        case VR_OF:
            return 4;
        case VR_US:
        case VR_AT:
        case VR_SS:
        case VR_USSS:
        case VR_OWOB:
        case VR_OW:
            return 2;
        case VR_FD:
            return 8;
        default:
            return 1;
    }
}

// The code that the two characters of an explicit header name, or VR_Unknown.
uint32_t VrFromCharacters(char first, char second);

// What stands in the place of the name of a code that has none.
inline constexpr const char* kUnknownVr = "????";

// The printable name of a code, or null when there is none.
const char* VrName(uint32_t vr);

}  // namespace pgkit
