// Browsing DICOMDIR files: opening, walking, and freeing everything again.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "directory_files.h"
#include "pgkit/pgkit.h"

namespace pgkit_bench {

namespace {

constexpr uint32_t kLoadLimit = 0x20000;

void BrowseFloor(benchmark::State& state, uint32_t records, RecordOrder order) {
    const std::string& path = DirectoryFile(records, order);
    std::vector<char> buffer(1 << 20);
    for (auto _ : state) {
        std::FILE* const stream = std::fopen(path.c_str(), "rb");
        if (stream == nullptr) return state.SkipWithError("cannot open");
        std::setvbuf(stream, nullptr, _IONBF, 0);
        while (std::fread(buffer.data(), 1, buffer.size(), stream) > 0)
            benchmark::DoNotOptimize(buffer.data());
        std::fclose(stream);
    }
    CountRecords(state, records);
}
const bool kFloorIsRegistered = RegisterBrowse("floor", BrowseFloor);

void BrowsePgkit(benchmark::State& state, uint32_t records, RecordOrder order) {
    const std::string& path = DirectoryFile(records, order);
    for (auto _ : state) {
        PGX_DicomDir directory;
        if (directory.OpenDicomDir(path.c_str(), kLoadLimit) == 0) {
            return state.SkipWithError("cannot open");
        }
        directory.Browse(nullptr, nullptr);
        if (directory.leafCount < static_cast<int32_t>(records / 10 * 9)) {
            return state.SkipWithError("images are missing");
        }
    }
    CountRecords(state, records);
}
const bool kPgkitIsRegistered = RegisterBrowse("pgkit", BrowsePgkit);

}  // namespace

}  // namespace pgkit_bench
