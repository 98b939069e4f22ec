#include "encapsulated_frame.h"

#include <cstddef>
#include <optional>

#include "little_endian.h"

namespace pgview {

namespace {

constexpr uint32_t kItemHeaderSize = 8;
constexpr uint64_t kNoEnd = UINT64_MAX;

// More fragments for one frame than any encoder makes: files of nothing but item headers end here.
constexpr uint32_t kMaxFragments = 0x10000;

// Reads the items of encapsulated Pixel Data, which are little endian in every transfer syntax.
class ItemReader {
  public:
    explicit ItemReader(PGX_Node& dataSet) : dataSet_(dataSet) {}

    // The library reads from files at 32-bit positions.
    bool Read(uint8_t* out, uint64_t position, uint32_t count) const {
        if (position > UINT32_MAX) return false;
        return dataSet_.GetFileData(out, static_cast<uint32_t>(position), count) == 1;
    }

    // The length of the item that begins at a position; nothing when none does.
    std::optional<uint32_t> ItemLength(uint64_t position) const {
        uint8_t header[kItemHeaderSize];
        if (!Read(header, position, sizeof header)) return std::nullopt;
        if (Load16(header) != 0xFFFE || Load16(header + 2) != 0xE000) return std::nullopt;
        return Load32(header + 4);
    }

    // Appends bytes of the file. Lengths are checked against the file before they are allocated.
    bool Append(std::vector<uint8_t>& bytes, uint64_t position, uint32_t count) const {
        if (count == 0) return true;
        uint8_t last;
        if (!Read(&last, position + count - 1, 1)) return false;
        const size_t size = bytes.size();
        bytes.resize(size + count);
        return Read(bytes.data() + size, position, count);
    }

  private:
    PGX_Node& dataSet_;
};

// Joins items from a position on, up to another one or to what is no item.
std::vector<uint8_t> JoinItems(const ItemReader& reader, uint64_t position, uint64_t end) {
    std::vector<uint8_t> bytes;
    for (uint32_t i = 0; i < kMaxFragments && position < end; ++i) {
        const std::optional<uint32_t> length = reader.ItemLength(position);
        if (!length) break;
        if (!reader.Append(bytes, position + kItemHeaderSize, *length)) return {};
        position += kItemHeaderSize + uint64_t{*length};
    }
    return bytes;
}

// The offsets of the table are counted from the item behind it.
std::vector<uint8_t> ReadByOffsetTable(const ItemReader& reader, uint64_t table,
                                       uint32_t tableLength, uint32_t frameIndex) {
    const uint64_t firstItem = table + tableLength;
    const uint64_t count = tableLength / 4;
    if (frameIndex >= count) return {};
    uint8_t offset[4];
    if (!reader.Read(offset, table + uint64_t{4} * frameIndex, sizeof offset)) return {};
    const uint64_t begin = firstItem + Load32(offset);
    if (frameIndex + 1 == count) return JoinItems(reader, begin, kNoEnd);
    if (!reader.Read(offset, table + uint64_t{4} * (frameIndex + 1), sizeof offset)) return {};
    return JoinItems(reader, begin, firstItem + Load32(offset));
}

}  // namespace

std::vector<uint8_t> ReadEncapsulatedFrame(PGX_Node& dataSet, PGX_Node& pixelData,
                                           uint32_t frameIndex, uint32_t frameCount) {
    const ItemReader reader(dataSet);
    const std::optional<uint32_t> tableLength = reader.ItemLength(pixelData.fileOffset);
    if (!tableLength) return {};
    const uint64_t table = uint64_t{pixelData.fileOffset} + kItemHeaderSize;
    // Tables of single frames are often wrong, and not needed.
    if (frameCount == 1) return JoinItems(reader, table + *tableLength, kNoEnd);
    if (*tableLength > 0) return ReadByOffsetTable(reader, table, *tableLength, frameIndex);

    uint32_t length = 0;
    uint32_t offset = 0;
    std::vector<uint8_t> bytes;
    if (pixelData.fragmentCount != frameCount) return {};
    if (pixelData.GetEncodedPixelInfo(frameIndex, &length, &offset) != 1) return {};
    if (!reader.Append(bytes, offset, length)) return {};
    return bytes;
}

}  // namespace pgview
