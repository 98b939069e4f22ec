// pgkit, the C++ layer (data_set.hpp): the frames of Pixel Data.
#ifndef PGKIT_CPP_FRAMES_HPP
#define PGKIT_CPP_FRAMES_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "pgkit/cpp/element_values.hpp"
#include "pgkit/cpp/fields.hpp"
#include "pgkit/cpp/item_changes.hpp"
#include "pgkit/cpp/iterator.hpp"

namespace pgkit {
inline namespace v1 {

// One frame of Pixel Data, or, of encapsulated Pixel Data, one entry of its table: a frame where
// the file has an offset table (item headers within a frame are part of it), else a fragment. A
// handle that owns nothing, valid as long as the element of the pixels is.
class frame {
  public:
    frame() noexcept = default;
    frame(PGX_Node* pixels, std::size_t index, std::size_t size) noexcept
        : pixels_(pixels), index_(index), size_(size) {}

    // Bytes.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    // The bytes of the frame: native ones are samples in the byte order of this machine. They stay
    // where they are when they are in memory already; else they are read into room, which becomes
    // as large as it has to be. Valid until room, or the pixels, change. Empty when they cannot be
    // read. One room serves all frames of a loop.
    [[nodiscard]] span<const std::uint8_t> bytes(std::vector<std::uint8_t>& room) const;
    // A copy of its own.
    [[nodiscard]] std::vector<std::uint8_t> bytes() const;

  private:
    PGX_Node* pixels_ = nullptr;
    std::size_t index_ = 0;
    std::size_t size_ = 0;
};

namespace detail {

// A frame size of 0 stands for encapsulated frames, of which each has its own.
struct frame_position {
    using value_type = frame;

    [[nodiscard]] frame value() const noexcept;
    void advance() noexcept { ++index; }
    [[nodiscard]] bool is_at(const frame_position& other) const noexcept {
        return index == other.index;
    }

    PGX_Node* pixels = nullptr;
    std::size_t frame_size = 0;
    std::size_t index = 0;
};

}  // namespace detail

// The frames of an item, data_set.frames(): as many as Number of Frames says, but only those that
// the value has as a whole. None where there are no pixels or where Rows, Columns, Samples per
// Pixel or Bits Allocated are missing or make no whole number of bytes. Native Pixel Data of
// YBR_FULL_422 and YBR_PARTIAL_422 have two samples for each pixel, of YBR_PARTIAL_420 three for
// two. Float Pixel Data and Double Float Pixel Data have frames, too.
class frame_range {
  public:
    using iterator = detail::handle_iterator<detail::frame_position>;

    frame_range() noexcept = default;
    frame_range(PGX_Node* pixels, std::size_t count, std::size_t frame_size) noexcept
        : pixels_(pixels), count_(count), frame_size_(frame_size) {}

    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    // The frame of that index, which counts from 0; an empty one when there is none.
    [[nodiscard]] frame operator[](std::size_t index) const noexcept {
        return index < count_ ? position(index).value() : frame();
    }
    [[nodiscard]] iterator begin() const noexcept { return iterator(position(0)); }
    [[nodiscard]] iterator end() const noexcept { return iterator(position(count_)); }

  private:
    [[nodiscard]] detail::frame_position position(std::size_t index) const noexcept {
        return {pixels_, frame_size_, index};
    }

    PGX_Node* pixels_ = nullptr;
    std::size_t count_ = 0;
    std::size_t frame_size_ = 0;
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

// The bytes of one entry of encapsulated Pixel Data.
inline span<const std::uint8_t> encapsulated_bytes(PGX_Node* pixels, std::uint32_t index,
                                                   std::vector<std::uint8_t>& room) {
    std::uint32_t length = 0;
    std::uint32_t position = 0;
    if (pgKitGetEncodedPixelInfo(pixels, index, &length, &position) == 0 || length == 0) return {};
    if (const std::uint8_t* const loaded = loaded_fragment(pixels, index)) return {loaded, length};
    // What is there to its last byte may be allocated.
    if (!has_byte(pixels, std::uint64_t{position} + length - 1)) return {};
    room.resize(length);
    if (!read_file(pixels, position, room.data(), length)) return {};
    return {room.data(), room.size()};
}

inline std::uint32_t encapsulated_size(PGX_Node* pixels, std::uint32_t index) noexcept {
    std::uint32_t length = 0;
    std::uint32_t position = 0;
    pgKitGetEncodedPixelInfo(pixels, index, &length, &position);
    return length;
}

inline frame frame_position::value() const noexcept {
    if (frame_size != 0) return {pixels, index, frame_size};
    return {pixels, index, encapsulated_size(pixels, static_cast<std::uint32_t>(index))};
}

}  // namespace detail

inline frame_range item::frames() const {
    element pixels = find(detail::pixel_data);
    if (pixels.is_encapsulated()) return {pixels.node(), detail::fragment_count(pixels.node()), 0};
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
    const auto index = static_cast<std::uint32_t>(index_);
    if (pgKitIsEncodedPixelData(pixels_) != 0)
        return detail::encapsulated_bytes(pixels_, index, room);
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
