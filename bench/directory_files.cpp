#include "directory_files.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "bench_files.h"
#include "encoder.h"

namespace pgkit_bench {

namespace {

constexpr uint32_t kImagesPerSeries = 50;
constexpr uint32_t kSeriesPerStudy = 4;
constexpr uint32_t kNone = 0xFFFFFFFF;
constexpr uint32_t kItemHeaderSize = 8;

struct Record {
    const char* type;
    std::string keys;
    uint32_t next = kNone;
    uint32_t lower = kNone;
};

std::string Keys(const Encoder& keys) { return keys.Bytes(); }

std::string Uid(uint32_t number) {
    return "1.2.826.0.1.3680043.2.1143.107.20200101.101112." + std::to_string(number);
}

std::string PatientKeys(uint32_t number) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0008, 0x0005, "CS", "ISO_IR 100")
                    .Element(0x0010, 0x0010, "PN", "Bench^Patient^" + std::to_string(number))
                    .Element(0x0010, 0x0020, "LO", std::to_string(number)));
}

std::string StudyKeys(uint32_t number) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0008, 0x0020, "DA", "20200101")
                    .Element(0x0008, 0x0030, "TM", "101112")
                    .Element(0x0008, 0x0050, "SH", std::to_string(number))
                    .Element(0x0008, 0x1030, "LO", "Head without contrast")
                    .Element(0x0020, 0x000D, "UI", Uid(number))
                    .Element(0x0020, 0x0010, "SH", std::to_string(number)));
}

std::string SeriesKeys(uint32_t number) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0008, 0x0060, "CS", "CT")
                    .Element(0x0008, 0x103E, "LO", "Axial")
                    .Element(0x0020, 0x000E, "UI", Uid(number))
                    .Element(0x0020, 0x0011, "IS", std::to_string(number % kSeriesPerStudy)));
}

std::string ImageKeys(uint32_t number) {
    const std::string us512("\0\2", 2);
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL")
                    .Element(0x0020, 0x0013, "IS", std::to_string(number % kImagesPerSeries))
                    .Element(0x0028, 0x0004, "CS", "MONOCHROME2")
                    .Element(0x0028, 0x0010, "US", us512)
                    .Element(0x0028, 0x0011, "US", us512));
}

std::string ReferenceKeys(uint32_t number) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0004, 0x1500, "CS",
                             "IMAGES\\S" + std::to_string(number / kImagesPerSeries) + "\\I" +
                                 std::to_string(number))
                    .Element(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.1.1.2")
                    .Element(0x0004, 0x1511, "UI", Uid(number))
                    .Element(0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1"));
}

// Records in the order of a walk, each in front of those it leads to.
class RecordMaker {
  public:
    std::vector<Record> Make(uint32_t count) {
        for (uint32_t i = 0; records_.size() < count; ++i) {
            if (i % (kImagesPerSeries * kSeriesPerStudy) == 0) {
                Add(0, "PATIENT", PatientKeys(Number()));
                Add(1, "STUDY", StudyKeys(Number()));
            }
            if (i % kImagesPerSeries == 0) Add(2, "SERIES", SeriesKeys(Number()));
            Add(3, "IMAGE", ReferenceKeys(Number()) + ImageKeys(Number()));
        }
        return std::move(records_);
    }

  private:
    uint32_t Number() const { return static_cast<uint32_t>(records_.size()); }

    void Add(size_t level, const char* type, std::string keys) {
        if (last_[level] != kNone) {
            records_[last_[level]].next = Number();
        } else if (level > 0) {
            records_[last_[level - 1]].lower = Number();
        }
        last_[level] = Number();
        std::fill(last_ + level + 1, last_ + 4, kNone);
        records_.push_back({type, std::move(keys)});
    }

    std::vector<Record> records_;
    uint32_t last_[4] = {kNone, kNone, kNone, kNone};
};

std::string Number(uint32_t number, int size) {
    Encoder encoder(Encoding::kExplicit);
    encoder.Number(number, size);
    return encoder.Bytes();
}

std::string Content(const Record& record, uint32_t next, uint32_t lower) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0004, 0x1400, "UL", Number(next, 4))
                    .Element(0x0004, 0x1410, "US", Number(0xFFFF, 2))
                    .Element(0x0004, 0x1420, "UL", Number(lower, 4))
                    .Element(0x0004, 0x1430, "CS", record.type)) +
           record.keys;
}

std::string Head(uint32_t firstRoot, uint32_t lastRoot) {
    return Keys(Encoder(Encoding::kExplicit)
                    .Element(0x0004, 0x1130, "CS", "BENCH")
                    .Element(0x0004, 0x1200, "UL", Number(firstRoot, 4))
                    .Element(0x0004, 0x1202, "UL", Number(lastRoot, 4))
                    .Element(0x0004, 0x1212, "US", Number(0, 2)));
}

std::string File(const std::string& dataSet) {
    return Part10("1.2.840.10008.1.3.10", "1.2.840.10008.1.2.1", dataSet);
}

constexpr size_t kSequenceHeaderSize = 12;

std::string WriteDirectory(uint32_t count, RecordOrder order) {
    const std::vector<Record> records = RecordMaker().Make(count);
    std::vector<uint32_t> inFile(records.size());
    for (uint32_t i = 0; i < count; ++i)
        inFile[i] = order == RecordOrder::kForwards ? i : count - 1 - i;
    std::vector<uint32_t> offsets(records.size());
    size_t position = File(Head(0, 0)).size() + kSequenceHeaderSize;
    for (const uint32_t i : inFile) {
        offsets[i] = static_cast<uint32_t>(position);
        position += kItemHeaderSize + Content(records[i], 0, 0).size();
    }
    const auto offsetOf = [&](uint32_t record) { return record == kNone ? 0 : offsets[record]; };
    uint32_t lastRoot = 0;
    while (records[lastRoot].next != kNone)
        lastRoot = records[lastRoot].next;
    Encoder items(Encoding::kExplicit);
    for (const uint32_t i : inFile)
        items.Item(Content(records[i], offsetOf(records[i].next), offsetOf(records[i].lower)));
    const Encoder sequence =
        Encoder(Encoding::kExplicit).Element(0x0004, 0x1220, "SQ", items.Bytes());
    return WriteFile(
        "DICOMDIR" + std::to_string(count) + (order == RecordOrder::kForwards ? "F" : "B"),
        File(Head(offsets[0], offsets[lastRoot]) + sequence.Bytes()));
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
