#include "pgkit/long_values.h"

#include <memory>

#include "base/byte_order.h"
#include "base/firewall.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/vr_properties.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

bool IsTooLong(const PGX_Node& node) {
    return HasValue(node) && node.first == nullptr && node.length >= kFirstTooLongForShortHeader &&
           !HasLongHeader(node.valueRep);
}

// False when the value cannot be read or stored.
bool MakeUn(PGX_Node& node) {
    const size_t unit = node.endian == ET_BigEndian ? SwapUnit(node.valueRep) : 1;
    if (unit == 1 || AvailableLength(node) < node.length) {
        node.valueRep = VR_UN;
        return true;
    }
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(node.length);
    if (FetchValue(node, 0, bytes.get(), node.length) != node.length) return false;
    SwapUnits(bytes.get(), node.length, unit);
    node.valueRep = VR_UN;
    return node.SetValue(bytes.get(), node.length) == 1;
}

struct LongValues {
    bool areChanged = true;

    WalkStep Enter(PGX_Node& node, size_t) {
        areChanged = !IsTooLong(node) || MakeUn(node);
        return areChanged ? WalkStep::Continue : WalkStep::Unwind;
    }
    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }
};

}  // namespace

}  // namespace pgkit

int32_t pgxMakeLongValuesUn(PGX_Node* root) {
    return pgkit::Guarded([=] {
        if (root == nullptr) return 0;
        pgkit::LongValues values;
        pgkit::WalkTree(*root, values);
        return values.areChanged ? 1 : 0;
    });
}
