// pgtool verify: a test for each kind of finding, hostile links, repair.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/directory_builder.h"
#include "support/host_system.h"
#include "support/instance_file.h"
#include "support/mutation.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

// The records of the medium, in the order of the file. Findings count from 1.
enum Record : size_t { kPatient, kStudy, kSeries, kImage1, kImage2 };

// A record has what its type demands.
void Complete(DirectoryRecordSpec& record) {
    record.Set(0x0004, 0x1410, "US", "\xFF\xFF");
    const std::string type = record.keys[0x00041430].value;
    if (type.starts_with("STUDY")) {
        record.Set(0x0008, 0x0020, "DA", "20240101")
            .Set(0x0008, 0x0030, "TM", "1200")
            .Set(0x0020, 0x0010, "SH", "S1");
    }
    if (type.starts_with("SERIES")) record.Set(0x0020, 0x0011, "IS", "1");
    if (type.starts_with("IMAGE")) record.Set(0x0004, 0x1512, "UI", "1.2.840.10008.1.2.1");
}

class PgtoolVerify : public testing::Test {
  protected:
    PgtoolVerify() {
        fs::create_directories(files_.Path("M/IMG"));
        directory_.hasAllHeadKeys = true;
        const size_t patient = directory_.Patient("ID1", "DOE^JOHN");
        const size_t study = directory_.Study(patient, "1.2.3");
        const size_t series = directory_.Series(study, "1.2.3.4", "CT");
        directory_.Image(series, "1.2.3.4.1", 1, "IMG\\X1");
        directory_.Image(series, "1.2.3.4.2", 2, "IMG\\X2");
        for (size_t i = 0; i < directory_.Count(); ++i)
            Complete(directory_[i]);
        WriteImage("IMG/X1", 1);
        WriteImage("IMG/X2", 2);
    }

    static InstanceFile Image(int number) {
        return InstanceFile().Instance("1.2.3.4." + std::to_string(number)).InstanceNumber(number);
    }
    void WriteImage(const std::string& name, int number) {
        files_.Write("M/" + name, Image(number).Data());
    }
    std::string Medium() const { return files_.Path("M"); }

    Finished Run(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"verify", Medium()});
        return Pgtool(options);
    }
    // What is found when the medium has the directory as it stands in directory_.
    std::string Found(const std::vector<std::string>& options = {}) {
        files_.Write("M/DICOMDIR", directory_.Build());
        const Finished run = Run(options);
        EXPECT_EQ(run.exitStatus, run.out.empty() ? 0 : 1) << run.err;
        return run.out;
    }
    std::string At(size_t record, const std::string& type = "IMAGE") const {
        return "record " + std::to_string(record + 1) + " (" + type + " at " +
               std::to_string(directory_.OffsetOf(record)) + "): ";
    }
    void Link(const std::string& target, const std::string& name) {
        std::error_code error;
        fs::create_symlink(target, files_.Path("M/" + name), error);
        if (error) GTEST_SKIP() << "there are no links here";
    }

    TempDir files_;
    DirectoryBuilder directory_;
};

TEST_F(PgtoolVerify, FindsNothingOnASoundMedium) {
    EXPECT_EQ(Found(), "");
    const Finished run = Run();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "pgtool verify: 5 records, 2 files: no findings\n");
    EXPECT_EQ(Pgtool({"verify", Medium() + "/DICOMDIR"}).exitStatus, 0);
}

TEST_F(PgtoolVerify, FindsFilesInWhateverCaseTheyAreShown) {
    fs::rename(files_.Path("M/IMG"), files_.Path("M/img"));
    fs::rename(files_.Path("M/img/X1"), files_.Path("M/img/x1"));
    EXPECT_EQ(Found(), "");
    fs::rename(files_.Path("M/DICOMDIR"), files_.Path("M/dicomdir"));
    EXPECT_EQ(Run().exitStatus, 0);
}

// ---- The directory as a whole -------------------------------------------------------------------

