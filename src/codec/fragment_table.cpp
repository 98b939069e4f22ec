#include "codec/fragment_table.h"

#include <algorithm>
#include <new>
#include <vector>

#include "base/byte_order.h"
#include "codec/part10_format.h"
#include "codec/tag_header.h"
#include "dataset/node_memory.h"

namespace pgkit {

namespace {

// The capacity of a table is a multiple of this; growing does not copy at each step, though.
constexpr size_t kCapacityStep = 250;

FragmentEntry* AllocateTable(PGX_Node& pixelData, size_t count, size_t capacity) {
    pixelData.fragments = NewFragmentTable(capacity);
    if (pixelData.fragments == nullptr) throw std::bad_alloc();
    pixelData.fragmentCount = static_cast<uint32_t>(count);
    pixelData.fragmentCapacity = static_cast<uint32_t>(capacity);
    return pixelData.fragments;
}

// Reads the table's offsets into absolute positions of the frames' first values, and the lengths
// that follow from them: each frame reaches up to the item header of the next. Offsets are taken as
// they stand, in 32 bits; a table that is wrong gives entries that are wrong.
bool ReadOffsets(StreamReader& reader, PGX_Node& pixelData, uint32_t tableLength) {
    const size_t count = tableLength / sizeof(uint32_t);
    const uint64_t firstItem = reader.Position() + tableLength;
    if (count == 0 || tableLength > reader.Remaining()) return false;
    if (firstItem + kItemHeaderSize >= kUnreadablePosition) return false;

    FragmentEntry* entries = AllocateTable(pixelData, count, count);
    const uint32_t firstValue = static_cast<uint32_t>(firstItem) + kItemHeaderSize;
    for (size_t i = 0; i < count; ++i) {
        uint8_t bytes[sizeof(uint32_t)];
        reader.Read(bytes, sizeof bytes);
        // A single frame can only start at the first item, whatever its offset says.
        const uint32_t offset = count == 1 ? 0 : NumberAt<uint32_t>(bytes, ByteOrder::Little);
        entries[i].offset = firstValue + offset;
        if (i > 0) {
            entries[i - 1].length = entries[i].offset - entries[i - 1].offset - kItemHeaderSize;
        }
    }
    return true;
}

// The last frame must be one item, directly followed by the delimiter. Half of the item's tag is
// enough to recognise it. It must lie behind the table, where the reader stands: the data set goes
// on behind the frame, and would be read again from an earlier place.
bool ReadLastFrame(StreamReader& reader, FragmentEntry& last) {
    if (last.offset < reader.Position() + kItemHeaderSize) return false;
    reader.Seek(last.offset - kItemHeaderSize);
    TagHeader header;
    if (!ReadItemHeader(reader, header)) return false;
    if (header.Group() != 0xFFFE && header.Element() != 0xE000) return false;
    last.length = header.length;
    reader.Skip(header.length);
    return ReadItemHeader(reader, header) && header.IsSequenceDelimitation();
}

FragmentTableResult BuildFromOffsetTable(StreamReader& reader, PGX_Node& pixelData,
                                         uint32_t tableLength, FragmentTable& table) {
    if (!ReadOffsets(reader, pixelData, tableLength)) return FragmentTableResult::Failed;
    table.consumed += tableLength;
    FragmentEntry* entries = pixelData.fragments;
    const uint32_t count = pixelData.fragmentCount;
    table.hasDelimiter = ReadLastFrame(reader, entries[count - 1]);
    if (!table.hasDelimiter) return FragmentTableResult::Failed;
    for (uint32_t i = 0; i < count; ++i)
        table.consumed += entries[i].length + kItemHeaderSize;
    table.consumed += kItemHeaderSize;
    return FragmentTableResult::Built;
}

FragmentTableResult BuildByScanning(StreamReader& reader, PGX_Node& pixelData,
                                    FragmentTable& table) {
    std::vector<FragmentEntry> found;
    TagHeader header{};
    while (ReadItemHeader(reader, header)) {
        table.hasDelimiter = header.IsSequenceDelimitation();
        if (!header.IsItem()) break;
        if (reader.Position() >= kUnreadablePosition) return FragmentTableResult::Failed;
        found.push_back({static_cast<uint32_t>(reader.Position()), header.length, nullptr});
        reader.Skip(header.length);
        table.consumed += header.length + kItemHeaderSize;
    }
    // A missing delimiter behind some fragments is tolerated.
    if (!table.hasDelimiter && found.empty()) return FragmentTableResult::Failed;
    const size_t steps = std::max<size_t>((found.size() + kCapacityStep - 1) / kCapacityStep, 1);
    std::copy(found.begin(), found.end(),
              AllocateTable(pixelData, found.size(), steps * kCapacityStep));
    table.consumed += kItemHeaderSize;
    return FragmentTableResult::Built;
}

FragmentTableResult Build(StreamReader& reader, PGX_Node& pixelData, bool scan,
                          FragmentTable& table) {
    if (pixelData.fileOffset == kUnreadablePosition) return FragmentTableResult::Failed;
    reader.Seek(pixelData.fileOffset);
    TagHeader header;
    if (!ReadItemHeader(reader, header)) return FragmentTableResult::Failed;
    table.consumed = kItemHeaderSize;
    if (!header.IsItem()) return FragmentTableResult::Failed;
    if (header.length > 0) return BuildFromOffsetTable(reader, pixelData, header.length, table);
    if (!scan) return FragmentTableResult::NotScanned;
    return BuildByScanning(reader, pixelData, table);
}

}  // namespace

FragmentTable BuildFragmentTable(StreamReader& reader, PGX_Node& pixelData, bool scan) {
    FreeFragmentTable(pixelData);
    FragmentTable table;
    table.result = Build(reader, pixelData, scan, table);
    if (table.result != FragmentTableResult::Built) FreeFragmentTable(pixelData);
    return table;
}

}  // namespace pgkit

int32_t PGX_Node::LoadEncodedPixelTable(FILE* stream, PGX_Node* node, int32_t scan,
                                        uint32_t* consumed) {
    pgkit::FragmentTable table;
    if (stream != nullptr && node != nullptr) {
        pgkit::StreamReader reader(stream);
        table = pgkit::BuildFragmentTable(reader, *node, scan != 0);
        reader.RestorePosition();
    }
    if (consumed != nullptr) *consumed = table.consumed;
    return static_cast<int32_t>(table.result);
}
