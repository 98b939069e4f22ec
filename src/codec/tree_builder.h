// Makes the nodes of a tree while it is read, with their names and values.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "codec/stream_reader.h"
#include "codec/tag_header.h"
#include "dataset/node_memory.h"
#include "dataset/tree_memory.h"
#include "pgkit/node.h"

namespace pgkit {

class TreeBuilder {
  public:
    // Where the bytes come from memory, and go when the tree has been read, it keeps everything.
    TreeBuilder(StreamReader& reader, bool keepsEverything)
        : reader_(reader),
          file_(keepsEverything ? nullptr : reader.Stream()),
          keepsEverything_(keepsEverything) {}

    bool KeepsEverything() const { return keepsEverything_; }
    uint64_t ElementCount() const { return elementCount_; }

    // A node of what begins at the reader's position. Throws std::bad_alloc, as all of these do.
    template <typename... Arguments>
    PGX_Node* NewNode(Arguments... arguments) {
        void* cell = memory_.Allocate(sizeof(PGX_Node));
        PGX_Node* node =
            cell != nullptr ? new (cell) PGX_Node(arguments...) : new PGX_Node(arguments...);
        node->file = file_;
        node->fileOffset = ToFileOffset(reader_.Position());
        return node;
    }
    PGX_Node* NewElement(const TagHeader& header, uint32_t valueRep, ByteOrder order) {
        ++elementCount_;
        return NewNode(NT_DataElement, order == ByteOrder::Big ? ET_BigEndian : ET_LittleEndian,
                       header.Group(), header.Element(), static_cast<uint8_t>(valueRep),
                       header.length);
    }

    char* NewTagName(std::string_view name);

    // Passes over the value of an element, which the reader stands in front of, and loads it when
    // its length is below the limit, or when everything is kept.
    void ReadValue(PGX_Node& element, uint32_t limit);

  private:
    uint8_t* NewValue(uint32_t length);
    uint8_t* NewZeroedValue(uint32_t length);
    void LoadInPart(PGX_Node& element);

    StreamReader& reader_;
    FILE* const file_;
    const bool keepsEverything_;
    uint64_t elementCount_ = 0;
    TreeMemory memory_;
};

}  // namespace pgkit
