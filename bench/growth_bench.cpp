// A data set and a sequence that grow at their ends, element by element.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "pgkit/pgkit.h"

namespace pgkit_bench {

namespace {

constexpr uint32_t kCount = 40'000;

void Insert(benchmark::State& state) {
    for (auto _ : state) {
        PGX_Node* const root = pgAllocateDataSetNode();
        for (uint32_t i = 0; i < kCount; ++i)
            root->InsertNode(0x0011, static_cast<uint16_t>(0x1000 + i), "abcd", 4);
        pgCloseDataSet(root);
    }
}
BENCHMARK(Insert)->Name("40,000 elements inserted/pgkit")->Unit(benchmark::kMillisecond);

void AddTail(benchmark::State& state) {
    for (auto _ : state) {
        PGX_Node* const root = pgAllocateDataSetNode();
        PGX_Node* const sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
        for (uint32_t i = 0; i < kCount; ++i)
            sequence->SeqAddTail(pgAllocateDataSetNode());
        pgCloseDataSet(root);
    }
}
BENCHMARK(AddTail)->Name("40,000 items added/pgkit")->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace pgkit_bench
