// The same files through DCMTK, in its own way of leaving long values in the file.
#include <benchmark/benchmark.h>
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcddirif.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_files.h"
#include "register_large.h"

namespace pgkit_bench {

namespace {

void Load(benchmark::State& state, const std::string& path, Uint32 longestLoaded) {
    DcmFileFormat file;
    const OFCondition result =
        file.loadFile(path.c_str(), EXS_Unknown, EGL_noChange, longestLoaded);
    if (result.bad()) state.SkipWithError(result.text());
}

void HeadersPeer(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state)
        Load(state, files[next++ % files.size()], 64);
}
BENCHMARK(HeadersPeer)->Name("small file, headers/DCMTK")->Unit(benchmark::kMicrosecond);

void WholePeer(benchmark::State& state) {
    const std::vector<std::string>& files = SmallFiles();
    size_t next = 0;
    for (auto _ : state)
        Load(state, files[next++ % files.size()], 0xFFFFFFFE);
}
BENCHMARK(WholePeer)->Name("small file, all values/DCMTK")->Unit(benchmark::kMicrosecond);

void BigExplicitPeer(benchmark::State& state) {
    for (auto _ : state)
        Load(state, BigExplicitFile(), 64);
}
BENCHMARK(BigExplicitPeer)->Name("million elements, explicit/DCMTK")->Unit(benchmark::kMillisecond);

void BigImplicitPeer(benchmark::State& state) {
    for (auto _ : state)
        Load(state, BigImplicitFile(), 64);
}
BENCHMARK(BigImplicitPeer)->Name("million elements, implicit/DCMTK")->Unit(benchmark::kMillisecond);

void DeepPeer(benchmark::State& state) {
    for (auto _ : state)
        Load(state, DeepFile(), 64);
}
BENCHMARK(DeepPeer)->Name("deep sequences/DCMTK")->Unit(benchmark::kMillisecond);

void Save(benchmark::State& state, const std::string& source, E_TransferSyntax syntax) {
    for (auto _ : state) {
        DcmFileFormat file;
        if (file.loadFile(source.c_str(), EXS_Unknown, EGL_noChange, 64).bad() ||
            file.saveFile(OutputPath().c_str(), syntax).bad()) {
            return state.SkipWithError("cannot save");
        }
    }
}

void ReencodePeer(benchmark::State& state) {
    Save(state, BigImplicitFile(), EXS_LittleEndianExplicit);
}
BENCHMARK(ReencodePeer)->Name("re-encode a million elements/DCMTK")->Unit(benchmark::kMillisecond);

void SwapManyPeer(benchmark::State& state) {
    Save(state, BigExplicitFile(), EXS_BigEndianExplicit);
}
BENCHMARK(SwapManyPeer)->Name("a million elements swapped/DCMTK")->Unit(benchmark::kMillisecond);

void SaveSmallPeer(benchmark::State& state) {
    Save(state, SmallFiles()[0], EXS_LittleEndianExplicit);
}
BENCHMARK(SaveSmallPeer)->Name("small file, saved/DCMTK")->Unit(benchmark::kMicrosecond);

void SaveLoaded(benchmark::State& state, const std::string& source) {
    DcmFileFormat file;
    if (file.loadFile(source.c_str()).bad()) return state.SkipWithError("cannot open");
    file.loadAllDataIntoMemory();
    for (auto _ : state) {
        if (file.saveFile(OutputPath().c_str(), EXS_LittleEndianExplicit).bad())
            return state.SkipWithError("cannot save");
    }
}

const bool areImagesRegistered = [] {
    using benchmark::State;
    RegisterLarge("save, 64 MiB from memory/DCMTK",
                  [](State& state) { SaveLoaded(state, ImageFile(64)); });
    RegisterLarge("save, 64 MiB from file/DCMTK",
                  [](State& state) { Save(state, ImageFile(64), EXS_LittleEndianExplicit); });
    RegisterLarge("save, 1 GiB of pixels/DCMTK",
                  [](State& state) { Save(state, ImageFile(1024), EXS_LittleEndianExplicit); });
    RegisterLarge("save, 1 GiB swapped/DCMTK",
                  [](State& state) { Save(state, ImageFile(1024), EXS_BigEndianExplicit); });
    return true;
}();

void DumpPeer(benchmark::State& state) {
    DcmFileFormat file;
    if (file.loadFile(SmallFiles()[0].c_str()).bad()) return state.SkipWithError("cannot open");
    std::ofstream output(OutputPath(), std::ios::binary);
    for (auto _ : state) {
        file.print(output, DCMTypes::PF_shortenLongTagValues);
        output.seekp(0);
    }
}
BENCHMARK(DumpPeer)->Name("small file, dump/DCMTK")->Unit(benchmark::kMicrosecond);

void ValueRepresentationPeer(benchmark::State& state) {
    std::vector<DcmTagKey> tags;
    DcmDataDictionary& dictionary = dcmDataDict.wrlock();
    for (auto entry = dictionary.normalBegin(); entry != dictionary.normalEnd(); ++entry) {
        if ((*entry)->getPrivateCreator() == nullptr) tags.push_back((*entry)->getKey());
    }
    dcmDataDict.wrunlock();
    std::shuffle(tags.begin(), tags.end(), std::minstd_rand(1));
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(DcmTag(tags[next++ % tags.size()]).getEVR());
    }
}
BENCHMARK(ValueRepresentationPeer)->Name("lookup, VR of a tag/DCMTK");

