#include "dataset/value_source.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "dataset/node_memory.h"
#include "dictionary/vr_properties.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// A read of more than this is first compared with what the file holds, so that the C runtime is
// never asked to fill gigabytes that a damaged length merely claims.
constexpr size_t kUncheckedRead = 0x10000;

// A value that lacks more than this is one that a damaged length claims, not one that was cut
// short.
constexpr uint32_t kFewBytes = 4096;

uint64_t BytesFrom(FILE* stream, uint64_t position) {
    const uint64_t size = platform::StreamSize(stream);
    return size > position ? size - position : 0;
}

size_t FetchFromStream(FILE* stream, uint64_t position, uint8_t* out, size_t count) {
    if (count > kUncheckedRead) count = std::min<uint64_t>(count, BytesFrom(stream, position));
    if (!platform::Seek(stream, position)) return 0;
    return std::fread(out, 1, count, stream);
}

size_t FetchFromContentFile(const char* path, uint64_t offset, uint8_t* out, size_t count) {
    const platform::FileHandle stream(platform::OpenForReading(path));
    return stream == nullptr ? 0 : FetchFromStream(stream.get(), offset, out, count);
}

size_t RoundUp(size_t count, size_t unit) { return (count + unit - 1) / unit * unit; }

// The text ends at its first NUL; behind it may stand anything.
void StripUid(uint8_t* bytes, size_t count) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), count);
    const std::string_view stripped = TrimBlanks(text.substr(0, text.find('\0')));
    if (!stripped.empty()) std::memmove(bytes, stripped.data(), stripped.size());
    std::memset(bytes + stripped.size(), 0, count - stripped.size());
}

// Makes raw bytes presentable: fetched bytes at the start of a whole value, zeros behind them. The
// last unit is swapped together with the zeros that complete it.
void Present(const PGX_Node& node, uint8_t* bytes, size_t fetched) {
    if (!IsHostOrder(node.endian)) {
        const size_t unit = SwapUnit(node.valueRep);
        SwapUnits(bytes, std::min<size_t>(node.length, RoundUp(fetched, unit)), unit);
    }
    if (node.valueRep == VR_UI) StripUid(bytes, fetched);
}

// A prefix may end within a unit, whose bytes then come from its far end.
void PresentPrefix(const PGX_Node& node, uint8_t* bytes, size_t count) {
    const size_t unit = SwapUnit(node.valueRep);
    const size_t whole = count - count % unit;
    SwapUnits(bytes, whole, unit);
    if (whole == count || whole + unit > node.length) return;
    uint8_t last[8] = {};
    FetchValue(node, whole, last, unit);
    SwapUnits(last, unit, unit);
    std::memcpy(bytes + whole, last, count - whole);
}

// More than any UID has: 64 characters.
constexpr size_t kUsualUid = 256;

// A UID of the usual length needs no memory: without any, a file's identity would read as empty.
bool ReadUidPrefix(const PGX_Node& node, uint8_t* out, size_t count) {
    const size_t available = AvailableLength(node);
    uint8_t usual[kUsualUid] = {};
    const ValueBuffer unusual(available > kUsualUid ? NewValueBuffer(available) : nullptr);
    uint8_t* const text = available > kUsualUid ? unusual.get() : usual;
    if (text == nullptr) return false;
    StripUid(text, FetchValue(node, 0, text, available));
    const size_t copied = std::min(count, available);
    std::memcpy(out, text, copied);
    std::memset(out + copied, 0, count - copied);
    return true;
}

}  // namespace

ValueSource FindValueSource(const PGX_Node& node) {
    if (node.value != nullptr) return ValueSource::Memory;
    if (node.file != nullptr) return ValueSource::File;
    return platform::PathExists(node.contentFile) ? ValueSource::ContentFile : ValueSource::None;
}

uint32_t AvailableLength(const PGX_Node& node) {
    if (node.length == kUndefinedLength) return 0;
    uint64_t available = 0;
    if (node.value != nullptr) {
        available = node.length;
    } else if (node.file != nullptr) {
        if (node.fileOffset == kUnreadablePosition) return 0;
        available = BytesFrom(node.file, node.fileOffset);
    } else {
        available = platform::FileSize(node.contentFile).value_or(0);
    }
    return static_cast<uint32_t>(std::min<uint64_t>(node.length, available));
}

bool LacksMuch(const PGX_Node& node) {
    if (node.length <= kFewBytes || node.length == kUndefinedLength) return false;
    const bool wasLoaded = node.value != nullptr && node.file != nullptr;
    const uint64_t available =
        wasLoaded ? BytesFrom(node.file, node.fileOffset) : AvailableLength(node);
    return available + kFewBytes < node.length;
}

size_t FetchValue(const PGX_Node& node, uint64_t offset, uint8_t* out, size_t count) {
    if (node.length == kUndefinedLength || offset >= node.length) return 0;
    count = std::min<uint64_t>(count, node.length - offset);
    if (node.value != nullptr) {
        std::memcpy(out, node.value + offset, count);
        return count;
    }
    if (node.file != nullptr) {
        if (node.fileOffset == kUnreadablePosition) return 0;
        return FetchFromStream(node.file, node.fileOffset + offset, out, count);
    }
    if (node.contentFile == nullptr) return 0;
    return FetchFromContentFile(node.contentFile, offset, out, count);
}

bool HasValue(const PGX_Node& node) {
    if (node.nodeType != NT_DataElement || node.valueRep == VR_SQ || node.encapsulated != 0) {
        return false;
    }
    if (node.length == 0) return true;
    if (node.length == kUndefinedLength) return false;
    return node.value != nullptr || node.file == nullptr || node.fileOffset != kUnreadablePosition;
}

void ReadValue(const PGX_Node& node, uint8_t* out) {
    const size_t fetched = FetchValue(node, 0, out, node.length);
    std::memset(out + fetched, 0, node.length - fetched);
    Present(node, out, fetched);
}

size_t ReadValueIntoZeros(const PGX_Node& node, uint8_t* zeros) {
    const size_t fetched = FetchValue(node, 0, zeros, node.length);
    Present(node, zeros, fetched);
    return fetched;
}

bool ReadValuePrefix(const PGX_Node& node, uint8_t* out, size_t count) {
    if (!HasValue(node)) return false;
    if (node.valueRep == VR_UI) return ReadUidPrefix(node, out, count);
    const size_t fetched = FetchValue(node, 0, out, count);
    std::memset(out + fetched, 0, count - fetched);
    if (!IsHostOrder(node.endian)) PresentPrefix(node, out, count);
    return true;
}

}  // namespace pgkit
