// The same files through GDCM, which reads every value into memory. The million implicit elements
// are not there: it stops early in that file and reports success.
#include <benchmark/benchmark.h>
#include <gdcmReader.h>
#include <gdcmWriter.h>

#include <set>
#include <string>
#include <vector>

#include "bench_files.h"

namespace pgkit_bench {

namespace {

void Load(benchmark::State& state, const std::string& path) {
    gdcm::Reader reader;
    reader.SetFileName(path.c_str());
    if (!reader.Read()) state.SkipWithError("cannot open");
}

void HeadersGdcm(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    const gdcm::Tag pixelData(0x7FE0, 0x0010);
    size_t next = 0;
    for (auto _ : state) {
        gdcm::Reader reader;
        reader.SetFileName(files[next++ % files.size()].c_str());
        if (!reader.ReadUpToTag(pixelData)) return state.SkipWithError("cannot open");
    }
}
BENCHMARK(HeadersGdcm)->Name("small file, headers/GDCM")->Unit(benchmark::kMicrosecond);

void WholeGdcm(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state)
        Load(state, files[next++ % files.size()]);
}
BENCHMARK(WholeGdcm)->Name("small file, all values/GDCM")->Unit(benchmark::kMicrosecond);

void BigExplicitGdcm(benchmark::State& state) {
    for (auto _ : state)
        Load(state, BigExplicitFile());
}
BENCHMARK(BigExplicitGdcm)->Name("million elements, explicit/GDCM")->Unit(benchmark::kMillisecond);

void SaveSmallGdcm(benchmark::State& state) {
    for (auto _ : state) {
        gdcm::Reader reader;
        reader.SetFileName(SmallFiles()[0].c_str());
        if (!reader.Read()) return state.SkipWithError("cannot open");
        gdcm::Writer writer;
        writer.SetFileName(OutputPath().c_str());
        writer.SetFile(reader.GetFile());
        if (!writer.Write()) return state.SkipWithError("cannot save");
    }
}
BENCHMARK(SaveSmallGdcm)->Name("small file, saved/GDCM")->Unit(benchmark::kMicrosecond);

void RejectGdcm(benchmark::State& state) {
    const Medium& medium = MediumOf(1000, MediumShape::kNoDicom);
    for (auto _ : state) {
        for (const std::string& file : medium.files) {
            gdcm::Reader reader;
            reader.SetFileName((medium.directory + "/" + file).c_str());
            if (reader.CanRead()) return state.SkipWithError("accepted");
        }
    }
}
BENCHMARK(RejectGdcm)->Name("create, 1000 files that are none/GDCM")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
