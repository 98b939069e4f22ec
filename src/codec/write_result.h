// What the writing operations return. The values are part of the interface.
#pragma once

#include <cstdint>
#include <cstdio>

#include "platform/file_handle.h"

namespace pgkit {

// By itself, because the formatter breaks a definition that has an attribute.
enum [[nodiscard]] WriteResult : uint32_t;

enum WriteResult : uint32_t {
    kWritten = 0,
    kCannotCreate = 1,
    kNoSource = 2,
    kWriteFailed = 3,
    kReadFailed = 4,
    kOutOfMemory = 5,
    kValueTooLong = 6,
    kCannotReopen = 7
};

// The runtime may hold bytes back until a stream is closed: only then they are known to be written.
inline WriteResult CloseWritten(platform::FileHandle file, WriteResult result) {
    const bool closed = std::fclose(file.release()) == 0;
    return result == kWritten && !closed ? kWriteFailed : result;
}

}  // namespace pgkit
