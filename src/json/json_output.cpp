#include "json/json_output.h"

#include <rapidjson/writer.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "json/throwing_allocator.h"

namespace pgkit {

namespace {

// What RapidJSON writes to: a buffer in front of the caller's function.
class BufferedStream {
  public:
    using Ch = char;

    BufferedStream(PgxWriteFunction write, void* context)
        : write_(write), context_(context), buffer_(new char[kCapacity]) {}

    void Put(char c) {
        if (used_ == kCapacity) PassOn();
        buffer_[used_++] = c;
    }
    // What RapidJSON calls when the JSON is complete.
    void Flush() {}

    char* Reserve(size_t size) {
        if (size > kCapacity - used_) PassOn();
        return buffer_.get() + used_;
    }
    void Commit(size_t size) { used_ += size; }

    void Put(std::string_view text) {
        if (text.size() <= kCapacity - used_) {
            text.copy(buffer_.get() + used_, text.size());
            used_ += text.size();
            return;
        }
        while (!text.empty()) {
            if (used_ == kCapacity) PassOn();
            const size_t count = text.copy(buffer_.get() + used_, kCapacity - used_);
            used_ += count;
            text.remove_prefix(count);
        }
    }

    void PassOn() {
        if (used_ == 0) return;
        if (!hasFailed_) {
            hasFailed_ = write_ == nullptr || write_(context_, buffer_.get(), used_) != used_;
        }
        passedOn_ += used_;
        used_ = 0;
    }

    bool HasFailed() const { return hasFailed_; }
    uint64_t Size() const { return passedOn_ + used_; }

  private:
    static constexpr size_t kCapacity = 2 * JsonOutput::kMaxReserved;

    PgxWriteFunction write_;
    void* context_;
    std::unique_ptr<char[]> buffer_;
    size_t used_ = 0;
    uint64_t passedOn_ = 0;
    bool hasFailed_ = false;
};

// Puts commas and colons where they belong, and lets strings be written in pieces.
using RapidWriter =
    rapidjson::Writer<BufferedStream, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

class PieceWriter : public RapidWriter {
  public:
    explicit PieceWriter(BufferedStream& stream) : RapidWriter(stream) {}

    void BeginString() {
        Prefix(rapidjson::kStringType);
        os_->Put('"');
    }
    void EndString() { os_->Put('"'); }
    void BeginNumber() { Prefix(rapidjson::kNumberType); }

    // Bookkeeping for what is put as a text: a member of the present object whose value is opened,
    // with so many members of its own.
    void NoteMember(bool isArray, size_t members) {
        ++level_stack_.template Top<Level>()->valueCount;
        auto* const level = level_stack_.template Push<Level>();
        new (level) Level(isArray);
        level->valueCount = 2 * members;
    }
    // The name of a member, but for the name: a comma in front of it.
    void BeginKey() { Prefix(rapidjson::kStringType); }
};

// What stands for a character in a string: 0 is itself, 'u' a number, another letter a letter.
constexpr auto kEscapes = [] {
    std::array<char, 256> escapes{};
    for (size_t c = 0; c < 0x20; ++c)
        escapes[c] = 'u';
    escapes['\b'] = 'b';
    escapes['\t'] = 't';
    escapes['\n'] = 'n';
    escapes['\f'] = 'f';
    escapes['\r'] = 'r';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    return escapes;
}();

char EscapeOf(char c) { return kEscapes[static_cast<uint8_t>(c)]; }

void PutEscape(char c, BufferedStream& stream) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    const auto code = static_cast<uint8_t>(c);
    stream.Put('\\');
    stream.Put(EscapeOf(c));
    if (EscapeOf(c) != 'u') return;
    stream.Put("00");
    stream.Put(kHex[code >> 4]);
    stream.Put(kHex[code & 15]);
}

}  // namespace

class JsonOutput::Impl {
  public:
    Impl(PgxWriteFunction write, void* context) : stream(write, context), writer(stream) {}

    BufferedStream stream;
    PieceWriter writer;
};

JsonOutput::JsonOutput(PgxWriteFunction write, void* context)
    : impl_(std::make_unique<Impl>(write, context)) {}
JsonOutput::~JsonOutput() = default;

void JsonOutput::StartObject() { impl_->writer.StartObject(); }
void JsonOutput::EndObject() { impl_->writer.EndObject(); }
void JsonOutput::EndArray() { impl_->writer.EndArray(); }
void JsonOutput::Null() { impl_->writer.Null(); }

void JsonOutput::StartElement(std::string_view tag, std::string_view valueRep) {
    constexpr std::string_view kHead = R"("ggggeeee":{"vr":"VR")";
    impl_->writer.BeginKey();
    char* const head = impl_->stream.Reserve(kHead.size());
    kHead.copy(head, kHead.size());
    tag.copy(head + 1, 8);
    valueRep.copy(head + 18, 2);
    impl_->stream.Commit(kHead.size());
    impl_->writer.NoteMember(false, 1);
}

void JsonOutput::StartValues() {
    impl_->writer.BeginKey();
    impl_->stream.Put(R"("Value":[)");
    impl_->writer.NoteMember(true, 0);
}

void JsonOutput::Key(std::string_view name) {
    impl_->writer.BeginString();
    impl_->stream.Put(name);
    impl_->writer.EndString();
}

void JsonOutput::Number(std::string_view digits) {
    impl_->writer.BeginNumber();
    impl_->stream.Put(digits);
}

void JsonOutput::String(std::string_view text) {
    BeginString();
    StringPiece(text);
    EndString();
}

void JsonOutput::BeginString() { impl_->writer.BeginString(); }
void JsonOutput::EndString() { impl_->writer.EndString(); }

void JsonOutput::StringPiece(std::string_view text) {
    while (!text.empty()) {
        const auto escaped = std::ranges::find_if(text, [](char c) { return EscapeOf(c) != 0; });
        const auto plain = static_cast<size_t>(escaped - text.begin());
        impl_->stream.Put(text.substr(0, plain));
        if (plain == text.size()) return;
        PutEscape(text[plain], impl_->stream);
        text.remove_prefix(plain + 1);
    }
}

char* JsonOutput::Reserve(size_t size) { return impl_->stream.Reserve(size); }
void JsonOutput::Commit(size_t size) { impl_->stream.Commit(size); }

bool JsonOutput::Finish() {
    impl_->stream.PassOn();
    return !impl_->stream.HasFailed();
}

bool JsonOutput::HasFailed() const { return impl_->stream.HasFailed(); }
uint64_t JsonOutput::Size() const { return impl_->stream.Size(); }

}  // namespace pgkit
