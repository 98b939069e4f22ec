// Values that are too long for the header of their VR.
#pragma once

#include "pgkit/node.h"

namespace pgtool {

// Gives the VR UN to every element whose value does not fit the 16-bit length of its VR in explicit
// VR. The bytes are then little endian, as those of an UN element are in every transfer syntax.
// False when such a value cannot be converted to that.
bool MakeLongValuesUn(PGX_Node& root);

}  // namespace pgtool
