// Base64 (RFC 4648, section 4), piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pgkit {

// Bytes in pieces of a multiple of this, but for the last one, give the characters of the whole.
constexpr size_t kBase64Bytes = 3;
constexpr size_t kBase64Characters = 4;

constexpr size_t Base64Size(size_t byteCount) {
    return (byteCount + kBase64Bytes - 1) / kBase64Bytes * kBase64Characters;
}

// Writes Base64Size(count) characters.
void EncodeBase64(const uint8_t* bytes, size_t count, char* characters);

// Decodes characters that come in any pieces. What no encoder writes is refused: other characters,
// blanks and line ends included, missing padding, something behind it, and rests that are not zero.
class Base64Decoder {
  public:
    // Writes the bytes that are complete with this piece, at most RoomFor of it, and returns how
    // many; nothing of use after IsBroken.
    size_t Decode(std::string_view characters, uint8_t* bytes);
    static constexpr size_t RoomFor(size_t characterCount) {
        return (characterCount / kBase64Characters + 1) * kBase64Bytes;
    }

    bool IsBroken() const { return isBroken_; }
    // Whether the text may end here.
    bool IsComplete() const { return !isBroken_ && pendingCount_ == 0; }

  private:
    size_t DecodeGroup(const char* group, uint8_t* bytes);

    char pending_[kBase64Characters];
    size_t pendingCount_ = 0;
    bool hasPadding_ = false;
    bool isBroken_ = false;
};

}  // namespace pgkit
