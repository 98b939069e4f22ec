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

    // Whether the file holds so many bytes there, at least one.
    bool Holds(uint64_t position, uint32_t count) const {
        uint8_t last;
        return Read(&last, position + count - 1, 1);
    }

  private:
    PGX_Node& dataSet_;
};

// Bytes of the file.
struct Piece {
    uint64_t position;
    uint32_t length;
};

// Empty when the file holds one of the pieces only in part; nothing is allocated then.
std::vector<uint8_t> Join(const ItemReader& reader, const std::vector<Piece>& pieces) {
    size_t size = 0;
    for (const Piece& piece : pieces) {
        if (piece.length > 0 && !reader.Holds(piece.position, piece.length)) return {};
        size += piece.length;
    }
    std::vector<uint8_t> bytes(size);
    uint8_t* out = bytes.data();
    for (const Piece& piece : pieces) {
        if (piece.length > 0 && !reader.Read(out, piece.position, piece.length)) return {};
        out += piece.length;
    }
    return bytes;
}

// Joins items from a position on, up to another one or to what is no item.
std::vector<uint8_t> JoinItems(const ItemReader& reader, uint64_t position, uint64_t end) {
    std::vector<Piece> pieces;
    while (pieces.size() < kMaxFragments && position < end) {
        const std::optional<uint32_t> length = reader.ItemLength(position);
        if (!length) break;
        pieces.push_back({position + kItemHeaderSize, *length});
        position += kItemHeaderSize + uint64_t{*length};
    }
    return Join(reader, pieces);
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
    if (pixelData.fragmentCount != frameCount) return {};
    if (pixelData.GetEncodedPixelInfo(frameIndex, &length, &offset) != 1) return {};
    return Join(reader, {{offset, length}});
}

}  // namespace pgview
