// The fields of every class of leaves.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/stream_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;
using pgkit_test::StreamBuilder;

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

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

// The items of a sequence: one with a code value.
std::string CodeSequence(const std::string& value) {
    StreamBuilder code;
    code.Element(0x0008, 0x0100, "SH", value);
    StreamBuilder item;
    item.Item(code.Size()).Append(code.Data());
    return std::string(item.Data().begin(), item.Data().end());
}

std::string CodeOf(PGX_Node* sequence) {
    char text[17];
    sequence->first->FindNode(0x0008, 0x0100)->GetStringValue(text, 16);
    return text;
}

TEST_F(LeafKeys, AreThoseOfTheRecord) {
    Leaf("HANGING PROTOCOL")
        .Set(0x0004, 0x1500, "CS", "dir\\File")
        .Set(0x0004, 0x1510, "UI", "1.2.840.10008.5.1.4.38.1")
        .Set(0x0004, 0x1511, "UI", "9.8.7")
        .Set(0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1")
        .Set(0x0020, 0x0013, "IS", "12")
        .Set(0x0008, 0x0005, "CS", "ISO_IR 100")
        .Set(0x07A1, 0x102B, "CS", "YES")
        .Set(0x0859, 0x1040, "DS", "123456");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_EQ(leaf.leafType, PG_LEAF_OTHER);
    EXPECT_STREQ(leaf.recordType, "HANGING PROTOCOL");
    EXPECT_STREQ(leaf.referencedFileId, "dir\\File");
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder() + "\\dir\\File"));
    EXPECT_STREQ(leaf.sopClassUid, "1.2.840.10008.5.1.4.38.1");
    EXPECT_STREQ(leaf.instanceUid, "9.8.7");
    EXPECT_STREQ(leaf.transferSyntaxUid, "1.2.840.10008.1.2.1");
    EXPECT_EQ(leaf.instanceNumber, 12);
    EXPECT_STREQ(leaf.specificCharacterSet, "ISO_IR 100");
    EXPECT_EQ(leaf.flags, 1u);
    EXPECT_EQ(leaf.referencedDataSetSize, 123456);
    EXPECT_EQ(leaf.clientFlags, 0u);
    ASSERT_NE(leaf.record, nullptr);
    EXPECT_NE(leaf.record->FindNode(0x0004, 0x1512), nullptr);
}

TEST_F(LeafKeys, MissingOnesHaveDefaults) {
    Leaf("OTHER");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.referencedFileId, "No.ReferencedFileID");
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder()) + "\\NO.REFERENCEDFILEID");
    EXPECT_STREQ(leaf.sopClassUid, "No.SOPClass.UID");
    EXPECT_STREQ(leaf.instanceUid, "");
    EXPECT_STREQ(leaf.transferSyntaxUid, "No.TransferSyntax.UID");
    EXPECT_EQ(leaf.instanceNumber, 0);
    EXPECT_STREQ(leaf.specificCharacterSet, "");
    EXPECT_EQ(leaf.flags, 0u);
    EXPECT_EQ(leaf.referencedDataSetSize, 0);
}

TEST_F(LeafKeys, EmptyOnesHaveNone) {
    Leaf("OTHER")
        .Set(0x0004, 0x1500, "CS", "")
        .Set(0x0004, 0x1510, "UI", "")
        .Set(0x0004, 0x1512, "UI", "")
        .Set(0x0020, 0x0013, "IS", "")
        .Set(0x0859, 0x1040, "DS", "");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.referencedFileId, "");
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder()) + "\\");
    EXPECT_STREQ(leaf.sopClassUid, "");
    EXPECT_STREQ(leaf.transferSyntaxUid, "");
    EXPECT_EQ(leaf.instanceNumber, 0);
    EXPECT_EQ(leaf.referencedDataSetSize, 0);
}

