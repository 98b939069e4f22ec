#include "value_kinds.h"

#include "pgkit/value_representation.h"

namespace pgtool {

ValueKind KindOf(uint32_t valueRep) {
    switch (valueRep) {
        case VR_US:
        case VR_USSS:
        case VR_SS:
        case VR_UL:
        case VR_SL:
        case VR_UV:
        case VR_SV:
            return ValueKind::Integer;
        case VR_FL:
        case VR_FD:
            return ValueKind::Real;
        case VR_AT:
            return ValueKind::Tags;
        case VR_SQ:
            return ValueKind::Sequence;
        case VR_OB:
        case VR_OW:
        case VR_OWOB:
        case VR_OF:
        case VR_OD:
        case VR_OL:
        case VR_OV:
            return ValueKind::Bytes;
        case VR_UN:
        case VR_Unknown:
            return ValueKind::Unknown;
        default:
            return ValueKind::Text;
    }
}

size_t SizeOfNumber(uint32_t valueRep) {
    switch (valueRep) {
        case VR_FD:
        case VR_OD:
        case VR_OV:
        case VR_SV:
        case VR_UV:
            return 8;
        case VR_AT:
        case VR_FL:
        case VR_OF:
        case VR_OL:
        case VR_SL:
        case VR_UL:
            return 4;
        default:
            return 2;
    }
}

}  // namespace pgtool
