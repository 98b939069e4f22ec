// The kinds of leaves, and what each is filled with.
#include "dicomdir/create/instance_objects.h"

#include "dicomdir/create/creation_fixture.h"
#include "dicomdir/create/sop_classes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class LeafOfInstance : public HierarchyBuilding {
  protected:
    // The leaf that a file gives, which must be of this class.
    template <typename Leaf>
    Leaf& LeafOf(const InstanceFile& file) {
        PGX_DicomDirLeafNode* const leaf = Add(file).leaf;
        EXPECT_NE(leaf, nullptr);
        Leaf* const ofClass = dynamic_cast<Leaf*>(leaf);
        EXPECT_NE(ofClass, nullptr);
        return *ofClass;
    }

    int32_t TypeOf(const char* sopClass) {
        return Add(NextInstance().SopClass(sopClass)).leaf->leafType;
    }
};

InstanceFile WithContentTimes(const char* sopClass) {
    return InstanceFile()
        .SopClass(sopClass)
        .Set(0x0008, 0x0023, "DA", "20210304")
        .Set(0x0008, 0x0033, "TM", "050607");
}

StreamBuilder ConceptItem(const char* relationship, const char* value) {
    StreamBuilder item;
    item.Item().Element(0x0040, 0xA010, "CS", relationship);
    item.Element(0x0040, 0xA160, "UT", value).EndItem();
    return item;
}

