// Text helpers: blanks, case and bounded copies. All of them know ASCII only, whatever the locale.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pgkit {

// The text without its leading and trailing blanks (0x20 only).
std::string_view TrimBlanks(std::string_view text);

constexpr char ToUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
std::string ToUpper(std::string_view text);

// A zero-terminated copy on the heap, for the owned strings of nodes; free with delete[].
char* NewText(std::string_view text);

// Copies a text into a field of fixed size, cut to fit and always zero-terminated.
template <size_t Size>
void CopyToField(char (&field)[Size], std::string_view text) {
    const size_t length = text.copy(field, Size - 1);
    field[length] = '\0';
}

// Copies a text and its terminating zero into a buffer whose size only the caller knows; a null one
// gets nothing.
inline void CopyUnbounded(char* buffer, std::string_view text) {
    if (buffer != nullptr) buffer[text.copy(buffer, text.size())] = '\0';
}

// Copies what fits of a text, and a terminating zero always, into a buffer of `size` bytes; a null
// one, or one of no bytes, gets nothing. Returns the length of the whole text.
inline size_t CopyBounded(char* buffer, size_t size, std::string_view text) {
    if (buffer != nullptr && size > 0) buffer[text.copy(buffer, size - 1)] = '\0';
    return text.size();
}

// A null text counts as empty.
inline std::string_view OrEmpty(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

}  // namespace pgkit
