// The bytes of an element's value, from wherever the node keeps them: memory, the file the tree was
// read from, or a content file. A length is only a claim: every fetch says how many bytes there
// really are, and nothing here allocates or touches memory for bytes that are not.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/byte_order.h"
#include "pgkit/node.h"

namespace pgkit {

constexpr bool IsHostOrder(EndianType endian) {
    return endian == (kHostByteOrder == ByteOrder::Big ? ET_BigEndian : ET_LittleEndian);
}

enum class ValueSource { None, Memory, File, ContentFile };

// The first place that the node names. A content file counts while its path exists.
ValueSource FindValueSource(const PGX_Node& node);

// How many of the value's bytes can be fetched: its length, or less when the file is shorter.
// 0 for an undefined length and for a position in the file that is not representable.
uint32_t AvailableLength(const PGX_Node& node);

// Whether the tree's file holds much less of the value, loaded or not, than its length says: a copy
// would consist of zeros.
bool LacksMuch(const PGX_Node& node);

// Copies up to count bytes from an offset in the value, as they are kept (in the byte order of the
// node). Returns how many there were. Moves the node's file.
size_t FetchValue(const PGX_Node& node, uint64_t offset, uint8_t* out, size_t count);

// ---- In host byte order, as GetValue shows them -------------------------------------------------

// Whether the node can have a value: not a data set, a sequence, encapsulated Pixel Data, of
// undefined length, or at a position that is not representable.
bool HasValue(const PGX_Node& node);

// The whole value of a node that has one, blanks around UI texts stripped. out holds length bytes;
// those that the value does not fill become zero.
void ReadValue(const PGX_Node& node, uint8_t* out);

// The same into a buffer that is zero already, where bytes that no source has are not touched.
// Returns how many there were.
size_t ReadValueIntoZeros(const PGX_Node& node, uint8_t* zeros);

// The first count bytes of the same, count being at most length. False when there is no value or a
// UI text cannot be stripped for lack of memory.
bool ReadValuePrefix(const PGX_Node& node, uint8_t* out, size_t count);

}  // namespace pgkit