TEST_F(PgtoolVerify, TellsThatThereIsNoDicomdir) {
    EXPECT_THAT(Run().out, StartsWith("DICOMDIR: there is none\nIMG/X1: no record refers to it\n"));
    files_.Write("M/DICOMDIR", "no DICOM file");
    EXPECT_THAT(Run().out, StartsWith("DICOMDIR: cannot open "));
    files_.Write("M/DICOMDIR", Image(1).Data());
    EXPECT_THAT(Run().out, AllOf(StartsWith("DICOMDIR: "), HasSubstr(" is not a DICOMDIR\n")));
    EXPECT_EQ(Run().exitStatus, 1);
}

TEST_F(PgtoolVerify, TellsThatTheMediumIsMissing) {
    const Finished run = Pgtool({"verify", files_.Path("nothing")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, EndsWith("nothing: no such file\n"));
}

TEST_F(PgtoolVerify, TellsThatTheDicomdirIsCutShort) {
    Bytes bytes = directory_.Build();
    bytes.resize(bytes.size() - 30);
    files_.Write("M/DICOMDIR", bytes);
    EXPECT_THAT(Run().out, AllOf(StartsWith("DICOMDIR: "), HasSubstr("it is cut short at byte ")));
}

TEST_F(PgtoolVerify, ChecksTheHead) {
    directory_.hasAllHeadKeys = false;
    EXPECT_THAT(Found(),
                AllOf(HasSubstr("DICOMDIR: (0004,1202) "), HasSubstr(" is missing\n"),
                      HasSubstr("DICOMDIR: (0004,1212) FileSetConsistencyFlag is missing\n")));
    directory_.hasAllHeadKeys = true;
    directory_.consistencyFlag = 0xFFFF;
    EXPECT_EQ(Found(),
              "DICOMDIR: (0004,1212) FileSetConsistencyFlag says that something is wrong\n");
}

TEST_F(PgtoolVerify, ChecksTheTransferSyntaxOfTheDicomdir) {
    files_.Write("M/DICOMDIR", directory_.Build());
    Pgtool({"save", Medium() + "/DICOMDIR", files_.Path("other"), "--mode", "implicit-le"});
    fs::rename(files_.Path("other"), files_.Path("M/DICOMDIR"));
    EXPECT_THAT(Run().out, StartsWith("DICOMDIR: its transfer syntax is 1.2.840.10008.1.2, not "
                                      "Explicit VR Little Endian\n"));
}

// ---- Links --------------------------------------------------------------------------------------

TEST_F(PgtoolVerify, LinksLeadToRecords) {
    directory_[kImage2].nextOffset = directory_.OffsetOf(kImage1) + 2;
    EXPECT_THAT(Found(), AllOf(StartsWith(At(kImage2) + "(0004,1400) "),
                               EndsWith(", where no record begins\n")));
    directory_[kImage2].nextOffset = 0x7FFFFFF0;
    EXPECT_THAT(Found(), EndsWith(" is 2147483632, behind the last record\n"));
    directory_[kImage2].nextOffset.reset();
    directory_[kImage2].lowerOffset = 5;
    EXPECT_THAT(Found(), AllOf(StartsWith(At(kImage2) + "(0004,1420) "),
                               EndsWith(" is 5, where no record begins\n")));
}

TEST_F(PgtoolVerify, TheFirstAndTheLastRecordOfTheRootAreRight) {
    directory_.rootOffset = 12;
    EXPECT_THAT(Found(), AllOf(HasSubstr("DICOMDIR: (0004,1200) "),
                               HasSubstr(" is 12, where no record begins\n"),
                               HasSubstr(At(kPatient, "PATIENT") + "no link leads to it\n")));
    directory_.rootOffset.reset();
    directory_.lastRootOffset = 12;
    EXPECT_THAT(Found(), AllOf(StartsWith("DICOMDIR: (0004,1202) "),
                               EndsWith(" is 12, where no record begins\n")));
    directory_.lastRootOffset = directory_.OffsetOf(kStudy);
    EXPECT_THAT(Found(),
                EndsWith(" leads to record 2, but the last one of the root is record 1\n"));
    directory_.lastRootOffset = 0;
    EXPECT_THAT(Found(), EndsWith(" leads nowhere, but the last one of the root is record 1\n"));
}

TEST_F(PgtoolVerify, LinksCloseNoCircle) {
    directory_[kImage2].next = kImage1;
    EXPECT_THAT(Found(), AllOf(StartsWith(At(kImage2)),
                               EndsWith(" leads to record 4, from which it comes\n")));
    directory_[kImage2].next.reset();
    directory_[kImage2].lower = kPatient;
    EXPECT_THAT(Found(), EndsWith(" leads to record 1, from which it comes\n"));
}

TEST_F(PgtoolVerify, EachRecordIsReachedOnce) {
    const size_t series = directory_.Series(kStudy, "1.2.3.5", "CT");
    Complete(directory_[series]);
    directory_[series].lower = kImage2;
    EXPECT_EQ(Found(),
              At(series, "SERIES") +
                  "(0004,1420) OffsetOfReferencedLowerLevelDirectoryEntity leads to record "
                  "5, to which another one leads, too\n");
    directory_[series].lower.reset();
    directory_[kImage1].next.reset();
    EXPECT_EQ(Found(), At(kImage2) + "no link leads to it\n");
}

// What nothing leads to may be led to once the directory is mended.
TEST_F(PgtoolVerify, LinksOfRecordsThatNothingLeadsToAreFollowed) {
    directory_.rootOffset = 0;
    directory_.lastRootOffset = 0;
    directory_[kImage1].lowerOffset = 5;
    directory_[kImage2].next = kImage2;
    const std::string found = Found();
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), 7) << found;
    EXPECT_THAT(found, HasSubstr(At(kSeries, "SERIES") + "no link leads to it\n"));
    EXPECT_THAT(found, HasSubstr(" is 5, where no record begins\n"));
    EXPECT_THAT(found, HasSubstr(" leads to record 5, from which it comes\n"));
    // The records above are known: the files are held against them.
    files_.Write("M/IMG/X2", Image(2).Study("1.9").Data());
    EXPECT_THAT(Found(), HasSubstr("StudyInstanceUID 1.9, not 1.2.3\n"));
}

