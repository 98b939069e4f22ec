// Trees that are deep or wide beyond reason.
#include <algorithm>
#include <filesystem>

#include "hostile/hostile_file.h"
#include "support/save_modes.h"

namespace {

using namespace pgkit_test;

// Sequences within sequences, each opened and none closed.
Bytes UndefinedNesting(size_t levels) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Part10("1.2.840.10008.1.2");
    for (size_t i = 0; i < levels; ++i)
        stream.Sequence(0x0040, 0xA730).Item();
    return stream.Data();
}

// The same with lengths that fit.
Bytes DefinedNesting(uint32_t levels) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Part10("1.2.840.10008.1.2");
    for (uint32_t left = levels; left > 0; --left)
        stream.Sequence(0x0040, 0xA730, left * 16 - 8).Item(left * 16 - 16);
    return stream.Data();
}

size_t DepthOf(const PGX_Node* root) {
    size_t depth = 0;
    for (const PGX_Node* node = root; node != nullptr; node = node->first) {
        while (node->next != nullptr)
            node = node->next;
        ++depth;
    }
    return depth;
}

// A node for each header takes memory in proportion to the file.
constexpr uint64_t kMemoryPerByte = 32;

void ExpectCutNesting(const Bytes& bytes) {
    const TempDir directory;
    const std::string path = directory.Write("deep", bytes);
    ExpectCheap(kMemoryPerByte * bytes.size(), [&] {
        const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(DepthOf(root.get()), 1 + 2 * 2048u);
        ReadEverything(root.get());
        const DataSet copy(root->DuplicateNode(0));
        EXPECT_EQ(DepthOf(copy.get()), DepthOf(root.get()));
        for (const int32_t mode : {kPart10Explicit, kImplicitLittle | PG_UNDEFINED_LENGTHS}) {
            EXPECT_EQ(copy->SaveDataSetAsEx(directory.Path("saved").c_str(), mode), 0u);
        }
    });
}

TEST(HostileNesting, OfAHundredThousandUndefinedLengthsIsCut) {
    ExpectCutNesting(UndefinedNesting(100000));
}

TEST(HostileNesting, OfAMillionDefinedLengthsIsCut) { ExpectCutNesting(DefinedNesting(1000000)); }

// Each line of a dump is indented by its depth: that of a deep tree is long.
TEST(HostileNesting, IsDumpedAsFarAsItGoes) {
    const TempDir directory;
    const OpenedStream opened(UndefinedNesting(3000));
    ExpectCheap(kMemoryAllowance, [&] { opened->Dump(directory.Path("dump").c_str()); });
    EXPECT_GT(std::filesystem::file_size(directory.Path("dump")), 10000000u);
}

// Only what is read from files is cut.
TEST(HostileNesting, InMemoryIsCopiedWrittenAndFreed) {
    DataSet root(pgAllocateDataSetNode());
    PGX_Node* dataSet = root.get();
    for (int i = 0; i < 100000; ++i) {
        PGX_Node* sequence = dataSet->InsertNode(0x0040, 0xA730, nullptr, 0);
        dataSet = pgAllocateDataSetNode();
        sequence->SeqAddTail(dataSet);
    }
    const TempDir directory;
    ExpectCheap(4 * kMemoryAllowance, [&] {
        const DataSet copy(root->DuplicateNode(0));
        EXPECT_EQ(DepthOf(copy.get()), 200001u);
        EXPECT_EQ(copy->SaveDataSetAsEx(directory.Path("saved").c_str(), kPart10Explicit), 0u);
        EXPECT_EQ(copy->SaveDataSetAsEx(directory.Path("saved").c_str(),
                                        kPart10Explicit | PG_UNDEFINED_LENGTHS),
                  0u);
    });
}

TEST(HostileNumbers, AMillionEmptyItemsTakeMemoryInProportion) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Part10("1.2.840.10008.1.2").Sequence(0x0040, 0xA730);
    for (int i = 0; i < 1000000; ++i)
        stream.Item(0);
    const TempDir directory;
    const std::string path = directory.Write("wide", stream.Data());
    ExpectCheap(kMemoryPerByte * stream.Size(), [&] {
        const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
        ASSERT_NE(root, nullptr);
        EXPECT_NE(Child(root.get(), 0x0040, 0xA730)->first, nullptr);
    });
}

TEST(HostileNumbers, TenThousandCreatorsAreKept) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1");
    for (int i = 0; i < 10000; ++i) {
        const auto block = static_cast<uint16_t>(0x10 + i % 0xF0);
        stream.Element(0x0009, block, "LO", "MAKER " + std::to_string(i + 10000) + " ");
    }
    stream.Element(0x0009, 0x1001, "UN", "abcd");
    const std::string description = UseBytes(stream);
    EXPECT_TRUE(description.ends_with("(0009,00AF)LO:12 (0009,1001)UN:4]"))
        << description.substr(description.size() - 40);
    EXPECT_EQ(std::ranges::count(description, '('), 1 + 10000 + 1);
}

TEST(HostileNumbers, DescendingTagsStayInOrderAndCostNothing) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1");
    for (uint32_t i = 50000; i > 0; --i)
        stream.Element(0x0011, static_cast<uint16_t>(i), "LO", "");
    EXPECT_TRUE(UseBytes(stream).ends_with("(0011,0002)LO:0 (0011,0001)LO:0]"));
}

// A group of its own for each element makes a group length of its own.
TEST(HostileNumbers, GroupsThatAlternateGetTheirLengths) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node** link = &root->first;
    for (uint32_t i = 0; i < 50000; ++i) {
        const auto group = static_cast<uint16_t>(i % 2 == 0 ? 0x0010 : 0x0008);
        *link = new PGX_Node(NT_DataElement, ET_LittleEndian, group, 0x0010, VR_LO, 0);
        link = &(*link)->next;
    }
    ExpectCheap(kMemoryAllowance, [&] { EXPECT_EQ(root->AddGroupLengths(kPart10Explicit), 1); });
}

}  // namespace
