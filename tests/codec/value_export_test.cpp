#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "codec/encoded.h"
#include "support/host_order.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class ValueExport : public testing::Test {
  protected:
    // The value of an element as a file.
    Bytes Export(PGX_Node* node) {
        EXPECT_EQ(node->GetFileContentValue(out_.c_str()), 1);
        return ReadFile(out_);
    }

    static Bytes FromText(std::string_view text) { return Bytes(text.begin(), text.end()); }

    DataSet root_{pgAllocateDataSetNode()};
    TempDir directory_;
    const std::string out_ = directory_.Path("out");
};

TEST_F(ValueExport, WritesAValueInMemory) {
    EXPECT_EQ(Export(root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8)), FromText("DOE^JOHN"));
}

TEST_F(ValueExport, WritesNumbersInHostByteOrder) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_OW, "abcd", ET_BigEndian);
    EXPECT_EQ(Export(node), FromText("badc"));
    node->valueRep = VR_UL;
    EXPECT_EQ(Export(node), FromText("dcba"));
    node->endian = ET_LittleEndian;
    EXPECT_EQ(Export(node), FromText("abcd"));
}

TEST_F(ValueExport, CopiesAValueFromTheFileItWasReadFrom) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Stream source = OpenStream(directory_.Write("source", "..abcdefgh.."), "rb");
    PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_US, "", ET_BigEndian);
    SetSource(*node, source.get(), 2, 8);
    EXPECT_EQ(Export(node), FromText("badcfehg"));
}

TEST_F(ValueExport, CompletesAValueWhoseFileEndsOneByteEarly) {
    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 1, 3);
    EXPECT_EQ(Export(node), FromText(std::string_view("bc\0", 3)));
}

TEST_F(ValueExport, DoesNotReportAValueThatCannotBeRead) {
    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 1, 100);
    EXPECT_EQ(Export(node), Bytes());
    SetSource(*node, source.get(), 0xFFFFFFFF, 2);
    EXPECT_EQ(Export(node), Bytes());
}

TEST_F(ValueExport, CopiesAContentFileWholeAndUnconverted) {
    const std::string path = directory_.Write("content", "abcd");
    PGX_Node* node = NewElement(*root_, 0x0009, 0x1001, VR_OW, "", ET_BigEndian);
    ASSERT_EQ(node->SetFileContentValue(path.c_str()), 1);
    directory_.Write("content", "abcdefghi");
    EXPECT_EQ(Export(node), FromText("abcdefghi"));
}

TEST_F(ValueExport, CreatesNothingWithoutAValue) {
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    EXPECT_EQ(node->GetFileContentValue(out_.c_str()), 1);
    EXPECT_FALSE(std::filesystem::exists(out_));

    const std::string path = directory_.Write("content", "abcd");
    node->SetFileContentValue(path.c_str());
    std::filesystem::remove(path);
    EXPECT_EQ(node->GetFileContentValue(out_.c_str()), 1);
    EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(ValueExport, WhatWasReadGivesAFileWhateverItIs) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0080, "LO", "").Sequence(0x0008, 0x1140, 10);
    stream.Item(2).Text("ab");
    OpenedStream opened(stream);
    EXPECT_EQ(Export(opened.Root()), Bytes());
    EXPECT_EQ(Export(Child(opened.Root(), 0x0008, 0x0080)), Bytes());
    PGX_Node* sequence = Child(opened.Root(), 0x0008, 0x1140);
    EXPECT_EQ(Export(sequence), FromText(std::string_view("\xFE\xFF\0\xE0\2\0\0\0ab", 10)));
    EXPECT_EQ(Export(sequence->first), Bytes());
}

TEST_F(ValueExport, FailsWhereNoFileCanBeCreated) {
    const std::string nowhere = (std::filesystem::path(out_) / "file").string();
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(node->GetFileContentValue(nowhere.c_str()), 0);
    EXPECT_EQ(node->GetFileContentValue(nullptr), 0);

    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    SetSource(*node, source.get(), 1, 2);
    EXPECT_EQ(node->GetFileContentValue(nowhere.c_str()), 0);

    PGX_Node* content = root_->InsertNode(0x0010, 0x0020, nullptr, 0);
    content->SetFileContentValue(directory_.Write("content", "abcd").c_str());
    EXPECT_EQ(content->GetFileContentValue(nowhere.c_str()), 0);
}

TEST_F(ValueExport, FailsWhereTheContentFileCannotBeOpened) {
    const std::string path = directory_.Write("content", "abcd");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    node->SetFileContentValue(path.c_str());
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(node->GetFileContentValue(out_.c_str()), 0);
    EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(ValueExport, DoesNotOverwriteTheFileThatValuesComeFrom) {
    const std::string path = directory_.Write("source", "abcdef");
    const Stream source = OpenStream(path, "rb");
    PGX_Node* node = root_->InsertNode(0x0010, 0x0010, nullptr, 0);
    SetSource(*node, source.get(), 1, 2);
    EXPECT_EQ(node->GetFileContentValue(path.c_str()), 0);

    PGX_Node* loaded = root_->InsertNode(0x0010, 0x0020, "1 ", 2);
    loaded->file = source.get();
    EXPECT_EQ(loaded->GetFileContentValue(path.c_str()), 0);

    const std::string contentPath = directory_.Write("content", "ghi");
    PGX_Node* content = root_->InsertNode(0x0010, 0x0030, nullptr, 0);
    content->SetFileContentValue(contentPath.c_str());
    EXPECT_EQ(content->GetFileContentValue(contentPath.c_str()), 0);

    EXPECT_EQ(ReadFile(path), FromText("abcdef"));
    EXPECT_EQ(ReadFile(contentPath), FromText("ghi"));
}

}  // namespace
