#include "codec/stream_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "support/failing_files.h"
#include "support/stream.h"
#include "support/temp_dir.h"

namespace {

using pgkit::StreamReader;

class StreamReaderTest : public testing::Test {
  protected:
    // A stream whose byte at position n is n % 251.
    FILE* Stream(size_t size) {
        pgkit_test::Bytes content(size);
        for (size_t i = 0; i < size; ++i)
            content[i] = Expected(i);
        stream_ = pgkit_test::OpenStream(directory_.Write("stream", content), "rb");
        return stream_.get();
    }
    static uint8_t Expected(uint64_t position) { return static_cast<uint8_t>(position % 251); }

    static uint8_t Next(StreamReader& reader) {
        uint8_t byte = 0xFF;
        EXPECT_EQ(reader.Read(&byte, 1), 1u);
        return byte;
    }

  private:
    pgkit_test::TempDir directory_;
    pgkit_test::Stream stream_;
};

TEST_F(StreamReaderTest, ReadsThroughManyBuffers) {
    constexpr size_t kSize = 300000;
    StreamReader reader(Stream(kSize));
    for (size_t i = 0; i < kSize; ++i)
        ASSERT_EQ(Next(reader), Expected(i)) << i;
    uint8_t byte;
    EXPECT_EQ(reader.Read(&byte, 1), 0u);
    EXPECT_EQ(reader.Position(), kSize);
}

TEST_F(StreamReaderTest, ReadsLargePiecesPastTheBuffer) {
    StreamReader reader(Stream(300000));
    Next(reader);
    pgkit_test::Bytes piece(200000);
    ASSERT_EQ(reader.Read(piece.data(), piece.size()), piece.size());
    for (size_t i = 0; i < piece.size(); ++i)
        ASSERT_EQ(piece[i], Expected(i + 1)) << i;
    EXPECT_EQ(Next(reader), Expected(200001));
}

TEST_F(StreamReaderTest, ShortReadGivesWhatThereIs) {
    StreamReader reader(Stream(100));
    pgkit_test::Bytes piece(1000);
    reader.Seek(90);
    EXPECT_EQ(reader.Read(piece.data(), 20), 10u);
    EXPECT_EQ(reader.Position(), 100u);
    reader.Seek(40);
    EXPECT_EQ(reader.Read(piece.data(), 1000), 60u);
    EXPECT_EQ(reader.Position(), 100u);
}

TEST_F(StreamReaderTest, PeekDoesNotConsume) {
    StreamReader reader(Stream(100));
    EXPECT_EQ(reader.Peek(10)[9], Expected(9));
    EXPECT_EQ(reader.Position(), 0u);
    reader.Skip(95);
    EXPECT_EQ(reader.Peek(5)[0], Expected(95));
    EXPECT_EQ(reader.Peek(6), nullptr);
    EXPECT_EQ(reader.Position(), 95u);
}

TEST_F(StreamReaderTest, PeekWorksAcrossBufferEnds) {
    StreamReader reader(Stream(300000));
    for (uint64_t position = 0; position + 64 <= 300000; position += 61) {
        reader.Seek(position);
        const uint8_t* bytes = reader.Peek(64);
        ASSERT_NE(bytes, nullptr);
        ASSERT_EQ(bytes[0], Expected(position));
        ASSERT_EQ(bytes[63], Expected(position + 63));
    }
}

TEST_F(StreamReaderTest, SeeksBackAndForth) {
    StreamReader reader(Stream(300000));
    for (uint64_t position : {299999u, 0u, 150000u, 149990u, 150010u, 70000u, 3u}) {
        reader.Seek(position);
        EXPECT_EQ(Next(reader), Expected(position)) << position;
    }
}

TEST_F(StreamReaderTest, PositionBeyondTheEndReadsNothing) {
    StreamReader reader(Stream(100));
    reader.Skip(0xFFFFFFFF);
    reader.Skip(0xFFFFFFFF);
    EXPECT_EQ(reader.Position(), 2 * uint64_t{0xFFFFFFFF});
    EXPECT_EQ(reader.Peek(1), nullptr);
    EXPECT_EQ(reader.Remaining(), 0u);
    reader.Seek(7);
    EXPECT_EQ(Next(reader), Expected(7));
}

TEST_F(StreamReaderTest, KnowsWhatLiesAhead) {
    StreamReader reader(Stream(100));
    EXPECT_EQ(reader.Size(), 100u);
    reader.Seek(30);
    EXPECT_EQ(reader.Remaining(), 70u);
    EXPECT_TRUE(reader.Holds(70));
    EXPECT_FALSE(reader.Holds(71));
    reader.SeekToEnd();
    EXPECT_EQ(reader.Position(), 100u);
}

TEST_F(StreamReaderTest, StartsWhereTheStreamStands) {
    FILE* stream = Stream(100);
    std::fseek(stream, 42, SEEK_SET);
    StreamReader reader(stream);
    EXPECT_EQ(reader.Position(), 42u);
    EXPECT_EQ(Next(reader), Expected(42));
}

TEST_F(StreamReaderTest, RestoresTheStreamsOwnPosition) {
    FILE* stream = Stream(100);
    StreamReader reader(stream);
    reader.Seek(10);
    Next(reader);
    EXPECT_NE(std::ftell(stream), 11);
    reader.RestorePosition();
    EXPECT_EQ(std::ftell(stream), 11);
}

TEST_F(StreamReaderTest, ToleratesThatTheStreamWasMoved) {
    FILE* stream = Stream(300000);
    StreamReader reader(stream);
    Next(reader);
    std::fseek(stream, 777, SEEK_SET);
    reader.StreamMoved();
    reader.Skip(100000);
    EXPECT_EQ(Next(reader), Expected(100001));
}

TEST_F(StreamReaderTest, KnownSizeIsNotReadBeyond) {
    StreamReader reader(Stream(300), 200);
    EXPECT_EQ(reader.Size(), 200u);
    EXPECT_EQ(reader.Peek(201), nullptr);
    reader.Seek(199);
    EXPECT_EQ(Next(reader), Expected(199));
    EXPECT_EQ(reader.Peek(1), nullptr);
}

TEST_F(StreamReaderTest, ToleratesAFileShorterThanItsKnownSize) {
    StreamReader reader(Stream(100), 200);
    reader.Seek(90);
    uint8_t bytes[20] = {};
    EXPECT_EQ(reader.Read(bytes, sizeof bytes), 10u);
    EXPECT_EQ(bytes[9], Expected(99));
    EXPECT_EQ(reader.Remaining(), 0u);
}

TEST_F(StreamReaderTest, TellsTheEndFromAFailure) {
    StreamReader reader(Stream(300000));
    pgkit_test::Bytes piece(200000);
    reader.Read(piece.data(), 10);
    EXPECT_FALSE(reader.HasFailed());
    reader.Seek(299990);
    EXPECT_EQ(reader.Peek(20), nullptr);
    EXPECT_EQ(reader.Read(piece.data(), 100), 10u);
    reader.Seek(200000);
    EXPECT_EQ(reader.Read(piece.data(), piece.size()), 100000u);
    reader.Seek(uint64_t{1} << 40);
    EXPECT_EQ(reader.Read(piece.data(), 1), 0u);
    EXPECT_FALSE(reader.HasFailed());
}

TEST_F(StreamReaderTest, TellsAFailureFromTheEnd) {
    FILE* const stream = Stream(300000);
    for (const size_t size : {size_t{10}, size_t{100000}}) {
        for (size_t allowed = 0; allowed < 2; ++allowed) {
            StreamReader reader(stream);
            pgkit_test::Bytes piece(size);
            {
                const pgkit_test::FailingFiles failing(allowed);
                EXPECT_EQ(reader.Read(piece.data(), size), 0u);
            }
            EXPECT_TRUE(reader.HasFailed());
        }
    }
}

TEST_F(StreamReaderTest, RemembersAFailure) {
    StreamReader reader(Stream(300000));
    {
        const pgkit_test::FailingFiles failing(0);
        EXPECT_EQ(reader.Peek(4), nullptr);
    }
    EXPECT_TRUE(reader.HasFailed());
    reader.Seek(100000);
    Next(reader);
    EXPECT_TRUE(reader.HasFailed());
}

// The mark of an error stays with a stream: it may be another's.
TEST_F(StreamReaderTest, TakesNoOldErrorOfTheStreamForItsOwn) {
    pgkit_test::TempDir directory;
    const pgkit_test::Stream stream =
        pgkit_test::OpenStream(directory.Write("old", "0123456789"), "rb");
    std::fputc('x', stream.get());  // a stream for reading takes nothing
    ASSERT_NE(std::ferror(stream.get()), 0);
    StreamReader reader(stream.get());
    uint8_t bytes[20];
    EXPECT_EQ(reader.Read(bytes, sizeof bytes), 10u);
    EXPECT_FALSE(reader.HasFailed());
}

}  // namespace
