// Lengths that are wrong, and headers that are none.
#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "hostile/hostile_file.h"

namespace {

using namespace pgkit_test;

StreamBuilder Explicit() { return StreamBuilder().Part10("1.2.840.10008.1.2.1"); }

TEST(HostileLengths, AreKeptAsClaimedAndEndTheDataSet) {
    for (const uint32_t claimed : {0x1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u, 0xFFFFFFFEu}) {
        StreamBuilder stream = Explicit();
        stream.Header(0x0009, 0x1001, "OB", claimed).Text("abcd");
        EXPECT_EQ(UseBytes(stream),
                  kMeta + std::string("(0009,1001)OB:") + std::to_string(claimed) + "]");
    }
}

// Sums of lengths are those of 32 bits: the item seems to hold less than its first element.
TEST(HostileLengths, ThatWrapInSumsEndTheirItemSomewhere) {
    StreamBuilder stream = Explicit();
    stream.Sequence(0x0008, 0x1140, 0xFFFFFFF0).Item(0xFFFFFFE8);
    stream.Header(0x0009, 0x1001, "OB", 0xFFFFFFF8).Text("abcd");
    EXPECT_EQ(UseBytes(stream),
              kMeta + std::string("(0008,1140)SQ:4294967280{[(0009,1001)OB:4294967288]}]"));
}

TEST(HostileLengths, OfItemsBeyondTheirSequenceCount) {
    StreamBuilder stream = Explicit();
    stream.Sequence(0x0008, 0x1140, 8).Item(0x7FFFFFFF);
    stream.Element(0x0008, 0x1150, "UI", "1.2");
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream),
              kMeta + std::string("(0008,1140)SQ:8{[(0008,1150)UI:3 (0010,0010)PN:8]}]"));
}

TEST(HostileLengths, ThatAreUndefinedEndTheDataSetForVrsThatHaveNoItems) {
    for (const char* vr : {"OB", "OW", "OF", "UT"}) {
        StreamBuilder stream = Explicit();
        stream.Header(0x0009, 0x1001, vr, kUndefined);
        stream.Item(4).Text("abcd").EndSequence();
        EXPECT_EQ(UseBytes(stream), kMeta + std::string("(0009,1001)") + vr + ":-1]");
    }
}

TEST(HostileLengths, OfShortHeadersCannotBeUndefined) {
    StreamBuilder stream = Explicit();
    stream.Header(0x0010, 0x0010, "PN", 0xFFFF).Text("abcd");
    EXPECT_EQ(UseBytes(stream), kMeta + std::string("(0010,0010)PN:65535]"));
}

// Every pair of capital letters, as all VRs are, and bytes of all kinds.
std::vector<std::string> TwoBytes() {
    std::vector<std::string> pairs;
    for (char first = 'A'; first <= 'Z'; ++first)
        for (char second = 'A'; second <= 'Z'; ++second)
            pairs.push_back({first, second});
    for (unsigned bytes = 0; bytes < 0x10000; bytes += 37)
        pairs.push_back({static_cast<char>(bytes & 0xFF), static_cast<char>(bytes >> 8)});
    return pairs;
}

// Which of the two header forms a VR has decides how many bytes of the value are left.
TEST(HostileHeaders, MayHaveAnyTwoBytesForAVr) {
    const TempDir directory;
    std::set<uint32_t> lengths;
    for (const std::string& vr : TwoBytes()) {
        StreamBuilder stream = Explicit();
        stream.U16(0x0010).U16(0x0010).Text(vr).U16(4).Text("abcdefgh");
        const std::string path = directory.Write("file", stream.Data());
        const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
        ASSERT_NE(root, nullptr) << vr;
        ReadEverything(root.get());
        // Alone of all VRs it must have zeros in front of its length.
        if (vr == "UT") {
            EXPECT_EQ(Tags(root.get()), "0002,0010");
            continue;
        }
        ASSERT_TRUE(Tags(root.get()).starts_with("0002,0010 0010,0010")) << vr;
        lengths.insert(Child(root.get(), 0x0010, 0x0010)->length);
    }
    EXPECT_EQ(lengths, (std::set<uint32_t>{4, 0x64636261}));
}

