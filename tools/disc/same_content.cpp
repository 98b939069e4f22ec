#include "disc/same_content.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "data_set.h"
#include "disc/readable_path.h"
#include "output_file.h"
#include "stream.h"

namespace pgtool {

namespace {

bool HaveSameBytes(const std::string& a, const std::string& b) {
    constexpr size_t kBlock = 0x10000;
    const Stream first(std::fopen(a.c_str(), "rb"));
    const Stream second(std::fopen(b.c_str(), "rb"));
    if (first == nullptr || second == nullptr) return false;
    std::vector<char> blocks(2 * kBlock);
    char* const other = blocks.data() + kBlock;
    while (true) {
        const size_t count = std::fread(blocks.data(), 1, kBlock, first.get());
        if (std::fread(other, 1, kBlock, second.get()) != count) return false;
        if (std::memcmp(blocks.data(), other, count) != 0) return false;
        if (count < kBlock) return std::ferror(first.get()) == 0 && std::ferror(second.get()) == 0;
    }
}

// What says how a data set is encoded, and not what it says.
bool IsAboutEncoding(pgkit::tag tag) { return tag.group == 0x0002 || tag.element == 0; }

// Writes a data set in the one form that all of its encodings have in common: without the value
// representations, which an implicit one does not have.
bool Normalize(const std::string& path, const std::string& target) {
    const ReadablePath readable(path);
    auto root = Open(readable.Path());
    if (!root || target.empty()) return false;
    pgkit::walk(*root, [](const pgkit::element& element) {
        return IsAboutEncoding(element.tag()) ? pgkit::visit::remove : pgkit::visit::go_on;
    });
    constexpr int32_t kMode = PG_IMPLICIT_VR | PG_LITTLE_ENDIAN | PG_UNDEFINED_LENGTHS;
    return root->node()->SaveDataSetAsEx(target.c_str(), kMode) == 0;
}

bool HaveSameDataSet(const std::string& a, const std::string& b) {
    std::error_code error;
    const std::string directory = std::filesystem::temp_directory_path(error).string();
    if (error) return false;
    const TemporaryFile first(directory);
    const TemporaryFile second(directory);
    return Normalize(a, first.Path()) && Normalize(b, second.Path()) &&
           HaveSameBytes(first.Path(), second.Path());
}

}  // namespace

bool HaveSameContent(const std::string& a, const std::string& b) {
    return HaveSameBytes(a, b) || HaveSameDataSet(a, b);
}

}  // namespace pgtool
