// What kind of values a value representation has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgtool {

// The length of a value that has delimiters instead.
inline constexpr uint32_t kUndefinedLength = 0xFFFFFFFF;

enum class ValueKind { Text, Integer, Real, Tags, Bytes, Unknown, Sequence };

ValueKind KindOf(uint32_t valueRep);

// The bytes of one number; 2 for what has none.
size_t SizeOfNumber(uint32_t valueRep);

}  // namespace pgtool
