// Dictionary lookups: an iteration is one lookup; tags and names take turns in a random order.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "pgkit/dictionary.h"

namespace pgkit_bench {

namespace {

constexpr int32_t kRows = 3782;

struct Tag {
    uint16_t group;
    uint16_t element;
};

std::vector<Tag> ShuffledTags() {
    std::vector<Tag> tags;
    for (int32_t identifier = 0; identifier < kRows; ++identifier) {
        Tag tag{};
        pgFindElementIdInfo(identifier, &tag.group, &tag.element);
        tags.push_back(tag);
    }
    std::shuffle(tags.begin(), tags.end(), std::minstd_rand(1));
    return tags;
}

void ValueRepresentation(benchmark::State& state) {
    const std::vector<Tag> tags = ShuffledTags();
    size_t next = 0;
    for (auto _ : state) {
        const Tag& tag = tags[next++ % tags.size()];
        benchmark::DoNotOptimize(pgFindValueRepresentation(tag.group, tag.element));
    }
}
BENCHMARK(ValueRepresentation)->Name("lookup, VR of a tag/pgkit");

void Name(benchmark::State& state) {
    const std::vector<Tag> tags = ShuffledTags();
    char name[128];
    size_t next = 0;
    for (auto _ : state) {
        const Tag& tag = tags[next++ % tags.size()];
        pgGetTagPrintableName(tag.group, tag.element, name);
        benchmark::DoNotOptimize(name);
    }
}
BENCHMARK(Name)->Name("lookup, name of a tag/pgkit");

void TagOfName(benchmark::State& state) {
    std::vector<std::string> names;
    for (const Tag& tag : ShuffledTags()) {
        char name[128];
        pgGetTagPrintableName(tag.group, tag.element, name);
        names.emplace_back(name);
    }
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(pgGetTagElementId(names[next++ % names.size()].c_str()));
    }
}
BENCHMARK(TagOfName)->Name("lookup, tag of a name/pgkit");

}  // namespace

}  // namespace pgkit_bench
