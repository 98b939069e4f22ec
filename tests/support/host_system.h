// Which system the tests run on, where that makes a difference to them.
#pragma once

#include <filesystem>

namespace pgkit_test {

inline constexpr bool kIsWindows = std::filesystem::path::preferred_separator == '\\';

}  // namespace pgkit_test
