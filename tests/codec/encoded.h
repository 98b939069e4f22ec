// What WriteNodeEx makes of a node.
#pragma once

#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <bit>
#include <cstdio>
#include <string>
#include <string_view>

#include "support/stream.h"
#include "support/temp_dir.h"

namespace pgkit_test {

struct Encoded {
    uint32_t result;
    Bytes bytes;
};

inline Encoded Encode(PGX_Node& node, uint32_t mode) {
    const TempDir directory;
    const std::string path = directory.Path("encoded");
    const uint32_t result = node.WriteNodeEx(OpenStream(path, "wb").get(), mode);
    return {result, ReadFile(path)};
}

// An element of its own, as code that knows its VR makes it.
inline PGX_Node* NewElement(PGX_Node& dataSet, uint16_t group, uint16_t element, uint32_t vr,
                            std::string_view value, EndianType endian = ET_LittleEndian) {
    PGX_Node* node = dataSet.InsertNode(group, element, nullptr, 0);
    node->valueRep = vr;
    node->endian = endian;
    EXPECT_EQ(node->SetValue(value.data(), static_cast<uint32_t>(value.size())), 1);
    return node;
}

// An element that has these bytes, whose numbers are in little endian.
inline PGX_Node* NewStoredElement(PGX_Node& dataSet, uint16_t group, uint16_t element, uint32_t vr,
                                  std::string_view bytes) {
    const bool isBig = std::endian::native == std::endian::big;
    PGX_Node* node =
        NewElement(dataSet, group, element, vr, bytes, isBig ? ET_BigEndian : ET_LittleEndian);
    node->endian = ET_LittleEndian;
    return node;
}

inline PGX_Node* AddItem(PGX_Node& sequence) {
    PGX_Node* item = pgAllocateDataSetNode();
    sequence.SeqAddTail(item);
    return item;
}

// Encapsulated Pixel Data without a table of fragments.
inline bool IsNotIndexed(const PGX_Node* node) {
    return node->encapsulated == 1 && reinterpret_cast<uintptr_t>(node->fragments) == 1 &&
           node->fragmentCount == 0 && node->fragmentCapacity == 0;
}

// Makes an element take its value from a stream, as the parser leaves a large one.
inline void SetSource(PGX_Node& element, FILE* stream, uint32_t offset, uint32_t length) {
    element.SetValue(nullptr, 0);
    element.file = stream;
    element.fileOffset = offset;
    element.length = length;
}

}  // namespace pgkit_test
