// The keys of a directory record as the fixed-size texts and the numbers of its object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "bitmap/bitmap_handle.h"
#include "dicomdir/browse_limits.h"
#include "pgkit/directory_records.h"
#include "pgkit/node.h"

namespace pgkit {

struct KeyTag {
    uint16_t group;
    uint16_t element;
};

// Reads the first maxLength characters of a key; false when the record has none.
bool ReadKeyText(PGX_Node& record, KeyTag tag, char* out, size_t maxLength);

// Fills a field with a key, cut to fit. A key that the record lacks gives the text for that; one
// that is there without a value gives an empty text.
template <size_t Size>
void ReadKey(PGX_Node& record, KeyTag tag, char (&field)[Size], const char* absent = "") {
    if (!ReadKeyText(record, tag, field, Size - 1)) CopyToField(field, absent);
}

template <size_t Size>
void TrimField(char (&field)[Size]) {
    const std::string_view trimmed = TrimBlanks(field);
    if (!trimmed.empty()) std::memmove(field, trimmed.data(), trimmed.size());
    field[trimmed.size()] = '\0';
}

// The same without the blanks at both ends; it is cut first.
template <size_t Size>
void ReadTrimmedKey(PGX_Node& record, KeyTag tag, char (&field)[Size], const char* absent = "") {
    ReadKey(record, tag, field, absent);
    TrimField(field);
}

// A number that is written as text, and one in binary.
int32_t ReadIntegerKey(PGX_Node& record, KeyTag tag, int32_t absent);
int32_t ReadUnsignedShortKey(PGX_Node& record, KeyTag tag);

// (0008,0005), at most 50 characters of it.
void ReadCharacterSet(PGX_Node& record, char (&field)[272]);

// The keys of the upper three levels into new objects.
void ReadPatientKeys(PGX_Node& record, PGX_DicomDirPatientNode& patient);
void ReadStudyKeys(PGX_Node& record, PGX_DicomDirStudyNode& study);
void ReadSeriesKeys(PGX_Node& record, PGX_DicomDirSeriesNode& series);

// Keys that a record has from its instance: the same elements in both.
template <typename Leaf>
void ReadContentDateAndTime(PGX_Node& source, Leaf& leaf) {
    ReadKey(source, {0x0008, 0x0023}, leaf.contentDate);
    ReadKey(source, {0x0008, 0x0033}, leaf.contentTime);
}
void ReadPresentationKeys(PGX_Node& source, PGX_DicomDirPresentationNode& presentation);
void ReadDocumentKeys(PGX_Node& source, PGX_DicomDirEncapsulatedDocNode& document);

// A bitmap of the record's Icon Image Sequence, null when it has none that can be shown, or none
// that the browse may still take.
BitmapHandle ReadIcon(PGX_Node& record, BrowseLimits& limits);

}  // namespace pgkit
