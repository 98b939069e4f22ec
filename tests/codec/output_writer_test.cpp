#include "codec/output_writer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "codec/failing_sink.h"

namespace {

using namespace pgkit;
using pgkit_test::Bytes;
using pgkit_test::FailingSink;
using pgkit_test::Pattern;

TEST(OutputWriter, PassesOnPiecesOfEverySizeInTheirOrder) {
    const Bytes pattern = Pattern(3 * OutputWriter::kCapacity);
    FailingSink sink;
    OutputWriter out(sink);
    Bytes expected;
    for (const size_t size :
         {size_t{1}, size_t{0}, OutputWriter::kCapacity - 1, size_t{1}, OutputWriter::kCapacity,
          size_t{5}, OutputWriter::kCapacity + 1, 2 * OutputWriter::kCapacity, size_t{3}}) {
        EXPECT_EQ(out.Write(pattern.data(), size), kWritten);
        expected.insert(expected.end(), pattern.begin(),
                        pattern.begin() + static_cast<ptrdiff_t>(size));
    }
    EXPECT_TRUE(out.Flush());
    EXPECT_TRUE(sink.Written() == expected);
}

TEST(OutputWriter, ReservesRoomUpToItsCapacityWhateverItHolds) {
    FailingSink sink;
    OutputWriter out(sink);
    EXPECT_EQ(out.Write("ab", 2), kWritten);
    uint8_t* room = out.Reserve(OutputWriter::kCapacity);
    ASSERT_NE(room, nullptr);
    EXPECT_EQ(sink.Written().size(), 2u);
    std::memset(room, 'x', OutputWriter::kCapacity);
    out.Commit(OutputWriter::kCapacity);
    EXPECT_TRUE(out.Flush());
    EXPECT_EQ(sink.Written().size(), 2 + OutputWriter::kCapacity);
}

TEST(OutputWriter, CommitsOnlyAPartOfWhatWasReserved) {
    FailingSink sink;
    OutputWriter out(sink);
    std::memcpy(out.Reserve(4), "abcd", 4);
    out.Commit(2);
    EXPECT_EQ(out.Write("x", 1), kWritten);
    EXPECT_TRUE(out.Flush());
    EXPECT_EQ(sink.Written(), (Bytes{'a', 'b', 'x'}));
}

TEST(OutputWriter, CountsItsPositionFromThatOfTheSink) {
    FailingSink sink(FailingSink::kUnlimited, 0x1'0000'0000);
    OutputWriter out(sink);
    EXPECT_EQ(out.Write("abc", 3), kWritten);
    EXPECT_EQ(out.Position(), 0x1'0000'0003);
    EXPECT_TRUE(out.Flush());
    EXPECT_EQ(out.Position(), 0x1'0000'0003);
    const Bytes large(OutputWriter::kCapacity);
    EXPECT_EQ(out.Write(large.data(), large.size()), kWritten);
    EXPECT_EQ(out.Position(), 0x1'0000'0003 + large.size());
}

TEST(OutputWriter, FailsForGoodOnceTheSinkHasFailed) {
    FailingSink sink(2);
    OutputWriter out(sink);
    EXPECT_EQ(out.Write("abc", 3), kWritten);
    EXPECT_FALSE(out.Flush());
    EXPECT_EQ(out.Write("d", 1), kWriteFailed);
    const Bytes large(OutputWriter::kCapacity);
    EXPECT_EQ(out.Write(large.data(), large.size()), kWriteFailed);
    EXPECT_EQ(out.Reserve(1), nullptr);
    EXPECT_FALSE(out.Flush());
    EXPECT_EQ(sink.Written(), (Bytes{'a', 'b'}));
}

TEST(OutputWriter, ReportsWhatWentWrongFirst) {
    FailingSink good;
    OutputWriter toGood(good);
    EXPECT_EQ(toGood.Write("abc", 3), kWritten);
    EXPECT_EQ(toGood.Fail(kReadFailed), kReadFailed);
    EXPECT_EQ(good.Written().size(), 3u);

    FailingSink bad(2);
    OutputWriter toBad(bad);
    EXPECT_EQ(toBad.Write("abc", 3), kWritten);
    EXPECT_EQ(toBad.Fail(kReadFailed), kWriteFailed);
}

}  // namespace
