// Replacing an element's value, by bytes or by the content of a file.
#include <cstring>

#include "base/text.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "pgkit/node.h"
#include "platform/platform.h"

using pgkit::FreeValueBuffer;
using pgkit::NewValueBuffer;

namespace {

// The largest even length that is not the undefined one.
constexpr uint32_t kMaxLength = 0xFFFFFFFE;

constexpr uint32_t Evened(uint32_t length) { return length + (length & 1); }

// Samples of 8 bits in Pixel Data are taken as they come, whatever its VR.
size_t SetterSwapUnit(const PGX_Node& node) {
    const bool isPixelData = pgkit::IsPixelData(node.group, node.element);
    if (isPixelData && node.bitsAllocated == 8) return 1;
    return pgkit::PropertiesOf(node.valueRep).setterSwapUnit;
}

// A new buffer of an even size with a padded copy of the value; null when memory runs out. Fresh
// buffers are zero, so only the other pad byte has to be written.
uint8_t* NewPaddedValue(const void* data, uint32_t size, uint8_t pad) {
    const uint32_t evenSize = Evened(size);
    uint8_t* bytes = NewValueBuffer(evenSize);
    if (bytes == nullptr) return nullptr;
    const uint32_t copied = data == nullptr ? 0 : size;
    if (copied != 0) std::memcpy(bytes, data, copied);
    if (pad != 0) std::memset(bytes + copied, pad, evenSize - copied);
    return bytes;
}

}  // namespace

// The old value goes last: data may point into it.
int32_t PGX_Node::SetValue(const void* data, uint32_t size) {
    if (size > kMaxLength) return 0;
    uint8_t* bytes =
        size == 0 ? nullptr : NewPaddedValue(data, size, pgkit::PropertiesOf(valueRep).pad);
    FreeValueBuffer(value);
    value = bytes;
    length = Evened(size);
    if (bytes == nullptr && size != 0) return 0;
    file = nullptr;
    fileOffset = 0;
    if (bytes != nullptr && data != nullptr && !pgkit::IsHostOrder(endian)) {
        pgkit::SwapUnits(bytes, length, SetterSwapUnit(*this));
    }
    return 1;
}

int32_t PGX_Node::SetFileContentValue(const char* path) {
    if (!pgkit::platform::PathExists(path) || pgkit::platform::IsDirectory(path)) return 0;
    const uint64_t size = pgkit::platform::FileSize(path).value_or(0);
    if (size > kMaxLength) return 0;
    char* newPath = pgkit::NewText(path);
    FreeValueBuffer(value);
    value = nullptr;
    delete[] contentFile;
    contentFile = newPath;
    length = Evened(static_cast<uint32_t>(size));
    return 1;
}
