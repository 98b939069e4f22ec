// An imaging module that breaks every promise but one, that its bitmaps are memory to be freed. The
// name of the file that an image is loaded from says how.
#include <pgkit/imaging.h>

#include <cstring>
#include <string>

#include "imaging/received_memory.h"

namespace {

using namespace pgkit_test;

struct Image {
    std::string fault;
};

// Of the image that was loaded last.
std::string currentFault;

// How many images were loaded so far.
int loads = 0;

struct Fields {
    uint32_t headerSize = 40;
    uint32_t width = 8;
    uint32_t height = 1;
    uint32_t bitCount = 8;
    uint32_t coloursUsed = 256;
};

// Numbers of bitmaps are little endian.
void Put(uint8_t* place, uint32_t number, size_t size = 4) {
    for (size_t i = 0; i < size; ++i)
        place[i] = static_cast<uint8_t>(number >> (8 * i));
}

// A bitmap whose pixels are these eight bytes and whose table is that of the grays.
void* NewBitmap(const Fields& fields, const void* pixels, size_t size = 40 + 1024 + 8) {
    uint8_t bytes[40 + 1024 + 8] = {};
    Put(bytes, fields.headerSize);
    Put(bytes + 4, fields.width);
    Put(bytes + 8, fields.height);
    Put(bytes + 14, fields.bitCount, 2);
    Put(bytes + 32, fields.coloursUsed);
    for (int i = 0; i < 256; ++i)
        std::memset(bytes + 40 + 4 * i, i, 3);
    std::memcpy(bytes + 40 + 1024, pixels, 8);
    void* const handle = AllocateToGive(size);
    std::memcpy(LockReceived(handle), bytes, size);
    UnlockReceived(handle);
    return handle;
}

void* NewBroken(const std::string& fault, const void* pixels) {
    if (fault == "SHORT") return NewBitmap({}, pixels, 10);
    if (fault == "EMPTY") return NewBitmap({}, pixels, 1);
    if (fault == "HEADER") return NewBitmap({}, pixels, 40);
    if (fault == "HUGE") return NewBitmap({.width = 60000, .height = 60000}, pixels);
    if (fault == "GIGANTIC") {
        return NewBitmap({.width = 0x7FFFFFFF, .height = 0x7FFFFFFF}, pixels);
    }
    if (fault == "NOWIDTH") return NewBitmap({.width = 0}, pixels);
    if (fault == "NOHEIGHT") return NewBitmap({.height = 0}, pixels);
    if (fault == "NEGATIVE") return NewBitmap({.height = 0xFFFFFFFF}, pixels);
    if (fault == "BIGTABLE") return NewBitmap({.coloursUsed = 0xFFFFFFFF}, pixels);
    if (fault == "BIGHEADER") return NewBitmap({.headerSize = 0xFFFFFFFF}, pixels);
    if (fault == "DEPTH") return NewBitmap({.bitCount = 0xFFFF}, pixels);
    return nullptr;  // NULL
}

}  // namespace

void* vwImaAllocEmptyDicomImage() { return new Image; }

void vwImaFreeDicomImage(void* image) { delete static_cast<Image*>(image); }

int32_t vwImaLoadFrom(void* image, const char* path) {
    ++loads;
    const std::string name(path);
    currentFault = static_cast<Image*>(image)->fault = name.substr(name.find_last_of("/\\") + 1);
    return currentFault == "NOLOAD" ? 0 : -5;
}

int32_t vwImaIsGrayscaleImage(void* image) {
    return static_cast<Image*>(image)->fault == "COLOUR" ? 0 : 0x100;
}

uint32_t vwImaGetNumber(void* image) {
    return static_cast<Image*>(image)->fault == "FRAMES" ? 0xFFFF0008 : 0;
}

// The gray of all pixels is the frame's number or, for the files LOADS, how many images were
// loaded.
void* vwImaGetHDib(void* image, uint32_t frame) {
    const std::string& fault = static_cast<Image*>(image)->fault;
    uint8_t pixels[8];
    std::memset(pixels, fault.starts_with("LOADS") ? loads : static_cast<int>(frame),
                sizeof pixels);
    if (fault.starts_with("FRAME-")) return NewBroken(fault.substr(6), pixels);
    return NewBitmap({}, pixels);
}

// The pixels show the frame or, for the file ZOOM, the bytes of the factor.
void* vwDuplicateZoomDib(void* dib, double zoom) {
    if (currentFault.starts_with("ZOOM-")) return NewBroken(currentFault.substr(5), &zoom);
    if (currentFault == "ZOOM") return NewBitmap({}, &zoom);
    void* const zoomed = NewBitmap({}, LockReceived(dib) + 40 + 1024);
    UnlockReceived(dib);
    return zoomed;
}

void* vwGetThumbnailDib(void*, uint32_t) { return nullptr; }
void* vwInterpolateZoomDib(void*, double) { return nullptr; }
int32_t vwWriteDib(void*, const char*) { return 0; }
