// The same JSON by DCMTK, whose dcm2json is this with a file around it.
#include <benchmark/benchmark.h>
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcjson.h>
#include <dcmtk/dcmdata/dctk.h>

#include <sstream>
#include <string>
#include <vector>

#include "bench_files.h"

namespace pgkit_bench {

namespace {

std::string JsonOf(DcmFileFormat& file) {
    std::ostringstream json;
    DcmJsonFormatCompact format(OFFalse);
    if (file.getDataset()->writeJson(json, format).bad()) return std::string();
    return json.str();
}

void HeadersPeer(benchmark::State& state) {
    DcmFileFormat file;
    file.loadFile(SmallFiles()[0].c_str());
    file.loadAllDataIntoMemory();
    delete file.getDataset()->remove(DCM_PixelData);
    for (auto _ : state) {
        if (JsonOf(file).empty()) return state.SkipWithError("cannot write");
    }
}
BENCHMARK(HeadersPeer)->Name("JSON, headers/DCMTK")->Unit(benchmark::kMicrosecond);

void FilePeer(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state) {
        DcmFileFormat file;
        file.loadFile(files[next++ % files.size()].c_str(), EXS_Unknown, EGL_noChange, 1024);
        delete file.getDataset()->remove(DCM_PixelData);
        if (JsonOf(file).empty()) return state.SkipWithError("cannot write");
    }
}
BENCHMARK(FilePeer)->Name("JSON of a small file, headers/DCMTK")->Unit(benchmark::kMicrosecond);

void BulkPeer(benchmark::State& state) {
    DcmFileFormat file;
    file.loadFile(ImageFile(64).c_str());
    file.loadAllDataIntoMemory();
    for (auto _ : state) {
        if (JsonOf(file).empty()) return state.SkipWithError("cannot write");
    }
}
BENCHMARK(BulkPeer)->Name("JSON, 64 MiB inline/DCMTK")->Unit(benchmark::kMillisecond);

void ManyElementsPeer(benchmark::State& state) {
    DcmFileFormat file;
    file.loadFile(BigExplicitFile().c_str());
    for (auto _ : state) {
        if (JsonOf(file).empty()) return state.SkipWithError("cannot write");
    }
}
BENCHMARK(ManyElementsPeer)->Name("JSON, a million elements/DCMTK")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
