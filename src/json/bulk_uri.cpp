#include "json/bulk_uri.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string_view>

#include "base/byte_order.h"
#include "base/text.h"
#include "base/utf8.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr size_t kUsualUri = 512;
constexpr size_t kMaxUri = 0x10000;

constexpr uint32_t kItemHeader = 8;

// The tag and the length of an item, or of what stands in its place.
struct ItemHeader {
    uint32_t tag;
    uint32_t length;
};

// Encapsulated Pixel Data are little endian.
bool ReadItemHeader(FILE* file, uint64_t position, ItemHeader& header) {
    uint8_t bytes[kItemHeader];
    if (!platform::Seek(file, position)) return false;
    if (std::fread(bytes, 1, sizeof bytes, file) != sizeof bytes) return false;
    header.tag = TagKey(NumberAt<uint16_t>(bytes, ByteOrder::Little),
                        NumberAt<uint16_t>(bytes + 2, ByteOrder::Little));
    header.length = NumberAt<uint32_t>(bytes + 4, ByteOrder::Little);
    return true;
}

bool IsInFile(const PGX_Node& node) {
    return node.file != nullptr && node.fileOffset != kUnreadablePosition;
}

std::span<const FragmentEntry> FragmentsOf(const PGX_Node& node) {
    if (!HasFragmentTable(node)) return {};
    return {node.fragments, node.fragmentCount};
}

std::string CallerMadeUri(const PgxJsonWriteOptions& options, PGX_Node& element,
                          const std::string& path, BytesInFile bytes) {
    std::string uri(kUsualUri, '\0');
    for (;;) {
        const size_t length = options.uri(options.uriContext, &element, path.c_str(), bytes.offset,
                                          bytes.length, uri.data(), uri.size());
        if (length < uri.size()) {
            uri.resize(length);
            return IsValidUtf8(uri) ? uri : std::string();
        }
        if (length >= kMaxUri || uri.size() == kMaxUri) return std::string();
        uri.assign(kMaxUri, '\0');
    }
}

}  // namespace

BytesInFile FindBytes(const PGX_Node& element) {
    const uint64_t offset = IsInFile(element) ? element.fileOffset : PGX_JSON_NO_OFFSET;
    return {offset, AvailableLength(element)};
}

BytesInFile FindFragments(const PGX_Node& pixelData) {
    uint64_t inMemory = 0;
    for (const FragmentEntry& fragment : FragmentsOf(pixelData))
        inMemory += fragment.bytes != nullptr ? fragment.length : 0;
    if (!IsInFile(pixelData) || inMemory > 0) return {PGX_JSON_NO_OFFSET, inMemory};

    constexpr uint32_t kItem = TagKey(0xFFFE, 0xE000);
    constexpr uint32_t kSequenceDelimitation = TagKey(0xFFFE, 0xE0DD);
    const uint64_t fileSize = platform::StreamSize(pixelData.file);
    uint64_t end = pixelData.fileOffset;
    ItemHeader header{};
    while (ReadItemHeader(pixelData.file, end, header)) {
        if (header.tag != kItem && header.tag != kSequenceDelimitation) break;
        end += kItemHeader;
        if (header.tag == kSequenceDelimitation) break;
        end = std::min(end + header.length, fileSize);
    }
    return {pixelData.fileOffset, end - pixelData.fileOffset};
}

std::string MakeBulkUri(const PgxJsonWriteOptions& options, PGX_Node& element,
                        const std::string& path, BytesInFile bytes) {
    if (options.uri != nullptr) return CallerMadeUri(options, element, path, bytes);
    const std::string_view source = OrEmpty(options.sourceUri);
    if (bytes.offset == PGX_JSON_NO_OFFSET || !IsValidUtf8(source)) return std::string();
    std::string uri(source);
    uri += source.find('?') == std::string_view::npos ? '?' : '&';
    uri += "offset=" + std::to_string(bytes.offset);
    uri += "&length=" + std::to_string(bytes.length);
    return uri;
}

}  // namespace pgkit
