// The gate before the hierarchy: one test for every way a file is refused, and for their order.
#include "dicomdir/create/file_gate.h"

#include <gtest/gtest.h>

#include <string>

#include "support/captured.h"
#include "support/instance_file.h"

namespace {

using namespace pgkit_test;
using pgkit::Candidate;

constexpr char kDirectoryClass[] = "1.2.840.10008.1.3.10";

class FileGate : public testing::Test {
  protected:
    // The code that a file of this content gets.
    int Pass(const Bytes& content, const char* profile = "", bool skipChecks = false) {
        return PassPath(directory_.Write("FILE", content), profile, skipChecks);
    }
    int Pass(const InstanceFile& file, const char* profile = "", bool skipChecks = false) {
        return Pass(file.Data(), profile, skipChecks);
    }
    int PassPath(const std::string& path, const char* profile = "", bool skipChecks = false) {
        candidate_ = Candidate();
        return PassFileGate({"FILE", path.c_str()}, {.profile = profile, .skipChecks = skipChecks},
                            candidate_);
    }

    TempDir directory_;
    Candidate candidate_;
};

TEST_F(FileGate, AcceptsAnImage) {
    EXPECT_EQ(Pass(InstanceFile()), PG_ACCEPTED);
    ASSERT_NE(candidate_.dataSet, nullptr);
    EXPECT_STREQ(candidate_.sopClassUid, "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_STREQ(candidate_.instanceUid, "1.2.3.4.1");
    EXPECT_STREQ(candidate_.seriesInstanceUid, "1.2.3.4");
    EXPECT_STREQ(candidate_.studyInstanceUid, "1.2.3");
    EXPECT_STREQ(candidate_.transferSyntaxUid, "1.2.840.10008.1.2.1");
}

TEST_F(FileGate, RefusesTheNameOfADicomdirWithoutOpeningTheFile) {
    for (const char* name : {"DICOMDIR", "dicomdir", "DicomDir"}) {
        EXPECT_EQ(PassFileGate({name, "no such file"}, {}, candidate_), PG_IS_A_DICOMDIR);
    }
}

TEST_F(FileGate, LooksIntoAFileThatIsNamedSoInASubdirectory) {
    const std::string path = directory_.Write("FILE", InstanceFile().Data());
    EXPECT_EQ(PassFileGate({"SUB\\DICOMDIR", path.c_str()}, {}, candidate_), PG_ACCEPTED);
}

TEST_F(FileGate, RefusesAFileWithoutPreamble) {
    EXPECT_EQ(Pass(InstanceFile().DataWithoutPreamble()), PG_NOT_DICOM_PART_10);
    EXPECT_EQ(candidate_.dataSet, nullptr);
}

TEST_F(FileGate, RefusesAnEmptyFile) {
    EXPECT_EQ(Pass(Bytes()), PG_NOT_DICOM_PART_10);
    EXPECT_EQ(Pass(Bytes(), "", true), PG_NOT_A_DATA_SET);
}

TEST_F(FileGate, ReportsAFileThatCannotBeOpened) {
    const std::string path = directory_.Path("missing");
    int code = 0;
    const Printed printed = CapturePrinted([&] { code = PassPath(path); });
    EXPECT_EQ(code, PG_NOT_DICOM_PART_10);
    EXPECT_EQ(printed.err, "pgIsDicomFile : unable to open " + path + "\n");
    EXPECT_EQ(printed.out, "");
}

TEST_F(FileGate, DoesNotReportItWhenChecksAreSkipped) {
    int code = 0;
    const Printed printed =
        CapturePrinted([&] { code = PassPath(directory_.Path("missing"), "", true); });
    EXPECT_EQ(code, PG_NOT_A_DATA_SET);
    EXPECT_EQ(printed.err + printed.out, "");
}

TEST_F(FileGate, TakesAFileWithoutPreambleWhenChecksAreSkipped) {
    EXPECT_EQ(Pass(InstanceFile().DataWithoutPreamble(), "", true), PG_ACCEPTED);
}

TEST_F(FileGate, RefusesAFileThatEndsInItsFirstHeader) {
    StreamBuilder stream;
    stream.Preamble().U16(2).U16(0x10);
    EXPECT_EQ(Pass(stream.Data()), PG_NOT_A_DATA_SET);
}

TEST_F(FileGate, TakesTheSopClassOfTheDataSetWhereTheMetaInformationHasNone) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0002, 0x0002)), PG_ACCEPTED);
    EXPECT_STREQ(candidate_.sopClassUid, "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_EQ(Pass(InstanceFile().Set(0x0002, 0x0002, "UI", "")), PG_ACCEPTED);
    EXPECT_STREQ(candidate_.sopClassUid, "1.2.840.10008.5.1.4.1.1.2");
}

