// Saving: values copied from file to file, and a million elements in another encoding. Both include
// opening the source.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "bench_files.h"
#include "pgkit/pgkit.h"
#include "register_large.h"

namespace pgkit_bench {

namespace {

constexpr int32_t kAsRead = 0;
constexpr int32_t kPart10ExplicitLittleEndian = PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
constexpr int32_t kPart10ExplicitBigEndian = PG_META | PG_EXPLICIT_VR | PG_BIG_ENDIAN;

void Save(benchmark::State& state, const std::string& source, int32_t mode) {
    for (auto _ : state) {
        PGX_Node* const root = pgOpenDataSetFile(source.c_str(), 64);
        if (root == nullptr) return state.SkipWithError("cannot open");
        const uint32_t result = root->SaveDataSetAsEx(OutputPath().c_str(), mode);
        pgCloseDataSet(root);
        if (result != 0) return state.SkipWithError("cannot save");
    }
}

// A plain copy in pieces of the size that the module uses.
void CopyFile(benchmark::State& state, const std::string& source) {
    std::vector<char> piece(0x40000);
    for (auto _ : state) {
        std::FILE* const input = std::fopen(source.c_str(), "rb");
        std::FILE* const output = std::fopen(OutputPath().c_str(), "wb");
        if (input == nullptr || output == nullptr) return state.SkipWithError("cannot open");
        std::setvbuf(input, nullptr, _IONBF, 0);
        std::setvbuf(output, nullptr, _IONBF, 0);
        while (const size_t got = std::fread(piece.data(), 1, piece.size(), input))
            std::fwrite(piece.data(), 1, got, output);
        std::fclose(input);
        std::fclose(output);
    }
}

// The same bytes out of memory.
void WriteFloor(benchmark::State& state, const std::string& source) {
    std::ifstream input(source, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(input), {}};
    for (auto _ : state) {
        std::FILE* const output = std::fopen(OutputPath().c_str(), "wb");
        if (output == nullptr) return state.SkipWithError("cannot open");
        std::setvbuf(output, nullptr, _IONBF, 0);
        std::fwrite(bytes.data(), 1, bytes.size(), output);
        std::fclose(output);
    }
}

void SaveLoaded(benchmark::State& state, const std::string& source) {
    PGX_Node* const root = pgOpenDataSetFile(source.c_str(), 0xFFFFFFFF);
    if (root == nullptr) return state.SkipWithError("cannot open");
    for (auto _ : state) {
        if (root->SaveDataSetAsEx(OutputPath().c_str(), kAsRead) != 0)
            return state.SkipWithError("cannot save");
    }
    pgCloseDataSet(root);
}

const bool areImagesRegistered = [] {
    using benchmark::State;
    RegisterLarge("save, 64 MiB from memory/floor",
                  [](State& state) { WriteFloor(state, ImageFile(64)); });
    RegisterLarge("save, 64 MiB from memory/pgkit",
                  [](State& state) { SaveLoaded(state, ImageFile(64)); });
    RegisterLarge("save, 64 MiB from file/floor",
                  [](State& state) { CopyFile(state, ImageFile(64)); });
    RegisterLarge("save, 64 MiB from file/pgkit",
                  [](State& state) { Save(state, ImageFile(64), kAsRead); });
    RegisterLarge("save, 1 GiB of pixels/floor",
                  [](State& state) { CopyFile(state, ImageFile(1024)); });
    RegisterLarge("save, 1 GiB of pixels/pgkit",
                  [](State& state) { Save(state, ImageFile(1024), kAsRead); });
    RegisterLarge("save, 1 GiB swapped/floor",
                  [](State& state) { CopyFile(state, ImageFile(1024)); });
    RegisterLarge("save, 1 GiB swapped/pgkit",
                  [](State& state) { Save(state, ImageFile(1024), kPart10ExplicitBigEndian); });
    return true;
}();

void SaveSmallFloor(benchmark::State& state) { CopyFile(state, SmallFiles()[0]); }
BENCHMARK(SaveSmallFloor)->Name("small file, saved/floor")->Unit(benchmark::kMicrosecond);

void SaveSmallPgkit(benchmark::State& state) { Save(state, SmallFiles()[0], kAsRead); }
BENCHMARK(SaveSmallPgkit)->Name("small file, saved/pgkit")->Unit(benchmark::kMicrosecond);

void SwapManyFloor(benchmark::State& state) { CopyFile(state, BigExplicitFile()); }
BENCHMARK(SwapManyFloor)->Name("a million elements swapped/floor")->Unit(benchmark::kMillisecond);

void SwapManyPgkit(benchmark::State& state) {
    Save(state, BigExplicitFile(), kPart10ExplicitBigEndian);
}
BENCHMARK(SwapManyPgkit)->Name("a million elements swapped/pgkit")->Unit(benchmark::kMillisecond);

void ReencodeFloor(benchmark::State& state) { CopyFile(state, BigImplicitFile()); }
BENCHMARK(ReencodeFloor)->Name("re-encode a million elements/floor")->Unit(benchmark::kMillisecond);

void ReencodePgkit(benchmark::State& state) {
    Save(state, BigImplicitFile(), kPart10ExplicitLittleEndian);
}
BENCHMARK(ReencodePgkit)->Name("re-encode a million elements/pgkit")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
