// Copies of sequences for directory records: those that leaves have from their files, and those
// that are written into records.
//
// One file must not spoil the directory of all. Whatever a sequence holds, its copy is written with
// right lengths and read again, by any reader, as the same copy with the next record behind it.
// What cannot stand in a record so is left out, and no more than that:
//
//   - elements below group 0008 (they belong to commands, to File Meta Information and to
//     directories), above FFFD (items and delimiters) and group lengths (they count what is not
//     copied);
//   - values that are encapsulated, have no end, are not there in full, are no whole count of
//     numbers, or are too long for the length field that their VR has in explicit VR; Pixel Data
//     that reads as a sequence;
//   - VR codes that have no name;
//   - values of unknown VR in private groups and in elements that are sequences: whoever knows the
//     element from a dictionary reads sequence items from what may be none;
//   - sequences nested deeper than kMaxRecordNesting levels, and values above kMaxRecordCopy bytes.
//
// An item or a sequence that is empty then is left out, too: an empty code is none.
// Values of odd length are padded.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dataset/node_ptr.h"
#include "pgkit/node.h"

namespace pgkit {

// The sequence that is copied counts as the first. This is far below the nesting that the library
// reads: other readers recurse, or take time out of proportion, when they show deep sequences.
constexpr size_t kMaxRecordNesting = 64;

// A sequence that is written with more bytes has no copy at all. Links between records have 32
// bits: a DICOMDIR must not grow beyond what they reach.
constexpr uint32_t kMaxRecordCopy = 16 << 20;

using WantsItem = bool (*)(PGX_Node& item);

// A deep copy of a sequence without its following siblings: values in memory and in host byte
// order, tied to no file. Where it is asked, only the items that are wanted are copied. Null for
// null and when no element is left of it. Throws std::bad_alloc.
NodeTree CopyForRecord(PGX_Node* sequence, WantsItem wantsItem = nullptr);

}  // namespace pgkit