TEST(HostileHeaders, OfZerosAreElementsToTheEnd) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0008, 0x0060, "CS", "CT").Zeros(100000);
    EXPECT_TRUE(UseBytes(stream).starts_with(kMeta + std::string("(0008,0060)CS:2 (0000,0000)")));
}

TEST(HostileHeaders, OfAllOnesEndTheDataSet) {
    for (const VrMode mode : {VrMode::Explicit, VrMode::Implicit}) {
        StreamBuilder stream(mode);
        stream.Part10(mode == VrMode::Explicit ? "1.2.840.10008.1.2.1" : "1.2.840.10008.1.2");
        stream.Element(0x0008, 0x0060, "CS", "CT");
        stream.Append(Bytes(64, 0xFF)).Element(0x0010, 0x0010, "PN", "DOE^JOHN");
        EXPECT_TRUE(UseBytes(stream).ends_with(" (0008,0060)CS:2]"));
    }
}

TEST(HostileHeaders, OfTheMetaGroupInTheDataSetAreElements) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0008, 0x0060, "CS", "CT");
    stream.Element(0x0002, 0x0010, "UI", PaddedUid("1.2.840.10008.1.2.2"));
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream),
              kMeta + std::string("(0008,0060)CS:2 (0002,0010)UI:20 (0010,0010)PN:8]"));
}

TEST(HostileValues, FitBuffersOfEverySize) {
    for (const char* vr : {"LO", "UI", "UT", "OB", "US", "FD", "SQ"}) {
        StreamBuilder stream(VrMode::Explicit, Order::Big);
        stream.Header(0x0009, 0x1001, vr, 21).Text("123456789012345678901");
        for (const uint32_t limit : {0u, kLoadAll}) {
            const OpenedStream opened(stream.Data(), limit,
                                      PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
            PGX_Node* element = Child(opened.Root(), 0x0009, 0x1001);
            for (int32_t size = -1; size <= 24; ++size) {
                // Exactly the room that is asked for: a sanitizer sees a byte too many.
                std::vector<char> buffer(size < 0 ? 1 : static_cast<size_t>(size) + 1, 'x');
                element->GetStringValue(buffer.data(), size);
                EXPECT_NE(std::find(buffer.begin(), buffer.end(), '\0'), buffer.end())
                    << vr << " " << size;
            }
        }
    }
}

class ChangedFile : public testing::Test {
  protected:
    // A value that is not loaded, of a file that is then overwritten in place.
    void Overwrite(const std::string& content) {
        StreamBuilder stream = Explicit();
        stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
        stream.Element(0x0020, 0x000D, "UI", "1.2.3.4.");
        stream.Header(0x7FE0, 0x0010, "OW", 100000).Text(std::string(100000, 'p'));
        path_ = directory_.Write("file", stream.Data());
        root_.reset(pgOpenDataSetFile(path_.c_str(), 0));
        ASSERT_NE(root_, nullptr);
        directory_.Write("file", content);
    }

    TempDir directory_;
    std::string path_;
    DataSet root_;
};

TEST_F(ChangedFile, ReadsAsZerosWhenItIsTruncated) {
    Overwrite("");
    EXPECT_EQ(TextOf(Child(root_.get(), 0x0010, 0x0010)), std::string(8, '\0'));
    ReadEverything(root_.get());
}

TEST_F(ChangedFile, ReadsAsWhatItHoldsNow) {
    Overwrite(std::string(200000, '7'));
    EXPECT_EQ(TextOf(Child(root_.get(), 0x0010, 0x0010)), "77777777");
    ReadEverything(root_.get());
}

TEST_F(ChangedFile, FailsASaveWhenItIsTruncated) {
    Overwrite("");
    EXPECT_EQ(root_->SaveDataSetAsEx(directory_.Path("saved").c_str(), 0), 4u);
}

TEST_F(ChangedFile, IsCopiedAsZerosWhenItIsTruncated) {
    Overwrite("");
    PGX_Node* copy = root_->DuplicateNode(0);
    EXPECT_EQ(TextOf(Child(copy, 0x0010, 0x0010)), std::string(8, '\0'));
    pgFreeNodeHierarchy(copy);
}

}  // namespace
