// Where JSON goes: functions and buffers of the caller, in constant memory however long values are.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "support/cost.h"
#include "support/json.h"
#include "support/nodes.h"

namespace {

using pgkit_test::ExpectCheap;
using pgkit_test::JsonOf;
using pgkit_test::kInline;
using pgkit_test::NewDataSet;
using pgkit_test::OneElement;
using pgkit_test::OpenedStream;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::Tree;

struct Sink {
    std::string text;
    size_t callsBeforeFailure = SIZE_MAX;
    size_t calls = 0;
};

size_t Take(void* context, const void* bytes, size_t size) {
    auto& sink = *static_cast<Sink*>(context);
    EXPECT_GT(size, 0u);
    if (sink.calls++ == sink.callsBeforeFailure) return size - 1;
    sink.text.append(static_cast<const char*>(bytes), size);
    return size;
}

size_t Count(void* context, const void*, size_t size) {
    *static_cast<uint64_t*>(context) += size;
    return size;
}

TEST(JsonOutput, GoesToAFunction) {
    const OpenedStream file(OneElement(0x0008, 0x0060, "CS", "MR"));
    Sink sink;
    const std::string json = R"({"00080060":{"vr":"CS","Value":["MR"]}})";
    EXPECT_EQ(pgxWriteJson(file.Root(), nullptr, Take, &sink), static_cast<int64_t>(json.size()));
    EXPECT_EQ(sink.text, json);
}

TEST(JsonOutput, EndsWithTheFunctionsFailure) {
    const OpenedStream file(OneElement(0x7FE0, 0x0010, "OB", std::string(1000000, 'x')));
    for (const size_t calls : {0, 1, 5}) {
        Sink sink;
        sink.callsBeforeFailure = calls;
        EXPECT_EQ(pgxWriteJson(file.Root(), nullptr, Take, &sink), PGX_JSON_WRITE_FAILED);
        EXPECT_EQ(sink.calls, calls + 1);
    }
    EXPECT_EQ(pgxWriteJson(file.Root(), nullptr, nullptr, nullptr), PGX_JSON_WRITE_FAILED);
}

TEST(JsonOutput, IsOfDataSetsAndItemsOnly) {
    EXPECT_EQ(pgxGetJson(nullptr, nullptr, nullptr, 0), PGX_JSON_NO_DATA_SET);
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Sequence(0x0008, 0x1140).Item();
    const OpenedStream opened(file.Element(8, 0x1150, "UI", "1.23").EndItem().EndSequence());
    PGX_Node* const sequence = opened->FindNode(0x0008, 0x1140);
    EXPECT_EQ(pgxGetJson(sequence, nullptr, nullptr, 0), PGX_JSON_NO_DATA_SET);
    EXPECT_EQ(JsonOf(sequence->first), R"({"00081150":{"vr":"UI","Value":["1.23"]}})");
}

TEST(JsonOutput, OfAnItemCanHaveTheCharacterSetThatItInherits) {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0005, "CS", "ISO_IR 144");
    file.Sequence(0x0008, 0x1140).Item().Element(0x0008, 0x1030, "LO", "\xB4\xB4").EndItem();
    const OpenedStream opened(file.EndSequence());
    PgxJsonWriteOptions options = kInline;
    for (PGX_Node* const characterSet : {opened.Root(), opened->FindNode(0x0008, 0x0005)}) {
        options.characterSet = characterSet;
        EXPECT_EQ(JsonOf(opened->FindNode(0x0008, 0x1140)->first, options),
                  R"({"00080005":{"vr":"CS","Value":["ISO_IR 192"]},)"
                  R"("00081030":{"vr":"LO","Value":["ДД"]}})");
    }
}

TEST(JsonOutput, FitsABufferOfAnySize) {
    const OpenedStream file(OneElement(0x0008, 0x1030, "LO", "\xC3\xA4\xC3\xA4"));
    const std::string json = JsonOf(file.Root());
    for (size_t size = 1; size <= json.size() + 2; ++size) {
        std::string buffer(size + 1, 'x');
        EXPECT_EQ(pgxGetJson(file.Root(), nullptr, buffer.data(), size),
                  static_cast<int64_t>(json.size()));
        EXPECT_EQ(buffer[size], 'x');
        const std::string shown = buffer.c_str();
        EXPECT_TRUE(json.starts_with(shown)) << shown;
        // At most one byte of a character that does not fit is missing.
        EXPECT_GE(shown.size() + 2, std::min(size, json.size() + 1));
        if (shown.size() < json.size()) {
            EXPECT_NE(static_cast<unsigned char>(json[shown.size()]) & 0xC0, 0x80);
        }
    }
}

TEST(JsonOutput, LeavesAnEmptyBufferForAnError) {
    const Tree tree = NewDataSet();
    tree->InsertNode(0x0008, 0x0060, "MR", 2);
    tree->InsertEncodedPixelDataNode(1);
    char buffer[80] = "x";
    EXPECT_EQ(pgxGetJson(tree.get(), nullptr, buffer, sizeof buffer), PGX_JSON_NO_URI);
    EXPECT_STREQ(buffer, "");
}

