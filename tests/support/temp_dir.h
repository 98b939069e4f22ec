// A directory of its own for one test, removed with everything in it at the end.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pgkit_test {

using Bytes = std::vector<uint8_t>;

class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    // Full path of an entry of this directory; it need not exist.
    std::string Path(std::string_view name) const;

    // Writes a file and returns its path.
    std::string Write(std::string_view name, std::span<const uint8_t> content) const;
    std::string Write(std::string_view name, std::string_view content) const;

  private:
    std::filesystem::path path_;
};

// A path as the library takes it: with backslashes.
std::string LibraryPath(std::string path);

// The content of a file; a test failure when it cannot be read.
Bytes ReadFile(const std::string& path);

// Path of a file of tests/data.
std::string TestData(std::string_view name);

}  // namespace pgkit_test
