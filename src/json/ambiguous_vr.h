// What a dictionary that says "OW or OB" means where no transfer syntax and no header says it.
#pragma once

#include <cstdint>

#include "pgkit/value_representation.h"

namespace pgkit {

// As in implicit VR little endian: the data of curves and of audio, in the groups 50xx, are bytes.
constexpr uint32_t OwOrOb(uint16_t group) { return (group & 0xFF00) == 0x5000 ? VR_OB : VR_OW; }

}  // namespace pgkit
