// Streams that end early or lie: each gives the part of the tree that precedes the break.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <set>

#include "support/tree.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::Describe;
using pgkit_test::kLoadAll;
using pgkit_test::kUndefined;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::ReadFile;
using pgkit_test::StreamBuilder;
using pgkit_test::TestData;
using pgkit_test::VrMode;

// A small file of every kind of structure, with the size at which each element is complete enough
// to appear: its header is whole.
struct Sample {
    explicit Sample(VrMode mode, Order order) : body(mode, order) {}

    void Note() { headersEnd.insert(body.Size()); }

    StreamBuilder body;
    std::set<uint32_t> headersEnd;  // sizes at which one more element shows
};

Sample MakeSample(VrMode mode, Order order) {
    Sample sample(mode, order);
    StreamBuilder& b = sample.body;
    const auto element = [&](uint16_t group, uint16_t number, const char* vr, const char* value) {
        b.Header(group, number, vr, static_cast<uint32_t>(std::string_view(value).size()));
        sample.Note();
        b.Text(value);
    };
    element(0x0008, 0x0060, "CS", "CT");
    b.Sequence(0x0008, 0x1140);
    sample.Note();
    b.Item();
    element(0x0008, 0x1150, "UI", "1.22");
    b.EndItem().EndSequence();
    element(0x0010, 0x0010, "PN", "DOE^JOHN");
    b.Header(0x7FE0, 0x0010, "OW", 4);
    sample.Note();
    b.Text("abcd");
    return sample;
}

size_t CountElements(const PGX_Node* dataSet) {
    size_t count = 0;
    for (const PGX_Node* child = dataSet->first; child != nullptr; child = child->next) {
        count += child->nodeType == NT_DataElement ? 1 : 0;
        count += CountElements(child);
    }
    return count;
}

struct Encoding {
    const char* name;
    const char* transferSyntax;
    VrMode mode;
    Order order;
};

class EveryPrefix : public testing::TestWithParam<Encoding> {};

INSTANTIATE_TEST_SUITE_P(Encodings, EveryPrefix,
                         testing::Values(Encoding{"ImplicitLittle", "1.2.840.10008.1.2",
                                                  VrMode::Implicit, Order::Little},
                                         Encoding{"ExplicitLittle", "1.2.840.10008.1.2.1",
                                                  VrMode::Explicit, Order::Little},
                                         Encoding{"ExplicitBig", "1.2.840.10008.1.2.2",
                                                  VrMode::Explicit, Order::Big}),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_P(EveryPrefix, GivesTheElementsWhoseHeadersItHolds) {
    const Sample sample = MakeSample(GetParam().mode, GetParam().order);
    StreamBuilder file;
    file.Part10(GetParam().transferSyntax);
    const size_t start = file.Data().size();
    file.Append(sample.body.Data());

    for (size_t size = 0; size <= file.Data().size(); ++size) {
        const Bytes prefix(file.Data().begin(), file.Data().begin() + static_cast<ptrdiff_t>(size));
        OpenedStream opened(prefix);
        // Less than the prefix "DICM" is a bare data set of zeros. Behind it, the tag that follows
        // the meta group tells that it has ended.
        constexpr size_t kPrefixEnd = 132;
        const bool isRefused = size < 6 || (size >= kPrefixEnd && size < start + 4);
        ASSERT_EQ(opened.Root() == nullptr, isRefused) << size;
        if (isRefused) continue;
        if (size < kPrefixEnd) {
            EXPECT_EQ(CountElements(opened.Root()), size / 8) << size;
            continue;
        }
        size_t expected = 1;
        for (uint32_t end : sample.headersEnd)
            expected += start + end <= size ? 1 : 0;
        EXPECT_EQ(CountElements(opened.Root()), expected) << size;
    }
}

TEST_P(EveryPrefix, OfABareDataSetGivesATreeFromSixBytesOn) {
    const Sample sample = MakeSample(GetParam().mode, GetParam().order);
    uint32_t flags =
        GetParam().mode == VrMode::Implicit ? PG_OPEN_FORCE_IMPLICIT_VR : PG_OPEN_FORCE_EXPLICIT_VR;
    flags |=
        GetParam().order == Order::Big ? PG_OPEN_FORCE_BIG_ENDIAN : PG_OPEN_FORCE_LITTLE_ENDIAN;
    const Bytes& body = sample.body.Data();
    for (size_t size = 0; size <= body.size(); ++size) {
        OpenedStream opened(Bytes(body.begin(), body.begin() + static_cast<ptrdiff_t>(size)),
                            kLoadAll, flags);
        ASSERT_EQ(opened.Root() != nullptr, size >= 6) << size;
        if (opened.Root() == nullptr) continue;
        size_t expected = 0;
        for (uint32_t end : sample.headersEnd)
            expected += end <= size ? 1 : 0;
        EXPECT_EQ(CountElements(opened.Root()), expected) << size;
    }
}

TEST(BrokenStreams, RandomBytesGiveATreeOrNothing) {
    uint32_t state = 1;
    for (int round = 0; round < 100; ++round) {
        Bytes bytes(200);
        for (uint8_t& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<uint8_t>(state >> 24);
        }
        // Small group numbers and lengths make it further into the parser.
        for (size_t i = 0; i < bytes.size(); i += 4)
            bytes[i + 1] = bytes[i + 3] = 0;
        for (uint32_t flags : {0x28u, 0x30u, 0x48u, 0x50u}) {
            OpenedStream opened(bytes, kLoadAll, flags);
            ASSERT_NE(opened.Root(), nullptr);
            EXPECT_EQ(opened->file != nullptr, true);
        }
    }
}

TEST(BrokenStreams, ZerosToTheEndAreElementsOfGroupZero) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "CS", "CT").Zeros(16);
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0060)CS:2 (0000,0000)UL:0 (0000,0000)UL:0]");
}

TEST(BrokenStreams, DescendingAndRepeatedTagsStayInStreamOrder) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Element(0x0010, 0x0010, "PN", "AB");
    stream.Element(0x0008, 0x0005, "CS", "X ").Element(0x0010, 0x0010, "PN", "ABCD");
    stream.Element(0x0002, 0x0010, "UI", "1.22");
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0060)CS:2 (0010,0010)PN:2 (0008,0005)CS:2 (0010,0010)PN:4 (0002,0010)UI:4]");
}

// The last frame of the second table lies in the first Pixel Data: going on behind it would come to
// the second again, and so on without end.
TEST(BrokenStreams, OffsetTableThatLeadsBackIsNotFollowed) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT");
    stream.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(4).U32(0);
    const uint32_t earlierFrame = stream.Size();
    stream.Item(4).Text("abcd").EndSequence();
    stream.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(8).U32(0);
    stream.U32(earlierFrame - (stream.Size() + 4));
    stream.Item(4).Text("efgh").EndSequence().Element(0x7FE1, 0x1001, "LO", "LOST");

    OpenedStream opened(stream);

    EXPECT_EQ(Describe(opened.Root()), "[(0008,0060)CS:2 (7FE0,0010)OB:-1 (7FE0,0010)OB:-1]");
    EXPECT_EQ(opened->first->next->fragmentCount, 1u);
    EXPECT_EQ(opened->first->next->next->fragmentCount, 0u);
}

TEST(BrokenStreams, ManyElementsAreNotAMatterOfDepth) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "CS", "CT");
    for (int i = 0; i < 100000; ++i)
        stream.Element(0x0010, 0x0010, "", "");
    EXPECT_EQ(CountElements(OpenedStream(stream).Root()), 100001u);
}

}  // namespace