TEST_F(LeafOfInstance, ChoosesTheKindByTheSopClass) {
    EXPECT_EQ(TypeOf("1.2.840.10008.5.1.4.1.1.2"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf(kReport), PG_LEAF_REPORT);
    EXPECT_EQ(TypeOf(kKeyObject), PG_LEAF_KEY_OBJECT);
    EXPECT_EQ(TypeOf(kPresentation), PG_LEAF_PRESENTATION);
    EXPECT_EQ(TypeOf(kWaveform), PG_LEAF_WAVEFORM);
    EXPECT_EQ(TypeOf(kPdf), PG_LEAF_ENCAPSULATED_DOC);
    EXPECT_EQ(TypeOf(kRawData), PG_LEAF_RAW_DATA);
}

TEST_F(LeafOfInstance, TakesEverythingElseForAnImage) {
    EXPECT_EQ(TypeOf(kSpectroscopy), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("1.2.840.10008.5.1.4.1.1.11.2"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("1.2.840.10008.5.1.4.1.1.481.5"), PG_LEAF_IMAGE);
    EXPECT_EQ(TypeOf("1.2.3"), PG_LEAF_IMAGE);
}

TEST_F(LeafOfInstance, FillsWhatAllLeavesHave) {
    const std::string path = directory_.Write("FILE", InstanceFile().InstanceNumber(-12).Data());
    const auto& leaf = *Builder().Add({"SUB\\image", path.c_str()}).leaf;
    EXPECT_EQ(leaf.instanceNumber, -12);
    EXPECT_EQ(leaf.fullPath, path);
    EXPECT_STREQ(leaf.referencedFileId, "SUB\\image");
    EXPECT_STREQ(leaf.instanceUid, "1.2.3.4.1");
    EXPECT_STREQ(leaf.sopClassUid, "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_STREQ(leaf.transferSyntaxUid, "1.2.840.10008.1.2.1");
    EXPECT_EQ(leaf.record, nullptr);
    EXPECT_EQ(leaf.clientData, nullptr);
}

TEST_F(LeafOfInstance, TakesTheSopClassThatTheGateChose) {
    EXPECT_STREQ(Add(InstanceFile().Set(0x0002, 0x0002, "UI", kRawData)).leaf->sopClassUid,
                 kRawData);
}

TEST_F(LeafOfInstance, StoresTheFileSizeOnDemandOnly) {
    EXPECT_EQ(Add(InstanceFile()).leaf->referencedDataSetSize, 0);
    StartAnew();
    options_.storeFileSize = 1;
    const InstanceFile file = InstanceFile().Instance("2");
    EXPECT_EQ(Add(file).leaf->referencedDataSetSize, static_cast<int32_t>(file.Data().size()));
}

TEST_F(LeafOfInstance, FillsImages) {
    const auto& image =
        LeafOf<PGX_DicomDirImageNode>(InstanceFile()
                                          .SetUS(0x0028, 0x0010, 512)
                                          .SetUS(0x0028, 0x0011, 65535)
                                          .Set(0x0028, 0x0008, "IS", "30")
                                          .Set(0x0008, 0x0008, "CS", "ORIGINAL\\PRIMARY\\AXIAL")
                                          .Set(0x0050, 0x0004, "CS", "CAMERA"));
    EXPECT_EQ(image.rows, 512);
    EXPECT_EQ(image.columns, 65535);
    EXPECT_EQ(image.numberOfFrames, 30);
    EXPECT_STREQ(image.imageType, "ORIGINAL\\PRIMARY\\AXIAL");
    EXPECT_STREQ(image.calibrationImage, "CAMERA");
    EXPECT_EQ(image.icon, nullptr);
}

TEST_F(LeafOfInstance, CountsAnImageWithoutNumberOfFramesAsOneFrame) {
    EXPECT_EQ(LeafOf<PGX_DicomDirImageNode>(InstanceFile()).numberOfFrames, 1);
}

TEST_F(LeafOfInstance, FillsReports) {
    const auto& report =
        LeafOf<PGX_DicomDirReportNode>(WithContentTimes(kReport)
                                           .Set(0x0040, 0xA491, "CS", "COMPLETE")
                                           .Set(0x0040, 0xA493, "CS", "UNVERIFIED"));
    EXPECT_STREQ(report.completionFlag, "COMPLETE");
    EXPECT_STREQ(report.verificationFlag, "UNVERIFIED");
    EXPECT_STREQ(report.contentDate, "20210304");
    EXPECT_STREQ(report.contentTime, "050607");
    EXPECT_EQ(report.conceptNameCodeSequence, nullptr);
    EXPECT_EQ(report.contentSequence, nullptr);
}

InstanceFile ReportWithObservers(const char* verificationFlag) {
    StreamBuilder observers;
    for (const char* time : {"20200102030405", "20210101000000", "20190101000000"})
        observers.Item().Element(0x0040, 0xA030, "DT", time).EndItem();
    return WithContentTimes(kReport)
        .SetSequence(0x0040, 0xA073, observers)
        .Set(0x0040, 0xA493, "CS", verificationFlag);
}

TEST_F(LeafOfInstance, TakesTheLatestVerificationOfAReport) {
    EXPECT_STREQ(
        LeafOf<PGX_DicomDirReportNode>(ReportWithObservers("VERIFIED")).verificationDateTime,
        "20210101000000");
}

TEST_F(LeafOfInstance, TakesNoVerificationOfAReportThatIsNotVerified) {
    EXPECT_STREQ(
        LeafOf<PGX_DicomDirReportNode>(ReportWithObservers("UNVERIFIED")).verificationDateTime, "");
}

StreamBuilder CodeSequence() {
    StreamBuilder code;
    return code.Item().Element(0x0008, 0x0100, "SH", "121070").EndItem();
}

StreamBuilder ContentWithModifiers() {
    StreamBuilder content;
    content.Append(ConceptItem("HAS CONCEPT MOD ", "first ").Data());
    content.Append(ConceptItem("CONTAINS", "other ").Data());
    content.Append(ConceptItem("HAS CONCEPT MOD ", "second").Data());
    return content;
}

TEST_F(LeafOfInstance, CopiesTheConceptNameAndItsModifiers) {
    for (const char* sopClass : {kReport, kKeyObject}) {
        const auto added = Add(NextInstance()
                                   .SopClass(sopClass)
                                   .SetSequence(0x0040, 0xA043, CodeSequence())
                                   .SetSequence(0x0040, 0xA730, ContentWithModifiers()));
        const auto* report = dynamic_cast<PGX_DicomDirReportNode*>(added.leaf);
        const auto* object = dynamic_cast<PGX_DicomDirKeyObjectNode*>(added.leaf);
        ASSERT_TRUE(report != nullptr || object != nullptr);
        PGX_Node* const name =
            report != nullptr ? report->conceptNameCodeSequence : object->conceptNameCodeSequence;
        PGX_Node* const content =
            report != nullptr ? report->contentSequence : object->contentSequence;
        ASSERT_NE(name, nullptr);
        EXPECT_EQ(TextOf(Child(name->first, 0x0008, 0x0100)), "121070");
        ASSERT_NE(content, nullptr);
        EXPECT_EQ(content->group, 0x0040);
        EXPECT_EQ(content->element, 0xA730);
        EXPECT_EQ(TextOf(Child(content->first, 0x0040, 0xA160)), "first ");
        EXPECT_EQ(TextOf(Child(content->first->next, 0x0040, 0xA160)), "second");
        EXPECT_EQ(content->first->next->next, nullptr);
    }
}

TEST_F(LeafOfInstance, CopiesNoContentWithoutModifiers) {
    EXPECT_EQ(
        LeafOf<PGX_DicomDirKeyObjectNode>(
            WithContentTimes(kKeyObject).SetSequence(0x0040, 0xA730, ConceptItem("CONTAINS", "x ")))
            .contentSequence,
        nullptr);
}

TEST_F(LeafOfInstance, KeepsCopiesWhenTheFileIsClosed) {
    const auto& report = LeafOf<PGX_DicomDirReportNode>(WithContentTimes(kReport).SetSequence(
        0x0040, 0xA730, ConceptItem("HAS CONCEPT MOD ", std::string(300, 'x').c_str())));
    ASSERT_NE(report.contentSequence, nullptr);
    EXPECT_EQ(TextOf(Child(report.contentSequence->first, 0x0040, 0xA160)), std::string(300, 'x'));
}

// A report whose concept name, a code and a text, ends so many bytes before its end.
class CutConceptName : public LeafOfInstance {
  protected:
    PGX_Node* CopyOf(const std::string& name, size_t missing) {
        StreamBuilder item;
        item.Item().Element(0x0008, 0x0100, "SH", "A1").Element(0x0040, 0xA160, "UT", name);
        Bytes bytes = WithContentTimes(kReport).SetSequence(0x0040, 0xA043, item).Data();
        bytes.resize(bytes.size() - missing);
        const std::string path = directory_.Write("FILE", bytes);
        const auto added = Builder().Add({"FILE", path.c_str()});
        EXPECT_EQ(added.code, PG_ACCEPTED);
        return static_cast<PGX_DicomDirReportNode*>(added.leaf)->conceptNameCodeSequence;
    }
};

// What is missing was copied as zeros, which nobody had written.
TEST_F(CutConceptName, IsCopiedWithoutTheValueThatIsNotThereInFull) {
    for (const size_t size : {30u, 300u, 70000u}) {
        PGX_Node* const copy = CopyOf(std::string(size, 'x'), 20);
        ASSERT_NE(copy, nullptr) << size;
        EXPECT_EQ(Tags(copy->first), "0008,0100") << size;
        pgEmptyPatientList(&patients_);
        StartAnew();
    }
}

TEST_F(CutConceptName, MayLackTheByteThatMakesItsLengthEven) {
    for (const size_t size : {30u, 300u}) {
        PGX_Node* const copy = CopyOf(std::string(size, 'x'), 1);
        ASSERT_NE(copy, nullptr) << size;
        EXPECT_EQ(TextOf(Child(copy->first, 0x0040, 0xA160)), std::string(size - 1, 'x') + '\0');
        pgEmptyPatientList(&patients_);
        StartAnew();
    }
}

TEST_F(CutConceptName, IsNotCopiedWhenNothingOfItIsThere) {
    EXPECT_EQ(CopyOf(std::string(70000, 'x'), 70014), nullptr);
}

// One such file would make the DICOMDIR of all of them fail, or unreadable.
TEST_F(LeafOfInstance, CopiesNoSequenceWithAValueThatHasNoEnd) {
    StreamBuilder item;
    item.Item().Header(0x0009, 0x1001, "UL", kUndefined);
    const auto& report =
        LeafOf<PGX_DicomDirReportNode>(WithContentTimes(kReport).SetSequence(0x0040, 0xA043, item));
    EXPECT_EQ(report.conceptNameCodeSequence, nullptr);
}

TEST_F(LeafOfInstance, CopiesNoSequenceWithAValueThatIsTooLongForItsVr) {
    StreamBuilder implicit(VrMode::Implicit);
    implicit.Part10("1.2.840.10008.1.2").Element(0x0008, 0x0016, "UI", PaddedUid(kReport));
    implicit.Element(0x0008, 0x0018, "UI", "1.9 ").Element(0x0020, 0x000D, "UI", "1.8 ");
    implicit.Element(0x0020, 0x000E, "UI", "1.7 ").Sequence(0x0040, 0xA043).Item();
    implicit.Element(0x0008, 0x0104, "LO", std::string(70000, 'm')).EndItem().EndSequence();
    const std::string path = directory_.Write("LONG", implicit.Data());
    const auto added = Builder().Add({"LONG", path.c_str()});
    ASSERT_EQ(added.code, PG_ACCEPTED);
    EXPECT_EQ(static_cast<PGX_DicomDirReportNode*>(added.leaf)->conceptNameCodeSequence, nullptr);
}

TEST_F(LeafOfInstance, FillsKeyObjects) {
    const auto& object = LeafOf<PGX_DicomDirKeyObjectNode>(WithContentTimes(kKeyObject));
    EXPECT_STREQ(object.contentDate, "20210304");
    EXPECT_STREQ(object.contentTime, "050607");
}

TEST_F(LeafOfInstance, FillsPresentationStates) {
    StreamBuilder series;
    series.Item().Element(0x0020, 0x000E, "UI", PaddedUid("1.2.3.4")).EndItem();
    const auto& state =
        LeafOf<PGX_DicomDirPresentationNode>(InstanceFile()
                                                 .SopClass(kPresentation)
                                                 .Set(0x0070, 0x0082, "DA", "20210304")
                                                 .Set(0x0070, 0x0083, "TM", "050607")
                                                 .Set(0x0070, 0x0084, "PN", "CREATOR^C ")
                                                 .Set(0x0070, 0x0080, "CS", "LABEL1")
                                                 .Set(0x0070, 0x0081, "LO", "Shown so")
                                                 .SetSequence(0x0008, 0x1115, series));
    EXPECT_STREQ(state.creationDate, "20210304");
    EXPECT_STREQ(state.creationTime, "050607");
    EXPECT_STREQ(state.contentCreatorsName, "CREATOR^C ");
    EXPECT_STREQ(state.contentLabel, "LABEL1");
    EXPECT_STREQ(state.contentDescription, "Shown so");
    ASSERT_NE(state.referencedSeriesSequence, nullptr);
    EXPECT_EQ(TextOf(Child(state.referencedSeriesSequence->first, 0x0020, 0x000E)).substr(0, 7),
              "1.2.3.4");
}

TEST_F(LeafOfInstance, FillsWaveforms) {
    const auto& waveform = LeafOf<PGX_DicomDirWaveformNode>(WithContentTimes(kWaveform));
    EXPECT_STREQ(waveform.contentDate, "20210304");
    EXPECT_STREQ(waveform.contentTime, "050607");
}

TEST_F(LeafOfInstance, FillsEncapsulatedDocuments) {
    const auto& document =
        LeafOf<PGX_DicomDirEncapsulatedDocNode>(WithContentTimes(kPdf)
                                                    .Set(0x0042, 0x0010, "ST", "Title!")
                                                    .Set(0x0042, 0x0012, "LO", "application/pdf ")
                                                    .SetSequence(0x0040, 0xA043, CodeSequence()));
    EXPECT_STREQ(document.contentDate, "20210304");
    EXPECT_STREQ(document.contentTime, "050607");
    EXPECT_STREQ(document.documentTitle, "Title!");
    EXPECT_STREQ(document.mimeType, "application/pdf ");
    ASSERT_NE(document.conceptNameCodeSequence, nullptr);
}

TEST_F(LeafOfInstance, FillsRawData) {
    const auto& data = LeafOf<PGX_DicomDirRawDataNode>(WithContentTimes(kRawData));
    EXPECT_STREQ(data.contentDate, "20210304");
    EXPECT_STREQ(data.contentTime, "050607");
}

// The copy has its numbers in host order, whatever the file had: written again they are the same.
TEST_F(LeafOfInstance, CopiesNumbersOfABigEndianFile) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Part10("1.2.840.10008.1.2.2");
    stream.Element(0x0008, 0x0016, "UI", PaddedUid(kPresentation));
    stream.Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3"));
    stream.Sequence(0x0008, 0x1115).Item().ElementUS(0x0028, 0x0010, 0x0102);
    stream.EndItem().EndSequence();
    stream.Element(0x0020, 0x000D, "UI", PaddedUid("1.2"));
    stream.Element(0x0020, 0x000E, "UI", PaddedUid("1.3"));
    const std::string path = directory_.Write("FILE", stream.Data());
    const auto added = Builder().Add({"FILE", path.c_str()});
    ASSERT_EQ(added.code, PG_ACCEPTED);
    PGX_Node* const sequence =
        static_cast<PGX_DicomDirPresentationNode*>(added.leaf)->referencedSeriesSequence;
    ASSERT_NE(sequence, nullptr);
    EXPECT_EQ(Child(sequence->first, 0x0028, 0x0010)->GetUSValue(), 0x0102);
}

}  // namespace
