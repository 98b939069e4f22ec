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
// any syntax but the native ones cannot be turned into another: they are written explicit VR little
// endian, and where readers would take the syntax for another encoding it becomes that one.
// Without a transfer syntax element the mode stands, and VR is explicit unless it says otherwise.
//
// With File Meta Information, that goes in front of elements of lower groups, and the encoding is
// explicit VR little endian where it must be: encapsulated Pixel Data have no other, and a data set
// that begins with group 0200 would in big endian seem to go on with File Meta Information. So it
// is in a bare data set that is written as it was read, in implicit VR, with encapsulated Pixel
// Data: their header is explicit in every encoding, and would hide what follows it.
//
// isDeflated becomes whether the data set behind the File Meta Information is to be deflated.
//
// kReadFailed when the element's value cannot be read, kOutOfMemory when it cannot be set. Throws
// std::bad_alloc.
WriteResult AgreeOnSyntax(PGX_Node& root, uint32_t& mode, bool& isDeflated);

}  // namespace pgkit
