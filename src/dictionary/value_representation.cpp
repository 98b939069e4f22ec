#include <array>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dictionary/vr_traits.h"
#include "pgkit/dictionary.h"

namespace pgkit {

namespace {

// In the order of the codes.
constexpr std::array<const char*, kVrCount> kNames = {
    "UL", "UI", "US", "AE", "AT", "LO", "OB", "SH", "CS",   "SQ", "DA", "TM", "DT",   "ST", "PN",
    "IS", "DS", "LT", "FL", "AS", "SL", "FD", "SS", "USSS", "OW", "UT", "OF", "OWOB", "UN"};

constexpr bool IsUpperLetter(char c) { return c >= 'A' && c <= 'Z'; }

constexpr size_t PairIndex(char first, char second) {
    return static_cast<size_t>(first - 'A') * 26 + static_cast<size_t>(second - 'A');
}

// Codes by the two letters of a header. The four-letter names of the ambiguous VRs never stand in a
// header.
constexpr auto kCodeByPair = [] {
    std::array<uint8_t, size_t{26} * 26> codes{};
    codes.fill(VR_Unknown);
    for (size_t code = 0; code < kNames.size(); ++code) {
        const char* name = kNames[code];
        if (name[2] == '\0') codes[PairIndex(name[0], name[1])] = static_cast<uint8_t>(code);
    }
    return codes;
}();

uint32_t VrOfName(std::string_view name) {
    if (name.size() == 2) return VrFromCharacters(name[0], name[1]);
    if (name == kNames[VR_USSS]) return VR_USSS;
    if (name == kNames[VR_OWOB]) return VR_OWOB;
    return VR_Unknown;
}

uint32_t IsCharsetEncoded(uint32_t vr) {
    switch (vr) {
        case VR_SH:
        case VR_LO:
        case VR_ST:
        case VR_LT:
        case VR_PN:
        case VR_UT:
            return 1;
        default:
            return 0;
    }
}

}  // namespace

uint32_t VrFromCharacters(char first, char second) {
    if (!IsUpperLetter(first) || !IsUpperLetter(second)) return VR_Unknown;
    return kCodeByPair[PairIndex(first, second)];
}

const char* VrName(uint32_t vr) { return vr < kNames.size() ? kNames[vr] : nullptr; }

}  // namespace pgkit

using pgkit::Guarded;

uint32_t pgFindValueRepresentationVR(const char* text) {
    return Guarded([=] { return pgkit::VrOfName(pgkit::OrEmpty(text)); }, VR_Unknown);
}

uint32_t pgGetVRPrintableName(uint32_t valueRep, char* buffer) {
    return Guarded([=] {
        const char* const name = pgkit::VrName(valueRep);
        pgkit::CopyUnbounded(buffer, name != nullptr ? name : pgkit::kUnknownVr);
        return name != nullptr ? 1u : 0u;
    });
}

uint32_t pgIsCharsetEncodedVR(uint32_t valueRep) {
    return Guarded([=] { return pgkit::IsCharsetEncoded(valueRep); });
}

uint32_t pgIsCharsetEncodedVRValue(const char* text) {
    return Guarded([=] { return pgkit::IsCharsetEncoded(pgkit::VrOfName(pgkit::OrEmpty(text))); });
}
