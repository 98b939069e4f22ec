#include "bitmap/new_bitmap.h"

#include <algorithm>
#include <new>
#include <utility>

namespace pgkit {

namespace {

void* Allocate(const BitmapHeader& header) {
    return header.TotalSize() > INT32_MAX ? nullptr
                                          : platform::AllocateGlobalBlock(header.TotalSize());
}

}  // namespace

NewBitmap::NewBitmap(const BitmapHeader& header)
    : header_(header), handle_(Allocate(header)), bytes_(platform::LockGlobalBlock(handle_.get())) {
    if (bytes_ == nullptr) throw std::bad_alloc();
    WriteBitmapHeader(header_, bytes_);
}

NewBitmap::~NewBitmap() { Give(); }

void NewBitmap::SetGray(size_t entry, uint8_t gray) {
    std::fill_n(bytes_ + header_.size + 4 * entry, 3, gray);
}

void NewBitmap::SetGrays() {
    for (uint32_t entry = 0; entry < header_.colourCount; ++entry)
        SetGray(entry, static_cast<uint8_t>(entry));
}

BitmapHandle NewBitmap::Give() {
    if (handle_ != nullptr) platform::UnlockGlobalBlock(handle_.get());
    return std::move(handle_);
}

}  // namespace pgkit
