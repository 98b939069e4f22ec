#include "image_description.h"

#include <cmath>
#include <string_view>

namespace pgview {

namespace {

constexpr uint16_t kImageGroup = 0x0028;

PGX_Node* FindWithValue(PGX_Node& dataSet, uint16_t element) {
    PGX_Node* const node = dataSet.FindNode(kImageGroup, element);
    return node != nullptr && node->length > 0 ? node : nullptr;
}

uint32_t NumberOf(PGX_Node& dataSet, uint16_t element, uint32_t fallback) {
    PGX_Node* const node = FindWithValue(dataSet, element);
    return node == nullptr ? fallback : node->GetUSValue();
}

double DecimalOf(PGX_Node& dataSet, uint16_t element, double fallback) {
    PGX_Node* const node = FindWithValue(dataSet, element);
    if (node == nullptr) return fallback;
    const double number = node->GetDSDoubleValue();
    return std::isfinite(number) ? number : fallback;
}

uint32_t FrameCountOf(PGX_Node& dataSet) {
    PGX_Node* const node = FindWithValue(dataSet, 0x0008);
    const int32_t count = node == nullptr ? 1 : node->GetDSIntValue();
    return count < 1 ? 1 : static_cast<uint32_t>(count);
}

std::optional<SampleFormat> ReadSampleFormat(PGX_Node& dataSet) {
    SampleFormat format{};
    format.bitsAllocated = NumberOf(dataSet, 0x0100, 0);
    if (format.bitsAllocated != 8 && format.bitsAllocated != 16 && format.bitsAllocated != 32) {
        return std::nullopt;
    }
    format.bitsStored = NumberOf(dataSet, 0x0101, format.bitsAllocated);
    format.highBit = NumberOf(dataSet, 0x0102, format.bitsStored - 1);
    format.isSigned = NumberOf(dataSet, 0x0103, 0) == 1;
    if (format.bitsStored == 0 || format.highBit >= format.bitsAllocated) return std::nullopt;
    if (format.bitsStored > format.highBit + 1) return std::nullopt;
    return format;
}

// Images from before this element existed have no other than gray pixels.
void ReadPhotometricInterpretation(PGX_Node& dataSet, ImageDescription& image) {
    char buffer[17] = "MONOCHROME2";
    PGX_Node* const node = FindWithValue(dataSet, 0x0004);
    if (node != nullptr) node->GetStringValue(buffer, sizeof buffer - 1);
    const std::string_view text(buffer);
    const bool hasOneSample = NumberOf(dataSet, 0x0002, 1) == 1;
    image.isGrayscale = hasOneSample && text.starts_with("MONOCHROME");
    image.isInverted = text.starts_with("MONOCHROME1");
}

// A slope of 0 would make all pixels equal and can only be a mistake.
void ReadRescaling(PGX_Node& dataSet, ImageDescription& image) {
    image.rescaleIntercept = DecimalOf(dataSet, 0x1052, 0);
    image.rescaleSlope = DecimalOf(dataSet, 0x1053, 1);
    if (image.rescaleSlope == 0) image.rescaleSlope = 1;
}

// The window of a data set with a Modality LUT Sequence is for what comes out of that table.
std::optional<Window> ReadWindow(PGX_Node& dataSet) {
    if (dataSet.FindNode(kImageGroup, 0x3000) != nullptr) return std::nullopt;
    const Window window{DecimalOf(dataSet, 0x1050, NAN), DecimalOf(dataSet, 0x1051, NAN)};
    if (std::isnan(window.centre) || !(window.width >= 1)) return std::nullopt;
    return window;
}

}  // namespace

std::optional<ImageDescription> DescribeImage(PGX_Node& dataSet) {
    const std::optional<SampleFormat> format = ReadSampleFormat(dataSet);
    if (!format) return std::nullopt;
    ImageDescription image{};
    image.format = *format;
    image.rows = NumberOf(dataSet, 0x0010, 0);
    image.columns = NumberOf(dataSet, 0x0011, 0);
    if (image.rows == 0 || image.columns == 0) return std::nullopt;
    image.frameCount = FrameCountOf(dataSet);
    ReadPhotometricInterpretation(dataSet, image);
    ReadRescaling(dataSet, image);
    image.window = ReadWindow(dataSet);
    return image;
}

}  // namespace pgview