// A browse of such a directory visits each record a thousand times.
TEST_F(PgtoolVerify, ManySharedAndCircularLinksTakeNoTime) {
    for (int i = 0; i < 3000; ++i) {
        const size_t series = directory_.Series(kStudy, "1.2.3.5." + std::to_string(i), "CT");
        Complete(directory_[series]);
        directory_[series].lower = i % 2 == 0 ? kSeries : series;
    }
    const std::string found = Found();
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), 3000);
    EXPECT_THAT(found, HasSubstr(" from which it comes\n"));
}

TEST_F(PgtoolVerify, DeeplyNestedRecordsTakeNoStack) {
    size_t above = kImage2;
    for (int i = 0; i < 5000; ++i) {
        above = directory_.Child(above, "PRIVATE");
        directory_[above].Set(0x0004, 0x1410, "US", "\xFF\xFF").Set(0x0004, 0x1432, "UI", "1.2.9");
    }
    EXPECT_EQ(Found(), "");
}

TEST_F(PgtoolVerify, BrokenDirectoriesEndInFindings) {
    const Bytes sound = directory_.Build();
    Mutator mutator(1);
    for (int i = 0; i < 40; ++i) {
        files_.Write("M/DICOMDIR", mutator.Mutate(sound));
        const Finished run = Run();
        EXPECT_EQ(run.exitStatus, run.out.empty() ? 0 : 1) << i << ": " << run.err;
        EXPECT_THAT(run.err, StartsWith("pgtool verify: ")) << i;
    }
}

TEST_F(PgtoolVerify, InUseFlagsAreOneOrTheOther) {
    directory_[kImage2].Set(0x0004, 0x1410, "US", "\x34\x12");
    EXPECT_EQ(Found(), At(kImage2) + "(0004,1410) RecordInUseFlag is 4660, neither 0 nor 65535\n");
}

