// Directory records: the items of (0004,1220), made from the objects of a hierarchy. All throw
// std::bad_alloc.
#pragma once

#include <cstdint>
#include <string_view>

#include "dataset/node_ptr.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// The links of a record: elements whose values are set when the file is written.
constexpr uint16_t kNextRecordLink = 0x1400;
constexpr uint16_t kLowerLevelLink = 0x1420;

NodeTree NewPatientItem(const PGX_DicomDirPatientNode& patient);
NodeTree NewStudyItem(const PGX_DicomDirStudyNode& study);
NodeTree NewSeriesItem(const PGX_DicomDirSeriesNode& series);
// A leaf's size is written when it is known, or when it is wanted anyway.
NodeTree NewLeafItem(const PGX_DicomDirLeafNode& leaf, bool wantsFileSize);

// Adds an element to a data set.
void PutBytes(PGX_Node& dataSet, uint16_t group, uint16_t element, const void* data, uint32_t size);
void PutText(PGX_Node& dataSet, uint16_t group, uint16_t element, std::string_view text);
template <typename Number>
void PutNumber(PGX_Node& dataSet, uint16_t group, uint16_t element, Number number) {
    PutBytes(dataSet, group, element, &number, sizeof number);
}

}  // namespace pgkit
