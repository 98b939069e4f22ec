// The modes in which data sets are written, by what they give. PG_UNDEFINED_LENGTHS is combined
// with them for sequences with delimiters.
#pragma once

#include <pgkit/node.h>

#include <cstdint>

namespace pgkit_test {

// Bare data sets.
constexpr uint32_t kImplicitLittle = PG_IMPLICIT_VR | PG_LITTLE_ENDIAN;
constexpr uint32_t kExplicitLittle = PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
constexpr uint32_t kExplicitBig = PG_EXPLICIT_VR | PG_BIG_ENDIAN;

// Part 10 files, with File Meta Information in front.
constexpr uint32_t kPart10Implicit = PG_META | kImplicitLittle;
constexpr uint32_t kPart10Explicit = PG_META | kExplicitLittle;
constexpr uint32_t kPart10Big = PG_META | kExplicitBig;

// As the tree was read.
constexpr uint32_t kAsRead = 0;

}  // namespace pgkit_test
