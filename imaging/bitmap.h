// Device-independent bitmaps behind handles: how their bytes are laid out, access to the bitmaps of
// callers, and new ones of this module's own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace pgview {

// No larger bitmap is made or taken. A side is as long as Rows and Columns can say.
constexpr uint64_t kMaxPixels = uint64_t{1} << 28;
constexpr uint64_t kMaxSide = 0xFFFF;

// Width, height and depth of a bitmap, and what follows from them.
struct BitmapLayout {
    uint32_t width;
    uint32_t height;
    uint32_t channels;  // bytes per pixel: 1 with a colour table, or 3
    uint32_t colourCount;

    size_t Stride() const;
    size_t PixelsOffset() const;
    size_t Size() const;
};

bool IsWithinBounds(uint64_t width, uint64_t height);

// The layout of a bitmap of grays as this module makes them, or of one of blue, green and red.
BitmapLayout NewBitmapLayout(uint32_t width, uint32_t height, uint32_t channels);

// A bitmap that belongs to someone else, locked for the time of this object's life.
class LockedBitmap {
  public:
    explicit LockedBitmap(void* handle);
    ~LockedBitmap();
    LockedBitmap(const LockedBitmap&) = delete;
    LockedBitmap& operator=(const LockedBitmap&) = delete;

    // False for a bitmap that the module does not take; the rest is then not defined.
    bool IsUsable() const { return layout_.has_value(); }
    const BitmapLayout& Layout() const { return *layout_; }
    const uint8_t* Bytes() const { return bytes_; }
    // The stored row, counted from the bottom of the picture.
    const uint8_t* Row(size_t row) const;
    // The gray of a colour table's entry.
    uint8_t Gray(uint8_t entry) const;

  private:
    void* handle_;
    const uint8_t* bytes_;
    std::optional<BitmapLayout> layout_;
};

// A new bitmap, freed again unless it is given away. Header and colour table are complete, the
// pixels 0.
class NewBitmap {
  public:
    // Throws std::bad_alloc.
    explicit NewBitmap(const BitmapLayout& layout);
    ~NewBitmap();
    NewBitmap(const NewBitmap&) = delete;
    NewBitmap& operator=(const NewBitmap&) = delete;

    uint8_t* Bytes() { return bytes_; }
    // The stored row, counted from the bottom of the picture.
    uint8_t* Row(size_t row) { return bytes_ + layout_.PixelsOffset() + row * layout_.Stride(); }
    // Hands the bitmap over to the caller.
    void* Give();

  private:
    BitmapLayout layout_;
    void* handle_;
    uint8_t* bytes_;
};

}  // namespace pgview
