#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

namespace pgkit_test {

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("pgkit-test-" + std::to_string(random()));
    } while (!fs::create_directories(path_));
}

TempDir::~TempDir() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TempDir::Path(std::string_view name) const { return (path_ / name).string(); }

std::string TempDir::Write(std::string_view name, std::span<const uint8_t> content) const {
    return Write(name,
                 std::string_view(reinterpret_cast<const char*>(content.data()), content.size()));
}

std::string TempDir::Write(std::string_view name, std::string_view content) const {
    const std::string path = Path(name);
    std::ofstream stream(path, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(stream.good()) << path;
    return path;
}

std::string LibraryPath(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

Bytes ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    EXPECT_TRUE(stream.good()) << path;
    if (!stream) return {};
    Bytes content(static_cast<size_t>(stream.tellg()));
    stream.seekg(0);
    stream.read(reinterpret_cast<char*>(content.data()),
                static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(stream.good()) << path;
    return content;
}

std::string TestData(std::string_view name) { return (fs::path(PGKIT_TEST_DATA) / name).string(); }

}  // namespace pgkit_test
