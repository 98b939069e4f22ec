// Sizes and marks that every DICOM file has, whatever its encoding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pgkit {

// A Part 10 file starts with bytes of any content, and then this prefix.
constexpr size_t kPreambleSize = 128;
constexpr std::string_view kPrefix = "DICM";

// The value of File Meta Information Version (0002,0001).
inline constexpr uint8_t kMetaInformationVersion[] = {0x00, 0x01};

// Items and delimiters: a tag and a length.
constexpr uint32_t kItemHeaderSize = 8;

}  // namespace pgkit
