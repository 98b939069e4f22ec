// Files that end at any byte, and files with any byte changed.
#include <filesystem>
#include <fstream>

#include "hostile/hostile_file.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

constexpr uint64_t kSmall = 1000;

std::vector<fs::path> SmallSamples() {
    std::vector<fs::path> paths;
    for (const char* folder : {"bad", "charset", "encapsulated", "headerless", "native"}) {
        for (const fs::directory_entry& entry : fs::directory_iterator(TestData(folder))) {
            if (entry.file_size() <= kSmall) paths.push_back(entry.path());
        }
    }
    return paths;
}

void OpenAndRead(const std::string& path, uint32_t maxLoadLength) {
    const DataSet root(pgOpenDataSetFile(path.c_str(), maxLoadLength));
    if (root != nullptr) ReadEverything(root.get());
}

TEST(HostileSamples, MayEndAtAnyByte) {
    const std::vector<fs::path> samples = SmallSamples();
    EXPECT_GE(samples.size(), 7u);
    const TempDir directory;
    for (const fs::path& sample : samples) {
        const std::string path = directory.Write("sample", ReadFile(sample.string()));
        for (uint64_t size = fs::file_size(path); size-- > 0;) {
            fs::resize_file(path, size);
            OpenAndRead(path, size % 2 == 0 ? 0 : kLoadAll);
        }
    }
}

TEST(HostileSamples, MayHaveAnyByteChanged) {
    const TempDir directory;
    for (const char* name :
         {"bad/private_un_undefined_length.dcm", "encapsulated/mini_defined_bot_2_to_1.dcm",
          "headerless/explicit_be_no_meta.dcm"}) {
        const Bytes whole = ReadFile(TestData(name));
        const std::string path = directory.Write("sample", whole);
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        const auto put = [&](size_t position, uint8_t byte) {
            file.seekp(static_cast<std::streamoff>(position)).put(static_cast<char>(byte));
            file.flush();
        };
        for (size_t i = 0; i < whole.size(); ++i) {
            for (const int change : {0x01, 0x80, 0xFF}) {
                put(i, static_cast<uint8_t>(whole[i] ^ change));
                OpenAndRead(path, i % 2 == 0 ? 0 : kLoadAll);
            }
            put(i, whole[i]);
        }
    }
}

}  // namespace