// Every file is compared with all that are there, so the time of one grows with their number.
void CreatePeer(benchmark::State& state, int fileCount, MediumShape shape) {
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    const Medium& medium = MediumOf(fileCount, shape);
    for (auto _ : state) {
        DicomDirInterface directory;
        directory.disableConsistencyCheck();
        directory.createNewDicomDir(DicomDirInterface::AP_GeneralPurpose, OutputPath().c_str(),
                                    "BENCH");
        for (const std::string& file : medium.files) {
            if (directory.addDicomFile(file.c_str(), medium.directory.c_str()).bad()) {
                return state.SkipWithError("cannot add a file");
            }
        }
        if (directory.writeDicomDir().bad()) return state.SkipWithError("cannot write");
    }
}

void Create100OneSeries(benchmark::State& state) {
    CreatePeer(state, 100, MediumShape::kOneSeries);
}
BENCHMARK(Create100OneSeries)
    ->Name("create, 100 files, one series/DCMTK")
    ->Unit(benchmark::kMillisecond);

void Create1000OneSeries(benchmark::State& state) {
    CreatePeer(state, 1000, MediumShape::kOneSeries);
}
BENCHMARK(Create1000OneSeries)
    ->Name("create, 1000 files, one series/DCMTK")
    ->Unit(benchmark::kMillisecond);

void Create100ManySeries(benchmark::State& state) {
    CreatePeer(state, 100, MediumShape::kManySeries);
}
BENCHMARK(Create100ManySeries)
    ->Name("create, 100 files, many series/DCMTK")
    ->Unit(benchmark::kMillisecond);

void Create1000ManySeries(benchmark::State& state) {
    CreatePeer(state, 1000, MediumShape::kManySeries);
}
BENCHMARK(Create1000ManySeries)
    ->Name("create, 1000 files, many series/DCMTK")
    ->Unit(benchmark::kMillisecond);

// What its own tools ask of a file before they add it.
void RejectPeer(benchmark::State& state) {
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    const Medium& medium = MediumOf(1000, MediumShape::kNoDicom);
    for (auto _ : state) {
        for (const std::string& file : medium.files) {
            DcmFileFormat format;
            const std::string path = medium.directory + "/" + file;
            if (format.loadFile(path.c_str(), EXS_Unknown, EGL_noChange, 64, ERM_fileOnly).good())
                return state.SkipWithError("accepted");
        }
    }
}
BENCHMARK(RejectPeer)
    ->Name("create, 1000 files that are none/DCMTK")
    ->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
