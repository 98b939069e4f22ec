// The text that the JSON library reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "json/json_parser.h"

namespace pgkit {

// A window of the source that moves on. NUL stands for the end. Throws std::bad_alloc.
class JsonStream {
  public:
    using Ch = char;

    explicit JsonStream(const JsonSource& source);

    // ---- As RapidJSON wants a stream ----

    char Peek() { return next_ != end_ || MoveOn() ? *next_ : '\0'; }
    char Take() { return next_ != end_ || MoveOn() ? *next_++ : '\0'; }
    size_t Tell() const { return static_cast<size_t>(Position()); }

    // For streams that are written to.
    char* PutBegin() { return nullptr; }
    void Put(char) {}
    void Flush() {}
    size_t PutEnd(char*) { return 0; }

    // ----

    uint64_t Position() const {
        return isInserted_ ? positionBehindInserted_
                           : positionOfEnd_ - static_cast<uint64_t>(end_ - next_);
    }
    bool IsAtEnd() { return next_ == end_ && !MoveOn(); }
    // Why the text ended early: 0 or a PgxJsonError.
    int32_t Error() const { return error_; }

    // Behind the name of a member: takes a string that is its value out of the text and gives its
    // parts to take, which answers whether to go on. The JSON library sees an empty one instead.
    // Only characters of ASCII may be escaped in it; others are given as NUL.
    template <typename TakePart>
    bool DivertString(TakePart take) {
        SkipBlanks();
        if (Peek() != ':') return true;
        Take();
        SkipBlanks();
        if (Peek() != '"') {
            Insert(":");
            return true;
        }
        Take();
        for (;;) {
            std::string_view part = PlainPart();
            char escaped = '\0';
            if (part.empty()) {
                if (Peek() != '\\') break;
                escaped = TakeEscape();
                part = {&escaped, 1};
            }
            if (!take(part)) return false;
        }
        // Without a quotation mark the text is over, and the value is missing.
        Insert(Take() == '"' ? ":\"\"" : ":");
        return true;
    }

  private:
    bool MoveOn();
    void SkipByteOrderMark();
    void SkipBlanks();
    std::string_view PlainPart();
    char TakeEscape();
    void Insert(std::string_view text);

    JsonSource source_;
    const char* next_;
    const char* end_;
    uint64_t positionOfEnd_ = 0;
    std::unique_ptr<char[]> buffer_;
    bool isOver_ = false;  // nothing more comes from the function
    int32_t error_ = 0;
    // While a text stands in front of the window: the window's.
    bool isInserted_ = false;
    const char* nextBehindInserted_ = nullptr;
    const char* endBehindInserted_ = nullptr;
    uint64_t positionBehindInserted_ = 0;
};

}  // namespace pgkit
