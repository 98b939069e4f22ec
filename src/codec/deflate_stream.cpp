#include "codec/deflate_stream.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

namespace pgkit {

namespace {

// Negative: neither header nor checksum.
constexpr int kRawWindow = -MAX_WBITS;
constexpr int kUsualMemory = 8;

void* Allocate(void*, unsigned count, unsigned size) { return std::calloc(count, size); }

void Free(void*, void* memory) { std::free(memory); }

std::unique_ptr<z_stream_s> NewStream() {
    auto stream = std::make_unique<z_stream_s>();
    stream->zalloc = Allocate;
    stream->zfree = Free;
    return stream;
}

unsigned Bounded(size_t size) { return static_cast<unsigned>(std::min<size_t>(size, UINT_MAX)); }

template <typename Function>
DeflateStep Step(z_stream_s& stream, std::span<const uint8_t> input, std::span<uint8_t> output,
                 Function&& function) {
    const unsigned inputSize = Bounded(input.size());
    const unsigned outputSize = Bounded(output.size());
    stream.next_in = const_cast<uint8_t*>(input.data());  // zlib reads it only
    stream.avail_in = inputSize;
    stream.next_out = output.data();
    stream.avail_out = outputSize;
    const int result = function(stream);
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    DeflateState state = DeflateState::Damaged;
    if (result == Z_STREAM_END) state = DeflateState::Ended;
    // No progress for want of input or of room is no error.
    if (result == Z_OK || result == Z_BUF_ERROR) state = DeflateState::Open;
    return {inputSize - stream.avail_in, outputSize - stream.avail_out, state};
}

}  // namespace

void Inflater::End::operator()(z_stream_s* stream) const {
    inflateEnd(stream);
    delete stream;
}

Inflater::Inflater(bool hasHeader) {
    auto stream = NewStream();
    if (inflateInit2(stream.get(), hasHeader ? MAX_WBITS : kRawWindow) != Z_OK) {
        throw std::bad_alloc();
    }
    stream_.reset(stream.release());
}

DeflateStep Inflater::Run(std::span<const uint8_t> input, std::span<uint8_t> output) {
    return Step(*stream_, input, output,
                [](z_stream_s& stream) { return inflate(&stream, Z_NO_FLUSH); });
}

void Deflater::End::operator()(z_stream_s* stream) const {
    deflateEnd(stream);
    delete stream;
}

Deflater::Deflater() {
    auto stream = NewStream();
    if (deflateInit2(stream.get(), Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawWindow, kUsualMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    stream_.reset(stream.release());
}

DeflateStep Deflater::Run(std::span<const uint8_t> input, std::span<uint8_t> output, bool isLast) {
    return Step(*stream_, input, output, [isLast](z_stream_s& stream) {
        return deflate(&stream, isLast ? Z_FINISH : Z_NO_FLUSH);
    });
}

}  // namespace pgkit
