#include "dictionary/vr_properties.h"

#include <array>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "pgkit/dictionary.h"

namespace pgkit {

namespace {

constexpr bool IsUpperLetter(char c) { return c >= 'A' && c <= 'Z'; }

constexpr size_t PairIndex(char first, char second) {
    return static_cast<size_t>(first - 'A') * 26 + static_cast<size_t>(second - 'A');
}

// Codes by the two letters of a header. The four-letter names of the ambiguous VRs never stand in a
// header.
constexpr auto kCodeByPair = [] {
    std::array<uint8_t, size_t{26} * 26> codes{};
    codes.fill(VR_Unknown);
    for (size_t code = 0; code < kVrRows.size(); ++code) {
        const char* name = kVrRows[code].name;
        if (name[2] == '\0') codes[PairIndex(name[0], name[1])] = static_cast<uint8_t>(code);
    }
    return codes;
}();

}  // namespace

uint32_t VrFromCharacters(char first, char second) {
    if (!IsUpperLetter(first) || !IsUpperLetter(second)) return VR_Unknown;
    const uint32_t code = kCodeByPair[PairIndex(first, second)];
    return code < kBuiltInVrCount || code < VrCount() ? code : uint32_t{VR_Unknown};
}

uint32_t VrFromName(std::string_view name) {
    if (name.size() == 2) return VrFromCharacters(name[0], name[1]);
    if (name == kVrRows[VR_USSS].name) return VR_USSS;
    if (name == kVrRows[VR_OWOB].name) return VR_OWOB;
    return VR_Unknown;
}

const char* VrName(uint32_t vr) { return vr < VrCount() ? kVrRows[vr].name : nullptr; }

}  // namespace pgkit

using pgkit::Guarded;

uint32_t pgFindValueRepresentationVR(const char* text) {
    return Guarded([=] { return pgkit::VrFromName(pgkit::OrEmpty(text)); }, VR_Unknown);
}

uint32_t pgGetVRPrintableName(uint32_t valueRep, char* buffer) {
    return Guarded([=] {
        pgkit::CopyUnbounded(buffer, pgkit::PropertiesOf(valueRep).name);
        return pgkit::VrName(valueRep) != nullptr ? 1u : 0u;
    });
}

uint32_t pgIsCharsetEncodedVR(uint32_t valueRep) {
    return Guarded([=] {
        const auto& properties = pgkit::PropertiesOf(valueRep);
        return properties.characters == pgkit::VrCharacters::OfDataSet ? 1u : 0u;
    });
}

uint32_t pgIsCharsetEncodedVRValue(const char* text) {
    return pgIsCharsetEncodedVR(pgFindValueRepresentationVR(text));
}
