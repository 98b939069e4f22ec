// Nodes made by hand: in memory, and as if read from a file.
#pragma once

#include <pgkit/pgkit.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "support/temp_dir.h"

namespace pgkit_test {

struct FreeTree {
    void operator()(PGX_Node* node) const { pgFreeNodeHierarchy(node); }
};
// A node with its following siblings and all their descendants.
using Tree = std::unique_ptr<PGX_Node, FreeTree>;

inline Tree NewDataSet() { return Tree(pgAllocateDataSetNode()); }

// An element with exactly these value bytes, which are in the byte order of endian.
inline Tree NewElement(uint16_t group, uint16_t element, ValueRepresentation vr,
                       std::string_view value = {}, EndianType endian = ET_LittleEndian) {
    const auto code = static_cast<uint8_t>(vr);
    Tree node(new PGX_Node(NT_DataElement, ET_LittleEndian, group, element, code, 0));
    node->SetValue(value.data(), static_cast<uint32_t>(value.size()));
    node->length = static_cast<uint32_t>(value.size());
    node->endian = endian;
    return node;
}

// The bytes of a literal, NULs included: RawText("\x00\x01").
template <size_t Size>
std::string RawText(const char (&literal)[Size]) {
    return std::string(literal, Size - 1);
}

// A file that is open for reading, for nodes whose value is on disk.
class OpenedFile {
  public:
    explicit OpenedFile(std::string_view content)
        : stream_(std::fopen(directory_.Write("input.bin", content).c_str(), "rb")) {}
    ~OpenedFile() { std::fclose(stream_); }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    FILE* Stream() const { return stream_; }

    // An element whose value is length bytes of this file from offset on.
    Tree Element(ValueRepresentation vr, uint32_t offset, uint32_t length,
                 EndianType endian = ET_LittleEndian) const {
        Tree node = NewElement(0x0009, 0x1001, vr, {}, endian);
        node->length = length;
        node->file = stream_;
        node->fileOffset = offset;
        return node;
    }

  private:
    TempDir directory_;
    FILE* stream_;
};

// The value as GetValue gives it: length bytes and the NUL behind them. Empty when it gives none.
inline std::string ValueOf(PGX_Node& node) {
    std::string buffer(size_t{node.length} + 1, '?');
    return node.GetValue(buffer.data()) == 1 ? buffer : std::string();
}

}  // namespace pgkit_test
