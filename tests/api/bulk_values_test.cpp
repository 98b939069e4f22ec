// Many values in one block: what stands in it, and what it does without room.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/sample_files.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

constexpr uint32_t kLongest = 64;
constexpr uint32_t kBigEndian = PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN;

// A block taken apart as its header describes it.
class Block {
  public:
    using Call = std::function<size_t(void*, size_t)>;

    explicit Block(const Call& call) : bytes_(call(nullptr, 0)) {
        EXPECT_EQ(call(bytes_.data(), bytes_.size()), bytes_.size());
        if (bytes_.empty()) return;
        std::memcpy(&header_, bytes_.data(), sizeof header_);
        EXPECT_EQ(header_.size, bytes_.size());
    }

    uint32_t Count() const { return header_.count; }
    uint64_t CharacterSet() const { return header_.characterSet; }

    PgxElementRecord Record(size_t index) const {
        const size_t tags = (header_.count + 1) / 2 * 8;
        PgxElementRecord record;
        std::memcpy(&record, &bytes_.at(sizeof header_ + tags + index * sizeof record),
                    sizeof record);
        uint32_t tag = 0;
        std::memcpy(&tag, &bytes_.at(sizeof header_ + index * sizeof tag), sizeof tag);
        EXPECT_EQ(tag, record.tag);
        return record;
    }

    std::string Value(size_t index) const {
        const PgxElementRecord record = Record(index);
        EXPECT_EQ(record.offset % 8, 0u);
        EXPECT_EQ(bytes_.at(size_t{record.offset} + record.size), 0);
        return {reinterpret_cast<const char*>(&bytes_.at(record.offset)), record.size};
    }

  private:
    std::vector<uint8_t> bytes_;
    PgxLevelHeader header_ = {};
};

Block LevelOf(PGX_Node* node, PGX_Node* characterSet = nullptr, uint32_t longest = kLongest) {
    return Block([=](void* buffer, size_t size) {
        return pgxReadLevel(node, characterSet, longest, buffer, size);
    });
}

Block ValuesOf(PGX_Node* node, std::vector<uint32_t> tags) {
    return Block([=](void* buffer, size_t size) {
        return pgxReadValues(node, nullptr, tags.data(), static_cast<uint32_t>(tags.size()),
                             kLongest, buffer, size);
    });
}

StreamBuilder Greek() {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 126");
    stream.Sequence(0x0008, 0x1140);
    stream.Item().Element(0x0010, 0x0010, "PN", "\304\351 ").EndItem();
    stream.Item().EndItem();
    stream.EndSequence();
    stream.ElementUS(0x0028, 0x0010, 0x0102);
    stream.Element(0x0040, 0xA160, "UT", std::string(kLongest + 2, 'x'));
    return stream;
}

class Levels : public testing::TestWithParam<uint32_t> {};

TEST_P(Levels, HaveTheirElementsInOrder) {
    const OpenedStream opened(Greek(), GetParam(), kBigEndian);
    const Block block = LevelOf(opened.Root());
    ASSERT_EQ(block.Count(), 4u);
    EXPECT_EQ(block.Record(0).kind, PGX_VALUE_TEXT);
    EXPECT_EQ(block.Value(0), "ISO_IR 126");
    EXPECT_EQ(block.CharacterSet(), block.Record(0).node);
    EXPECT_EQ(block.Record(1).kind, PGX_VALUE_SEQUENCE);
    EXPECT_EQ(block.Record(1).valueRep, VR_SQ);
    EXPECT_EQ(block.Record(2).kind, PGX_VALUE_BYTES);
    const uint16_t rows = 0x0102;
    EXPECT_EQ(block.Value(2), std::string(reinterpret_cast<const char*>(&rows), 2));
    EXPECT_EQ(block.Record(3).kind, PGX_VALUE_LEFT_OUT);
    EXPECT_EQ(block.Record(3).length, kLongest + 2);
    EXPECT_EQ(block.Record(3).node,
              reinterpret_cast<uintptr_t>(Child(opened.Root(), 0x0040, 0xA160)));
}

TEST_P(Levels, OfSequencesAreItemsThatInheritTheCharacterSet) {
    const OpenedStream opened(Greek(), GetParam(), kBigEndian);
    PGX_Node* const set = pgxFindCharacterSet(opened.Root(), nullptr);
    const Block items = LevelOf(Child(opened.Root(), 0x0008, 0x1140), set);
    ASSERT_EQ(items.Count(), 2u);
    EXPECT_EQ(items.Record(0).tag, 0xFFFEE000u);
    EXPECT_EQ(items.Record(0).kind, PGX_VALUE_ITEM);
    EXPECT_EQ(items.CharacterSet(), reinterpret_cast<uintptr_t>(set));
    PGX_Node* const item = Child(opened.Root(), 0x0008, 0x1140)->first;
    EXPECT_EQ(LevelOf(item, set).Value(0), "Δι");
    EXPECT_EQ(LevelOf(item).Value(0), "Äé");
    EXPECT_EQ(LevelOf(item->next, set).Count(), 0u);
}

