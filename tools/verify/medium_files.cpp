#include "verify/medium_files.h"
#include "stream.h"

#include <cstdio>
#include <string_view>

namespace pgtool {

namespace {

constexpr size_t kPreamble = 128;
constexpr std::string_view kPrefix = "DICM";

}  // namespace

std::string MediumFiles::PathOf(const std::string& file) const {
    return root + (root.ends_with('/') ? "" : "/") + file;
}

std::string MediumFiles::InnerPathOf(const std::string& realPath) const {
    return realPath.substr(PathOf("").size());
}

bool IsDicomFile(const std::string& path) {
    const std::string beginning = BeginningOf(path, kPreamble + kPrefix.size());
    return beginning.size() > kPreamble && beginning.substr(kPreamble) == kPrefix;
}

std::string BeginningOf(const std::string& path, size_t size) {
    const Stream stream(std::fopen(path.c_str(), "rb"));
    if (stream == nullptr) return "";
    std::string bytes(size, '\0');
    bytes.resize(std::fread(bytes.data(), 1, size, stream.get()));
    return bytes;
}

bool CanBeRead(const std::string& path) {
    const Stream stream(std::fopen(path.c_str(), "rb"));
    return stream != nullptr;
}

}  // namespace pgtool