TEST_F(PgtoolVerify, RecordsThatAreNotInUseClaimNothing) {
    directory_[kImage2].Set(0x0004, 0x1410, "US", std::string("\0\0", 2)).Remove(0x0020, 0x0013);
    EXPECT_EQ(Found(), "IMG/X2: no record refers to it\n");
    directory_[kImage1].next.reset();
    fs::remove(files_.Path("M/IMG/X2"));
    EXPECT_EQ(Found(), "");
}

// ---- Records ------------------------------------------------------------------------------------

TEST_F(PgtoolVerify, KeysOfType1AreThere) {
    directory_[kPatient].Set(0x0010, 0x0020, "LO", "");
    directory_[kStudy].Remove(0x0008, 0x0020).Set(0x0020, 0x0010, "SH", "  ");
    directory_[kSeries].Remove(0x0020, 0x0011);
    directory_[kImage1].Remove(0x0020, 0x0013).Remove(0x0004, 0x1512);
    directory_[kImage2].hasLower = false;
    EXPECT_EQ(Found(), At(kPatient, "PATIENT") + "(0010,0020) PatientID is empty\n" +
                           At(kStudy, "STUDY") + "(0008,0020) StudyDate is missing\n" +
                           At(kStudy, "STUDY") + "(0020,0010) StudyID is empty\n" +
                           At(kSeries, "SERIES") + "(0020,0011) SeriesNumber is missing\n" +
                           At(kImage1) + "(0020,0013) InstanceNumber is missing\n" + At(kImage1) +
                           "(0004,1512) ReferencedTransferSyntaxUIDInFile is missing\n" +
                           At(kImage2) +
                           "(0004,1420) OffsetOfReferencedLowerLevelDirectoryEntity is missing\n");
}

TEST_F(PgtoolVerify, KeysOfType1DependOnTheType) {
    directory_[kImage2]
        .Set(0x0004, 0x1430, "CS", "SR DOCUMENT")
        .Set(0x0008, 0x0023, "DA", "20240101");
    const std::string found = Found();
    for (const char* key :
         {"(0008,0033) ContentTime", "(0040,A491) CompletionFlag", "(0040,A493) VerificationFlag",
          "(0040,A043) ConceptNameCodeSequence"}) {
        EXPECT_THAT(found, HasSubstr(At(kImage2, "SR DOCUMENT") + key + " is missing\n"));
    }
    EXPECT_THAT(found, Not(HasSubstr("ContentDate")));
}

TEST_F(PgtoolVerify, RecordsHaveAKnownTypeInItsPlace) {
    directory_[kImage2].Set(0x0004, 0x1430, "CS", "FOO");
    EXPECT_EQ(Found(), At(kImage2, "FOO") + "its type is unknown\n");
    directory_[kImage2].Set(0x0004, 0x1430, "CS", "PALETTE").Set(0x0070, 0x0080, "CS", "X");
    EXPECT_EQ(Found(), At(kImage2, "PALETTE") + "it is not at the root\n");
    directory_[kImage2].Set(0x0004, 0x1430, "CS", "IMAGE");
    directory_[kSeries].lower.reset();
    directory_[kStudy].lower = kImage1;
    directory_[kImage2].next = kSeries;
    EXPECT_THAT(Found(),
                HasSubstr(At(kImage1) + "it is below a record of type STUDY, not below one "
                                        "of type SERIES\n"));
    directory_[kImage2].Remove(0x0004, 0x1430);
    EXPECT_THAT(Found(),
                HasSubstr(At(kImage2, "no type") + "(0004,1430) DirectoryRecordType is missing\n"));
}