TEST_F(LeafKeys, AreCutToFit) {
    const std::string text(400, 'x');
    Leaf("OTHER" + std::string(60, 'T'))
        .Set(0x0004, 0x1500, "CS", text)
        .Set(0x0004, 0x1510, "UI", text)
        .Set(0x0004, 0x1511, "UI", text)
        .Set(0x0004, 0x1512, "UI", text)
        .Set(0x0008, 0x0005, "CS", text);
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.recordType, "OTHERTTTTTTTTTTT");
    EXPECT_EQ(leaf.referencedFileId, text.substr(0, 259));
    EXPECT_EQ(leaf.sopClassUid, text.substr(0, 64));
    EXPECT_EQ(leaf.instanceUid, text.substr(0, 64));
    EXPECT_EQ(leaf.transferSyntaxUid, text.substr(0, 64));
    EXPECT_EQ(leaf.specificCharacterSet, text.substr(0, 50));
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder() + "\\" + text).substr(0, 259));
}

TEST_F(LeafKeys, FileIdLosesALeadingBackslash) {
    Leaf("IMAGE").Set(0x0004, 0x1500, "CS", "\\img\\X12");
    auto& leaf = Browse<PGX_DicomDirLeafNode>();
    EXPECT_STREQ(leaf.referencedFileId, "img\\X12");
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder()) + "\\IMG\\X12");
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
    EXPECT_EQ(leaf.fullPath, Upper(browsed_->Folder()) + "\\B\xE4R\\ZZ");
}

TEST_F(LeafKeys, MarkIsToldByItsFirstLetter) {
    Leaf("IMAGE").Set(0x07A1, 0x102B, "CS", "Yellow");
    EXPECT_EQ(Browse<PGX_DicomDirLeafNode>().flags, 1u);
}

TEST_F(LeafKeys, MarkOfAnotherTextIsNone) {
    Leaf("IMAGE").Set(0x07A1, 0x102B, "CS", "y");
    EXPECT_EQ(Browse<PGX_DicomDirLeafNode>().flags, 0u);
}

TEST_F(LeafKeys, OfAnImage) {
    Leaf("IMAGE")
        .Set(0x0028, 0x0010, "US", std::string("\x00\x02", 2))
        .Set(0x0028, 0x0011, "US", std::string("\xFF\xFF", 2))
        .Set(0x0028, 0x0008, "IS", "12")
        .Set(0x0028, 0x0004, "CS", "MONOCHROME2")
        .Set(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL")
        .Set(0x0050, 0x0004, "CS", "CAMERA");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 512);
    EXPECT_EQ(image.columns, 65535);
    EXPECT_EQ(image.numberOfFrames, 12);
    EXPECT_STREQ(image.photometricInterpretation, "MONOCHROME2 ");
    EXPECT_STREQ(image.imageType, "ORIGINAL\\PRIMARY\\AXIAL");
    EXPECT_STREQ(image.calibrationImage, "CAMERA");
    EXPECT_EQ(image.icon, nullptr);
}

TEST_F(LeafKeys, OfAnImageHaveDefaults) {
    Leaf("IMAGE");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 0);
    EXPECT_EQ(image.columns, 0);
    EXPECT_EQ(image.numberOfFrames, 1);
    EXPECT_STREQ(image.photometricInterpretation, "??");
    EXPECT_STREQ(image.imageType, "");
    EXPECT_STREQ(image.calibrationImage, "");
}

TEST_F(LeafKeys, OfAnImageThatAreEmptyHaveNone) {
    Leaf("IMAGE")
        .Set(0x0028, 0x0010, "US", "")
        .Set(0x0028, 0x0008, "IS", "")
        .Set(0x0028, 0x0004, "CS", "");
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.rows, 0);
    EXPECT_EQ(image.numberOfFrames, 0);
    EXPECT_STREQ(image.photometricInterpretation, "");
}

TEST_F(LeafKeys, OfAnImageAreCutToFit) {
    const std::string text(400, 'x');
    Leaf("IMAGE")
        .Set(0x0028, 0x0004, "CS", text)
        .Set(0x0008, 0x0008, "CS", text)
        .Set(0x0050, 0x0004, "CS", text);
    auto& image = Browse<PGX_DicomDirImageNode>();
    EXPECT_EQ(image.photometricInterpretation, text.substr(0, 16));
    EXPECT_EQ(image.imageType, text.substr(0, 271));
    EXPECT_EQ(image.calibrationImage, text.substr(0, 16));
}