// The members that an older host does not know count as not given.
TEST(JsonOutput, TakesOptionsOfAnOlderHost) {
    const OpenedStream file(OneElement(0x7FE0, 0x0010, "OB", "abcd"));
    PgxJsonWriteOptions options = kInline;
    options.size = offsetof(PgxJsonWriteOptions, sourceUri);
    options.bulkLimit = 0;
    options.sourceUri = "file:///x";
    EXPECT_NE(JsonOf(file.Root(), options).find("\"BulkDataURI\":\"?offset="), std::string::npos);
}

// ---- Long values --------------------------------------------------------------------------------

constexpr uint32_t kLong = 8 << 20;
constexpr uint64_t kConstant = 512 << 10;

// An element whose value is that of a file, which holds a pattern repeated.
class LongValue : public testing::Test {
  protected:
    PGX_Node* Add(ValueRepresentation vr, std::string_view pattern) {
        const std::string path = directory_.Path("long");
        FILE* const file = std::fopen(path.c_str(), "wb");
        std::string piece;
        while (piece.size() < 0x10000)
            piece += pattern;
        uint32_t written = 0;
        for (; written < kLong; written += static_cast<uint32_t>(piece.size()))
            std::fwrite(piece.data(), 1, piece.size(), file);
        std::fclose(file);
        auto* const node = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0009, 0x1001,
                                        static_cast<uint8_t>(vr), 0);
        tree_->InsertNode(node);
        EXPECT_EQ(node->SetFileContentValue(path.c_str()), 1);
        return node;
    }

    // Its JSON is written and read by nobody.
    void WriteCheaply(uint64_t leastSize) {
        uint64_t size = 0;
        const auto write = [&] {
            const int64_t told = pgxWriteJson(tree_.get(), nullptr, Count, &size);
            EXPECT_EQ(told, static_cast<int64_t>(size));
        };
        ExpectCheap(kConstant, write);
        EXPECT_GE(size, leastSize);
    }

    Tree tree_ = NewDataSet();

  private:
    TempDir directory_;
};

TEST_F(LongValue, OfBytesIsEncodedPieceByPiece) {
    Add(VR_OB, "0123456789");
    WriteCheaply(kLong / 3 * 4);
}

TEST_F(LongValue, OfBigEndianWordsIsSwappedPieceByPiece) {
    Add(VR_OW, "0123456789")->endian = ET_BigEndian;
    WriteCheaply(kLong / 3 * 4);
}

TEST_F(LongValue, OfNumbersIsWrittenPieceByPiece) {
    Add(VR_UL, "\x01\x02\x03\x04");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfTextIsWrittenPieceByPiece) {
    Add(VR_UT, "some text ");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfManyTextsIsWrittenPieceByPiece) {
    Add(VR_LO, "some\\text");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfNumbersAsTextIsWrittenPieceByPiece) {
    Add(VR_DS, "1.5\\-22");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfDecodedTextIsWrittenPieceByPiece) {
    tree_->InsertNode(0x0008, 0x0005, "ISO_IR 100", 10);
    Add(VR_UT, "\xE4 text\r\n");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfUndeclaredUtf8IsJudgedPieceByPiece) {
    Add(VR_UT, "\xC3\xA4 text");
    WriteCheaply(kLong);
}

TEST_F(LongValue, OfBlanksIsNone) {
    Add(VR_UT, "   ");
    uint64_t size = 0;
    pgxWriteJson(tree_.get(), nullptr, Count, &size);
    EXPECT_EQ(size, std::string_view(R"({"00091001":{"vr":"UT"}})").size());
}

// The length is a mere claim, the file is short.
TEST(JsonOutput, HasNoMoreOfAValueThanItsFileHas) {
    StreamBuilder file = OneElement(0x0008, 0x1030, "LO", "ab");
    file.Header(0x7FE0, 0x0010, "OW", 0xFFFFFFF0).Text("abc");
    const OpenedStream opened(file);
    uint64_t size = 0;
    ExpectCheap(kConstant, [&] { pgxWriteJson(opened.Root(), nullptr, Count, &size); });
    EXPECT_EQ(JsonOf(opened.Root()), R"({"00081030":{"vr":"LO","Value":["ab"]},)"
                                     R"("7FE00010":{"vr":"OW","InlineBinary":"YWJj"}})");
}

// Nothing is read from positions that a node cannot say; what is there would look empty.
TEST(JsonOutput, DoesNotPassOverAValueThatCannotBeRead) {
    const OpenedStream opened(OneElement(0x7FE0, 0x0010, "OB", "abcd"), 0);
    opened->FindNode(0x7FE0, 0x0010)->fileOffset = 0xFFFFFFFF;
    EXPECT_EQ(JsonOf(opened.Root()), "error " + std::to_string(PGX_JSON_UNREADABLE));
}

TEST(JsonOutput, CostsNoStackForDepth) {
    const Tree tree = NewDataSet();
    PGX_Node* item = tree.get();
    for (int i = 0; i < 100000; ++i) {
        PGX_Node* const sequence = item->InsertNode(0x0008, 0x1140, nullptr, 0);
        item = pgAllocateDataSetNode();
        sequence->SeqAddTail(item);
    }
    EXPECT_EQ(JsonOf(tree.get()).size(),
              100000 * std::string_view(R"({"00081140":{"vr":"SQ","Value":[]}})").size() + 2);
}

}  // namespace
