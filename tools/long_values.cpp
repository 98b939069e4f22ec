#include "long_values.h"

#include <vector>

#include "value_kinds.h"

namespace pgtool {

namespace {

constexpr uint32_t kFirstTooLong = 65535;

bool HasShortHeader(uint32_t valueRep) {
    switch (valueRep) {
        case VR_OB:
        case VR_OW:
        case VR_OWOB:
        case VR_OF:
        case VR_SQ:
        case VR_UN:
        case VR_UT:
        case VR_Unknown:
            return false;
        default:
            return true;
    }
}

// More than a short VR's value is worth, and less than a length may claim.
constexpr uint32_t kLongest = 256 << 20;

// Getters give numbers in the host's byte order, which is little endian wherever this runs, and the
// bytes of an UN element are stored as they come.
bool MakeUn(PGX_Node& element) {
    if (element.endian != ET_BigEndian) {
        element.valueRep = VR_UN;
        return true;
    }
    if (element.length > kLongest) return false;
    std::vector<char> value(size_t{element.length} + 1);
    if (element.GetValue(value.data()) == 0) return false;
    element.valueRep = VR_UN;
    return element.SetValue(value.data(), element.length) != 0;
}

}  // namespace

bool MakeLongValuesUn(PGX_Node& root) {
    std::vector<PGX_Node*> parents{&root};
    while (!parents.empty()) {
        PGX_Node* const parent = parents.back();
        parents.pop_back();
        for (PGX_Node* node = parent->first; node != nullptr; node = node->next) {
            if (node->first != nullptr) parents.push_back(node);
            const bool isTooLong = node->nodeType == NT_DataElement && node->encapsulated == 0 &&
                                   node->length >= kFirstTooLong &&
                                   node->length != kUndefinedLength &&
                                   HasShortHeader(node->valueRep);
            if (isTooLong && !MakeUn(*node)) return false;
        }
    }
    return true;
}

}  // namespace pgtool
