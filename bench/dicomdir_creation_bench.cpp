// Making a DICOMDIR of a directory of CT images: every iteration scans the directory, judges every
// file and writes the records. The floor opens each file, reads as much as holds all headers, and
// closes it. Files and directories are in the page cache.
//
// The number of files is that of the subject; the counter per_file shows, in seconds, whether the
// time of one stays the same.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "bench_files.h"
#include "pgkit/pgkit.h"

namespace pgkit_bench {

namespace {

PgDicomdirOptions QuietOptions() {
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    return options;
}

void CountPerFile(benchmark::State& state, size_t files) {
    state.counters["per_file"] = benchmark::Counter(
        static_cast<double>(files),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void CreateFrom(benchmark::State& state, const Medium& medium, const PgDicomdirOptions& options) {
    for (auto _ : state) {
        if (pgCreateDicomdirEx(medium.directory.c_str(), "", &options, nullptr, nullptr) != 0) {
            return state.SkipWithError("cannot write the DICOMDIR");
        }
    }
    CountPerFile(state, medium.files.size());
}

void ReadAll(benchmark::State& state, const Medium& medium) {
    std::vector<char> buffer(8192);
    for (auto _ : state) {
        for (const std::string& file : medium.files) {
            std::FILE* const stream = std::fopen((medium.directory + "/" + file).c_str(), "rb");
            if (stream == nullptr) return state.SkipWithError("cannot open");
            std::setvbuf(stream, nullptr, _IONBF, 0);
            benchmark::DoNotOptimize(std::fread(buffer.data(), 1, buffer.size(), stream));
            std::fclose(stream);
        }
    }
    CountPerFile(state, medium.files.size());
}

void Register(const std::string& subject, const std::string& who,
              const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark((subject + "/" + who).c_str(), run)->Unit(benchmark::kMillisecond);
}

void RegisterMedia(int fileCount, MediumShape shape, const std::string& shapeName) {
    const std::string subject = "create, " + std::to_string(fileCount) + " files, " + shapeName;
    Register(subject, "floor",
             [=](benchmark::State& state) { ReadAll(state, MediumOf(fileCount, shape)); });
    Register(subject, "pgkit", [=](benchmark::State& state) {
        CreateFrom(state, MediumOf(fileCount, shape), QuietOptions());
    });
}

const bool areRegistered = [] {
    for (const int fileCount : {100, 1000, 10000, 100000}) {
        RegisterMedia(fileCount, MediumShape::kOneSeries, "one series");
        RegisterMedia(fileCount, MediumShape::kManySeries, "many series");
    }
    Register("create, 1000 files that are none", "floor", [](benchmark::State& state) {
        ReadAll(state, MediumOf(1000, MediumShape::kNoDicom));
    });
    Register("create, 1000 files that are none", "pgkit", [](benchmark::State& state) {
        CreateFrom(state, MediumOf(1000, MediumShape::kNoDicom), QuietOptions());
    });
    Register("create, 1000 files with icons", "pgkit", [](benchmark::State& state) {
        PgDicomdirOptions options = QuietOptions();
        options.iconSize = 64;
        options.seriesIcons = 1;
        CreateFrom(state, MediumOf(1000, MediumShape::kOneSeries), options);
    });
    return true;
}();

}  // namespace

}  // namespace pgkit_bench
