// What the operations that write return, as hosts see it.
#pragma once

#include <cstdint>

namespace pgkit_test {

constexpr uint32_t kCannotCreate = 1;
constexpr uint32_t kNoSource = 2;
constexpr uint32_t kWriteFailed = 3;
constexpr uint32_t kReadFailed = 4;
constexpr uint32_t kOutOfMemory = 5;
constexpr uint32_t kValueTooLong = 6;
constexpr uint32_t kCannotReopen = 7;

}  // namespace pgkit_test