TEST_F(FileGate, PrefersTheSopClassOfTheMetaInformation) {
    EXPECT_EQ(Pass(InstanceFile().Set(0x0002, 0x0002, "UI", "1.2.3")), PG_ACCEPTED);
    EXPECT_STREQ(candidate_.sopClassUid, "1.2.3");
}

TEST_F(FileGate, RefusesAFileWithoutSopClass) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0002, 0x0002).Remove(0x0008, 0x0016)),
              PG_NOT_A_DATA_SET);
}

TEST_F(FileGate, RefusesADicomdirByItsSopClass) {
    EXPECT_EQ(Pass(InstanceFile().SopClass(kDirectoryClass)), PG_IS_A_DICOMDIR);
    EXPECT_EQ(Pass(InstanceFile().SopClass("1.2.840.10008.1.3.10.7")), PG_IS_A_DICOMDIR);
    EXPECT_EQ(Pass(InstanceFile().Set(0x0002, 0x0002, "UI", kDirectoryClass)), PG_IS_A_DICOMDIR);
    EXPECT_EQ(candidate_.dataSet, nullptr);
}

TEST_F(FileGate, BelievesTheDataSetsOwnSopClassWhenChecksAreSkipped) {
    const InstanceFile file = InstanceFile().Set(0x0002, 0x0002, "UI", kDirectoryClass);
    EXPECT_EQ(Pass(file, "", true), PG_ACCEPTED);
    EXPECT_STREQ(candidate_.sopClassUid, "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_EQ(Pass(InstanceFile(file).Remove(0x0008, 0x0016), "", true), PG_IS_A_DICOMDIR);
}

TEST_F(FileGate, RefusesAFileWithoutSopInstanceUid) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0008, 0x0018)), PG_NO_SOP_INSTANCE_UID);
    EXPECT_EQ(Pass(InstanceFile().Set(0x0008, 0x0018, "UI", "")), PG_NO_SOP_INSTANCE_UID);
}

TEST_F(FileGate, RefusesAFileWithoutStudyInstanceUid) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0020, 0x000D)), PG_NO_STUDY_INSTANCE_UID);
}

TEST_F(FileGate, RefusesAFileWithoutSeriesInstanceUid) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0020, 0x000E)), PG_NO_SERIES_INSTANCE_UID);
}

TEST_F(FileGate, AsksForTheInstanceThenTheStudyThenTheSeries) {
    InstanceFile file;
    file.Remove(0x0020, 0x000E).Remove(0x0020, 0x000D);
    EXPECT_EQ(Pass(file), PG_NO_STUDY_INSTANCE_UID);
    EXPECT_EQ(Pass(file.Remove(0x0008, 0x0018)), PG_NO_SOP_INSTANCE_UID);
}

TEST_F(FileGate, AsksForTheIdentifiersBeforeTheProfile) {
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0020, 0x000E), "STD-GEN-MIME"),
              PG_NO_SERIES_INSTANCE_UID);
}

TEST_F(FileGate, RefusesWhatTheProfileDoesNotAllow) {
    EXPECT_EQ(Pass(InstanceFile(), "STD-GEN-CD"), PG_ACCEPTED);
    EXPECT_EQ(Pass(InstanceFile(), "STD-GEN-MIME"), PG_PROFILE_REFUSES);
    EXPECT_EQ(candidate_.dataSet, nullptr);
    EXPECT_EQ(Pass(InstanceFile().TransferSyntax("1.2.840.10008.1.2.4.50"), "STD-GEN-CD"),
              PG_PROFILE_REFUSES);
}

TEST_F(FileGate, ShowsTheProfileAllThatItAsksFor) {
    EXPECT_EQ(Pass(InstanceFile(), "STD-CTMR"), PG_ACCEPTED);
    EXPECT_EQ(Pass(InstanceFile().Set(0x0008, 0x0060, "CS", "MR"), "STD-CTMR"), PG_PROFILE_REFUSES);
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0008, 0x0060), "STD-CTMR"), PG_ACCEPTED);
    EXPECT_EQ(Pass(InstanceFile().Set(0x0028, 0x0004, "CS", "RGB"), "STD-CTMR"),
              PG_PROFILE_REFUSES);
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0028, 0x0004), "STD-CTMR"), PG_PROFILE_REFUSES);
    EXPECT_EQ(Pass(InstanceFile().Remove(0x0002, 0x0010), "STD-CTMR"), PG_PROFILE_REFUSES);
}

TEST_F(FileGate, DoesNotAskTheProfileWhenChecksAreSkipped) {
    EXPECT_EQ(Pass(InstanceFile(), "STD-GEN-MIME", true), PG_ACCEPTED);
}

}  // namespace
