// Formatted text on its way to a stream, collected and written in large pieces. What it writes does
// not depend on the C library or its locale. Everything has reached the stream when it is gone.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace pgkit {

class TextOutput {
  public:
    explicit TextOutput(FILE* stream) : stream_(stream) {}
    ~TextOutput() { Flush(); }
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    void Text(std::string_view text);
    // Filled up with blanks behind it, as "%-*s" does.
    void Padded(std::string_view text, size_t width);
    // As "%04X".
    void Hex(uint16_t number);
    // As "%d" or "%u".
    template <typename Integer>
    void Number(Integer number) {
        Text(Digits<Integer>(number).View());
    }
    template <typename Integer>
    void PaddedNumber(Integer number, size_t width) {
        Padded(Digits<Integer>(number).View(), width);
    }
    // As "%*.*f".
    void Fixed(double number, size_t width, int precision);

  private:
    template <typename Integer>
    class Digits {
      public:
        explicit Digits(Integer number)
            : end_(std::to_chars(text_, text_ + sizeof text_, number).ptr) {}
        std::string_view View() const { return {text_, static_cast<size_t>(end_ - text_)}; }

      private:
        char text_[24];
        char* end_;
    };

    void Flush();

    FILE* stream_;
    std::string pending_;
};

}  // namespace pgkit
