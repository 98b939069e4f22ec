// The value representations: one row for each, with everything that depends on it. All lookups take
// constant time and are by code. The codes of the current edition are unknown in the built-in one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dictionary/edition.h"
#include "pgkit/value_representation.h"

namespace pgkit {

// How values are printed, and what they are made of.
enum class VrKind : uint8_t {
    Text,
    Uid,
    Bytes,
    Sequence,
    UInt16,
    Int16,
    TagHalves,
    UInt32,
    Int32,
    Float32,
    Float64,
    UInt64,
    Int64,
};

// Of the header in explicit VR: the long one has two reserved bytes and a length of 32 bits.
enum class VrHeader : uint8_t { Short, Long };

// Whether the value is text in the data set's Specific Character Set.
enum class VrCharacters : uint8_t { None, OfDataSet };

struct VrProperties {
    char name[5];
    VrHeader header;
    uint8_t swapUnit;        // bytes swapped together when values are read, copied or written
    uint8_t setterSwapUnit;  // the same when a host sets a value
    uint8_t pad;             // makes a value's length even
    VrKind kind;
    VrCharacters characters;

    constexpr bool IsLong() const { return header == VrHeader::Long; }
};

// In the order of the codes. Two rows are odd. OW is swapped everywhere but in a setter: hosts rely
// on it. Blanks pad binary values too, apart from OB.
inline constexpr std::array kVrRows = {
    VrProperties{"UL", VrHeader::Short, 4, 4, ' ', VrKind::UInt32, VrCharacters::None},
    VrProperties{"UI", VrHeader::Short, 1, 1, '\0', VrKind::Uid, VrCharacters::None},
    VrProperties{"US", VrHeader::Short, 2, 2, ' ', VrKind::UInt16, VrCharacters::None},
    VrProperties{"AE", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"AT", VrHeader::Short, 2, 2, ' ', VrKind::TagHalves, VrCharacters::None},
    VrProperties{"LO", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"OB", VrHeader::Long, 1, 1, '\0', VrKind::Bytes, VrCharacters::None},
    VrProperties{"SH", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"CS", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"SQ", VrHeader::Long, 1, 1, ' ', VrKind::Sequence, VrCharacters::None},
    VrProperties{"DA", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"TM", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"DT", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"ST", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"PN", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"IS", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"DS", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"LT", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"FL", VrHeader::Short, 4, 4, ' ', VrKind::Float32, VrCharacters::None},
    VrProperties{"AS", VrHeader::Short, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"SL", VrHeader::Short, 4, 4, ' ', VrKind::Int32, VrCharacters::None},
    VrProperties{"FD", VrHeader::Short, 8, 8, ' ', VrKind::Float64, VrCharacters::None},
    VrProperties{"SS", VrHeader::Short, 2, 2, ' ', VrKind::Int16, VrCharacters::None},
    VrProperties{"USSS", VrHeader::Short, 2, 2, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"OW", VrHeader::Long, 2, 1, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"UT", VrHeader::Long, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"OF", VrHeader::Long, 4, 4, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"OWOB", VrHeader::Long, 2, 2, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"UN", VrHeader::Long, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    // Those of the current edition.
    VrProperties{"OD", VrHeader::Long, 8, 8, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"OL", VrHeader::Long, 4, 4, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"OV", VrHeader::Long, 8, 8, ' ', VrKind::Bytes, VrCharacters::None},
    VrProperties{"SV", VrHeader::Long, 8, 8, ' ', VrKind::Int64, VrCharacters::None},
    VrProperties{"UC", VrHeader::Long, 1, 1, ' ', VrKind::Text, VrCharacters::OfDataSet},
    VrProperties{"UR", VrHeader::Long, 1, 1, ' ', VrKind::Text, VrCharacters::None},
    VrProperties{"UV", VrHeader::Long, 8, 8, ' ', VrKind::UInt64, VrCharacters::None},
};

constexpr uint32_t kBuiltInVrCount = 29;
constexpr uint32_t kCurrentVrCount = kVrRows.size();
static_assert(kVrRows[VR_UN].name[0] == 'U' && VR_UN == kBuiltInVrCount - 1);
static_assert(kVrRows[VR_UV].name[1] == 'V' && VR_UV == kCurrentVrCount - 1);

// The name of a code that has none.
inline constexpr char kUnknownVrName[] = "????";

// A VR field that names no VR is taken for a long one; a code without a meaning, for a short one.
inline constexpr VrProperties kUnknownVrRow = {"????",       VrHeader::Long,    1, 1, ' ',
                                               VrKind::Text, VrCharacters::None};
inline constexpr VrProperties kNoVrRow = {"????",       VrHeader::Short,   1, 1, ' ',
                                          VrKind::Text, VrCharacters::None};

// The codes below this number mean something in the edition that is used.
inline uint32_t VrCount() { return UsesCurrentEdition() ? kCurrentVrCount : kBuiltInVrCount; }

inline const VrProperties& PropertiesOf(uint32_t vr) {
    // Nearly all codes are those of every edition.
    if (vr < kBuiltInVrCount || vr < VrCount()) return kVrRows[vr];
    return vr == VR_Unknown ? kUnknownVrRow : kNoVrRow;
}

constexpr uint32_t kShortHeaderSize = 8;
constexpr uint32_t kLongHeaderSize = 12;

// Values of this length and longer ones are not written with a length of 16 bits.
constexpr uint32_t kFirstTooLongForShortHeader = 65535;

inline bool HasLongHeader(uint32_t vr) { return PropertiesOf(vr).IsLong(); }

// Bytes of tag, VR field and length field. In implicit VR there is no VR field, and every length
// has 32 bits.
inline uint32_t HeaderSize(uint32_t vr, bool explicitVr) {
    return explicitVr && HasLongHeader(vr) ? kLongHeaderSize : kShortHeaderSize;
}

inline size_t SwapUnit(uint32_t vr) { return PropertiesOf(vr).swapUnit; }

// The code that the two characters of an explicit header name, or VR_Unknown.
uint32_t VrFromCharacters(char first, char second);

// The code of a printable name, or VR_Unknown.
uint32_t VrFromName(std::string_view name);

// The printable name of a code, or null when there is none.
const char* VrName(uint32_t vr);

}  // namespace pgkit