TEST_F(LeafKeys, OfAnImageWithAnIcon) {
    StreamBuilder icon;
    icon.Element(0x0028, 0x0004, "CS", "RGB ")
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 2)
        .ElementUS(0x0028, 0x0100, 8)
        .ElementUS(0x0028, 0x0102, 7)
        .Element(0x7FE0, 0x0010, "OB", "abcdef");
    StreamBuilder item;
    item.Item(icon.Size()).Append(icon.Data());
    Leaf("IMAGE").Set(0x0088, 0x0200, "SQ", std::string(item.Data().begin(), item.Data().end()));
    EXPECT_NE(Browse<PGX_DicomDirImageNode>().icon, nullptr);
}

TEST_F(LeafKeys, OfAReport) {
    Leaf("SR DOCUMENT")
        .Set(0x0008, 0x0023, "DA", "20200131")
        .Set(0x0008, 0x0033, "TM", "101112.123456")
        .Set(0x0040, 0xA491, "CS", "COMPLETE")
        .Set(0x0040, 0xA493, "CS", "VERIFIED")
        .Set(0x0040, 0xA030, "DT", "20200131101112.123456+0100")
        .Set(0x0040, 0xA043, "SQ", CodeSequence("CONCEPT "))
        .Set(0x0040, 0xA730, "SQ", CodeSequence("CONTENT "));
    auto& report = Browse<PGX_DicomDirReportNode>();
    EXPECT_STREQ(report.contentDate, "20200131");
    EXPECT_STREQ(report.contentTime, "101112.123456 ");
    EXPECT_STREQ(report.completionFlag, "COMPLETE");
    EXPECT_STREQ(report.verificationFlag, "VERIFIED");
    EXPECT_STREQ(report.verificationDateTime, "20200131101112.123456+0100");
    ASSERT_NE(report.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(CodeOf(report.conceptNameCodeSequence), "CONCEPT ");
    ASSERT_NE(report.contentSequence, nullptr);
    EXPECT_EQ(CodeOf(report.contentSequence), "CONTENT ");
}

TEST_F(LeafKeys, SequenceCopiesStandAlone) {
    Leaf("SR DOCUMENT")
        .Set(0x0040, 0xA043, "SQ", CodeSequence("CONCEPT "))
        .Set(0x0040, 0xA730, "SQ", CodeSequence("CONTENT "));
    auto& report = Browse<PGX_DicomDirReportNode>();
    PGX_Node* original = report.record->FindNode(0x0040, 0xA043);
    EXPECT_NE(report.conceptNameCodeSequence, original);
    EXPECT_NE(original->next, nullptr);
    EXPECT_EQ(report.conceptNameCodeSequence->next, nullptr);
    EXPECT_EQ(report.conceptNameCodeSequence->first->file, nullptr);
}

TEST_F(LeafKeys, OfAReportAreEmptyWithoutElements) {
    Leaf("SR DOCUMENT");
    auto& report = Browse<PGX_DicomDirReportNode>();
    for (const char* text : {report.contentDate, report.contentTime, report.completionFlag,
                             report.verificationFlag, report.verificationDateTime})
        EXPECT_STREQ(text, "");
    EXPECT_EQ(report.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(report.contentSequence, nullptr);
}

TEST_F(LeafKeys, OfAReportAreCutToFit) {
    const std::string text(100, 'x');
    Leaf("SR DOCUMENT")
        .Set(0x0008, 0x0023, "DA", text)
        .Set(0x0008, 0x0033, "TM", text)
        .Set(0x0040, 0xA491, "CS", text)
        .Set(0x0040, 0xA493, "CS", text)
        .Set(0x0040, 0xA030, "DT", text);
    auto& report = Browse<PGX_DicomDirReportNode>();
    EXPECT_EQ(report.contentDate, text.substr(0, 8));
    EXPECT_EQ(report.contentTime, text.substr(0, 16));
    EXPECT_EQ(report.completionFlag, text.substr(0, 16));
    EXPECT_EQ(report.verificationFlag, text.substr(0, 16));
    EXPECT_EQ(report.verificationDateTime, text.substr(0, 26));
}

TEST_F(LeafKeys, OfAKeyObject) {
    Leaf("KEY OBJECT DOC")
        .Set(0x0008, 0x0023, "DA", "20200131")
        .Set(0x0008, 0x0033, "TM", "1011")
        .Set(0x0040, 0xA043, "SQ", CodeSequence("CONCEPT "))
        .Set(0x0040, 0xA730, "SQ", CodeSequence("CONTENT "));
    auto& object = Browse<PGX_DicomDirKeyObjectNode>();
    EXPECT_STREQ(object.contentDate, "20200131");
    EXPECT_STREQ(object.contentTime, "1011");
    ASSERT_NE(object.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(CodeOf(object.conceptNameCodeSequence), "CONCEPT ");
    ASSERT_NE(object.contentSequence, nullptr);
    EXPECT_EQ(CodeOf(object.contentSequence), "CONTENT ");
}

TEST_F(LeafKeys, OfAPresentation) {
    Leaf("PRESENTATION")
        .Set(0x0070, 0x0080, "CS", "LABEL ")
        .Set(0x0070, 0x0081, "LO", "A description ")
        .Set(0x0070, 0x0082, "DA", "20200131")
        .Set(0x0070, 0x0083, "TM", "1011")
        .Set(0x0070, 0x0084, "PN", "DOE^JOHN")
        .Set(0x0008, 0x1115, "SQ", CodeSequence("SERIES"));
    auto& state = Browse<PGX_DicomDirPresentationNode>();
    EXPECT_STREQ(state.contentLabel, "LABEL ");
    EXPECT_STREQ(state.contentDescription, "A description ");
    EXPECT_STREQ(state.creationDate, "20200131");
    EXPECT_STREQ(state.creationTime, "1011");
    EXPECT_STREQ(state.contentCreatorsName, "DOE^JOHN");
    ASSERT_NE(state.referencedSeriesSequence, nullptr);
    EXPECT_EQ(CodeOf(state.referencedSeriesSequence), "SERIES");
}

TEST_F(LeafKeys, OfAPresentationAreCutToFit) {
    const std::string text(300, 'x');
    Leaf("PRESENTATION")
        .Set(0x0070, 0x0080, "CS", text)
        .Set(0x0070, 0x0081, "LO", text)
        .Set(0x0070, 0x0082, "DA", text)
        .Set(0x0070, 0x0083, "TM", text)
        .Set(0x0070, 0x0084, "PN", text);
    auto& state = Browse<PGX_DicomDirPresentationNode>();
    EXPECT_EQ(state.contentLabel, text.substr(0, 16));
    EXPECT_EQ(state.contentDescription, text.substr(0, 64));
    EXPECT_EQ(state.creationDate, text.substr(0, 8));
    EXPECT_EQ(state.creationTime, text.substr(0, 16));
    EXPECT_EQ(state.contentCreatorsName, text.substr(0, 194));
}

TEST_F(LeafKeys, OfAnEncapsulatedDocument) {
    const std::string title(1100, 't');
    Leaf("ENCAP DOC")
        .Set(0x0008, 0x0023, "DA", "20200131")
        .Set(0x0008, 0x0033, "TM", "1011")
        .Set(0x0040, 0xA043, "SQ", CodeSequence("CONCEPT "))
        .Set(0x0042, 0x0010, "ST", title)
        .Set(0x0042, 0x0012, "LO", "application/pdf ");
    auto& document = Browse<PGX_DicomDirEncapsulatedDocNode>();
    EXPECT_STREQ(document.contentDate, "20200131");
    EXPECT_STREQ(document.contentTime, "1011");
    ASSERT_NE(document.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(CodeOf(document.conceptNameCodeSequence), "CONCEPT ");
    EXPECT_EQ(document.documentTitle, title.substr(0, 1024));
    EXPECT_STREQ(document.mimeType, "application/pdf ");
}

TEST_F(LeafKeys, OfAWaveform) {
    Leaf("WAVEFORM").Set(0x0008, 0x0023, "DA", "20200131").Set(0x0008, 0x0033, "TM", "1011");
    auto& waveform = Browse<PGX_DicomDirWaveformNode>();
    EXPECT_STREQ(waveform.contentDate, "20200131");
    EXPECT_STREQ(waveform.contentTime, "1011");
}

TEST_F(LeafKeys, OfRawData) {
    Leaf("RAW DATA").Set(0x0008, 0x0023, "DA", "20200131").Set(0x0008, 0x0033, "TM", "1011");
    auto& data = Browse<PGX_DicomDirRawDataNode>();
    EXPECT_STREQ(data.contentDate, "20200131");
    EXPECT_STREQ(data.contentTime, "1011");
}

}  // namespace
