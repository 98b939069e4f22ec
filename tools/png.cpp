#include "png.h"

#include <zlib.h>

namespace pgtool {

namespace {

void AppendNumber(std::string& bytes, uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
}

// Length, type, data, and the checksum of both.
void AppendChunk(std::string& file, const std::string& typeAndData) {
    AppendNumber(file, static_cast<uint32_t>(typeAndData.size() - 4));
    file += typeAndData;
    const auto* bytes = reinterpret_cast<const Bytef*>(typeAndData.data());
    AppendNumber(file, static_cast<uint32_t>(crc32_z(0, bytes, typeAndData.size())));
}

std::string Header(uint32_t width, uint32_t height, uint32_t samples) {
    constexpr char kGray = 0;
    constexpr char kRgb = 2;
    std::string header = "IHDR";
    AppendNumber(header, width);
    AppendNumber(header, height);
    header += '\x08';  // bits for each sample
    header += samples == 1 ? kGray : kRgb;
    return header + std::string(3, '\0');  // deflate, filters, not interlaced
}

// Each row behind the number of its filter: that of the difference to the pixel on the left, which
// suits both pictures with and without noise.
std::string FilteredRows(uint32_t width, uint32_t height, uint32_t samples,
                         const std::vector<uint8_t>& pixels) {
    constexpr char kSub = 1;
    const size_t rowSize = size_t{width} * samples;
    std::string rows;
    rows.reserve((rowSize + 1) * height);
    for (size_t y = 0; y < height; ++y) {
        rows += kSub;
        const uint8_t* const row = pixels.data() + y * rowSize;
        for (size_t i = 0; i < rowSize; ++i)
            rows += static_cast<char>(row[i] - (i < samples ? 0 : row[i - samples]));
    }
    return rows;
}

}  // namespace

std::string EncodePng(uint32_t width, uint32_t height, uint32_t samples,
                      const std::vector<uint8_t>& pixels) {
    const std::string rows = FilteredRows(width, height, samples, pixels);
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::string data(4 + size, '\0');
    data.replace(0, 4, "IDAT");
    const auto* source = reinterpret_cast<const Bytef*>(rows.data());
    auto* target = reinterpret_cast<Bytef*>(data.data() + 4);
    if (compress(target, &size, source, static_cast<uLong>(rows.size())) != Z_OK) return "";
    data.resize(4 + size);

    std::string file = "\x89PNG\r\n\x1A\n";
    AppendChunk(file, Header(width, height, samples));
    AppendChunk(file, data);
    AppendChunk(file, "IEND");
    return file;
}

}  // namespace pgtool
