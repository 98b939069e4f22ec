// Values to and from UTF-8, as strings.
#pragma once

#include <pgkit/text.h>
#include <pgkit/value_representation.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace pgkit_test {

// The result of a function of text.h, whole: asked for its size first and fetched then. "error -3"
// for an error.
template <typename Function>
std::string Fetched(Function function) {
    const int64_t length = function(nullptr, size_t{0});
    if (length < 0) return "error " + std::to_string(length);
    std::string buffer(static_cast<size_t>(length) + 1, '?');
    if (function(buffer.data(), buffer.size()) != length) return "another length";
    if (buffer.back() != '\0') return "not terminated";
    buffer.pop_back();
    return buffer;
}

inline std::string Decoded(const char* characterSet, uint32_t valueRep, std::string_view bytes) {
    return Fetched([&](char* buffer, size_t size) {
        return pgxTextToUtf8(characterSet, valueRep, bytes.data(), bytes.size(), buffer, size);
    });
}

inline std::string Encoded(const char* characterSet, uint32_t valueRep, std::string_view utf8) {
    return Fetched([&](char* buffer, size_t size) {
        return pgxTextFromUtf8(characterSet, valueRep, utf8.data(), utf8.size(), buffer, size);
    });
}

inline std::string DecodedField(const char* characterSet, uint32_t valueRep, const char* field) {
    return Fetched([&](char* buffer, size_t size) {
        return pgxFieldToUtf8(characterSet, valueRep, field, buffer, size);
    });
}

}  // namespace pgkit_test
