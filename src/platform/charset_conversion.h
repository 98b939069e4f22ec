// Single character sets, converted by the system: one character at a time, to and from Unicode.
//
// Both platforms give the same characters: nothing is transliterated or replaced by something
// similar, and, but for GB 18030, nothing of the private use area is a character. What the system
// converts with may be a larger set that holds the one asked for: whoever asks knows the bytes that
// a set consists of, offers no others, and takes none for an answer.
//
// A system may lack a set (glibc without its conversion modules; Wine has no GB 18030 beyond two
// bytes): its characters are not there then. Editions of GB 18030 differ in 24 characters; the
// system's edition holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pgkit::platform {

enum class Charset : uint8_t {
    Iso8859_2,
    Iso8859_3,
    Iso8859_4,
    Iso8859_5,
    Iso8859_6,
    Iso8859_7,
    Iso8859_8,
    Iso8859_9,
    Iso8859_15,
    Tis620,    // Thai
    JisX0208,  // both bytes above A0
    JisX0212,  // both bytes above A0, without the third byte that EUC puts in front
    KsX1001,
    Gb2312,
    Gbk,
    Gb18030,
};
constexpr size_t kCharsetCount = static_cast<size_t>(Charset::Gb18030) + 1;

constexpr size_t kMaxCharsetUnit = 4;

// One set in use: by one thread, for the duration of a conversion. Making one is cheap.
class CharsetConversion {
  public:
    explicit CharsetConversion(Charset charset) : charset_(charset) {}
    ~CharsetConversion();
    CharsetConversion(const CharsetConversion&) = delete;
    CharsetConversion& operator=(const CharsetConversion&) = delete;

    // The character that these bytes are, all of them; 0 when they are none.
    char32_t Decode(std::string_view unit);

    // Writes a character above 7F and returns how many bytes it takes; 0 when the set lacks it. The
    // bytes decode to the same character again.
    size_t Encode(char32_t character, char (&unit)[kMaxCharsetUnit]);

  private:
    Charset charset_;
    // What the system needs to remember, by direction; null before the first use.
    void* decoding_ = nullptr;
    void* encoding_ = nullptr;
};

}  // namespace pgkit::platform
