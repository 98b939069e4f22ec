// What a piece of code prints: CapturePrinted([&] { ... }).
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace pgkit_test {

struct Printed {
    std::string out;
    std::string err;
};

// Runs code and returns what arrived on the standard output and standard error meanwhile. Line ends
// read as "\n" on every platform.
template <typename Code>
Printed CapturePrinted(Code&& code) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    code();
    std::fflush(stdout);
    std::fflush(stderr);
    Printed printed;
    printed.err = testing::internal::GetCapturedStderr();
    printed.out = testing::internal::GetCapturedStdout();
    return printed;
}

}  // namespace pgkit_test
