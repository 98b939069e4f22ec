// DICOMDIR files to browse, made once per run.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace pgkit_bench {

// Forwards, every record stands in front of those it leads to, as writers put them; backwards
// behind them.
enum class RecordOrder { kForwards, kBackwards };

// A sound DICOMDIR of so many records, most of them images: 50 in a series, 4 series in a study,
// one study in a patient.
const std::string& DirectoryFile(uint32_t records, RecordOrder order);

// Makes the run report the time for one record too.
void CountRecords(benchmark::State& state, uint32_t records);

// Registers the runs of one reader over directories of all sizes and orders, apart from those with
// more than so many records backwards.
using BrowseRun = void (*)(benchmark::State& state, uint32_t records, RecordOrder order);
bool RegisterBrowse(const char* who, BrowseRun run, uint32_t mostBackwards = 0xFFFFFFFF);

}  // namespace pgkit_bench
