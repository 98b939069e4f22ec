// Encapsulated Pixel Data with wrong offset tables and too many fragments.
#include <algorithm>

#include "hostile/hostile_file.h"

namespace {

using namespace pgkit_test;

StreamBuilder UpToOffsetTable(uint32_t tableLength) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.4.50");
    return stream.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(tableLength);
}

StreamBuilder WithOffsets(const std::vector<uint32_t>& offsets) {
    StreamBuilder stream = UpToOffsetTable(static_cast<uint32_t>(offsets.size() * 4));
    for (const uint32_t offset : offsets)
        stream.U32(offset);
    for (size_t i = 0; i < offsets.size(); ++i)
        stream.Item(4).Text("abcd");
    return stream.EndSequence();
}

// The element is there, whatever its content.
void ExpectPixelData(const StreamBuilder& stream) {
    const std::string tree = UseBytes(stream);
    EXPECT_NE(tree.find("(7FE0,0010)OB"), std::string::npos) << tree;
}

TEST(HostileOffsetTable, OfAnyContentIsSurvived) {
    const std::vector<std::vector<uint32_t>> tables = {{0xFFFFFFFF},
                                                       {12, 0},
                                                       {0, 0xFFFFFFF8},
                                                       {0, 0xFFFFFFFC, 0xFFFFFFF4},
                                                       {0x80000000, 0x80000000},
                                                       {0, 12, 12, 12},
                                                       {5, 3, 1},
                                                       {0, 0x7FFFFFFF, 24}};
    for (const auto& offsets : tables)
        ExpectPixelData(WithOffsets(offsets));
}

TEST(HostileOffsetTable, OfAnySizeIsSurvived) {
    for (const uint32_t size : {1u, 2u, 3u, 5u, 4000u, 0x7FFFFFFCu, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
        StreamBuilder stream = UpToOffsetTable(size);
        stream.Zeros(16).Item(4).Text("abcd").EndSequence();
        ExpectPixelData(stream);
    }
}

TEST(HostileFragments, OfWrappingLengthsAreSurvived) {
    for (const uint32_t length : {0x7FFFFFFFu, 0xFFFFFFF8u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        StreamBuilder stream = UpToOffsetTable(0);
        stream.Item(length).Text("abcd").EndSequence();
        ExpectPixelData(stream);
    }
}

TEST(HostileFragments, LengthsThatSumBeyond32BitsEndTheirItem) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.4.50").Sequence(0x0088, 0x0200, 0x1000).Item(0xFFC);
    stream.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0);
    for (int i = 0; i < 5; ++i)
        stream.Item(0xFFFFFFF0);
    stream.EndSequence().EndItem().EndSequence();
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_TRUE(UseBytes(stream).starts_with("[(0002,0010)UI:22 (0088,0200)SQ:4096{[(7FE0,0010)"));
}

TEST(HostileFragments, TenMillionEmptyOnesTakeMemoryInProportion) {
    StreamBuilder stream = UpToOffsetTable(0);
    constexpr size_t kFragments = 10000000;
    Bytes items = StreamBuilder().Item(0).Data();
    const size_t size = kFragments * items.size();
    items.reserve(size);
    while (items.size() < size) {  // in a few large steps
        const size_t more = std::min(items.size(), size - items.size());
        items.resize(items.size() + more);
        std::copy_n(items.begin(), more, items.end() - static_cast<ptrdiff_t>(more));
    }
    const TempDir directory;
    const std::string path =
        directory.Write("fragments", stream.Append(items).EndSequence().Data());
    ExpectCheap(8 * items.size(), [&] {
        const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(Child(root.get(), 0x7FE0, 0x0010)->fragmentCount, kFragments);
    });
}

TEST(HostileFragments, FrameNumbersOverflowIntoZeros) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").Element(0x7FE0, 0x0010, "OB", "abcdefgh");
    for (const uint32_t limit : {0u, kLoadAll}) {
        const OpenedStream opened(stream, limit);
        PGX_Node* pixelData = Child(opened.Root(), 0x7FE0, 0x0010);
        // 0x80000001 frames of 2 bytes wrap to the second byte in 32 bits.
        for (const uint32_t frame : {0x80000000u, 0x80000001u, 0xFFFFFFFFu}) {
            char bytes[2] = {'x', 'x'};
            EXPECT_EQ(pixelData->GetPixelData(frame, 2, bytes), 1);
            EXPECT_EQ(std::string(bytes, 2), std::string(2, '\0'));
        }
    }
}

}  // namespace
