#include "json/json_stream.h"

namespace pgkit {

namespace {

constexpr size_t kBufferSize = 0x10000;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// -1 for what is no hexadecimal digit.
int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

JsonStream::JsonStream(const JsonSource& source)
    : source_(source), next_(source.text.data()), end_(next_) {
    if (source.read == nullptr) {
        isOver_ = true;
        const bool fits = source.text.size() <= source.sizeLimit;
        if (!fits) error_ = PGX_JSON_TOO_LARGE;
        end_ = next_ + (fits ? source.text.size() : 0);
        positionOfEnd_ = static_cast<uint64_t>(end_ - next_);
    } else {
        buffer_ = std::make_unique_for_overwrite<char[]>(kBufferSize);
        next_ = end_ = buffer_.get();
    }
    SkipByteOrderMark();
}

// The mark may be read in pieces. What only begins like one is put in front again.
void JsonStream::SkipByteOrderMark() {
    for (size_t i = 0; i < kByteOrderMark.size(); ++i) {
        if (Peek() != kByteOrderMark[i]) return Insert(kByteOrderMark.substr(0, i));
        Take();
    }
}

// Whether there is more.
bool JsonStream::MoveOn() {
    if (isInserted_) {
        isInserted_ = false;
        next_ = nextBehindInserted_;
        end_ = endBehindInserted_;
        if (next_ != end_) return true;
    }
    if (isOver_) return false;
    const size_t got = source_.read(source_.context, buffer_.get(), kBufferSize);
    isOver_ = got == 0 || got > kBufferSize;
    if (got == 0) return false;
    if (got > kBufferSize) {
        error_ = PGX_JSON_READ_FAILED;
        return false;
    }
    if (positionOfEnd_ + got > source_.sizeLimit) {
        error_ = PGX_JSON_TOO_LARGE;
        isOver_ = true;
        return false;
    }
    next_ = buffer_.get();
    end_ = next_ + got;
    positionOfEnd_ += got;
    return true;
}

void JsonStream::SkipBlanks() {
    constexpr std::string_view kBlanks = " \n\r\t";
    while (kBlanks.find(Peek()) != std::string_view::npos)
        Take();
}

// Up to a quotation mark, an escape or the end of the window; empty where one of the former stands,
// and at the end of the text.
std::string_view JsonStream::PlainPart() {
    if (next_ == end_ && !MoveOn()) return {};
    std::string_view part(next_, static_cast<size_t>(end_ - next_));
    part = part.substr(0, part.find('"'));
    part = part.substr(0, part.find('\\'));
    next_ += part.size();
    return part;
}

char JsonStream::TakeEscape() {
    Take();
    const char kind = Take();
    if (kind == '/') return kind;
    if (kind != 'u') return '\0';
    int code = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = HexDigit(Peek());
        if (digit < 0) return '\0';
        code = code << 4 | digit;
        Take();
    }
    return code < 0x80 ? static_cast<char>(code) : '\0';
}

void JsonStream::Insert(std::string_view text) {
    if (text.empty()) return;
    positionBehindInserted_ = Position();
    nextBehindInserted_ = next_;
    endBehindInserted_ = end_;
    isInserted_ = true;
    next_ = text.data();
    end_ = next_ + text.size();
}

}  // namespace pgkit