TEST_F(PgtoolVerify, FileIdsConform) {
    const auto complaint = [&](const std::string& fileId) {
        directory_[kImage2].Set(0x0004, 0x1500, "CS", fileId);
        const std::string found = Found();
        const size_t begin = found.find("): ") + 3;
        return found.substr(begin, found.find('\n') - begin);
    };
    EXPECT_EQ(complaint("IMG\\x2"),
              "\"x2\" is no component of a File ID (up to 8 of A-Z, 0-9 and _)");
    EXPECT_THAT(complaint("IMG\\LONGERTHAN8"), StartsWith("\"LONGERTHAN8\" is no component"));
    EXPECT_THAT(complaint("IMG\\X2.DCM"), StartsWith("\"X2.DCM\" is no component"));
    EXPECT_THAT(complaint("IMG \\X2"), StartsWith("\"IMG \" is no component"));
    EXPECT_EQ(complaint("\\IMG\\X2"), "its File ID has an empty component");
    EXPECT_EQ(complaint("A\\B\\C\\D\\E\\F\\G\\H\\I"), "its File ID has 9 components, more than 8");
    EXPECT_EQ(complaint("IMG"), "its file IMG is missing");  // odd, filled with a blank
}

TEST_F(PgtoolVerify, OnePatientStudySeriesAndInstanceHaveOneRecord) {
    const size_t patient = directory_.Patient("ID1", "DOE^JOHN");
    const size_t study = directory_.Study(patient, "1.2.3");
    const size_t series = directory_.Series(study, "1.2.3.4", "CT");
    const size_t image = directory_.Image(series, "1.2.3.4.1", 1, "IMG\\X3");
    for (const size_t record : {patient, study, series, image})
        Complete(directory_[record]);
    WriteImage("IMG/X3", 1);
    EXPECT_EQ(Found(), At(patient, "PATIENT") + "record 1 is of the same patient already\n" +
                           At(study, "STUDY") + "record 2 is of the same study already\n" +
                           At(series, "SERIES") + "record 3 is of the same series already\n" +
                           At(image) + "record 4 is of the same instance already\n");
}

TEST_F(PgtoolVerify, TwoRecordsHaveTwoFiles) {
    directory_[kImage2].Set(0x0004, 0x1500, "CS", "IMG\\X1");
    fs::remove(files_.Path("M/IMG/X2"));
    EXPECT_EQ(Found(), At(kImage2) + "record 4 refers to IMG/X1 already\n");
}

// ---- Files --------------------------------------------------------------------------------------

TEST_F(PgtoolVerify, FilesAreThere) {
    fs::remove(files_.Path("M/IMG/X2"));
    EXPECT_EQ(Found(), At(kImage2) + "its file IMG\\X2 is missing\n");
    fs::create_directory(files_.Path("M/IMG/X2"));
    EXPECT_EQ(Found(), At(kImage2) + "its file IMG\\X2 is missing\n");
    directory_[kImage2].Remove(0x0004, 0x1500);
    EXPECT_EQ(Found(), At(kImage2) + "(0004,1500) ReferencedFileID is missing: it has no file\n");
}

TEST_F(PgtoolVerify, FilesAreOnTheMedium) {
    files_.Write("OUTSIDE", Image(2).Data());
    fs::remove(files_.Path("M/IMG/X2"));
    for (const char* id : {"..\\OUTSIDE", "IMG\\..\\..\\OUTSIDE", "C:\\OUTSIDE", "/ETC/PASSWD"}) {
        directory_[kImage2].Set(0x0004, 0x1500, "CS", id);
        EXPECT_THAT(Found(),
                    EndsWith(At(kImage2) + "its file " + id + " leads out of the medium\n"));
    }
}

TEST_F(PgtoolVerify, LinksLeadingOutOfTheMediumAreNotFollowed) {
    fs::create_directory(files_.Path("OUTSIDE"));
    files_.Write("OUTSIDE/X2", Image(7).Data());  // another instance, which nobody shall notice
    fs::remove(files_.Path("M/IMG/X2"));
    Link(files_.Path("OUTSIDE/X2"), "IMG/X2");
    Link("../OUTSIDE", "UNUSED");
    if (IsSkipped()) return;
    EXPECT_EQ(Found(), At(kImage2) +
                           "its file IMG\\X2 leads out of the medium\n"
                           "UNUSED: the link leads out of the medium\n"
                           "IMG/X2: the link leads out of the medium\n");
    fs::remove(files_.Path("M/IMG/X2"));
    directory_[kImage2].Set(0x0004, 0x1500, "CS", "UNUSED\\X2");
    EXPECT_EQ(Found(), At(kImage2) +
                           "its file UNUSED\\X2 leads out of the medium\n"
                           "UNUSED: the link leads out of the medium\n");
}

