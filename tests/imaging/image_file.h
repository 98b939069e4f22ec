// Files of images, composed from what matters to a test, and images loaded from them.
#pragma once

#include <pgkit/imaging.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "imaging/bitmap.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace pgkit_test {

// By default one row of four pixels of 8 bits, and a window that leaves such pixels as they are.
// Empty texts and absent numbers are left out of the file.
struct ImageFile {
    std::string photometricInterpretation = "MONOCHROME2 ";
    uint16_t samplesPerPixel = 1;
    std::string frameCount = {};
    uint16_t rows = 1;
    uint16_t columns = 4;
    uint16_t bitsAllocated = 8;
    std::optional<uint16_t> bitsStored = {};
    std::optional<uint16_t> highBit = {};
    uint16_t pixelRepresentation = 0;
    std::string windowCentre = "128";
    std::string windowWidth = "256";
    std::string rescaleIntercept = {};
    std::string rescaleSlope = {};
    Bytes pixels = {};
    // Encapsulated when there are any; the first item is the offset table.
    std::vector<Bytes> items = {};
    // None makes a bare data set in implicit VR.
    std::string transferSyntax = "1.2.840.10008.1.2.1";
    std::string pixelVr = "OW";
    bool hasModalityTable = false;

    Bytes Build() const;
};

constexpr const char* kBigEndian = "1.2.840.10008.1.2.2";
constexpr const char* kImplicit = "1.2.840.10008.1.2";
constexpr const char* kRleLossless = "1.2.840.10008.1.2.5";

// 16-bit words as bytes.
Bytes Words(std::initializer_list<uint32_t> words, Order order = Order::Little);
Bytes LongWords(std::initializer_list<uint32_t> words);

// An encoded frame in RLE Lossless: the header of 64 bytes with the segments' offsets, and the
// segments.
Bytes RleFrame(const std::vector<Bytes>& segments);

// An image of the module, freed at the end.
class LoadedImage {
  public:
    explicit LoadedImage(const ImageFile& file) : LoadedImage(file.Build()) {}
    explicit LoadedImage(const Bytes& file);
    // From an existing file.
    explicit LoadedImage(const std::string& path);
    ~LoadedImage() { vwImaFreeDicomImage(image_); }
    LoadedImage(const LoadedImage&) = delete;
    LoadedImage& operator=(const LoadedImage&) = delete;

    bool IsLoaded() const { return result_ == 1; }
    void* Handle() const { return image_; }
    Bitmap Frame(uint32_t index) const { return Bitmap(vwImaGetHDib(image_, index)); }
    // The pixels of a frame, top row first; a test failure when there is no bitmap.
    Bytes Pixels(uint32_t frame = 0) const;

  private:
    TempDir directory_;
    void* image_ = vwImaAllocEmptyDicomImage();
    int32_t result_;
};

// The pixels of a frame of a file.
inline Bytes PixelsOf(const ImageFile& file, uint32_t frame = 0) {
    return LoadedImage(file).Pixels(frame);
}

// Whether a file, which the module loads, has a bitmap for a frame.
inline bool HasBitmap(const ImageFile& file, uint32_t frame = 0) {
    const LoadedImage image(file);
    EXPECT_TRUE(image.IsLoaded());
    return image.Frame(frame).Exists();
}

}  // namespace pgkit_test
