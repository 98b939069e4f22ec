// The function of frames.h.
#include "pgkit/frames.h"

#include <algorithm>
#include <new>
#include <span>

#include "base/firewall.h"
#include "codec/pixel_items.h"
#include "dataset/node_memory.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

std::span<const FragmentEntry> TableOf(const PGX_Node& pixelData) {
    if (!HasFragmentTable(pixelData)) return {};
    return {pixelData.fragments, pixelData.fragmentCount};
}

// Whether the table is what counts, and not what stands in the file.
bool IsInMemory(const PGX_Node& pixelData) {
    return pixelData.file == nullptr ||
           std::ranges::any_of(TableOf(pixelData),
                               [](const FragmentEntry& entry) { return entry.bytes != nullptr; });
}

bool IsReadable(const PGX_Node& pixelData) {
    if (!IsInMemory(pixelData)) return pixelData.fileOffset != kUnreadablePosition;
    if (pixelData.file != nullptr) return true;
    return pixelData.fragments != NotIndexedMarker() &&
           std::ranges::all_of(TableOf(pixelData), [](const FragmentEntry& entry) {
               return entry.bytes != nullptr || entry.length == 0;
           });
}

PixelItems ItemsOfTable(std::span<const FragmentEntry> table) {
    constexpr uint64_t kHeaderSize = 8;
    PixelItems items;
    uint64_t start = 0;
    for (const FragmentEntry& entry : table) {
        items.fragments.push_back({start, entry.offset, entry.length});
        start += entry.length + kHeaderSize;
    }
    return items;
}

PixelItems ItemsOf(PGX_Node& pixelData) {
    if (IsInMemory(pixelData)) return ItemsOfTable(TableOf(pixelData));
    StreamReader reader(pixelData.file);
    reader.Seek(pixelData.fileOffset);
    return ReadPixelItems(reader);
}

// Counts the pieces, and stores those that there is room for.
class PieceList {
  public:
    PieceList(PgxFramePiece* pieces, size_t room)
        : pieces_(pieces), room_(pieces == nullptr ? 0 : room) {}

    void Add(const PgxFramePiece& piece) {
        if (piece.length == 0) return;
        if (count_ < room_) pieces_[count_] = piece;
        ++count_;
    }
    int64_t Count() const { return static_cast<int64_t>(count_); }

  private:
    PgxFramePiece* pieces_;
    size_t room_;
    size_t count_ = 0;
};

void AddPieces(const FrameStarts& frames, const PixelItems& items, const PGX_Node& pixelData,
               PieceList& pieces) {
    const std::span<const FragmentEntry> table =
        IsInMemory(pixelData) ? TableOf(pixelData) : std::span<const FragmentEntry>();
    size_t frame = 0;
    uint64_t left = 0;
    for (size_t i = 0; i < items.fragments.size(); ++i) {
        if (frame < frames.fragments.size() && frames.fragments[frame] == i) {
            left = frames.lengths.empty() ? UINT64_MAX : frames.lengths[frame];
            ++frame;
        }
        const PixelItems::Fragment& fragment = items.fragments[i];
        const uint32_t length = static_cast<uint32_t>(std::min<uint64_t>(left, fragment.length));
        left -= length;
        const uint8_t* bytes = table.empty() ? nullptr : table[i].bytes;
        pieces.Add({static_cast<uint32_t>(frame - 1), length,
                    bytes == nullptr ? fragment.position : 0, bytes});
    }
}

int64_t FindFrames(PGX_Node* dataSet, PgxFramePiece* pieces, size_t count, int32_t* source) {
    if (source != nullptr) *source = PGX_FRAMES_NONE;
    PGX_Node* const pixelData = dataSet == nullptr ? nullptr : dataSet->FindNode(0x7FE0, 0x0010);
    if (pixelData == nullptr || pixelData->encapsulated == 0) return PGX_FRAMES_NOT_ENCAPSULATED;
    if (!IsReadable(*pixelData)) return PGX_FRAMES_NOT_READABLE;
    const PixelItems items = ItemsOf(*pixelData);
    const FrameStarts frames = FindFrameStarts(*dataSet, items);
    if (source != nullptr) *source = frames.source;
    if (frames.source == PGX_FRAMES_NONE) return 0;
    PieceList list(pieces, count);
    AddPieces(frames, items, *pixelData, list);
    return list.Count();
}

}  // namespace

}  // namespace pgkit

int64_t pgxFindFrames(PGX_Node* dataSet, PgxFramePiece* pieces, size_t count, int32_t* source) {
    return pgkit::Guarded([=] { return pgkit::FindFrames(dataSet, pieces, count, source); },
                          PGX_FRAMES_NO_MEMORY);
}