TEST_F(PgtoolVerify, ADicomdirThatIsALinkOutOfTheMediumIsNeitherReadNorReplaced) {
    const Bytes bytes = directory_.Build();
    const std::string outside = files_.Write("OUTSIDE", bytes);
    Link(outside, "DICOMDIR");
    if (IsSkipped()) return;
    EXPECT_THAT(Run().out, StartsWith("DICOMDIR: it is a link that leads out of the medium\n"));
    const Finished repair = Run({"--repair"});
    EXPECT_EQ(repair.exitStatus, 1);
    EXPECT_THAT(repair.err, HasSubstr("not repaired"));
    EXPECT_EQ(ReadFile(outside), bytes);
}

TEST_F(PgtoolVerify, LinksOnTheMediumAreFollowed) {
    fs::rename(files_.Path("M/IMG/X2"), files_.Path("M/IMG/X3"));
    Link("X3", "IMG/X2");
    if (IsSkipped()) return;
    EXPECT_EQ(Found(), "");
    fs::remove(files_.Path("M/IMG/X3"));
    EXPECT_EQ(Found(), At(kImage2) +
                           "its file IMG\\X2 is missing\n"
                           "IMG/X2: the link leads nowhere\n");
}

// The library takes the backslash for a separator: another file would be read.
TEST_F(PgtoolVerify, NamesWithBackslashesAreNotFollowed) {
    if (kIsWindows) GTEST_SKIP() << "there are none here";
    files_.Write("OUTSIDE", Image(2).Data());
    files_.Write("M/IMG/A\\..\\..\\..\\OUTSIDE", Image(9).Data());
    fs::remove(files_.Path("M/IMG/X2"));
    Link("A\\..\\..\\..\\OUTSIDE", "IMG/X2");
    EXPECT_EQ(Found(),
              At(kImage2) + "there is a backslash in the name of IMG/A\\..\\..\\..\\OUTSIDE\n");
}

TEST_F(PgtoolVerify, FilesAreDicomFilesAndWhole) {
    files_.Write("M/IMG/X2", "not at all");
    EXPECT_EQ(Found(), At(kImage2) + "IMG/X2 is no DICOM file\n");
    Bytes bytes = Image(2).Data();
    bytes.resize(bytes.size() - 1);
    files_.Write("M/IMG/X2", bytes);
    EXPECT_THAT(Found(),
                AllOf(StartsWith(At(kImage2)), HasSubstr("IMG/X2: it is cut short at byte ")));
}

