#include "imaging/image_file.h"

#include <gtest/gtest.h>

namespace pgkit_test {

namespace {

std::string Even(std::string text) {
    if (text.size() % 2 != 0) text += ' ';
    return text;
}

class ImageWriter {
  public:
    explicit ImageWriter(const ImageFile& image)
        : image_(image),
          stream_(image.transferSyntax.empty() || image.transferSyntax == kImplicit
                      ? VrMode::Implicit
                      : VrMode::Explicit,
                  image.transferSyntax == kBigEndian ? Order::Big : Order::Little) {}

    Bytes Write() {
        if (!image_.transferSyntax.empty()) stream_.Part10(image_.transferSyntax);
        WriteDescription();
        WritePresentation();
        if (image_.items.empty()) {
            Element(0x7FE0, 0x0010, image_.pixelVr, image_.pixels);
        } else {
            WriteItems();
        }
        return stream_.Data();
    }

  private:
    void WriteDescription() {
        stream_.ElementUS(0x0028, 0x0002, image_.samplesPerPixel);
        Text(0x0004, "CS", image_.photometricInterpretation);
        Text(0x0008, "IS", image_.frameCount);
        stream_.ElementUS(0x0028, 0x0010, image_.rows);
        stream_.ElementUS(0x0028, 0x0011, image_.columns);
        stream_.ElementUS(0x0028, 0x0100, image_.bitsAllocated);
        if (image_.bitsStored) stream_.ElementUS(0x0028, 0x0101, *image_.bitsStored);
        if (image_.highBit) stream_.ElementUS(0x0028, 0x0102, *image_.highBit);
        stream_.ElementUS(0x0028, 0x0103, image_.pixelRepresentation);
    }

    void WritePresentation() {
        Text(0x1050, "DS", image_.windowCentre);
        Text(0x1051, "DS", image_.windowWidth);
        Text(0x1052, "DS", image_.rescaleIntercept);
        Text(0x1053, "DS", image_.rescaleSlope);
        if (image_.hasModalityTable) stream_.Sequence(0x0028, 0x3000).EndSequence();
    }

    void WriteItems() {
        stream_.Header(0x7FE0, 0x0010, "OB", kUndefined);
        for (const Bytes& item : image_.items)
            stream_.Item(static_cast<uint32_t>(item.size())).Append(item);
        stream_.EndSequence();
    }

    void Text(uint16_t element, std::string_view vr, const std::string& text) {
        if (!text.empty()) stream_.Element(0x0028, element, vr, Even(text));
    }

    void Element(uint16_t group, uint16_t element, std::string_view vr, const Bytes& bytes) {
        stream_.Header(group, element, vr, static_cast<uint32_t>(bytes.size())).Append(bytes);
    }

    const ImageFile& image_;
    StreamBuilder stream_;
};

}  // namespace

Bytes ImageFile::Build() const { return ImageWriter(*this).Write(); }

Bytes Words(std::initializer_list<uint32_t> words, Order order) {
    StreamBuilder stream(VrMode::Explicit, order);
    for (const uint32_t word : words)
        stream.U16(static_cast<uint16_t>(word & 0xFFFF));
    return stream.Data();
}

Bytes LongWords(std::initializer_list<uint32_t> words) {
    StreamBuilder stream;
    for (const uint32_t word : words)
        stream.U32(word);
    return stream.Data();
}

Bytes RleFrame(const std::vector<Bytes>& segments) {
    Bytes frame(64);
    PutU32(frame, 0, static_cast<uint32_t>(segments.size()));
    for (size_t i = 0; i < segments.size(); ++i) {
        PutU32(frame, 4 + 4 * i, static_cast<uint32_t>(frame.size()));
        frame.insert(frame.end(), segments[i].begin(), segments[i].end());
    }
    if (frame.size() % 2 != 0) frame.push_back(0);
    return frame;
}

LoadedImage::LoadedImage(const Bytes& file)
    : result_(vwImaLoadFrom(image_, directory_.Write("image.dcm", file).c_str())) {}

LoadedImage::LoadedImage(const std::string& path) : result_(vwImaLoadFrom(image_, path.c_str())) {}

Bytes LoadedImage::Pixels(uint32_t frame) const {
    const Bitmap bitmap = Frame(frame);
    EXPECT_TRUE(bitmap.Exists());
    return bitmap.Exists() ? bitmap.Pixels() : Bytes();
}

}  // namespace pgkit_test
