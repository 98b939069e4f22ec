// The built-in tables of UIDs, modalities and SOP class categories: constant rows, and indexes made
// by the compiler. Lookups are exact and case-sensitive; the first equal row wins.
#pragma once

#include <cstdint>
#include <string_view>

namespace pgkit {

// A storage SOP class.
struct ModalityRow {
    const char* uid;
    const char* mnemonic;
};

struct ModalityNameRow {
    const char* code;
    const char* description;
};

struct UidRow {
    const char* uid;
    const char* name;
};

// A bit each, for sets of categories.
enum class SopCategory : uint16_t {
    None = 0x000,
    Image = 0x001,
    Report = 0x002,
    Waveform = 0x004,
    KeyObject = 0x008,
    Presentation = 0x010,
    RtDose = 0x020,
    RtStructureSet = 0x040,
    RtPlan = 0x080,
    Radiotherapy = 0x100
};

// Null when there is no such row.
const ModalityRow* FindModality(std::string_view sopClassUid);
const ModalityNameRow* FindModalityName(std::string_view code);
const UidRow* FindUid(std::string_view uid);

// The categories of a class, their bits together; none for an unknown one.
uint16_t CategoriesOf(std::string_view sopClassUid);

inline bool IsIn(uint16_t categories, SopCategory category) {
    return (categories & static_cast<uint16_t>(category)) != 0;
}
inline bool IsInCategory(std::string_view sopClassUid, SopCategory category) {
    return IsIn(CategoriesOf(sopClassUid), category);
}

}  // namespace pgkit
