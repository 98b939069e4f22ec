// A caller's buffer that fills with UTF-8.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "base/utf8.h"

namespace pgkit {

// Counts what does not fit. The text in the buffer is terminated and never ends inside a character.
class Utf8Output {
  public:
    // A null buffer counts as one of size 0.
    Utf8Output(char* buffer, size_t size)
        : buffer_(buffer), room_(buffer == nullptr || size == 0 ? 0 : size - 1) {
        if (buffer != nullptr && size != 0) buffer[0] = '\0';
    }

    void Append(char32_t character) {
        char bytes[kMaxUtf8Size];
        AppendWhole({bytes, WriteUtf8(character, bytes)});
    }

    // A text without characters of several bytes may be cut anywhere.
    void AppendAscii(std::string_view text) {
        const size_t fitting = IsFull() ? 0 : std::min(text.size(), room_ - needed_);
        Put(text.substr(0, fitting));
        needed_ += text.size();
    }

    size_t Needed() const { return needed_; }

  private:
    bool IsFull() const { return needed_ >= room_; }

    void AppendWhole(std::string_view bytes) {
        if (!IsFull() && bytes.size() <= room_ - needed_) {
            Put(bytes);
        } else {
            room_ = 0;  // nothing that follows is put behind the gap
        }
        needed_ += bytes.size();
    }

    void Put(std::string_view bytes) {
        if (bytes.empty()) return;
        std::memcpy(buffer_ + needed_, bytes.data(), bytes.size());
        buffer_[needed_ + bytes.size()] = '\0';
    }

    char* buffer_;
    size_t room_;
    size_t needed_ = 0;
};

}  // namespace pgkit
