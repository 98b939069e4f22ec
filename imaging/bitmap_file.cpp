#include "bitmap_file.h"

#include <cstdio>

#include "little_endian.h"
#include "output_path.h"

namespace pgview {

namespace {

constexpr size_t kFileHeaderSize = 14;  // a BITMAPFILEHEADER

bool WriteBytes(FILE* stream, const uint8_t* bytes, size_t count) {
    return std::fwrite(bytes, 1, count, stream) == count;
}

}  // namespace

bool WriteBitmapFile(const LockedBitmap& bitmap, const char* path) {
    const BitmapLayout& layout = bitmap.Layout();
    uint8_t header[kFileHeaderSize] = {'B', 'M'};
    Store32(header + 2, static_cast<uint32_t>(kFileHeaderSize + layout.Size()));
    Store32(header + 10, static_cast<uint32_t>(kFileHeaderSize + layout.PixelsOffset()));

    FILE* const stream = CreateOutput(path);
    if (stream == nullptr) return false;
    const bool isWritten = WriteBytes(stream, header, sizeof header) &&
                           WriteBytes(stream, bitmap.Bytes(), layout.Size());
    // What is still buffered may fail to be written now.
    return std::fclose(stream) == 0 && isWritten;
}

}  // namespace pgview
