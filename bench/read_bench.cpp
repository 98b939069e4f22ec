// Opening and dumping files. Every iteration handles one file; the 1,000 small ones take turns, so
// that a run shows the warm file cache and a cold processor cache, as a directory scan does.
//
// Names are SUBJECT/WHO; table.py relates the rows of one subject.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench_files.h"
#include "pgkit/pgkit.h"

namespace pgkit_bench {

namespace {

constexpr uint32_t kEverything = 0xFFFFFFFF;

// Opening, one read of as much as holds all headers, closing: what no reader can do without.
void ReadBytes(benchmark::State& state, const std::string& path, std::vector<char>& buffer) {
    std::FILE* const stream = std::fopen(path.c_str(), "rb");
    if (stream == nullptr) return state.SkipWithError("cannot open");
    std::setvbuf(stream, nullptr, _IONBF, 0);
    benchmark::DoNotOptimize(std::fread(buffer.data(), 1, buffer.size(), stream));
    std::fclose(stream);
}

void Open(benchmark::State& state, const std::string& path, uint32_t loadLimit, uint32_t flags) {
    PGX_Node* const root = pgOpenDataSetFileEx(path.c_str(), loadLimit, flags);
    if (root == nullptr) return state.SkipWithError("cannot open");
    pgCloseDataSet(root);
}

void HeadersFloor(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    std::vector<char> buffer(8192);
    size_t next = 0;
    for (auto _ : state)
        ReadBytes(state, files[next++ % files.size()], buffer);
}
BENCHMARK(HeadersFloor)->Name("small file, headers/floor")->Unit(benchmark::kMicrosecond);

void HeadersPgkit(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state)
        Open(state, files[next++ % files.size()], 64, PG_OPEN_SKIP_FRAGMENTS);
}
BENCHMARK(HeadersPgkit)->Name("small file, headers/pgkit")->Unit(benchmark::kMicrosecond);

void WholeFloor(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    std::vector<char> buffer(65536);
    size_t next = 0;
    for (auto _ : state)
        ReadBytes(state, files[next++ % files.size()], buffer);
}
BENCHMARK(WholeFloor)->Name("small file, all values/floor")->Unit(benchmark::kMicrosecond);

void WholePgkit(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state)
        Open(state, files[next++ % files.size()], kEverything, 0);
}
BENCHMARK(WholePgkit)->Name("small file, all values/pgkit")->Unit(benchmark::kMicrosecond);

void BigFloor(benchmark::State& state, const std::string& path) {
    std::vector<char> buffer(32 << 20);
    for (auto _ : state)
        ReadBytes(state, path, buffer);
}

void BigPgkit(benchmark::State& state, const std::string& path) {
    for (auto _ : state)
        Open(state, path, 64, PG_OPEN_SKIP_FRAGMENTS);
}

void BigExplicitFloor(benchmark::State& state) { BigFloor(state, BigExplicitFile()); }
BENCHMARK(BigExplicitFloor)
    ->Name("million elements, explicit/floor")
    ->Unit(benchmark::kMillisecond);

void BigExplicitPgkit(benchmark::State& state) { BigPgkit(state, BigExplicitFile()); }
BENCHMARK(BigExplicitPgkit)
    ->Name("million elements, explicit/pgkit")
    ->Unit(benchmark::kMillisecond);

void BigImplicitFloor(benchmark::State& state) { BigFloor(state, BigImplicitFile()); }
BENCHMARK(BigImplicitFloor)
    ->Name("million elements, implicit/floor")
    ->Unit(benchmark::kMillisecond);

void BigImplicitPgkit(benchmark::State& state) { BigPgkit(state, BigImplicitFile()); }
BENCHMARK(BigImplicitPgkit)
    ->Name("million elements, implicit/pgkit")
    ->Unit(benchmark::kMillisecond);

void DeepFloor(benchmark::State& state) { BigFloor(state, DeepFile()); }
BENCHMARK(DeepFloor)->Name("deep sequences/floor")->Unit(benchmark::kMillisecond);

void DeepPgkit(benchmark::State& state) { BigPgkit(state, DeepFile()); }
BENCHMARK(DeepPgkit)->Name("deep sequences/pgkit")->Unit(benchmark::kMillisecond);

void DumpPgkit(benchmark::State& state) {
    PGX_Node* const root = pgOpenDataSetFile(SmallFiles()[0].c_str(), 64);
    std::FILE* const output = std::fopen(OutputPath().c_str(), "wb");
    if (root == nullptr || output == nullptr) return state.SkipWithError("cannot open");
    for (auto _ : state) {
        root->Dump(output, "");
        std::rewind(output);
    }
    std::fclose(output);
    pgCloseDataSet(root);
}
BENCHMARK(DumpPgkit)->Name("small file, dump/pgkit")->Unit(benchmark::kMicrosecond);

}  // namespace

}  // namespace pgkit_bench
