#include "dicom_image.h"

#include <bit>
#include <string_view>
#include <utility>

#include "bitmap.h"
#include "bitmap_zoom.h"
#include "encapsulated_frame.h"
#include "rle_decoder.h"

namespace pgview {

namespace {

// Values stay in the file: of one in memory it could not be told whether the file holds all of it.
constexpr uint32_t kLoadNothing = 0;

bool HasTransferSyntax(PGX_Node& root, std::string_view wanted) {
    char uid[65] = {};
    PGX_Node* const node = root.FindNode(0x0002, 0x0010);
    if (node != nullptr) node->GetStringValue(uid, sizeof uid - 1);
    return uid == wanted;
}

bool IsRleLossless(PGX_Node& root) { return HasTransferSyntax(root, "1.2.840.10008.1.2.5"); }

// A private syntax whose elements are little endian but for the words of Pixel Data. The library
// gives these words as it gives all others of such a file.
bool HasSwappedWords(PGX_Node& root) { return HasTransferSyntax(root, "1.2.840.113619.5.2"); }

void SwapWords(std::vector<uint8_t>& bytes) {
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
}

// The library gives words in the byte order of this machine, and samples of 8 bits in their order.
bool HoldsBigEndianWords(const PGX_Node& pixelData) {
    if (std::endian::native == std::endian::little || pixelData.bitsAllocated == 8) return false;
    return pixelData.valueRep == VR_OW || pixelData.valueRep == VR_OWOB;
}

bool CanReadPixels(PGX_Node& root, PGX_Node& pixelData) {
    if (pixelData.IsEncodedPixelData() != 0) return IsRleLossless(root);
    return pixelData.length > 0 && pixelData.length != UINT32_MAX;
}

}  // namespace

bool DicomImage::Load(const char* path) {
    *this = DicomImage();
    std::unique_ptr<PGX_Node, Closer> root(pgOpenDataSetFile(path, kLoadNothing));
    if (root == nullptr) return false;
    PGX_Node* const pixelData = root->FindNode(0x7FE0, 0x0010);
    if (pixelData == nullptr || !CanReadPixels(*root, *pixelData)) return false;
    description_ = DescribeImage(*root);
    if (!description_) return false;
    root_ = std::move(root);
    pixelData_ = pixelData;
    return true;
}

pgkit::BitmapHandle DicomImage::NewFrameBitmap(uint32_t index) const {
    std::optional<GrayRows> rows = ReadFrame(index);
    return rows ? RenderFrame(*description_, *rows) : nullptr;
}

pgkit::BitmapHandle DicomImage::NewThumbnail(uint32_t side) const {
    std::optional<GrayRows> rows = ReadFrame(TypicalFrame());
    if (!rows) return nullptr;
    const BitmapSize whole{description_->columns, description_->rows};
    const std::optional<BitmapSize> fitted = FittedSize(whole, side);
    if (!fitted) return nullptr;
    return ResizeRows(whole, *fitted, [&](uint8_t* out) { return rows->Next(out); });
}

std::optional<GrayRows> DicomImage::ReadFrame(uint32_t index) const {
    if (!IsGrayscale() || index >= FrameCount()) return std::nullopt;
    if (!IsWithinBounds(description_->columns, description_->rows)) return std::nullopt;
    std::unique_ptr<FrameRows> samples = ReadSamples(index);
    if (samples == nullptr) return std::nullopt;
    return GrayRows(*description_, std::move(samples));
}

std::unique_ptr<FrameRows> DicomImage::ReadSamples(uint32_t index) const {
    if (pixelData_->IsEncodedPixelData() != 0) {
        return NewRleRows(
            ReadEncapsulatedFrame(*root_, *pixelData_, index, description_->frameCount),
            description_->rows, description_->columns, description_->format.ByteCount());
    }
    std::vector<uint8_t> frame = ReadNativeFrame(index);
    if (frame.empty()) return nullptr;
    const size_t rowSize = frame.size() / description_->rows;
    return std::make_unique<StoredRows>(std::move(frame), rowSize);
}

// Frames of an odd size are read in pairs: samples of one byte may stand exchanged in words, and
// these words begin at even positions.
std::vector<uint8_t> DicomImage::ReadNativeFrame(uint32_t index) const {
    if (!HoldsNativeFrame(index)) return {};
    const auto size = static_cast<uint32_t>(description_->FrameSize());
    const uint32_t together = 1 + size % 2;
    std::vector<uint8_t> frames(size_t{size} * together);
    const auto read = static_cast<uint32_t>(frames.size());
    if (pixelData_->GetPixelData(index / together, read, frames.data()) != 1) return {};
    if (HoldsBigEndianWords(*pixelData_)) SwapWords(frames);
    if (index % together == 1) frames.erase(frames.begin(), frames.begin() + size);
    frames.resize(size);
    if (description_->format.bitsAllocated == 16 && HasSwappedWords(*root_)) SwapWords(frames);
    return frames;
}

bool DicomImage::HoldsNativeFrame(uint32_t index) const {
    const uint64_t end = (uint64_t{index} + 1) * description_->FrameSize();
    const uint64_t last = pixelData_->fileOffset + end - 1;
    if (end > pixelData_->length || last > UINT32_MAX) return false;
    uint8_t byte;
    return root_->GetFileData(&byte, static_cast<uint32_t>(last), 1) == 1;
}

}  // namespace pgview