TEST_F(PgtoolVerify, FilesAreWhatTheirRecordsSay) {
    const auto foundWith = [&](const InstanceFile& file) {
        files_.Write("M/IMG/X2", file.Data());
        const std::string found = Found();
        EXPECT_THAT(found, StartsWith(At(kImage2) + "IMG/X2 has "));
        return found.substr(found.find("has "), found.find('\n') - found.find("has "));
    };
    EXPECT_EQ(foundWith(Image(2).SopClass("1.2.840.10008.5.1.4.1.1.4")),
              "has (0008,0016) SOPClassUID 1.2.840.10008.5.1.4.1.1.4, not "
              "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_EQ(foundWith(Image(3)), "has (0008,0018) SOPInstanceUID 1.2.3.4.3, not 1.2.3.4.2");
    EXPECT_EQ(foundWith(Image(2).TransferSyntax("1.2.840.10008.1.2.4.50")),
              "has (0002,0010) TransferSyntaxUID 1.2.840.10008.1.2.4.50, not 1.2.840.10008.1.2.1");
    EXPECT_EQ(foundWith(Image(2).Patient("ID2", "X")), "has (0010,0020) PatientID ID2, not ID1");
    EXPECT_EQ(foundWith(Image(2).Study("1.9")), "has (0020,000D) StudyInstanceUID 1.9, not 1.2.3");
    EXPECT_EQ(foundWith(Image(2).Remove(0x0020, 0x000E)),
              "has no (0020,000E) SeriesInstanceUID, not 1.2.3.4");
    // A file without an ID is on every medium under one that was made up.
    files_.Write("M/IMG/X2", Image(2).Patient("", "DOE^JOHN").Data());
    EXPECT_EQ(Found(), "");
}

TEST_F(PgtoolVerify, TextsAreComparedWhateverTheirCharacterSets) {
    directory_[kPatient]
        .Set(0x0008, 0x0005, "CS", "ISO_IR 192")
        .Set(0x0010, 0x0020, "LO", "\xC3\xA9");
    const InstanceFile latin =
        InstanceFile().Set(0x0008, 0x0005, "CS", "ISO_IR 100").Patient("\xE9", "DOE^JOHN");
    files_.Write("M/IMG/X1", InstanceFile(latin).Instance("1.2.3.4.1").Data());
    files_.Write("M/IMG/X2", InstanceFile(latin).Instance("1.2.3.4.2").Data());
    EXPECT_EQ(Found(), "");
    files_.Write("M/IMG/X2", InstanceFile(latin).Instance("1.2.3.4.2").Patient("\xE8", "").Data());
    EXPECT_THAT(Found(), EndsWith("PatientID \xC3\xA8, not \xC3\xA9\n"));
    EXPECT_THAT(Found({"--raw"}), EndsWith("PatientID \xE8 , not \xC3\xA9\n"));
}

TEST_F(PgtoolVerify, ProfilesAreKept) {
    EXPECT_EQ(Found({"--profile", "STD-GEN-CD"}), "");
    files_.Write("M/IMG/X2", Image(2).TransferSyntax("1.2.840.10008.1.2.4.50").Data());
    EXPECT_THAT(Found({"--profile", "STD-GEN-CD"}),
                HasSubstr(At(kImage2) + "the profile STD-GEN-CD does not allow IMG/X2\n"));
}

TEST_F(PgtoolVerify, FilesWithoutARecordAreFound) {
    files_.Write("M/OTHER", Image(3).Data());
    files_.Write("M/TEXT", "this is no DICOM file");
    Bytes other = directory_.Build();  // of another medium, which was copied, but not to its end
    other.resize(other.size() - 30);
    files_.Write("M/IMG/DICOMDIR", other);
    EXPECT_EQ(Found(), "OTHER: no record refers to it\n");
}

TEST_F(PgtoolVerify, WhatMediaHaveBesideTheirFilesNeedsNoRecord) {
    const Bytes image = Image(3).Data();
    for (const char* folder : {"M/IHE_PDI", "M/VIEWER"})
        fs::create_directory(files_.Path(folder));
    for (const char* name : {"M/README.TXT", "M/INDEX.HTM", "M/IHE_PDI/X", "M/VIEWER/DEMO"})
        files_.Write(name, image);
    EXPECT_EQ(Found(), "VIEWER/DEMO: no record refers to it\n");
    files_.Write("M/autorun.inf", "[autorun]\r\nopen=\"Viewer\\run.exe\" /cd\r\nicon=X.ICO\r\n");
    EXPECT_EQ(Found(), "");
    // A folder with files of records is no program's, whatever it says.
    files_.Write("M/autorun.inf", "open=IMG\\RUN.EXE\nopen=VIEWER\\RUN.EXE\nopen=..\\X\nopen=\n");
    files_.Write("M/IMG/X3", image);
    EXPECT_EQ(Found(), "IMG/X3: no record refers to it\n");
}

// ---- Output and repair --------------------------------------------------------------------------

TEST_F(PgtoolVerify, PrintsFindingsAsJson) {
    directory_[kImage2].Set(0x0004, 0x1500, "CS", "IMG\\X3");
    files_.Write("M/DICOMDIR", directory_.Build());
    const Finished run = Run({"--json"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out,
                EndsWith("\"findings\":[{\"kind\":\"missing-file\",\"record\":5,\"recordType\":"
                         "\"IMAGE\",\"offset\":" +
                         std::to_string(directory_.OffsetOf(kImage2)) +
                         ",\"message\":\"its file IMG\\\\X3 is missing\"}\n"
                         ",{\"kind\":\"orphan\",\"file\":\"IMG/X2\",\"message\":"
                         "\"no record refers to it\"}\n"
                         "],\"counts\":{\"records\":5,\"files\":1,\"findings\":2}\n}\n"));
    EXPECT_EQ(run.err, "pgtool verify: 5 records, 1 file: 2 findings\n");
}

TEST_F(PgtoolVerify, ControlCharactersAreEscapes) {
    directory_[kImage2].Set(0x0004, 0x1500, "CS", "IMG\\\x1B[2J\nX");
    EXPECT_THAT(Found(), AllOf(HasSubstr("\\x1b[2J\\nX"), Not(HasSubstr("\x1B"))));
}

TEST_F(PgtoolVerify, RepairMakesANewDicomdirOfTheFiles) {
    WriteImage("IMG/X3", 3);
    directory_[kImage2].nextOffset = 5;
    files_.Write("M/DICOMDIR", directory_.Build());
    const Finished run = Run({"--repair"});
    // The files have no dates: what is missing in them stays missing.
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, AllOf(HasSubstr("is 5, where no record begins\n"),
                               HasSubstr("IMG/X3: no record refers to it\n"),
                               HasSubstr("0 Dicom file accepted: 3\n"),
                               HasSubstr("(0008,0020) StudyDate is empty\n")));
    EXPECT_THAT(run.err, HasSubstr("pgtool verify: a new DICOMDIR is in place\n"));
    EXPECT_FALSE(fs::exists(files_.Path("M/dcmdir.lst")));
    EXPECT_THAT(Pgtool({"browse", Medium()}).out, EndsWith("3 instances, 0 missing files\n"));
}

TEST_F(PgtoolVerify, ARepairedMediumIsSound) {
    for (const int number : {1, 2}) {
        files_.Write("M/IMG/X" + std::to_string(number), Image(number)
                                                             .Set(0x0008, 0x0020, "DA", "20240101")
                                                             .Set(0x0008, 0x0030, "TM", "1200")
                                                             .Set(0x0020, 0x0010, "SH", "S1")
                                                             .Data());
    }
    EXPECT_EQ(Run({"--repair"}).exitStatus, 0);
    const Bytes made = ReadFile(files_.Path("M/DICOMDIR"));
    const Finished again = Run({"--repair"});
    EXPECT_EQ(again.exitStatus, 0);
    EXPECT_THAT(again.out, IsEmpty());
    EXPECT_EQ(ReadFile(files_.Path("M/DICOMDIR")), made);  // there was nothing to do
}

TEST_F(PgtoolVerify, ARepairWithoutFilesLeavesTheFormerDicomdir) {
    fs::remove_all(files_.Path("M/IMG"));
    const Bytes bytes = directory_.Build();
    files_.Write("M/DICOMDIR", bytes);
    const Finished run = Run({"--repair", "--json"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr("\"repair\":{\"done\":false,\"reason\":\"nothing is accepted"));
    EXPECT_EQ(ReadFile(files_.Path("M/DICOMDIR")), bytes);
}

TEST_F(PgtoolVerify, ARepairDoesNotFollowLinksOut) {
    files_.Write("OUTSIDE", Image(3).Data());
    Link(files_.Path("OUTSIDE"), "IMG/X3");
    if (IsSkipped()) return;
    EXPECT_THAT(Run({"--repair"}).out, HasSubstr("0 Dicom file accepted: 2\n"));
}

TEST_F(PgtoolVerify, ChecksItsCommandLine) {
    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
             {"second"}, {"--xml"}, {"--json", "--raw"}, {"--raw", "--utf8"}}) {
        EXPECT_EQ(Run(options).exitStatus, 2);
    }
    const Finished run = Run({"--profile", "std-gen-dvd", "--repair"});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.err, HasSubstr("unknown profile: std-gen-dvd; did you mean STD-GEN-"));
    EXPECT_FALSE(fs::exists(files_.Path("M/DICOMDIR")));
}

}  // namespace
