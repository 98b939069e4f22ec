#include "codec/pixel_items.h"

#include <algorithm>
#include <new>
#include <span>

#include "base/byte_order.h"
#include "codec/part10_format.h"
#include "codec/tag_header.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"

namespace pgkit {

namespace {

constexpr uint16_t kPixelDataGroup = 0x7FE0;
constexpr uint16_t kExtendedOffsets = 0x0001;
constexpr uint16_t kExtendedLengths = 0x0002;

void ReadOffsets(StreamReader& reader, uint32_t length, std::vector<uint64_t>& offsets) {
    offsets.resize(length / sizeof(uint32_t));
    for (uint64_t& offset : offsets) {
        uint8_t bytes[sizeof(uint32_t)] = {};
        reader.Read(bytes, sizeof bytes);
        offset = NumberAt<uint32_t>(bytes, ByteOrder::Little);
    }
}

// The numbers of an element, empty when it is not there, or not in full.
std::vector<uint64_t> LongNumbers(PGX_Node& dataSet, uint16_t number) {
    const PGX_Node* const element = dataSet.FindNode(kPixelDataGroup, number);
    std::vector<uint64_t> numbers;
    if (element == nullptr || AvailableLength(*element) < element->length) return numbers;
    numbers.resize(element->length / sizeof(uint64_t));
    const size_t size = numbers.size() * sizeof(uint64_t);
    if (FetchValue(*element, 0, reinterpret_cast<uint8_t*>(numbers.data()), size) < size) return {};
    const ByteOrder order = element->endian == ET_BigEndian ? ByteOrder::Big : ByteOrder::Little;
    for (uint64_t& n : numbers)
        n = NumberAt<uint64_t>(&n, order);
    return numbers;
}

// Number of Frames; nothing when there is none.
std::optional<size_t> FrameCount(PGX_Node& dataSet) {
    PGX_Node* const element = dataSet.FindNode(0x0028, 0x0008);
    const int32_t count = element == nullptr ? 0 : element->GetDSIntValue();
    return count > 0 ? std::optional<size_t>(count) : std::nullopt;
}

// Which fragments the offsets lead to; empty when they are not consistent.
std::vector<size_t> FragmentsAt(std::span<const uint64_t> offsets,
                                std::span<const PixelItems::Fragment> fragments) {
    std::vector<size_t> found;
    if (offsets.empty() || offsets.front() != 0) return found;
    auto fragment = fragments.begin();
    for (const uint64_t offset : offsets) {
        fragment =
            std::lower_bound(fragment, fragments.end(), offset,
                             [](const auto& one, uint64_t start) { return one.start < start; });
        const bool isFragment = fragment != fragments.end() && fragment->start == offset;
        if (!isFragment) return {};
        found.push_back(static_cast<size_t>(fragment - fragments.begin()));
        ++fragment;
    }
    return found;
}

size_t EndOfFrame(const FrameStarts& frames, size_t frame, const PixelItems& items) {
    return frame + 1 < frames.fragments.size() ? frames.fragments[frame + 1]
                                               : items.fragments.size();
}

uint64_t FrameSize(const FrameStarts& frames, size_t frame, const PixelItems& items) {
    uint64_t size = 0;
    for (size_t i = frames.fragments[frame]; i < EndOfFrame(frames, frame, items); ++i)
        size += items.fragments[i].length;
    return size;
}

bool FromExtendedOffsets(PGX_Node& dataSet, std::optional<size_t> count, const PixelItems& items,
                         FrameStarts& frames) {
    frames = {PGX_FRAMES_EXTENDED_OFFSETS,
              FragmentsAt(LongNumbers(dataSet, kExtendedOffsets), items.fragments),
              LongNumbers(dataSet, kExtendedLengths)};
    const size_t found = frames.fragments.size();
    if (found == 0 || found != count.value_or(found) || found != frames.lengths.size())
        return false;
    for (size_t frame = 0; frame < found; ++frame) {
        if (frames.lengths[frame] > FrameSize(frames, frame, items)) return false;
    }
    return true;
}

bool FromBasicOffsets(std::optional<size_t> count, const PixelItems& items, FrameStarts& frames) {
    frames = {PGX_FRAMES_BASIC_OFFSETS, FragmentsAt(items.offsets, items.fragments), {}};
    const size_t found = frames.fragments.size();
    return found != 0 && found == count.value_or(found);
}

// Appends fragments that stand behind each other to a buffer that has room for them.
void ReadFragments(StreamReader& reader, std::span<const PixelItems::Fragment> fragments,
                   uint8_t* out) {
    for (const PixelItems::Fragment& fragment : fragments) {
        reader.Seek(fragment.position);
        const size_t got = reader.Read(out, fragment.length);
        std::fill(out + got, out + fragment.length, uint8_t{0});
        out += fragment.length;
    }
}

FrameStarts EveryFragment(const PixelItems& items) {
    FrameStarts frames{PGX_FRAMES_FRAGMENTS, std::vector<size_t>(items.fragments.size()), {}};
    for (size_t i = 0; i < frames.fragments.size(); ++i)
        frames.fragments[i] = i;
    return frames;
}

// The entries of the table.
FrameStarts Entries(PGX_Node& dataSet, const PixelItems& items) {
    FrameStarts frames = FindFrameStarts(dataSet, items);
    if (frames.source != PGX_FRAMES_BASIC_OFFSETS) return EveryFragment(items);
    for (size_t frame = 0; frame < frames.fragments.size(); ++frame) {
        if (FrameSize(frames, frame, items) >= kUndefinedLength) return EveryFragment(items);
    }
    return frames;
}

void LoadEntries(StreamReader& reader, const FrameStarts& entries, const PixelItems& items,
                 PGX_Node& pixelData) {
    const size_t count = entries.fragments.size();
    if (count == 0) return;
    pixelData.fragments = NewFragmentTable(count);
    if (pixelData.fragments == nullptr) throw std::bad_alloc();
    pixelData.fragmentCount = pixelData.fragmentCapacity = static_cast<uint32_t>(count);
    for (size_t i = 0; i < count; ++i) {
        FragmentEntry& entry = pixelData.fragments[i];
        const size_t first = entries.fragments[i];
        const size_t size = static_cast<size_t>(FrameSize(entries, i, items));
        if (size == 0) continue;
        entry.bytes = NewUnfilledValueBuffer(size);
        if (entry.bytes == nullptr) throw std::bad_alloc();
        entry.length = static_cast<uint32_t>(size);
        const size_t end = EndOfFrame(entries, i, items);
        ReadFragments(reader, std::span(items.fragments).subspan(first, end - first), entry.bytes);
    }
}

}  // namespace

PixelItems ReadPixelItems(StreamReader& reader) {
    PixelItems items;
    TagHeader header{};
    items.endPosition = reader.Position();
    if (!ReadItemHeader(reader, header) || !header.IsItem()) return items;
    items.bytes = header.length + 2 * kItemHeaderSize;
    const uint64_t firstItem = reader.Position() + header.length;
    if (reader.Holds(header.length)) ReadOffsets(reader, header.length, items.offsets);
    reader.Seek(firstItem);
    items.end = PixelItems::End::StreamsEnd;
    while (true) {
        items.endPosition = reader.Position();
        if (!ReadItemHeader(reader, header)) break;
        if (!header.IsItem()) {
            items.end = header.IsSequenceDelimitation() ? PixelItems::End::Delimiter
                                                        : PixelItems::End::OtherTag;
            break;
        }
        const uint64_t position = reader.Position();
        const uint64_t available = std::min<uint64_t>(header.length, reader.Remaining());
        items.fragments.push_back(
            {position - kItemHeaderSize - firstItem, position, static_cast<uint32_t>(available)});
        items.bytes += header.length + kItemHeaderSize;
        reader.Skip(header.length);
    }
    const bool isHeaderUnread = items.end == PixelItems::End::StreamsEnd && reader.Remaining() > 0;
    if (isHeaderUnread) items.end = PixelItems::End::OtherTag;
    return items;
}

FrameStarts FindFrameStarts(PGX_Node& dataSet, const PixelItems& items) {
    FrameStarts frames;
    if (items.fragments.empty()) return frames;
    const std::optional<size_t> count = FrameCount(dataSet);
    if (FromExtendedOffsets(dataSet, count, items, frames)) return frames;
    if (FromBasicOffsets(count, items, frames)) return frames;
    if (items.fragments.size() == count) return EveryFragment(items);
    if (count.value_or(1) == 1) return {PGX_FRAMES_SINGLE, {0}, {}};
    return {};
}

PixelItems LoadFragments(StreamReader& reader, PGX_Node& dataSet, PGX_Node& pixelData) {
    PixelItems items = ReadPixelItems(reader);
    const uint64_t end = reader.Position();
    LoadEntries(reader, Entries(dataSet, items), items, pixelData);
    reader.Seek(end);
    return items;
}

}  // namespace pgkit
