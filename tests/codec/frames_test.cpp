// Where the frames of encapsulated Pixel Data lie.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>
#include <vector>

#include "support/nodes.h"
#include "support/sample_files.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

struct Found {
    int32_t source = -1;
    // "ab+cd|ef": the bytes of the pieces, by frame.
    std::string frames;
};

std::string BytesOf(PGX_Node& root, const PgxFramePiece& piece) {
    std::string bytes(piece.length, '?');
    if (piece.bytes != nullptr) return {piece.bytes, piece.bytes + piece.length};
    root.GetFileData(bytes.data(), static_cast<uint32_t>(piece.offset), piece.length);
    return bytes;
}

Found FramesOf(PGX_Node* root) {
    Found found;
    const int64_t count = pgxFindFrames(root, nullptr, 0, &found.source);
    if (count < 0) {
        found.frames = "error " + std::to_string(count);
        return found;
    }
    std::vector<PgxFramePiece> pieces(static_cast<size_t>(count));
    EXPECT_EQ(pgxFindFrames(root, pieces.data(), pieces.size(), nullptr), count);
    uint32_t frame = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) found.frames += pieces[i].frame == frame ? "+" : "|";
        frame = pieces[i].frame;
        found.frames += BytesOf(*root, pieces[i]);
    }
    return found;
}

std::string LongNumbers(const std::vector<uint64_t>& numbers) {
    std::string text;
    for (const uint64_t n : numbers) {
        for (int shift = 0; shift < 64; shift += 8)
            text += static_cast<char>(n >> shift);
    }
    return text;
}

// Pixel Data of the fragments ab, cde!, fg, hi: their items begin at 0, 10, 22 and 32.
class FragmentFile {
  public:
    FragmentFile& Count(const char* frames) {
        head_.Element(0x0028, 0x0008, "IS", frames);
        return *this;
    }
    FragmentFile& Extended(const std::vector<uint64_t>& offsets,
                           const std::vector<uint64_t>& lengths) {
        head_.Element(0x7FE0, 0x0001, "OV", LongNumbers(offsets));
        head_.Element(0x7FE0, 0x0002, "OV", LongNumbers(lengths));
        return *this;
    }
    StreamBuilder File(const std::vector<uint32_t>& offsets) const {
        StreamBuilder file = head_;
        file.Header(0x7FE0, 0x0010, "OB", kUndefined);
        file.Item(static_cast<uint32_t>(4 * offsets.size()));
        for (const uint32_t offset : offsets)
            file.U32(offset);
        for (const char* fragment : {"ab", "cde!", "fg", "hi"})
            file.Item(static_cast<uint32_t>(std::string(fragment).size())).Text(fragment);
        return file.EndSequence();
    }
    Found Find(const std::vector<uint32_t>& offsets, uint32_t flags = 0) const {
        return FramesOf(OpenedStream(File(offsets), 0, flags).Root());
    }
    // The same without the file.
    Found FindInMemory(const std::vector<uint32_t>& offsets) const {
        const Bytes bytes = File(offsets).Data();
        return FramesOf(DataSet(pgxOpenMemory(bytes.data(), bytes.size(), 0, nullptr)).get());
    }

  private:
    StreamBuilder head_ = StreamBuilder().Part10("1.2.840.10008.1.2.4.50");
};

// No table has entries for these: the last frame has two fragments.
TEST(Frames, OffsetTableTellsFramesOfSeveralFragments) {
    const Found found = FragmentFile().Count("2 ").Find({0, 22});
    EXPECT_EQ(found.source, PGX_FRAMES_BASIC_OFFSETS);
    EXPECT_EQ(found.frames, "ab+cde!|fg+hi");
}

TEST(Frames, OffsetTableNeedsNoNumberOfFrames) {
    const Found found = FragmentFile().Find({0, 10, 32});
    EXPECT_EQ(found.source, PGX_FRAMES_BASIC_OFFSETS);
    EXPECT_EQ(found.frames, "ab|cde!+fg|hi");
}

TEST(Frames, AsManyFragmentsAsFramesAreOneEach) {
    const FragmentFile file = FragmentFile().Count("4 ");
    for (const auto& offsets : std::vector<std::vector<uint32_t>>{
             {}, {0}, {0, 10, 22}, {0, 10, 22, 33}, {8, 10, 22, 32}, {0, 10, 10, 32}}) {
        const Found found = file.Find(offsets);
        EXPECT_EQ(found.source, PGX_FRAMES_FRAGMENTS) << offsets.size();
        EXPECT_EQ(found.frames, "ab|cde!|fg|hi") << offsets.size();
    }
}

TEST(Frames, AllFragmentsAreASingleFrame) {
    EXPECT_EQ(FragmentFile().Find({}).source, PGX_FRAMES_SINGLE);
    EXPECT_EQ(FragmentFile().Find({1234}).frames, "ab+cde!+fg+hi");
    EXPECT_EQ(FragmentFile().Count("1 ").Find({0, 22}).source, PGX_FRAMES_SINGLE);
}

TEST(Frames, NothingIsTakenFromWhatIsInconsistent) {
    const Found found = FragmentFile().Count("3 ").Find({0, 22});
    EXPECT_EQ(found.source, PGX_FRAMES_NONE);
    EXPECT_EQ(found.frames, "");
}

