// The built-in table of data elements: constant rows, and indexes made by the compiler.
#pragma once

#include <cstdint>
#include <string_view>

namespace pgkit {

constexpr uint32_t kElementCount = 3782;
constexpr uint32_t kNoElementId = 0xFFFFFFFF;

struct DictionaryEntry {
    uint16_t group;
    uint16_t element;
    uint8_t repeating;  // the row answers for all groups with its high byte
    uint8_t valueRep;
    const char* name;
};

// The row of an identifier below kElementCount.
const DictionaryEntry& ElementEntry(uint32_t elementId);

// The identifier of the first row with exactly this tag, or kNoElementId.
uint32_t FindElementId(uint16_t group, uint16_t element);

// The identifier of the first row of this name, case ignored, or kNoElementId.
uint32_t FindElementIdByName(std::string_view name);

// The first row that has this tag, or whose repeating group covers it; null when there is none.
const DictionaryEntry* FindEntry(uint16_t group, uint16_t element);

}  // namespace pgkit
