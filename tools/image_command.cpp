// pgtool image: a frame of an image as a picture.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "bitmap.h"
#include "commands.h"
#include "data_set.h"
#include "loaded_image.h"
#include "output_file.h"
#include "pgkit/imaging.h"
#include "png.h"

namespace pgtool {

namespace {

struct ImageRequest {
    Arguments files;
    std::string output;
    uint32_t frame = 1;
    uint32_t size = 0;
};

// Why there is no bitmap of a frame that exists.
std::string WhyNoBitmap(void* image) {
    return vwImaIsGrayscaleImage(image) == 0 ? "it is no grayscale image"
                                             : "the file does not hold the whole frame";
}

// A picture whose longer side has size pixels; as it is for 0.
GrayPicture Render(void* image, const ImageRequest& request) {
    void* const bitmap = vwImaGetHDib(image, request.frame - 1);
    GrayPicture whole = TakeBitmap(bitmap);
    const uint32_t longest = std::max(whole.width, whole.height);
    if (longest == 0 || request.size == 0 || request.size == longest) return whole;
    void* const again = vwImaGetHDib(image, request.frame - 1);
    void* const scaled = vwDuplicateZoomDib(again, static_cast<double>(request.size) / longest);
    TakeBitmap(again);
    return TakeBitmap(scaled);
}

bool WriteAll(const std::string& bytes, std::FILE* stream) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() &&
           std::fflush(stream) == 0;
}

bool WriteFile(const std::string& bytes, const std::string& path) {
    if (path == "-") return WriteAll(bytes, stdout);
    OutputFile output(path);
    std::FILE* const stream =
        output.Path().empty() ? nullptr : std::fopen(output.Path().c_str(), "wb");
    if (stream == nullptr) return false;
    const bool isWritten = WriteAll(bytes, stream);
    return std::fclose(stream) == 0 && isWritten && output.PutInPlace();
}

int MakePicture(const ImageRequest& request) {
    constexpr uint32_t kLargest = 65535;
    if (request.output.empty()) return Misuse(kImageCommand, "-o OUT.png is expected");
    if (request.frame == 0) return Misuse(kImageCommand, "--frame: frames count from 1");
    if (request.size > kLargest) return Misuse(kImageCommand, "--size: at most 65535 pixels");
    const std::string& path = request.files[0];
    std::string damage;
    const auto root = Open(path, {0, PG_OPEN_SKIP_FRAGMENTS, false, &damage});
    if (!root) return Fail(kImageCommand, root.error().message);

    const LoadedImage image(vwImaAllocEmptyDicomImage());
    if (vwImaLoadFrom(image.get(), path.c_str()) == 0) {
        return Fail(kImageCommand, path + ": no image, or one in a compression other than RLE");
    }
    const uint32_t frames = vwImaGetNumber(image.get());
    if (request.frame > frames) {
        return Fail(kImageCommand, path + ": it has " + std::to_string(frames) + " frames");
    }
    const GrayPicture picture = Render(image.get(), request);
    if (picture.pixels.empty()) {
        return Fail(kImageCommand, path + ": " + WhyNoBitmap(image.get()));
    }
    const std::string png = EncodePng(picture.width, picture.height, 1, picture.pixels);
    if (!png.empty() && WriteFile(png, request.output)) return kDone;
    return Fail(kImageCommand, request.output + ": the file cannot be written");
}

Work DefineImage(OptionSet& options) {
    const auto request = std::make_shared<ImageRequest>();
    options.Operands(&request->files, 1, 1, "exactly one file is expected");
    options.Number("--frame", "N", &request->frame, "the frame, counted from 1 (default 1)");
    options.Number("--size", "N", &request->size,
                   "scale the picture: its longer side has N pixels (default: as it is)");
    options.Text("-o,--output", "OUT", &request->output,
                 "the PNG file to write; - is the standard output");
    return [request] { return MakePicture(*request); };
}

}  // namespace

const Command kImageCommand = {
    "image", "image FILE -o OUT.png [--frame N] [--size N]", "make a picture of a frame",
    "Writes a PNG file of 256 grays: the values of the frame through its rescaling and its first\n"
    "window, or without one from the lowest to the highest. Grayscale images, uncompressed or in\n"
    "RLE Lossless, can be shown.\n",
    DefineImage};

}  // namespace pgtool
