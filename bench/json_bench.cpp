// Data sets as JSON, and back: from memory to memory, since files are the business of others.
#include <benchmark/benchmark.h>
#include <pgkit/pgkit.h>

#include <memory>
#include <string>

#include "bench_files.h"

namespace pgkit_bench {

namespace {

struct Close {
    void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
};
using DataSet = std::unique_ptr<PGX_Node, Close>;

size_t Append(void* context, const void* bytes, size_t size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(bytes), size);
    return size;
}

size_t Drop(void* context, const void* bytes, size_t size) {
    benchmark::DoNotOptimize(bytes);
    *static_cast<size_t*>(context) += size;
    return size;
}

std::string JsonOf(PGX_Node& root, const PgxJsonWriteOptions& options) {
    std::string json;
    pgxWriteJson(&root, &options, Append, &json);
    return json;
}

// The headers of a small file: pixels become a URI.
PgxJsonWriteOptions HeadersOnly() {
    PgxJsonWriteOptions options = PGX_JSON_WRITE_OPTIONS;
    options.bulkLimit = 1024;
    options.sourceUri = "file";
    return options;
}

void Headers(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(SmallFiles()[0].c_str(), 1024));
    const PgxJsonWriteOptions options = HeadersOnly();
    std::string json;
    for (auto _ : state) {
        json.clear();
        pgxWriteJson(root.get(), &options, Append, &json);
        benchmark::DoNotOptimize(json.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(json.size()));
}
BENCHMARK(Headers)->Name("JSON, headers/pgkit")->Unit(benchmark::kMicrosecond);

void HeadersBack(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(SmallFiles()[0].c_str(), 1024));
    root->RemoveNode(root->FindNode(0x7FE0, 0x0010));
    const std::string json = JsonOf(*root, PGX_JSON_WRITE_OPTIONS);
    for (auto _ : state) {
        const DataSet read(pgxParseJson(json.data(), json.size(), nullptr, nullptr));
        if (read == nullptr) return state.SkipWithError("cannot read");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(json.size()));
}
BENCHMARK(HeadersBack)->Name("JSON to data set, headers/pgkit")->Unit(benchmark::kMicrosecond);

void FileToJson(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    const PgxJsonWriteOptions options = HeadersOnly();
    size_t next = 0;
    for (auto _ : state) {
        const DataSet root(pgOpenDataSetFile(files[next++ % files.size()].c_str(), 1024));
        size_t size = 0;
        pgxWriteJson(root.get(), &options, Drop, &size);
    }
}
BENCHMARK(FileToJson)->Name("JSON of a small file, headers/pgkit")->Unit(benchmark::kMicrosecond);

void Bulk(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(ImageFile(64).c_str(), 0xFFFFFFFF));
    for (auto _ : state) {
        size_t size = 0;
        pgxWriteJson(root.get(), nullptr, Drop, &size);
    }
    state.SetBytesProcessed(state.iterations() * (int64_t{64} << 20));
}
BENCHMARK(Bulk)->Name("JSON, 64 MiB inline/pgkit")->Unit(benchmark::kMillisecond);

void BulkOfFile(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(ImageFile(64).c_str(), 64));
    for (auto _ : state) {
        size_t size = 0;
        pgxWriteJson(root.get(), nullptr, Drop, &size);
    }
    state.SetBytesProcessed(state.iterations() * (int64_t{64} << 20));
}
BENCHMARK(BulkOfFile)->Name("JSON, 64 MiB inline from file/pgkit")->Unit(benchmark::kMillisecond);

// The floor: the same bytes copied once.
void BulkFloor(benchmark::State& state) {
    const std::string source(size_t{64} << 20, 'x');
    std::string target(source.size() / 3 * 4, '\0');
    for (auto _ : state) {
        source.copy(target.data(), source.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * (int64_t{64} << 20));
}
BENCHMARK(BulkFloor)->Name("JSON, 64 MiB inline/floor")->Unit(benchmark::kMillisecond);

void BulkBack(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(ImageFile(64).c_str(), 0xFFFFFFFF));
    const std::string json = JsonOf(*root, PGX_JSON_WRITE_OPTIONS);
    for (auto _ : state) {
        const DataSet read(pgxParseJson(json.data(), json.size(), nullptr, nullptr));
        if (read == nullptr) return state.SkipWithError("cannot read");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(json.size()));
}
BENCHMARK(BulkBack)->Name("JSON to data set, 64 MiB inline/pgkit")->Unit(benchmark::kMillisecond);

void ManyElements(benchmark::State& state) {
    const DataSet root(pgOpenDataSetFile(BigExplicitFile().c_str(), 64));
    for (auto _ : state) {
        size_t size = 0;
        pgxWriteJson(root.get(), nullptr, Drop, &size);
    }
}
BENCHMARK(ManyElements)->Name("JSON, a million elements/pgkit")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
