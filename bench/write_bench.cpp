// Saving: values copied from file to file, and a million elements in another encoding. Both include
// opening the source.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "bench_files.h"
#include "pgkit/pgkit.h"

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

void SaveLargeFloor(benchmark::State& state) { CopyFile(state, LargeImageFile()); }
BENCHMARK(SaveLargeFloor)->Name("save, 1 GiB of pixels/floor")->Unit(benchmark::kMillisecond);

void SaveLargePgkit(benchmark::State& state) { Save(state, LargeImageFile(), kAsRead); }
BENCHMARK(SaveLargePgkit)->Name("save, 1 GiB of pixels/pgkit")->Unit(benchmark::kMillisecond);

void SwapLargeFloor(benchmark::State& state) { CopyFile(state, LargeImageFile()); }
BENCHMARK(SwapLargeFloor)->Name("save, 1 GiB swapped/floor")->Unit(benchmark::kMillisecond);

void SwapLargePgkit(benchmark::State& state) {
    Save(state, LargeImageFile(), kPart10ExplicitBigEndian);
}
BENCHMARK(SwapLargePgkit)->Name("save, 1 GiB swapped/pgkit")->Unit(benchmark::kMillisecond);

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
