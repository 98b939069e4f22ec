// What leaves have besides plain texts: file IDs, numbers, marks and icons.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/icon_sequence.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;
using pgkit_test::IconSequence;

// A directory with one leaf of a type.
class LeafKeys : public testing::Test {
  protected:
    DirectoryRecordSpec& Leaf(const std::string& type) {
        const size_t series =
            directory_.Series(directory_.Study(directory_.Patient("P", "DOE"), "S"), "E", "OT");
        return directory_[directory_.Child(series, type)];
    }

    template <typename Class>
    Class& Browse() {
        browsed_.emplace(directory_);
        return dynamic_cast<Class&>(browsed_->Leaf());
    }

    DirectoryBuilder directory_;
    std::optional<BrowsedDirectory> browsed_;
};

TEST_F(LeafKeys, AreThoseOfTheRecord) {
    Leaf("HANGING PROTOCOL")
        .Set(0x0020, 0x0013, "IS", "12")
        .Set(0x0859, 0x1040, "DS", "123456")
        .Set(0x07A1, 0x102B, "CS", "YES");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.leafType, PG_LEAF_OTHER);
    EXPECT_EQ(leaf.instanceNumber, 12);
    EXPECT_EQ(leaf.referencedDataSetSize, 123456);
    EXPECT_EQ(leaf.flags, 1u);
    EXPECT_EQ(leaf.clientFlags, 0u);
    ASSERT_NE(leaf.record, nullptr);
    EXPECT_NE(leaf.record->FindNode(0x0859, 0x1040), nullptr);
}

TEST_F(LeafKeys, NumbersAreZeroWithoutElements) {
    Leaf("OTHER");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.instanceNumber, 0);
    EXPECT_EQ(leaf.referencedDataSetSize, 0);
    EXPECT_EQ(leaf.flags, 0u);
}

TEST_F(LeafKeys, NumbersOfEmptyElementsAreZero) {
    Leaf("OTHER").Set(0x0020, 0x0013, "IS", "").Set(0x0859, 0x1040, "DS", "");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.instanceNumber, 0);
    EXPECT_EQ(leaf.referencedDataSetSize, 0);
}

TEST_F(LeafKeys, FullPathIsTheFolderAndTheFileId) {
    Leaf("OTHER").Set(0x0004, 0x1500, "CS", "dir\\File");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.referencedFileId, "dir\\File");
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder() + "\\dir\\File"));
}

TEST_F(LeafKeys, FullPathWithoutAFileIdEndsInItsDefault) {
    Leaf("OTHER");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder()) + "\\NO.REFERENCEDFILEID");
}

TEST_F(LeafKeys, FullPathOfAnEmptyFileIdIsTheFolder) {
    Leaf("OTHER").Set(0x0004, 0x1500, "CS", "");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder()) + "\\");
}

TEST_F(LeafKeys, FullPathIsCutToFit) {
    const std::string fileId(400, 'x');
    Leaf("OTHER").Set(0x0004, 0x1500, "CS", fileId);
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder() + "\\" + fileId).substr(0, 259));
}

TEST_F(LeafKeys, FileIdLosesALeadingBackslash) {
    Leaf("IMAGE").Set(0x0004, 0x1500, "CS", "\\img\\X12");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.referencedFileId, "img\\X12");
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder()) + "\\IMG\\X12");
}

TEST_F(LeafKeys, FileIdLosesOnlyOneBackslash) {
    Leaf("IMAGE").Set(0x0004, 0x1500, "CS", "\\\\IM");
    EXPECT_STREQ(Browse<PGX_DicomDirLeafNode>().referencedFileId, "\\IM");
}

TEST_F(LeafKeys, FileIdKeepsTheBlankThatMadeItEven) {
    Leaf("IMAGE").Set(0x0004, 0x1500, "CS", "IMG");
    EXPECT_STREQ(Browse<PGX_DicomDirLeafNode>().referencedFileId, "IMG ");
}

TEST_F(LeafKeys, FullPathRaisesAsciiLettersOnly) {
    Leaf("IMAGE").Set(0x0004, 0x1500, "CS", "b\xE4r\\zz");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.fullPath, pgkit_test::Upper(browsed_->Folder()) + "\\B\xE4R\\ZZ");
}

TEST_F(LeafKeys, MarkIsToldByItsFirstLetter) {
    Leaf("IMAGE").Set(0x07A1, 0x102B, "CS", "Yellow");
    EXPECT_EQ(Browse<PGX_DicomDirLeafNode>().flags, 1u);
}

TEST_F(LeafKeys, MarkOfAnotherTextIsNone) {
    Leaf("IMAGE").Set(0x07A1, 0x102B, "CS", "y");
    EXPECT_EQ(Browse<PGX_DicomDirLeafNode>().flags, 0u);
}

TEST_F(LeafKeys, NumbersOfAnImage) {
    Leaf("IMAGE")
        .Set(0x0028, 0x0010, "US", std::string("\x00\x02", 2))
        .Set(0x0028, 0x0011, "US", std::string("\xFF\xFF", 2))
        .Set(0x0028, 0x0008, "IS", "12");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 512);
    EXPECT_EQ(image.columns, 65535);
    EXPECT_EQ(image.numberOfFrames, 12);
}

TEST_F(LeafKeys, AnImageHasOneFrameWithoutElements) {
    Leaf("IMAGE");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 0);
    EXPECT_EQ(image.columns, 0);
    EXPECT_EQ(image.numberOfFrames, 1);
}

TEST_F(LeafKeys, AnImageHasNoFramesWhenTheElementIsEmpty) {
    Leaf("IMAGE").Set(0x0028, 0x0010, "US", "").Set(0x0028, 0x0008, "IS", "");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 0);
    EXPECT_EQ(image.numberOfFrames, 0);
}

TEST_F(LeafKeys, AnImageWithoutAnIconHasNoBitmap) {
    Leaf("IMAGE");
    EXPECT_EQ(Browse<PGX_DicomDirImageNode>().icon, nullptr);
}

TEST_F(LeafKeys, AnIconOfAnImageBecomesABitmap) {
    Leaf("IMAGE").Set(0x0088, 0x0200, "SQ", IconSequence("RGB ", "abcdef"));
    EXPECT_NE(Browse<PGX_DicomDirImageNode>().icon, nullptr);
}

}  // namespace