TEST(Frames, ExtendedOffsetTableLeavesThePaddingOut) {
    const Found found = FragmentFile().Extended({0, 10, 22, 32}, {2, 3, 2, 1}).Count("4 ").Find({});
    EXPECT_EQ(found.source, PGX_FRAMES_EXTENDED_OFFSETS);
    EXPECT_EQ(found.frames, "ab|cde|fg|h");
}

TEST(Frames, ExtendedLengthsMustFit) {
    EXPECT_EQ(FragmentFile().Extended({0, 22}, {7, 4}).Find({}).source, PGX_FRAMES_SINGLE);
}

TEST(Frames, ExtendedOffsetsNeedTheirLengths) {
    EXPECT_EQ(FragmentFile().Extended({0, 10, 22, 32}, {2, 3, 2}).Count("4 ").Find({}).source,
              PGX_FRAMES_FRAGMENTS);
}

TEST(Frames, ExtendedFramesOfSeveralFragmentsEndWithTheirLength) {
    EXPECT_EQ(FragmentFile().Extended({0, 22}, {5, 4}).Count("2 ").Find({}).frames, "ab+cde|fg+hi");
}

TEST(Frames, AreFoundWhateverTheTableWasMadeOf) {
    EXPECT_EQ(FragmentFile().Count("4 ").Find({}, PG_OPEN_SKIP_FRAGMENTS).frames, "ab|cde!|fg|hi");
}

TEST(Frames, InMemoryAreTheSame) {
    EXPECT_EQ(FragmentFile().FindInMemory({}).frames, "ab+cde!+fg+hi");
    EXPECT_EQ(FragmentFile().Count("2 ").FindInMemory({0, 22}).frames, "abcde!|fghi");
}

TEST(Frames, InMemoryExtendedOffsetsStayRight) {
    EXPECT_EQ(FragmentFile().Extended({0, 10, 22, 32}, {2, 3, 2, 1}).FindInMemory({}).frames,
              "ab|cde|fg|h");
}

TEST(FramesOfBuiltPixelData, AreTheirFragments) {
    const Tree root = NewDataSet();
    PGX_Node* const pixels = root->InsertEncodedPixelDataNode(2);
    pixels->SetEncodedPixelData(0, 2, "ab");
    pixels->SetEncodedPixelData(1, 4, "cdef");
    EXPECT_EQ(FramesOf(root.get()).frames, "ab+cdef");
    root->AddOrReplaceNode(0x0028, 0x0008, "2", 1);
    EXPECT_EQ(FramesOf(root.get()).frames, "ab|cdef");
    EXPECT_EQ(FramesOf(root.get()).source, PGX_FRAMES_FRAGMENTS);
}

TEST(FramesOfBrokenPixelData, EndWithTheFile) {
    StreamBuilder file = StreamBuilder().Part10("1.2.840.10008.1.2.4.50");
    file.Element(0x0028, 0x0008, "IS", "2 ").Header(0x7FE0, 0x0010, "OB", kUndefined);
    file.Item(0).Item(2).Text("ab").Item(0x7FFFFFFE).Text("cd");
    EXPECT_EQ(FramesOf(OpenedStream(file).Root()).frames, "ab|cd");
}

TEST(FramesOfBrokenPixelData, OffsetTableThatIsNotThereTakesNoMemory) {
    StreamBuilder file = StreamBuilder().Part10("1.2.840.10008.1.2.4.50");
    file.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0xFFFFFFF0).U32(0);
    EXPECT_EQ(FramesOf(OpenedStream(file).Root()).frames, "");
}

TEST(FramesOfNothing, AreAnError) {
    const StreamBuilder native =
        StreamBuilder().Part10("1.2.840.10008.1.2.1").Element(0x7FE0, 0x0010, "OW", "abcd");
    EXPECT_EQ(pgxFindFrames(nullptr, nullptr, 0, nullptr), PGX_FRAMES_NOT_ENCAPSULATED);
    EXPECT_EQ(pgxFindFrames(OpenedStream(native).Root(), nullptr, 0, nullptr),
              PGX_FRAMES_NOT_ENCAPSULATED);
    // The file of a copy is not known to it.
    StreamBuilder file = StreamBuilder().Part10("1.2.840.10008.1.2.4.50");
    file.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).Item(2).Text("ab").EndSequence();
    const OpenedStream opened(file);
    const DataSet copy(opened->DuplicateNode(1));
    EXPECT_EQ(pgxFindFrames(copy.get(), nullptr, 0, nullptr), PGX_FRAMES_NOT_READABLE);
}

TEST(FramesOfBundledFiles, AreFound) {
    const std::vector<std::pair<const char*, int32_t>> kExpected = {
        {"encapsulated/mini_defined_bot_2_to_1.dcm", PGX_FRAMES_BASIC_OFFSETS},
        {"encapsulated/nm_j2k_delimiter_bytes_inside_fragment.dcm", PGX_FRAMES_FRAGMENTS},
        {"encapsulated/rtdose_rle_15frames_no_bot.dcm", PGX_FRAMES_FRAGMENTS},
        {"encapsulated/sc_rle_2frame_multifragment_bot.dcm", PGX_FRAMES_BASIC_OFFSETS},
        {"encapsulated/sc_rle_2frame_multifragment_no_bot.dcm", PGX_FRAMES_NONE},
    };
    for (const auto& [name, source] : kExpected) {
        const DataSet root(pgOpenDataSetFile(TestData(name).c_str(), 64));
        ASSERT_NE(root, nullptr) << name;
        EXPECT_EQ(FramesOf(root.get()).source, source) << name;
    }
}

}  // namespace
