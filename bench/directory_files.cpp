#include "directory_files.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "bench_files.h"
#include "support/directory_builder.h"

namespace pgkit_bench {

namespace {

using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;

constexpr uint32_t kImagesPerSeries = 50;
constexpr uint32_t kSeriesPerStudy = 4;

std::string Uid(uint32_t number) {
    return "1.2.826.0.1.3680043.2.1143.107.20200101.101112." + std::to_string(number);
}

void SetPatientKeys(DirectoryRecordSpec& record, uint32_t number) {
    record.Set(0x0008, 0x0005, "CS", "ISO_IR 100")
        .Set(0x0010, 0x0010, "PN", "Bench^Patient^" + std::to_string(number))
        .Set(0x0010, 0x0020, "LO", std::to_string(number));
}

void SetStudyKeys(DirectoryRecordSpec& record, uint32_t number) {
    record.Set(0x0008, 0x0020, "DA", "20200101")
        .Set(0x0008, 0x0030, "TM", "101112")
        .Set(0x0008, 0x0050, "SH", std::to_string(number))
        .Set(0x0008, 0x1030, "LO", "Head without contrast")
        .Set(0x0020, 0x000D, "UI", Uid(number))
        .Set(0x0020, 0x0010, "SH", std::to_string(number));
}

void SetSeriesKeys(DirectoryRecordSpec& record, uint32_t number) {
    record.Set(0x0008, 0x0060, "CS", "CT")
        .Set(0x0008, 0x103E, "LO", "Axial")
        .Set(0x0020, 0x000E, "UI", Uid(number))
        .Set(0x0020, 0x0011, "IS", std::to_string(number % kSeriesPerStudy));
}

void SetImageKeys(DirectoryRecordSpec& record, uint32_t number) {
    const std::string us512("\0\2", 2);
    record
        .Set(0x0004, 0x1500, "CS",
             "IMAGES\\S" + std::to_string(number / kImagesPerSeries) + "\\I" +
                 std::to_string(number))
        .Set(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.2")
        .Set(0x0004, 0x1511, "UI", Uid(number))
        .Set(0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1")
        .Set(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL")
        .Set(0x0020, 0x0013, "IS", std::to_string(number % kImagesPerSeries))
        .Set(0x0028, 0x0004, "CS", "MONOCHROME2")
        .Set(0x0028, 0x0010, "US", us512)
        .Set(0x0028, 0x0011, "US", us512);
}

// Adds records in the order of a walk.
class RecordMaker {
  public:
    explicit RecordMaker(DirectoryBuilder& directory) : directory_(directory) {}

    void Make(uint32_t count) {
        for (uint32_t i = 0; directory_.Count() < count; ++i) {
            if (i % (kImagesPerSeries * kSeriesPerStudy) == 0) {
                Add(0, "PATIENT", SetPatientKeys);
                Add(1, "STUDY", SetStudyKeys);
            }
            if (i % kImagesPerSeries == 0) Add(2, "SERIES", SetSeriesKeys);
            Add(3, "IMAGE", SetImageKeys);
        }
    }

  private:
    void Add(size_t level, const char* type,
             void (*setKeys)(DirectoryRecordSpec& record, uint32_t number)) {
        const uint32_t number = static_cast<uint32_t>(directory_.Count());
        const auto parent = level > 0 ? std::optional(last_[level - 1]) : std::nullopt;
        last_[level] = directory_.Child(parent, type);
        DirectoryRecordSpec& record = directory_[last_[level]];
        record.Set(0x0004, 0x1410, "US", "\xFF\xFF");
        setKeys(record, number);
    }

    DirectoryBuilder& directory_;
    size_t last_[4] = {};
};

std::string WriteDirectory(uint32_t count, RecordOrder order) {
    const bool isForwards = order == RecordOrder::kForwards;
    DirectoryBuilder directory;
    RecordMaker(directory).Make(count);
    if (!isForwards) std::reverse(directory.fileOrder.begin(), directory.fileOrder.end());
    const pgkit_test::Bytes file = directory.Build();
    return WriteFile("DICOMDIR" + std::to_string(count) + (isForwards ? "F" : "B"),
                     std::string(file.begin(), file.end()));
}

}  // namespace

const std::string& DirectoryFile(uint32_t records, RecordOrder order) {
    static std::map<std::pair<uint32_t, RecordOrder>, std::string> paths;
    std::string& path = paths[{records, order}];
    if (path.empty()) path = WriteDirectory(records, order);
    return path;
}

void CountRecords(benchmark::State& state, uint32_t records) {
    using benchmark::Counter;
    state.counters["per_record"] =
        Counter(records, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

bool RegisterBrowse(const char* who, BrowseRun run, uint32_t mostBackwards) {
    for (const uint32_t thousands : {10u, 200u}) {
        const uint32_t records = thousands * 1000;
        for (const RecordOrder order : {RecordOrder::kForwards, RecordOrder::kBackwards}) {
            const bool isForwards = order == RecordOrder::kForwards;
            if (!isForwards && records > mostBackwards) continue;
            const std::string name = "browse, " + std::to_string(thousands) + ",000 " +
                                     (isForwards ? "records/" : "backwards/") + who;
            benchmark::RegisterBenchmark(name.c_str(), run, records, order)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}

}  // namespace pgkit_bench
