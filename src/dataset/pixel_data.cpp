// Access to the frames of native Pixel Data and to the fragment table of encapsulated Pixel Data.
#include <algorithm>
#include <cstring>

#include "base/byte_order.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"
#include "pgkit/node.h"

namespace {

// Samples are swapped as the 16-bit words they lie in. Samples of 8 bits count as words only in
// big-endian OW, where two of them stand exchanged in each word, whatever machine reads them.
bool SwapsWords(const PGX_Node& node) {
    if (node.bitsAllocated == 8) return node.endian == ET_BigEndian && node.valueRep != VR_OB;
    if (pgkit::IsHostOrder(node.endian)) return false;
    return node.valueRep == VR_OW || node.valueRep == VR_OWOB;
}

bool IsPlainElement(const PGX_Node& node) {
    return node.nodeType == NT_DataElement && node.valueRep != VR_SQ;
}

}  // namespace

int32_t PGX_Node::IsEncodedPixelData() { return static_cast<int32_t>(encapsulated); }

int32_t PGX_Node::GetEncodedPixelInfo(uint32_t index, uint32_t* entryLength,
                                      uint32_t* entryOffset) {
    if (!IsPlainElement(*this) || !pgkit::HasFragmentTable(*this)) return 0;
    if (index >= fragmentCount || entryOffset == nullptr) return 0;
    if (entryLength != nullptr) *entryLength = fragments[index].length;
    *entryOffset = fragments[index].offset;
    return 1;
}

int32_t PGX_Node::GetPixelData(uint32_t frameIndex, uint32_t frameSize, void* buffer) {
    if (!pgkit::HasValue(*this) || length == 0 || buffer == nullptr) return 0;
    uint8_t* frame = static_cast<uint8_t*>(buffer);
    const uint64_t start = uint64_t{frameIndex} * frameSize;
    const size_t available = pgkit::FetchValue(*this, start, frame, frameSize);
    std::memset(frame + available, 0, frameSize - available);
    if (SwapsWords(*this)) pgkit::SwapUnits(frame, frameSize, 2);
    return 1;
}
