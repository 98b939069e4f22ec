// Files that end at any byte, and files with any byte changed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "hostile/hostile_file.h"
#include "support/captured.h"
#include "support/sample_files.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

// Files are cut at every byte up to here, and behind it at every seventh: as headers and values are
// of even lengths, that is in turn at every byte of them. Builds in which no sanitizer watches,
// which read in the same way, take fewer places.
constexpr uint64_t kEveryByte = PGKIT_TEST_SANITIZED ? 700 : 200;
constexpr uint64_t kStride = PGKIT_TEST_SANITIZED ? 7 : 49;

// The sizes to cut a file to, the largest first.
std::vector<uint64_t> SizesToTry(const std::string& path) {
    std::vector<uint64_t> sizes;
    for (uint64_t size = fs::file_size(path); size-- > 0;) {
        if (size < kEveryByte || size % kStride == 0) sizes.push_back(size);
    }
    return sizes;
}

// Whether there was a tree to read.
bool OpenAndRead(const std::string& path, uint32_t maxLoadLength) {
    const DataSet root(pgOpenDataSetFile(path.c_str(), maxLoadLength));
    if (root != nullptr) ReadEverything(root.get());
    return root != nullptr;
}

std::string DescriptionOf(const std::string& path) {
    const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
    return Describe(root.get());
}

// Each in its turn, at even and odd sizes. Values that are read when they are asked for take long.
uint32_t LimitFor(uint64_t size) {
    constexpr uint32_t kLimits[] = {0, kLoadAll, 16, kLoadAll, kLoadAll};
    return kLimits[size % std::size(kLimits)];
}

TEST(HostileSamples, MayEndAnywhere) {
    const std::vector<std::string> samples = SampleFiles();
    EXPECT_GE(samples.size(), 25u);
    size_t opened = 0;
    const TempDir directory;
    for (const std::string& sample : samples) {
        const std::string path = directory.Write("sample", ReadFile(TestData(sample)));
        for (const uint64_t size : SizesToTry(path)) {
            fs::resize_file(path, size);
            if (OpenAndRead(path, LimitFor(size))) ++opened;
        }
    }
    EXPECT_GE(opened, samples.size());
}

TEST(HostileSamples, MayBeADicomdirThatEndsAnywhere) {
    const TempDir directory;
    const std::string path =
        directory.Write("DICOMDIR", ReadFile(TestData("dicomdir/DICOMDIR_implicit")));
    size_t most = 0;
    CapturePrinted([&] {
        for (const uint64_t size : SizesToTry(path)) {
            fs::resize_file(path, size);
            PGX_DicomDir dicomDir;
            if (dicomDir.OpenDicomDir(path.c_str(), LimitFor(size)) == 0) continue;
            dicomDir.Browse(nullptr, nullptr);
            most = std::max<size_t>(most, static_cast<size_t>(dicomDir.leafCount));
        }
    });
    EXPECT_GE(most, 5u);
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
        const std::string before = DescriptionOf(path);
        size_t opened = 0;
        for (size_t i = 0; i < whole.size(); ++i) {
            for (const int change : {0x01, 0x80, 0xFF}) {
                put(i, static_cast<uint8_t>(whole[i] ^ change));
                if (OpenAndRead(path, i % 2 == 0 ? 0 : kLoadAll)) ++opened;
            }
            put(i, whole[i]);
        }
        EXPECT_GE(opened, whole.size()) << name;  // of three for each byte
        EXPECT_EQ(DescriptionOf(path), before) << name;
    }
}

}  // namespace
