#include <iconv.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstring>

#include "platform/charset_conversion.h"

namespace pgkit::platform {

namespace {

// By Charset.
constexpr std::array<const char*, kCharsetCount> kNames = {
    "ISO-8859-2", "ISO-8859-3", "ISO-8859-4",  "ISO-8859-5", "ISO-8859-6", "ISO-8859-7",
    "ISO-8859-8", "ISO-8859-9", "ISO-8859-15", "TIS-620",    "EUC-JP",     "EUC-JP",
    "EUC-KR",     "EUC-CN",     "GBK",         "GB18030"};

// Four bytes to a character. glibc has it built in: the one module to be loaded is the other set's.
constexpr const char* kUnicode = "UCS-4LE";
constexpr size_t kUnicodeUnit = 4;

// What EUC-JP puts in front of a character of JIS X 0212.
constexpr char kSingleShift3 = '\x8F';

const iconv_t kNoConverter = std::bit_cast<iconv_t>(intptr_t{-1});

// Converters that nobody uses at the moment, at most one of each kind: opening one costs the system
// much more than using it. They are closed when the module is unloaded.
class IdleConverters {
  public:
    ~IdleConverters() {
        for (auto& converter : slots_)
            Close(converter.exchange(nullptr));
    }

    // Null when the system has no such converter.
    void* Take(size_t slot, const char* to, const char* from) {
        void* const idle = slots_[slot].exchange(nullptr);
        if (idle != nullptr) return idle;
        const iconv_t opened = iconv_open(to, from);
        return opened == kNoConverter ? nullptr : opened;
    }

    void PutBack(size_t slot, void* converter) {
        if (converter != nullptr) Close(slots_[slot].exchange(converter));
    }

  private:
    static void Close(void* converter) {
        if (converter != nullptr) iconv_close(converter);
    }

    std::array<std::atomic<void*>, 2 * kCharsetCount> slots_{};
};

constinit IdleConverters idleConverters;

constexpr size_t DecodingSlot(Charset charset) { return 2 * static_cast<size_t>(charset); }
constexpr size_t EncodingSlot(Charset charset) { return DecodingSlot(charset) + 1; }

// Converts all of a text, exactly. Returns the bytes written, 0 when something cannot be converted.
size_t Convert(void* converter, const char* input, size_t length, char* output, size_t room) {
    char* from = const_cast<char*>(input);
    size_t left = room;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    // A positive result counts characters that were replaced by similar ones.
    if (iconv(converter, &from, &length, &output, &left) != 0 || length != 0) return 0;
    return room - left;
}

bool IsPrivateUse(char32_t character) { return character >= 0xE000 && character < 0xF900; }

}  // namespace

CharsetConversion::~CharsetConversion() {
    idleConverters.PutBack(DecodingSlot(charset_), decoding_);
    idleConverters.PutBack(EncodingSlot(charset_), encoding_);
}

char32_t CharsetConversion::Decode(std::string_view unit) {
    if (decoding_ == nullptr) {
        const char* const name = kNames[static_cast<size_t>(charset_)];
        decoding_ = idleConverters.Take(DecodingSlot(charset_), kUnicode, name);
        if (decoding_ == nullptr) return 0;
    }
    const size_t shift = charset_ == Charset::JisX0212 ? 1 : 0;
    char bytes[1 + kMaxCharsetUnit] = {kSingleShift3};
    const size_t length = shift + unit.copy(bytes + shift, kMaxCharsetUnit);
    unsigned char decoded[kUnicodeUnit];
    const size_t size =
        Convert(decoding_, bytes, length, reinterpret_cast<char*>(decoded), sizeof decoded);
    if (size != kUnicodeUnit) return 0;
    const char32_t character = decoded[0] | char32_t{decoded[1]} << 8 | char32_t{decoded[2]} << 16;
    return IsPrivateUse(character) && charset_ != Charset::Gb18030 ? 0 : character;
}

size_t CharsetConversion::Encode(char32_t character, char (&unit)[kMaxCharsetUnit]) {
    if (encoding_ == nullptr) {
        const char* const name = kNames[static_cast<size_t>(charset_)];
        encoding_ = idleConverters.Take(EncodingSlot(charset_), name, kUnicode);
        if (encoding_ == nullptr) return 0;
    }
    const char unicode[kUnicodeUnit] = {static_cast<char>(character),
                                        static_cast<char>(character >> 8),
                                        static_cast<char>(character >> 16), 0};
    char bytes[1 + kMaxCharsetUnit];
    const size_t size = Convert(encoding_, unicode, sizeof unicode, bytes, sizeof bytes);
    if (size == 0) return 0;
    const bool isShifted = size == 3 && bytes[0] == kSingleShift3;
    if (isShifted != (charset_ == Charset::JisX0212)) return 0;
    const size_t unitSize = size - (isShifted ? 1 : 0);
    if (unitSize > kMaxCharsetUnit) return 0;
    std::memcpy(unit, bytes + (isShifted ? 1 : 0), unitSize);
    return Decode(std::string_view(unit, unitSize)) == character ? unitSize : 0;
}

}  // namespace pgkit::platform
