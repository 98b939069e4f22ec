// A stream of the C library, closed at the end.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace pgkit_test {

struct CloseStream {
    void operator()(FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<FILE, CloseStream>;

// A test failure when the file cannot be opened.
inline Stream OpenStream(const std::string& path, const char* mode) {
    Stream stream(std::fopen(path.c_str(), mode));
    EXPECT_NE(stream, nullptr) << path;
    return stream;
}

}  // namespace pgkit_test