TEST_P(Levels, GiveOnlyTheTagsThatWereAskedFor) {
    const OpenedStream opened(Greek(), GetParam(), kBigEndian);
    const Block block = ValuesOf(opened.Root(), {0x00280010, 0x00100010, 0x00080005});
    ASSERT_EQ(block.Count(), 3u);
    EXPECT_EQ(block.Value(0).size(), 2u);
    EXPECT_EQ(block.Record(1).kind, PGX_VALUE_ABSENT);
    EXPECT_EQ(block.Record(1).node, 0u);
    EXPECT_EQ(block.Value(2), "ISO_IR 126");
}

INSTANTIATE_TEST_SUITE_P(InMemoryAndInTheFile, Levels, testing::Values(kLoadAll, 0u));

TEST(BulkValues, OfAFileHaveNoNodes) {
    const OpenedStream opened(Greek(), 0, kBigEndian);
    const uint32_t tags[] = {0x00080005, 0x00081140};
    const Block block([&](void* buffer, size_t size) {
        return pgxReadFileValues(opened.Path().c_str(), kBigEndian, tags, 2, kLongest, buffer, size,
                                 nullptr);
    });
    ASSERT_EQ(block.Count(), 2u);
    EXPECT_EQ(block.Value(0), "ISO_IR 126");
    EXPECT_EQ(block.Record(1).kind, PGX_VALUE_SEQUENCE);
    EXPECT_EQ(block.Record(0).node + block.Record(1).node + block.CharacterSet(), 0u);
    PgxOpenReport report = {};
    report.size = sizeof report;
    EXPECT_EQ(pgxReadFileValues("no/such/file", 0, tags, 2, kLongest, nullptr, 0, &report), 0u);
    EXPECT_EQ(report.result, PGX_OPEN_CANNOT_OPEN);
    EXPECT_EQ(pgxReadFileValues(nullptr, 0, tags, 2, kLongest, nullptr, 0, nullptr), 0u);
}

// Whatever the size of the buffer, nothing is written behind it, and what is written is a whole
// block or an empty one.
TEST(BulkValues, KeepToTheirBuffer) {
    const OpenedStream opened(Greek(), kLoadAll, kBigEndian);
    const size_t whole = pgxReadLevel(opened.Root(), nullptr, kLongest, nullptr, 0);
    for (size_t size = 0; size <= whole; ++size) {
        std::vector<uint8_t> buffer(whole + 8, 0xEE);
        EXPECT_EQ(pgxReadLevel(opened.Root(), nullptr, kLongest, buffer.data(), size), whole);
        for (size_t i = size; i < buffer.size(); ++i)
            ASSERT_EQ(buffer[i], 0xEE) << size << " " << i;
        PgxLevelHeader header = {};
        std::memcpy(&header, buffer.data(), sizeof header);
        if (size < sizeof header) continue;
        EXPECT_EQ(header.count, size == whole ? 4u : 0u);
        EXPECT_EQ(header.size, whole);
    }
}

TEST(BulkValues, LeaveOutWhatTheFileDoesNotHold) {
    StreamBuilder stream;
    stream.Element(0x0010, 0x0010, "PN", "DOE^");
    stream.Header(0x7FE0, 0x0010, "OB", 0x7FFFFFF0).Text("ab");
    const OpenedStream opened(stream, 0, PG_OPEN_FORCE_EXPLICIT_VR);
    const Block block = LevelOf(opened.Root(), nullptr, 0xFFFFFFFF);
    ASSERT_EQ(block.Count(), 2u);
    EXPECT_EQ(block.Value(0), "DOE^");
    EXPECT_EQ(block.Record(1).kind, PGX_VALUE_LEFT_OUT);
}

TEST(BulkValues, OfNothing) {
    EXPECT_EQ(pgxReadLevel(nullptr, nullptr, kLongest, nullptr, 0), 0u);
    EXPECT_EQ(pgxReadValues(nullptr, nullptr, nullptr, 0, kLongest, nullptr, 0), 0u);
    const DataSet empty(pgAllocateDataSetNode());
    EXPECT_EQ(LevelOf(empty.get()).Count(), 0u);
    EXPECT_EQ(pgxReadValues(empty.get(), nullptr, nullptr, 7, kLongest, nullptr, 0),
              sizeof(PgxLevelHeader));
}

// Every value of every sample is that of the getters for single elements.
TEST(BulkValues, AreThoseOfTheGetters) {
    size_t compared = 0;
    for (const std::string& name : SampleFiles()) {
        const DataSet root(pgOpenDataSetFileEx(TestData(name).c_str(), 64, 0));
        if (root == nullptr) continue;
        const Block block = LevelOf(root.get(), nullptr, 1000);
        size_t index = 0;
        for (PGX_Node* node = root->first; node != nullptr; node = node->next, ++index) {
            const PgxElementRecord record = block.Record(index);
            std::string value(3000, '\0');
            if (record.kind == PGX_VALUE_TEXT) {
                value.resize(static_cast<size_t>(
                    pgxGetUtf8Value(root.get(), node, value.data(), value.size())));
            } else if (record.kind == PGX_VALUE_BYTES) {
                node->GetValue(value.data());
                value.resize(node->length);
            } else {
                continue;
            }
            EXPECT_EQ(block.Value(index), value) << name << " " << std::hex << record.tag;
            ++compared;
        }
    }
    EXPECT_GT(compared, 500u);
}

}  // namespace
