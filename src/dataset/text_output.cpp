#include "dataset/text_output.h"

#include <iterator>

namespace pgkit {

namespace {

constexpr size_t kPieceSize = 0x8000;

}  // namespace

void TextOutput::Text(std::string_view text) {
    if (pending_.size() + text.size() > kPieceSize) Flush();
    if (text.size() > kPieceSize) {
        std::fwrite(text.data(), 1, text.size(), stream_);
    } else {
        pending_ += text;
    }
}

void TextOutput::Padded(std::string_view text, size_t width) {
    Text(text);
    if (text.size() < width) pending_.append(width - text.size(), ' ');
}

void TextOutput::Hex(uint16_t number) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const char text[] = {kDigits[number >> 12], kDigits[number >> 8 & 15],
                         kDigits[number >> 4 & 15], kDigits[number & 15]};
    Text({text, sizeof text});
}

void TextOutput::Fixed(double number, size_t width, int precision) {
    char text[512];  // the largest double has 309 digits before the point
    const char* end =
        std::to_chars(std::begin(text), std::end(text), number, std::chars_format::fixed, precision)
            .ptr;
    const size_t size = static_cast<size_t>(end - text);
    if (size < width) pending_.append(width - size, ' ');
    Text({text, size});
}

void TextOutput::Flush() {
    if (!pending_.empty()) std::fwrite(pending_.data(), 1, pending_.size(), stream_);
    pending_.clear();
}

}  // namespace pgkit
