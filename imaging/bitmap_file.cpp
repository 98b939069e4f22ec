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
    const pgkit::BitmapHeader& header = bitmap.Header();
    uint8_t fileHeader[kFileHeaderSize] = {'B', 'M'};
    Store32(fileHeader + 2, kFileHeaderSize + header.TotalSize());
    Store32(fileHeader + 10, kFileHeaderSize + header.PixelsOffset());

    FILE* const stream = CreateOutput(path);
    if (stream == nullptr) return false;
    const bool isWritten = WriteBytes(stream, fileHeader, sizeof fileHeader) &&
                           WriteBytes(stream, bitmap.Bytes(), header.TotalSize());
    // What is still buffered may fail to be written now.
    return std::fclose(stream) == 0 && isWritten;
}

}  // namespace pgview
