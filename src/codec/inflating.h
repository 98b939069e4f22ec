// Deflated data sets on their way into memory or to the disk as what they are.
#pragma once

#include <cstdint>

#include "codec/stream_reader.h"
#include "platform/file_handle.h"

namespace pgkit {

// How much a file may become: in any case so much, and so many times its size. A few bytes of
// deflate may be a thousand times as many.
constexpr uint64_t MostInflated(uint64_t fileSize) {
    constexpr uint64_t kAlways = uint64_t{256} << 20;
    constexpr uint64_t kTimes = 100;
    return fileSize < kAlways / kTimes ? kAlways : kTimes * fileSize;
}

enum class InflateResult {
    Whole,
    Partial,     // what there is of it: the deflated data are cut short or damaged
    TooLarge,    // nothing
    CannotWrite  // nothing: there is no temporary file, or no room in it
};

struct InflatedFile {
    InflateResult result;
    platform::FileHandle stream;
    uint64_t size = 0;
};

// A temporary file with the bytes up to the reader's position as they are, and what is inflated of
// the deflated data that stand there, with the header of zlib or without. What follows these is
// padding. The file gets no larger than the limit. Throws std::bad_alloc.
[[nodiscard]] InflatedFile InflateToFile(StreamReader& reader, uint64_t limit);

}  // namespace pgkit
