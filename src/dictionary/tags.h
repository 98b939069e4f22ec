// Tags, and what the encoding rules make of their numbers.
#pragma once

#include <cstdint>

namespace pgkit {

// A tag in one number, by which data sets are in order.
constexpr uint32_t TagKey(uint16_t group, uint16_t element) {
    return (uint32_t{group} << 16) | element;
}

// The group of the File Meta Information.
constexpr uint16_t kMetaGroup = 0x0002;

// Whether readers take this for the tag of an element. Group FFFE has the items and delimiters, and
// (FFFF,FFFF) ends a data set: an element of such a tag would take what follows it along.
constexpr bool IsElementTag(uint16_t group, uint16_t element) {
    return group != 0xFFFE && !(group == 0xFFFF && element == 0xFFFF);
}

constexpr bool IsBitsAllocated(uint16_t group, uint16_t element) {
    return group == 0x0028 && element == 0x0100;
}

constexpr bool IsPixelData(uint16_t group, uint16_t element) {
    return group == 0x7FE0 && element == 0x0010;
}

constexpr bool IsPrivateGroup(uint16_t group) { return (group & 1) != 0; }

// A private creator reserves a block of its (odd) group.
constexpr bool IsPrivateCreator(uint16_t group, uint16_t element) {
    return IsPrivateGroup(group) && element >= 0x0010 && element <= 0x00FF;
}

}  // namespace pgkit
