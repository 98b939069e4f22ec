#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/failing_new.h"
#include "support/nodes.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::LittleMemory;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::TempDir;
using pgkit_test::Tree;

constexpr size_t kLargestBlock = 1000;

struct Dumped {
    int32_t result;
    std::string text;
};

Dumped DumpWithLittleMemory(PGX_Node& node, const char* prefix) {
    const TempDir directory;
    const std::string path = directory.Path("dump");
    FILE* stream = std::fopen(path.c_str(), "wb");
    std::setvbuf(stream, nullptr, _IONBF, 0);
    int32_t result = 0;
    {
        const LittleMemory memory(kLargestBlock);
        result = node.Dump(stream, prefix);
    }
    std::fclose(stream);
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(path);
    return {result, std::string(bytes.begin(), bytes.end())};
}

Tree ElementOfLength(ValueRepresentation vr, uint32_t length) {
    Tree element = NewElement(0x0009, 0x1001, vr);
    element->length = length;
    return element;
}

TEST(DumpOutOfMemory, IsReportedInPlaceOfTheLine) {
    const Dumped dumped = DumpWithLittleMemory(*ElementOfLength(VR_LT, 999), "> ");
    EXPECT_EQ(dumped.result, 0);
    EXPECT_EQ(dumped.text, ">>>>> OUT-OF-MEMORY !!! (can't allocated 1001 bytes to dump object)\n");
}

TEST(DumpOutOfMemory, TwoBytesMoreThanTheLengthAreAskedFor) {
    EXPECT_EQ(DumpWithLittleMemory(*ElementOfLength(VR_LT, 998), "").result, 1);
}

TEST(DumpOutOfMemory, SumIsTakenIn32Bits) {
    EXPECT_EQ(DumpWithLittleMemory(*ElementOfLength(VR_UN, 0xFFFFFFF0), "").text,
              ">>>>> OUT-OF-MEMORY !!! (can't allocated 4294967282 bytes to dump object)\n");
    EXPECT_EQ(DumpWithLittleMemory(*ElementOfLength(VR_UN, 0xFFFFFFFF), "").result, 1);
}

TEST(DumpOutOfMemory, BinaryValuesNeedNoBuffer) {
    for (const auto vr : {VR_OB, VR_OW, VR_OF, VR_OWOB}) {
        EXPECT_EQ(DumpWithLittleMemory(*ElementOfLength(vr, 5000), "").result, 1) << vr;
    }
}

TEST(DumpOutOfMemory, DataSetGoesOnWithTheNextElement) {
    const Tree root = NewDataSet();
    PGX_Node* sequence = root->InsertNode(0x0008, 0x1140, nullptr, 0);
    sequence->length = 2000;
    sequence->SeqAddTail(NewDataSet().release());
    root->InsertNode(0x0010, 0x0020, "7 ", 2);
    const Dumped dumped = DumpWithLittleMemory(*root, "");
    EXPECT_EQ(dumped.result, 1);
    EXPECT_EQ(dumped.text,
              "DATASET\n"
              ">>>>> OUT-OF-MEMORY !!! (can't allocated 2002 bytes to dump object)\n"
              " | (0010,0020) : LO   Len: 2      PatientID                      Value: [7 ]\n"
              "END-OF-DATASET\n");
}

}  // namespace
