// The bound of what is inflated.
#include "codec/inflating.h"

#include <gtest/gtest.h>

#include "support/deflated.h"
#include "support/stream.h"

namespace {

using namespace pgkit_test;
using pgkit::InflatedFile;
using pgkit::InflateResult;
using pgkit::MostInflated;

constexpr uint64_t kMebibyte = 1 << 20;
static_assert(MostInflated(0) == 256 * kMebibyte);
static_assert(MostInflated(2 * kMebibyte) == 256 * kMebibyte);
static_assert(MostInflated(3 * kMebibyte) == 300 * kMebibyte);

InflatedFile Inflate(const Bytes& deflated, uint64_t limit) {
    const TempDir directory;
    const Stream stream = OpenStream(directory.Write("file", deflated), "rb");
    pgkit::StreamReader reader(stream.get());
    return InflateToFile(reader, limit);
}

// A few thousand bytes are a megabyte, and might be any number of them.
TEST(Inflating, StopsAtItsLimit) {
    const Bytes deflated = DeflatedZeros(kMebibyte);
    ASSERT_LT(deflated.size(), 7000u);
    const InflatedFile whole = Inflate(deflated, kMebibyte + 258);
    EXPECT_EQ(whole.result, InflateResult::Whole);
    EXPECT_GE(whole.size, kMebibyte);
    EXPECT_EQ(Inflate(deflated, whole.size).result, InflateResult::Whole);
    const InflatedFile refused = Inflate(deflated, whole.size - 1);
    EXPECT_EQ(refused.result, InflateResult::TooLarge);
    EXPECT_LT(refused.size, whole.size);
}

TEST(Inflating, WhatDoesNotEndIsPartial) {
    Bytes deflated = DeflatedZeros(kMebibyte);
    deflated.resize(deflated.size() / 2);
    const InflatedFile file = Inflate(deflated, 2 * kMebibyte);
    EXPECT_EQ(file.result, InflateResult::Partial);
    EXPECT_GT(file.size, kMebibyte / 3);
    EXPECT_EQ(Inflate({}, kMebibyte).result, InflateResult::Partial);
}

}  // namespace
