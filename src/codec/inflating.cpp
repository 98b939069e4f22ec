#include "codec/inflating.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "codec/deflate_stream.h"
#include "platform/temporary_file.h"

namespace pgkit {

namespace {

constexpr size_t kInflatePiece = size_t{64} << 10;

// Some writers put the header of zlib in front, which is no deflate: what has its form would be a
// stored block, whose length is followed by the same with all bits inverted.
bool HasZlibHeader(StreamReader& reader) {
    constexpr uint8_t kDeflateMethod = 8;
    constexpr uint8_t kPresetDictionary = 0x20;
    const uint8_t* bytes = reader.Peek(2);
    if (bytes == nullptr) return false;
    const unsigned header = bytes[0] * 256u + bytes[1];
    const bool hasForm = (bytes[0] & 0x0F) == kDeflateMethod && bytes[0] >> 4 <= 7 &&
                         header % 31 == 0 && (bytes[1] & kPresetDictionary) == 0;
    if (!hasForm) return false;
    bytes = reader.Peek(5);
    const bool isStored =
        bytes != nullptr && (bytes[1] ^ bytes[3]) == 0xFF && (bytes[2] ^ bytes[4]) == 0xFF;
    return !isStored;
}

class FileInflation {
  public:
    FileInflation(StreamReader& reader, FILE* out, uint64_t limit)
        : reader_(reader),
          out_(out),
          limit_(limit),
          buffers_(std::make_unique_for_overwrite<uint8_t[]>(2 * kInflatePiece)) {}

    InflateResult Run() {
        const uint64_t start = reader_.Position();
        reader_.Seek(0);
        if (!CopyUpTo(start)) return InflateResult::CannotWrite;
        Inflater inflater(HasZlibHeader(reader_));
        while (true) {
            const std::span<uint8_t> input(buffers_.get(), kInflatePiece);
            const size_t got = reader_.Read(input.data(), input.size());
            if (got == 0) return InflateResult::Partial;
            const std::optional<InflateResult> result = Inflate(inflater, input.first(got));
            if (result) return *result;
        }
    }

    uint64_t Size() const { return size_; }

  private:
    bool CopyUpTo(uint64_t end) {
        while (size_ < end) {
            const size_t wanted =
                end - size_ < kInflatePiece ? static_cast<size_t>(end - size_) : kInflatePiece;
            const size_t got = reader_.Read(buffers_.get(), wanted);
            if (got == 0 || !Write({buffers_.get(), got})) return false;
        }
        return true;
    }

    bool Write(std::span<const uint8_t> bytes) {
        size_ += bytes.size();
        return std::fwrite(bytes.data(), 1, bytes.size(), out_) == bytes.size();
    }

    // Nothing as long as there is more to come.
    std::optional<InflateResult> Inflate(Inflater& inflater, std::span<const uint8_t> input) {
        const std::span<uint8_t> output(buffers_.get() + kInflatePiece, kInflatePiece);
        while (true) {
            const DeflateStep step = inflater.Run(input, output);
            if (size_ + step.given > limit_) return InflateResult::TooLarge;
            if (!Write(output.first(step.given))) return InflateResult::CannotWrite;
            if (step.state == DeflateState::Ended) return InflateResult::Whole;
            if (step.state == DeflateState::Damaged) return InflateResult::Partial;
            input = input.subspan(step.taken);
            if (input.empty() && step.given < output.size()) return std::nullopt;
        }
    }

    StreamReader& reader_;
    FILE* out_;
    const uint64_t limit_;
    const std::unique_ptr<uint8_t[]> buffers_;  // input and output
    uint64_t size_ = 0;
};

}  // namespace

InflatedFile InflateToFile(StreamReader& reader, uint64_t limit) {
    InflatedFile file{InflateResult::CannotWrite,
                      platform::FileHandle(platform::CreateTemporary())};
    if (file.stream == nullptr) return file;
    FileInflation inflation(reader, file.stream.get(), limit);
    file.result = inflation.Run();
    file.size = inflation.Size();
    return file;
}

}  // namespace pgkit
