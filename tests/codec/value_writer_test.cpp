#include "codec/value_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "codec/encoded.h"
#include "codec/failing_sink.h"
#include "dictionary/vr_properties.h"
#include "support/host_order.h"

namespace {

using namespace pgkit;
using pgkit_test::Bytes;
using pgkit_test::FailingSink;
using pgkit_test::Pattern;
using pgkit_test::WithUnitsReversed;

constexpr size_t kPiece = OutputWriter::kCapacity;

struct Written {
    WriteResult result;
    Bytes bytes;
};

Written FromMemory(const Bytes& value, uint32_t vr, bool swap,
                   size_t limit = FailingSink::kUnlimited) {
    FailingSink sink(limit);
    OutputWriter out(sink);
    WriteResult result =
        WriteValue(value.data(), vr, static_cast<uint32_t>(value.size()), out, swap);
    if (result == kWritten && !out.Flush()) result = kWriteFailed;
    return {result, sink.Written()};
}

class Source {
  public:
    explicit Source(const Bytes& content)
        : stream_(pgkit_test::OpenStream(directory_.Write("source", content), "rb")),
          reader_(std::make_unique<StreamReader>(stream_.get())) {}
    StreamReader* operator&() { return reader_.get(); }

  private:
    pgkit_test::TempDir directory_;
    pgkit_test::Stream stream_;
    std::unique_ptr<StreamReader> reader_;
};

Written FromStream(const Bytes& content, uint32_t vr, uint64_t length, bool swap,
                   size_t limit = FailingSink::kUnlimited) {
    Source source(content);
    FailingSink sink(limit);
    OutputWriter out(sink);
    WriteResult result = CopyValue(&source, vr, length, out, swap);
    if (!out.Flush() && result == kWritten) result = kWriteFailed;
    return {result, sink.Written()};
}

class ValueUnits : public testing::TestWithParam<uint32_t> {};

TEST_P(ValueUnits, SwapBlocksAsTheyWouldSwapOneByOne) {
    const size_t unit = SwapUnit(GetParam());
    for (const size_t size :
         {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{7}, size_t{8}, size_t{9}, size_t{15},
          size_t{16}, kPiece - 1, kPiece, kPiece + 1, kPiece + 9, 3 * kPiece + 5}) {
        const Bytes value = Pattern(size);
        const Bytes swapped = WithUnitsReversed(value, unit);
        EXPECT_TRUE(FromMemory(value, GetParam(), true).bytes == swapped) << size;
        EXPECT_TRUE(FromMemory(value, GetParam(), false).bytes == value) << size;
        EXPECT_TRUE(FromStream(value, GetParam(), size, true).bytes == swapped) << size;
        EXPECT_TRUE(FromStream(value, GetParam(), size, false).bytes == value) << size;
    }
}

TEST_P(ValueUnits, CompleteASourceThatEndsOneByteEarlyBeforeTheySwap) {
    const size_t unit = SwapUnit(GetParam());
    for (const size_t size :
         {size_t{1}, size_t{2}, size_t{3}, size_t{8}, size_t{9}, kPiece, kPiece + 1, kPiece + 8}) {
        const Bytes content = Pattern(size - 1);
        Bytes value = content;
        value.push_back(0);
        const Written swapped = FromStream(content, GetParam(), size, true);
        EXPECT_EQ(swapped.result, kWritten);
        EXPECT_TRUE(swapped.bytes == WithUnitsReversed(value, unit)) << size;
        const Written straight = FromStream(content, GetParam(), size, false);
        EXPECT_EQ(straight.result, kWritten);
        EXPECT_TRUE(straight.bytes == value) << size;
    }
}

TEST_P(ValueUnits, FailOnASourceThatEndsEarlier) {
    for (const size_t size : {size_t{2}, size_t{3}, size_t{8}, size_t{9}, kPiece + 1, kPiece + 2}) {
        const Bytes content = Pattern(size - 2);
        EXPECT_EQ(FromStream(content, GetParam(), size, true).result, kReadFailed) << size;
        EXPECT_EQ(FromStream(content, GetParam(), size, false).result, kReadFailed) << size;
    }
}

INSTANTIATE_TEST_SUITE_P(Vrs, ValueUnits, testing::Values(VR_OB, VR_US, VR_OW, VR_UL, VR_FD));

TEST(ValueCopier, WritesTheUnitsBeforeAnEarlyEnd) {
    EXPECT_EQ(FromStream({1, 2, 3, 4, 5}, VR_UL, 8, true).bytes, (Bytes{4, 3, 2, 1}));
    EXPECT_TRUE(FromStream({1, 2, 3, 4, 5}, VR_UL, 8, false).bytes.empty());
}

TEST(ValueCopier, NeedsASource) {
    FailingSink sink;
    OutputWriter out(sink);
    EXPECT_EQ(CopyValue(nullptr, VR_OB, 4, out, false), kNoSource);
    EXPECT_EQ(CopyFragment(nullptr, 4, out), kNoSource);
}

TEST(ValueCopier, TakesNoFragmentThatLacksItsLastByte) {
    Source source({1, 2, 3});
    FailingSink sink;
    OutputWriter out(sink);
    EXPECT_EQ(CopyFragment(&source, 4, out), kReadFailed);
}

TEST(ValueCopier, ReadsOnlyAsManyBytesAsAsked) {
    EXPECT_EQ(FromStream({1, 2, 3, 4}, VR_OB, 2, false).bytes, (Bytes{1, 2}));
}

TEST(ValueWriter, ReportsAnOutputThatFailsAtAnyByte) {
    const Bytes value = Pattern(24);
    for (size_t limit = 0; limit < value.size(); ++limit) {
        for (const bool swap : {false, true}) {
            EXPECT_EQ(FromMemory(value, VR_US, swap, limit).result, kWriteFailed);
            EXPECT_EQ(FromStream(value, VR_US, value.size(), swap, limit).result, kWriteFailed);
        }
    }
    EXPECT_EQ(FromMemory(value, VR_US, true, value.size()).result, kWritten);
}

TEST(ValueWriter, ReportsAnOutputThatFailsBetweenPieces) {
    const Bytes value = Pattern(3 * kPiece);
    for (const size_t limit : {kPiece - 1, kPiece, 2 * kPiece + 1}) {
        for (const bool swap : {false, true}) {
            EXPECT_EQ(FromMemory(value, VR_US, swap, limit).result, kWriteFailed);
            EXPECT_EQ(FromStream(value, VR_US, value.size(), swap, limit).result, kWriteFailed);
        }
    }
}

// A value that is too large for a single write; only the sizes of the writes matter here.
TEST(ValueWriter, SplitsVeryLargeValues) {
    struct CountingSink : FailingSink {
        bool Write(const uint8_t*, size_t count) override {
            largest = std::max(largest, count);
            total += count;
            return true;
        }
        size_t largest = 0;
        size_t total = 0;
    };
    for (const auto& [size, largest] : {std::pair<size_t, size_t>(0x7FFFFFF, 0x7FFFFFF),
                                        std::pair<size_t, size_t>(0x8000001, kPiece)}) {
        const std::unique_ptr<uint8_t, decltype(&std::free)> value(
            static_cast<uint8_t*>(std::calloc(size, 1)), &std::free);
        ASSERT_NE(value, nullptr);
        CountingSink sink;
        OutputWriter out(sink);
        EXPECT_EQ(WriteValue(value.get(), VR_OB, static_cast<uint32_t>(size), out, false),
                  kWritten);
        EXPECT_TRUE(out.Flush());
        EXPECT_EQ(sink.total, size);
        EXPECT_EQ(sink.largest, largest);
    }
}

}  // namespace
