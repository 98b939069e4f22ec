// The transfer syntax that a file says it has, and the encoding that it is written in.
#pragma once

#include <cstdint>

#include "codec/write_result.h"
#include "pgkit/node.h"

namespace pgkit {

// The write modes that have File Meta Information.
constexpr uint32_t kMetaModes = PG_META | PG_META_IMPLICIT_VR;

// Brings the transfer syntax element of a tree and the mode of a save into agreement. What the mode
// leaves open comes from the element; what it says in full becomes the element's value. The data of
// any syntax but the native ones cannot be turned into another: they stay explicit VR little
// endian.
//
// With File Meta Information, what is written reads back as what it is:
// - the element says the encoding that is written, and is inserted where it is missing and readers
//   would take another for granted;
// - the File Meta Information precedes elements of lower groups;
// - encapsulated Pixel Data make the encoding explicit VR little endian, the only one they have;
// - implicit VR is little endian, since no transfer syntax has it in big endian; and so is a data
//   set that in big endian would seem to go on with File Meta Information.
//
// kReadFailed when the element's value cannot be read, kOutOfMemory when it cannot be set. Throws
// std::bad_alloc.
WriteResult AgreeOnSyntax(PGX_Node& root, uint32_t& mode);

}  // namespace pgkit
