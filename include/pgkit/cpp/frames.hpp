// pgkit, the C++ layer (data_set.hpp): the frames of Pixel Data.
#ifndef PGKIT_CPP_FRAMES_HPP
#define PGKIT_CPP_FRAMES_HPP

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "pgkit/cpp/element_values.hpp"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/cpp/item_changes.hpp"
#include "pgkit/cpp/iterator.hpp"
#include "pgkit/frames.h"

namespace pgkit {
inline namespace v1 {

namespace detail {

// Where the frames of encapsulated Pixel Data lie: those of pgxFindFrames, and at which of them
// each frame starts.
struct frame_pieces {
    [[nodiscard]] span<const PgxFramePiece> of(std::size_t frame) const noexcept {
        return {pieces.data() + starts[frame], starts[frame + 1] - starts[frame]};
    }

    std::vector<PgxFramePiece> pieces;
    std::vector<std::size_t> starts;  // one more than there are frames
};

}  // namespace detail

// One frame of Pixel Data: samples, or the bytes of a compressed image. A handle that does not own
// the pixels: valid as long as their element is, and does not change.
class frame {
  public:
    frame() noexcept = default;
    // A native frame of so many bytes.
    frame(PGX_Node* pixels, std::size_t index, std::size_t size) noexcept
        : pixels_(pixels), index_(index), size_(size) {}
    // A compressed one of these pieces, of which there is one at least. Allocates where there are
    // several.
    frame(PGX_Node* pixels, span<const PgxFramePiece> pieces);

    // Bytes.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    // The bytes of the frame: native ones are samples in the byte order of this machine, compressed
    // ones those of all fragments of the frame, without the headers between them. They stay where
    // they are when they are in memory already, in one piece; else they are read into room, which
    // becomes as large as it has to be. Valid until room, or the pixels, change. Empty when they
    // cannot be read, and where they lie beyond 4 GiB. One room serves all frames of a loop.
    [[nodiscard]] span<const std::uint8_t> bytes(std::vector<std::uint8_t>& room) const;
    // A copy of its own.
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

  private:
    [[nodiscard]] span<const PgxFramePiece> pieces() const noexcept {
        if (!several_.empty()) return several_;
        return {&piece_, is_compressed_ ? std::size_t{1} : std::size_t{0}};
    }

    PGX_Node* pixels_ = nullptr;
    std::size_t index_ = 0;
    std::size_t size_ = 0;
    bool is_compressed_ = false;
    PgxFramePiece piece_ = {};
    std::vector<PgxFramePiece> several_;
};

namespace detail {

// Without pieces the frames are native and of one size.
struct frame_position {
    using value_type = frame;

    [[nodiscard]] frame value() const {
        return pieces != nullptr ? frame(pixels, pieces->of(index))
                                 : frame(pixels, index, frame_size);
    }
    void advance() noexcept { ++index; }
    [[nodiscard]] bool is_at(const frame_position& other) const noexcept {
        return index == other.index;
    }

    PGX_Node* pixels = nullptr;
    std::size_t frame_size = 0;
    std::size_t index = 0;
    const frame_pieces* pieces = nullptr;
};

}  // namespace detail

// The frames of an item, data_set.frames().
//
// Native Pixel Data: as many as Number of Frames says, but only those that the value has as a
// whole. None where there are no pixels or where Rows, Columns, Samples per Pixel or Bits Allocated
// are missing or make no whole number of bytes. Pixels of YBR_FULL_422 and YBR_PARTIAL_422 have two
// samples for each, of YBR_PARTIAL_420 three for two. Float Pixel Data and Double Float Pixel Data
// have frames, too.
//
// Encapsulated Pixel Data: as pgxFindFrames (frames.h) tells them from the offset tables, or from
// the number of fragments. None where they are not consistent: nobody knows then which fragments
// make a frame. Asking for the range goes over the items of the file, twice where there are many.
// Its iterators are valid as long as it is.
class frame_range {
  public:
    using iterator = detail::handle_iterator<detail::frame_position>;

    frame_range() noexcept = default;
    frame_range(PGX_Node* pixels, std::size_t count, std::size_t frame_size) noexcept
        : pixels_(pixels), count_(count), frame_size_(frame_size) {}
    frame_range(PGX_Node* pixels, detail::frame_pieces&& pieces) noexcept
        : pixels_(pixels), count_(pieces.starts.size() - 1), pieces_(std::move(pieces)) {}

    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    // The frame of that index, which counts from 0; an empty one when there is none.
    [[nodiscard]] frame operator[](std::size_t index) const {
        return index < count_ ? position(index).value() : frame();
    }
    [[nodiscard]] iterator begin() const noexcept { return iterator(position(0)); }
    [[nodiscard]] iterator end() const noexcept { return iterator(position(count_)); }

  private:
    [[nodiscard]] detail::frame_position position(std::size_t index) const noexcept {
        return {pixels_, frame_size_, index, pieces_.starts.empty() ? nullptr : &pieces_};
    }

    PGX_Node* pixels_ = nullptr;
    std::size_t count_ = 0;
    std::size_t frame_size_ = 0;
    detail::frame_pieces pieces_;
};

// ---- Definitions --------------------------------------------------------------------------------

namespace detail {

// Samples of two pixels, by which those of the colours are told that share theirs.
inline std::uint64_t samples_of_two_pixels(const item& in) {
    const std::uint64_t samples = in.find({0x0028, 0x0002}).number<std::uint16_t>().value_or(0);
    const std::string interpretation = in.find({0x0028, 0x0004}).text();
    if (samples != 3) return 2 * samples;
    if (interpretation == "YBR_FULL_422" || interpretation == "YBR_PARTIAL_422") return 4;
    return interpretation == "YBR_PARTIAL_420" ? 3 : 6;
}

// Bytes of a native frame; 0 when the image is not described or its frames begin within bytes.
inline std::uint64_t native_frame_size(const item& in, std::uint32_t frames) {
    const auto number = [&](std::uint16_t number_element) -> std::uint64_t {
        return in.find({0x0028, number_element}).number<std::uint16_t>().value_or(0);
    };
    const std::uint64_t pixels = number(0x0010) * number(0x0011);
    const std::uint64_t bits = number(0x0100);
    if (bits > 64) return 0;
    const std::uint64_t frame_bits = (pixels * samples_of_two_pixels(in) + 1) / 2 * bits;
    return frame_bits % 8 != 0 && frames > 1 ? 0 : (frame_bits + 7) / 8;
}

// None when they cannot be told.
inline frame_pieces find_frames(PGX_Node* data_set) {
    constexpr std::size_t usual_count = 64;
    frame_pieces found;
    found.pieces.resize(usual_count);
    for (bool is_whole = false; !is_whole;) {
        const std::size_t room = found.pieces.size();
        const std::int64_t count = pgxFindFrames(data_set, found.pieces.data(), room, nullptr);
        if (count <= 0) return {};
        found.pieces.resize(static_cast<std::size_t>(count));
        is_whole = found.pieces.size() <= room;
    }
    for (std::size_t i = 0; i < found.pieces.size(); ++i) {
        while (found.starts.size() <= found.pieces[i].frame)
            found.starts.push_back(i);
    }
    found.starts.push_back(found.pieces.size());
    return found;
}

inline bool read_piece(PGX_Node* pixels, const PgxFramePiece& piece, std::uint8_t* out) {
    if (piece.bytes != nullptr) {
        std::memcpy(out, piece.bytes, piece.length);
        return true;
    }
    return piece.offset <= 0xFFFFFFFF &&
           read_file(pixels, static_cast<std::uint32_t>(piece.offset), out, piece.length);
}

// The pieces of a frame behind each other. They are no more than the file really holds.
inline span<const std::uint8_t> joined(PGX_Node* pixels, span<const PgxFramePiece> pieces,
                                       std::size_t size, std::vector<std::uint8_t>& room) {
    const std::uint8_t* const loaded = pieces.size() == 1 ? pieces.begin()->bytes : nullptr;
    if (loaded != nullptr) return {loaded, size};
    room.resize(size);
    std::uint8_t* out = room.data();
    for (const PgxFramePiece& piece : pieces) {
        if (!read_piece(pixels, piece, out)) return {};
        out += piece.length;
    }
    return {room.data(), room.size()};
}

}  // namespace detail

inline frame::frame(PGX_Node* pixels, span<const PgxFramePiece> pieces)
    : pixels_(pixels), is_compressed_(!pieces.empty()) {
    for (const PgxFramePiece& piece : pieces)
        size_ += piece.length;
    if (pieces.size() == 1) {
        piece_ = *pieces.begin();
    } else {
        several_.assign(pieces.begin(), pieces.end());
    }
}

inline frame_range item::frames() const {
    element pixels = find(detail::pixel_data);
    if (pixels.is_encapsulated()) {
        detail::frame_pieces pieces = detail::find_frames(node());
        if (pieces.starts.empty()) return {};
        return {pixels.node(), std::move(pieces)};
    }
    if (!pixels) pixels = find({0x7FE0, 0x0008});
    if (!pixels) pixels = find({0x7FE0, 0x0009});
    const std::uint32_t said = find({0x0028, 0x0008}).number<std::uint32_t>().value_or(1);
    const std::uint64_t frame_size = detail::native_frame_size(*this, said);
    if (frame_size == 0) return {};
    const std::uint64_t held = detail::available_length(pixels.node()) / frame_size;
    return {pixels.node(), static_cast<std::size_t>(said < held ? said : held),
            static_cast<std::size_t>(frame_size)};
}

inline span<const std::uint8_t> frame::bytes(std::vector<std::uint8_t>& room) const {
    if (pixels_ == nullptr || size_ == 0) return {};
    if (is_compressed_) return detail::joined(pixels_, pieces(), size_, room);
    const auto index = static_cast<std::uint32_t>(index_);
    const std::uint8_t* const loaded = detail::loaded_value(pixels_);
    if (loaded != nullptr && !detail::is_big_endian(pixels_))
        return {loaded + index_ * size_, size_};
    room.resize(size_);
    const auto size = static_cast<std::uint32_t>(size_);
    if (pgKitGetPixelData(pixels_, index, size, room.data()) == 0) return {};
    return {room.data(), room.size()};
}

inline std::vector<std::uint8_t> frame::bytes() const {
    std::vector<std::uint8_t> room;
    const span<const std::uint8_t> found = bytes(room);
    if (found.data() != room.data()) room.assign(found.begin(), found.end());
    if (found.empty()) room.clear();
    return room;
}

}  // namespace v1
}  // namespace pgkit

#endif
