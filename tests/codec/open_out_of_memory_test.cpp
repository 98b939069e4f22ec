// Opening when memory runs out at any point: no tree, nothing lost, and the stream in good hands.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>
#include <string>

#include "support/failing_new.h"
#include "support/private_dictionary.h"
#include "support/tree.h"

namespace {

using pgkit_test::BlocksInUse;
using pgkit_test::FailingNew;
using pgkit_test::PrivateDictionaryText;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

// Everything for which the parser allocates.
StreamBuilder File() {
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.1").MetaElement(0x0012, "UI", "1.22");
    file.Element(0x0009, 0x0000, "UL", "abcd");
    file.Element(0x0009, 0x0010, "LO", "A MAKER OF MANY PRIVATE ELEMENTS");
    file.Element(0x0009, 0x0011, "LO", "ANOTHER MAKER OF THE SAME KIND");
    file.Element(0x0009, 0x1001, "UN", "abcd");
    file.Sequence(0x0040, 0xA730).Item().Sequence(0x0040, 0xA043).Item();
    file.Element(0x0009, 0x0010, "LO", "A MAKER OF MANY PRIVATE ELEMENTS");
    file.EndItem().EndSequence().EndItem().EndSequence();
    file.Header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF).Item(0);
    for (int i = 0; i < 20; ++i)
        file.Item(2).Text("ff");
    return file.EndSequence();
}

class OpenOutOfMemory : public testing::Test {
  protected:
    const std::string& Path() const { return path_; }

  private:
    const PrivateDictionaryText dictionary_{
        "(0009,\"A MAKER OF MANY PRIVATE ELEMENTS\",01) LO AnElementOfALongName 1\n"};
    const TempDir directory_;
    const std::string path_ = directory_.Write("file", File().Data());
};

// More than the file takes; so that an endless failure ends the test.
constexpr size_t kMaxAllocations = 1000;

TEST_F(OpenOutOfMemory, FileIsClosedAndNothingIsLost) {
    for (size_t allowed = 0; allowed < kMaxAllocations; ++allowed) {
        const size_t before = BlocksInUse();
        PGX_Node* root = nullptr;
        {
            const FailingNew failing(allowed);
            root = pgOpenDataSetFile(Path().c_str(), 64);
        }
        const bool isDone = root != nullptr;
        pgCloseDataSet(root);
        ASSERT_EQ(BlocksInUse(), before) << allowed;
        if (isDone) {
            EXPECT_GT(allowed, 30u);
            return;
        }
    }
    FAIL() << "the file is never opened";
}

TEST_F(OpenOutOfMemory, StreamIsLeftOpenAndNothingIsLost) {
    FILE* stream = std::fopen(Path().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    for (size_t allowed = 0; allowed < kMaxAllocations; ++allowed) {
        const size_t before = BlocksInUse();
        ASSERT_EQ(std::fseek(stream, 0, SEEK_SET), 0);
        PGX_Node* root = nullptr;
        {
            const FailingNew failing(allowed);
            root = pgOpenDataSetFileHandle(stream, 64);
        }
        const bool isDone = root != nullptr;
        pgCloseDataSet(root);
        ASSERT_EQ(BlocksInUse(), before) << allowed;
        if (isDone) return;
        ASSERT_GE(std::ftell(stream), 0) << allowed;
    }
    FAIL() << "the stream is never parsed";
}

}  // namespace
