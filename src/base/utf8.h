// UTF-8, one character at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pgkit {

constexpr char32_t kReplacementCharacter = 0xFFFD;
constexpr size_t kMaxUtf8Size = 4;

// The first character of a text and the bytes it takes. What is no character is a replacement
// character in the place of as many bytes as could have begun one, at least one: so decoders of the
// Unicode standard's recommended practice count, and the bytes behind a broken character survive.
struct Utf8Character {
    char32_t character;
    size_t size;
    bool isValid;
    bool isCutShort;  // not valid, but the text ends where the character could have gone on
};

// The text must not be empty.
Utf8Character FirstUtf8Character(std::string_view text);

bool IsValidUtf8(std::string_view text);

// Writes a character and returns the bytes it takes. What no text can hold, a surrogate or a number
// above 10FFFF, becomes a replacement character.
size_t WriteUtf8(char32_t character, char (&bytes)[kMaxUtf8Size]);

}  // namespace pgkit
