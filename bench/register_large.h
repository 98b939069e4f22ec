// Registers benchmarks of large files: the same terms for every subject.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace pgkit_bench {

// The first copies write into pages that the machine may have to get first.
inline void RegisterLarge(const std::string& name,
                          const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->MinWarmUpTime(1);
}

}  // namespace pgkit_bench
