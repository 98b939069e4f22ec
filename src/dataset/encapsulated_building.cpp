// Encapsulated Pixel Data made in memory, fragment by fragment.
#include <cstring>

#include "base/diagnostics.h"
#include "dataset/node_memory.h"
#include "pgkit/node.h"

PGX_Node* PGX_Node::InsertEncodedPixelDataNode(uint32_t count) {
    if (nodeType != NT_DataSet) {
        pgkit::PrintOut("pgInsertNode: can only insert a PixelData node in a NT_DataSet type\n");
        return nullptr;
    }
    FragmentEntry* table = nullptr;
    if (count != 0) {
        table = pgkit::NewFragmentTable(count);
        if (table == nullptr) return nullptr;
    }
    PGX_Node* pixelData = InsertNode(0x7FE0, 0x0010, nullptr, 0);
    if (pixelData == nullptr) {
        std::free(table);
        return nullptr;
    }
    pixelData->encapsulated = 1;
    pixelData->fragments = table;
    pixelData->fragmentCount = count;
    pixelData->fragmentCapacity = count;
    return pixelData;
}

int32_t PGX_Node::SetEncodedPixelData(uint32_t index, uint32_t size, const void* data) {
    if (!pgkit::HasFragmentTable(*this) || index >= fragmentCount) return 0;
    if (size == pgkit::kUndefinedLength) return 0;
    const uint32_t evenSize = size + size % 2;
    uint8_t* bytes = nullptr;
    if (evenSize != 0) {
        bytes = pgkit::NewValueBuffer(evenSize);
        if (bytes == nullptr) return 0;
        if (data != nullptr) std::memcpy(bytes, data, size);
    }
    FragmentEntry& entry = fragments[index];
    pgkit::FreeValueBuffer(entry.bytes);
    entry = {0, evenSize, bytes};
    return 1;
}
