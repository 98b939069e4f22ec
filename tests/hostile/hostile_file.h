// What a program does with a file it knows nothing about, and what that may cost.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdint>
#include <string>

#include "support/cost.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace pgkit_test {

// Memory beyond the size of the file.
constexpr uint64_t kMemoryAllowance = uint64_t{64} << 20;

// How Describe begins with a file of explicit VR little endian that has nothing but its transfer
// syntax as File Meta Information.
constexpr const char* kMeta = "[(0002,0010)UI:20 ";

// Uses every element in every way that asks for no knowledge of it.
void ReadEverything(PGX_Node* dataSet);

// Opens a file with and without loading its values, reads, dumps, copies and writes it in several
// modes, and closes it, within the time and memory that its size allows. Returns what Describe says
// about the tree.
std::string UseFile(const std::string& path);
std::string UseBytes(const Bytes& bytes);
inline std::string UseBytes(const StreamBuilder& stream) { return UseBytes(stream.Data()); }

}  // namespace pgkit_test
