#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/host_order.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"
#include "tools/run_pgtool.h"

namespace {

using pgkit_test::Child;
using pgkit_test::DataSet;
using pgkit_test::Finished;
using pgkit_test::kExplicitLittle;
using pgkit_test::kPart10Big;
using pgkit_test::kPart10Explicit;
using pgkit_test::kPart10Implicit;
using pgkit_test::Pgtool;
using pgkit_test::ReadFile;
using pgkit_test::TempDir;
using pgkit_test::TestData;
using pgkit_test::TextOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kSource = "native/mr_implicit_le.dcm";

class PgtoolWriting : public testing::Test {
  protected:
    // Runs the tool, expects success, and opens what it has written.
    DataSet Written(std::vector<std::string> arguments) {
        const Finished run = Pgtool(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_THAT(run.out, IsEmpty());
        return DataSet(pgOpenDataSetFile(output_.c_str(), pgkit_test::kLoadAll));
    }

    TempDir directory_;
    const std::string source_ = TestData(kSource);
    const std::string output_ = directory_.Path("output");
};

// Offsets stayed as they were, and led to no record any more.
TEST_F(PgtoolWriting, LinksOfADicomdirFollowItsRecords) {
    const std::string source = TestData("dicomdir/DICOMDIR_implicit");
    const std::string name = "DirectoryRecordSequence[0].PatientName=MUCH^LONGER^THAN^IT^WAS";
    const std::vector<std::vector<std::string>> changes = {
        {"set", source, name, "-o", output_},
        {"delete", source, "-t", "DirectoryRecordSequence[0].PatientName", "-o", output_},
        {"save", source, output_, "--mode", "explicit-le", "--undefined-lengths"}};
    const auto instances = [](const std::string& directory) {
        const std::string out = Pgtool({"browse", directory}).out;
        return std::count(out.begin(), out.end(), '\n');
    };
    for (const std::vector<std::string>& change : changes) {
        ASSERT_EQ(Pgtool(change).exitStatus, 0) << change[0];
        EXPECT_EQ(instances(output_), instances(source)) << change[0];
        const std::string found = Pgtool({"verify", output_}).out;
        EXPECT_THAT(found, Not(HasSubstr("no link leads to it"))) << change[0];
        EXPECT_THAT(found, Not(HasSubstr("where no record begins"))) << change[0];
    }
}

// What was there was cut before it was known whether the new file can be written.
TEST_F(PgtoolWriting, AFailureLeavesTheFormerFile) {
    directory_.Write("output", "former");
    const std::string broken = directory_.Write("broken", "x");
    EXPECT_EQ(Pgtool({"save", broken + "missing", output_}).exitStatus, 1);
    DataSet long_(pgAllocateDataSetNode());
    const std::string text(65536, 'x');
    long_->InsertNode(0x0010, 0x4000, text.data(), 65536);
    const std::string source = directory_.Path("source");
    ASSERT_EQ(long_->SaveDataSetAsEx(source.c_str(), pgkit_test::kPart10Implicit), 0u);
    EXPECT_EQ(Pgtool({"save", source, output_, "--mode", "explicit-le"}).exitStatus, 1);
    EXPECT_EQ(Pgtool({"set", source_, "Rows=none", "-o", output_}).exitStatus, 1);
    const pgkit_test::Bytes kept = ReadFile(output_);
    EXPECT_EQ(std::string(kept.begin(), kept.end()), "former");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_.Path("")), {}), 3);
}

TEST_F(PgtoolWriting, WritesOverItsSourceAndThroughALink) {
    std::filesystem::copy_file(source_, output_);
    std::error_code noLinksHere;
    std::filesystem::create_symlink(output_, directory_.Path("link"), noLinksHere);
    const std::string target = noLinksHere ? output_ : directory_.Path("link");
    EXPECT_EQ(Pgtool({"set", output_, "PatientID=4711", "-o", target}).exitStatus, 0);
    const DataSet root(pgOpenDataSetFile(output_.c_str(), pgkit_test::kLoadAll));
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x0020)), "4711");
    EXPECT_EQ(std::filesystem::is_symlink(directory_.Path("link")), !noLinksHere);
    EXPECT_FALSE(std::filesystem::exists(output_ + ".new0"));
}

TEST_F(PgtoolWriting, WritesToADeviceWhereItIs) {
    if (!std::filesystem::exists("/dev/null")) GTEST_SKIP() << "no such device";
    EXPECT_EQ(Pgtool({"save", source_, "/dev/null"}).exitStatus, 0);
    EXPECT_FALSE(std::filesystem::exists("/dev/null.new0"));
    EXPECT_FALSE(std::filesystem::is_regular_file("/dev/null"));
}

TEST_F(PgtoolWriting, SaveKeepsTheEncodingUnlessAsked) {
    const DataSet root = Written({"save", source_, output_});
    EXPECT_EQ(root->syntaxFlags, kPart10Implicit);
}

TEST_F(PgtoolWriting, SaveWritesEveryMode) {
    EXPECT_EQ(Written({"save", source_, output_, "--mode", "explicit-le"})->syntaxFlags,
              kPart10Explicit);
    EXPECT_EQ(Written({"save", source_, output_, "--mode", "implicit-le"})->syntaxFlags,
              kPart10Implicit);
    EXPECT_EQ(Written({"save", source_, output_, "--mode=explicit-be"})->syntaxFlags, kPart10Big);
}

TEST_F(PgtoolWriting, BareFileHasNoMetaInformation) {
    const DataSet root = Written({"save", source_, output_, "--bare", "--mode", "explicit-le"});
    EXPECT_EQ(root->syntaxFlags, kExplicitLittle);
    EXPECT_EQ(root->first->group, 0x0008);
}

TEST_F(PgtoolWriting, BareSourceGetsMetaInformationForAMode) {
    const std::string bare = directory_.Path("bare");
    ASSERT_EQ(Pgtool({"save", source_, bare, "--bare", "--mode", "explicit-le"}).exitStatus, 0);
    const DataSet root = Written({"save", bare, output_, "--mode", "implicit-le"});
    EXPECT_EQ(root->syntaxFlags, kPart10Implicit);
    EXPECT_EQ(TextOf(Child(root.get(), 0x0002, 0x0002)).substr(0, 25), "1.2.840.10008.5.1.4.1.1.4");
}

TEST_F(PgtoolWriting, UndefinedLengthsGiveDelimiters) {
    const std::string defined = TestData("sequences/sr_nested_be_defined.dcm");
    const DataSet root = Written({"save", defined, output_, "--undefined-lengths"});
    EXPECT_EQ(root->syntaxFlags, kPart10Big);
    EXPECT_EQ(Child(root.get(), 0x0040, 0xA730)->length, 0xFFFFFFFFu);
    const DataSet source(pgOpenDataSetFile(defined.c_str(), 0));
    EXPECT_NE(Child(source.get(), 0x0040, 0xA730)->length, 0xFFFFFFFFu);
}

TEST_F(PgtoolWriting, SaveRefusesWrongCommandLines) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"save"},
                                               {"save", source_},
                                               {"save", source_, output_, "more"},
                                               {"save", source_, output_, "--mode", "deflated"},
                                               {"save", source_, output_, "--mode"},
                                               {"save", source_, output_, "--bare=yes"}}) {
        const Finished run = Pgtool(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr("usage: pgtool save"));
    }
}

TEST_F(PgtoolWriting, SaveSaysWhyItFails) {
    const Finished noSource = Pgtool({"save", directory_.Path("missing"), output_});
    EXPECT_EQ(noSource.exitStatus, 1);
    EXPECT_THAT(noSource.err, HasSubstr("cannot open"));
    const Finished noTarget = Pgtool({"save", source_, directory_.Path("no/such/directory")});
    EXPECT_EQ(noTarget.exitStatus, 1);
    EXPECT_THAT(noTarget.err, HasSubstr("the file cannot be created"));
}

TEST_F(PgtoolWriting, SetChangesTextsAndNumbersByNameAndTag) {
    const DataSet root = Written({"set", source_, "PatientsName=DOE^JANE", "0028,0010=64",
                                  "(0010,4000)=note", "-o", output_});
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x0010)), "DOE^JANE");
    EXPECT_EQ(Child(root.get(), 0x0028, 0x0010)->GetUSValue(), 64);
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x4000)), "note");
}

TEST_F(PgtoolWriting, SetTakesSeveralNumbers) {
    const DataSet root = Written({"set", source_, "0028,1101=1\\2\\16", "-o", output_});
    PGX_Node* descriptor = Child(root.get(), 0x0028, 0x1101);
    ASSERT_EQ(descriptor->length, 6u);
    EXPECT_EQ(descriptor->value[2], 2);
    EXPECT_EQ(descriptor->value[4], 16);
}

TEST_F(PgtoolWriting, SetFollowsPixelRepresentationWhereTheFileLeavesTheSignOpen) {
    const DataSet isSigned = Written({"set", source_, "SmallestImagePixelValue=-5", "-o", output_});
    EXPECT_EQ(Child(isSigned.get(), 0x0028, 0x0106)->GetSSValue(), -5);
    const DataSet isUnsigned = Written(
        {"set", source_, "PixelRepresentation=0", "SmallestImagePixelValue=65000", "-o", output_});
    EXPECT_EQ(Child(isUnsigned.get(), 0x0028, 0x0106)->GetUSValue(), 65000);
    for (const std::vector<std::string>& assignments : std::vector<std::vector<std::string>>{
             {"SmallestImagePixelValue=65000"},
             {"PixelRepresentation=0", "SmallestImagePixelValue=-5"},
             {"PixelRepresentation=", "SmallestImagePixelValue=-5"}}) {
        std::vector<std::string> arguments = {"set", source_, "-o", output_};
        arguments.insert(arguments.end(), assignments.begin(), assignments.end());
        EXPECT_EQ(Pgtool(arguments).exitStatus, 1) << assignments.back();
    }
}

// Values of any number and form were written.
TEST_F(PgtoolWriting, SetHoldsValuesAgainstTheirVrAndMultiplicity) {
    for (const char* assignment :
         {"Rows=1\\2", "PatientBirthDate=1970", "PatientBirthDate=19701301", "StudyTime=2500",
          "PatientSex=female", "PatientAge=45", "SOPInstanceUID=1.02", "SeriesNumber=1.5",
          "PatientWeight=heavy", "AccessionNumber=12345678901234567", "WindowCenter=1\\\\x",
          "PatientName=A^B^C^D^E^F", "ImageOrientationPatient=1\\0\\0"}) {
        const Finished run = Pgtool({"set", source_, assignment, "-o", output_});
        EXPECT_EQ(run.exitStatus, 1) << assignment;
        EXPECT_THAT(run.err, HasSubstr(assignment));
        EXPECT_FALSE(std::filesystem::exists(output_));
    }
    const DataSet root = Written({"set", source_, "PatientBirthDate=19700131", "StudyTime=235960.5",
                                  "PatientAge=045Y", "WindowCenter=1\\2.5e1", "-o", output_});
    EXPECT_EQ(TextOf(Child(root.get(), 0x0028, 0x1050)), "1\\2.5e1 ");
    EXPECT_EQ(Pgtool({"set", source_, "Rows=1\\2", "--force", "-o", output_}).exitStatus, 0);
}

// Only elements of the data set itself could be changed, and only some of them by today's names.
TEST_F(PgtoolWriting, SetFollowsPathsAndMakesWhatIsMissing) {
    const DataSet root =
        Written({"set", source_, "ReferencedStudySequence[0].ReferencedSOPInstanceUID=1.2",
                 "ReferencedStudySequence[1].ReferencedSOPInstanceUID=1.3",
                 "ReferencedStudySequence[*].ReferencedSOPClassUID=1.4", "-o", output_});
    PGX_Node* first = Child(root.get(), 0x0008, 0x1110)->first;
    EXPECT_EQ(TextOf(Child(first, 0x0008, 0x1155)).substr(0, 3), "1.2");
    EXPECT_EQ(TextOf(Child(first->next, 0x0008, 0x1150)).substr(0, 3), "1.4");
    EXPECT_EQ(Pgtool({"set", source_, "ReferencedStudySequence[2].ReferencedSOPClassUID=1", "-o",
                      directory_.Path("no")})
                  .exitStatus,
              1);
}

// UTF-8 was written whatever the character set.
TEST_F(PgtoolWriting, SetWritesTheCharacterSetOfTheFile) {
    const DataSet root = Written({"set", source_, "SpecificCharacterSet=ISO_IR 100",
                                  "PatientName=M\u00FCller", "-o", output_});
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x0010)), "M\xFCller");
    const Finished refused =
        Pgtool({"set", output_, "PatientName=\u5C71", "-o", directory_.Path("no")});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.err, HasSubstr("the character set lacks a character"));
    EXPECT_FALSE(std::filesystem::exists(directory_.Path("no")));
}

TEST_F(PgtoolWriting, MetaInformationFollowsTheInstance) {
    const DataSet root = Written({"set", source_, "SOPInstanceUID=1.2.3", "-o", output_});
    EXPECT_EQ(TextOf(Child(root.get(), 0x0002, 0x0003)).substr(0, 5), "1.2.3");
}

TEST_F(PgtoolWriting, SeveralFilesAreWrittenIntoAFolderOrInPlace) {
    std::filesystem::create_directories(directory_.Path("in/sub"));
    for (const char* name : {"in/a", "in/sub/b"})
        directory_.Write(name, ReadFile(source_));
    directory_.Write("in/text", "no DICOM at all");
    const std::string in = directory_.Path("in");
    const std::string out = directory_.Path("out");
    const Finished run = Pgtool({"set", "-r", in, "PatientID=7", "-o", out});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "pgtool set: 2 written, 0 failed, 1 no DICOM files\n");
    const auto idOf = [](const std::string& path) {
        return Pgtool({"dump", path, "-t", "PatientID"}).out;
    };
    EXPECT_THAT(idOf(out + "/sub/b"), HasSubstr("[7]"));
    EXPECT_THAT(idOf(in + "/sub/b"), HasSubstr("[4MR1]"));
    EXPECT_EQ(Pgtool({"set", "-r", in, "PatientID=8", "--in-place"}).exitStatus, 0);
    EXPECT_THAT(idOf(in + "/a"), HasSubstr("[8]"));
    // Two files of one name have one place in a folder.
    const Finished twice =
        Pgtool({"set", in + "/a", out + "/a", "PatientID=9", "-o", directory_.Path("third")});
    EXPECT_EQ(twice.exitStatus, 1);
    EXPECT_THAT(twice.err, HasSubstr("has been written from " + in + "/a"));
}

TEST_F(PgtoolWriting, OutputsAndInPlaceExcludeEachOther) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"set", source_, "PatientID=7", "-o", output_, "--in-place"},
             {"set", "PatientID=7", "-o", output_},
             {"set", source_, "PatientIdd=7", "PatientID=7", "-o", output_},
             {"set", "-", "PatientID=7", "--in-place"},
             {"delete", source_, "-t", "PatientID"},
             {"delete", source_, "-o", output_},
             {"delete", source_, "-t", "NoSuchName", "-o", output_}}) {
        EXPECT_EQ(Pgtool(arguments).exitStatus, 2) << arguments[1];
    }
    EXPECT_FALSE(std::filesystem::exists(output_));
}

TEST_F(PgtoolWriting, DeleteRemovesElementsAndItems) {
    const std::string nested = TestData("sequences/sr_nested_be_defined.dcm");
    const DataSet root = Written({"delete", nested, "-t", "PatientID", "-t", "ContentSequence[0]",
                                  "-t", "NumberOfFrames", "-o", output_});
    EXPECT_EQ(root->FindNode(0x0010, 0x0020), nullptr);
    const DataSet source(pgOpenDataSetFile(nested.c_str(), 0));
    const auto items = [](const DataSet& dataSet) {
        size_t count = 0;
        for (auto* item = Child(dataSet.get(), 0x0040, 0xA730)->first; item; item = item->next)
            ++count;
        return count;
    };
    EXPECT_EQ(items(root) + 1, items(source));
    const DataSet emptied = Written({"delete", nested, "-t", "ContentSequence[*]", "-o", output_});
    EXPECT_EQ(items(emptied), 0u);
}

TEST_F(PgtoolWriting, DeleteRemovesPrivateElements) {
    const std::string source =
        directory_.Write("private", pgkit_test::StreamBuilder()
                                        .Part10("1.2.840.10008.1.2.1")
                                        .Element(0x0009, 0x0010, "LO", "CREATOR ")
                                        .Element(0x0009, 0x1001, "LO", "secret")
                                        .Sequence(0x0008, 0x1140)
                                        .Item()
                                        .Element(0x0009, 0x0010, "LO", "CREATOR ")
                                        .EndItem()
                                        .EndSequence()
                                        .Element(0x0010, 0x0020, "LO", "4711")
                                        .Data());
    const DataSet root = Written({"delete", source, "--private", "-o", output_});
    EXPECT_EQ(root->FindNode(0x0009, 0x0010), nullptr);
    EXPECT_EQ(root->FindNode(0x0009, 0x1001), nullptr);
    EXPECT_EQ(Child(root.get(), 0x0008, 0x1140)->first->first, nullptr);
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x0020)), "4711");
}

TEST_F(PgtoolWriting, SetEmptiesNumbers) {
    const DataSet root = Written({"set", source_, "0028,0010=", "-o", output_});
    EXPECT_EQ(Child(root.get(), 0x0028, 0x0010)->length, 0u);
}

TEST_F(PgtoolWriting, SetMayWriteOverItsSource) {
    const std::string file = directory_.Write("file", ReadFile(source_));
    ASSERT_EQ(Pgtool({"set", file, "PatientID=7", "-o", file}).exitStatus, 0);
    const DataSet root(pgOpenDataSetFile(file.c_str(), pgkit_test::kLoadAll));
    EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x0020)), "7 ");
    const DataSet original(pgOpenDataSetFile(source_.c_str(), pgkit_test::kLoadAll));
    EXPECT_EQ(TextOf(Child(root.get(), 0x7FE0, 0x0010)),
              TextOf(Child(original.get(), 0x7FE0, 0x0010)));
}

TEST_F(PgtoolWriting, SetRefusesWhatItCannotSet) {
    for (const char* assignment :
         {"0028,0010=many", "0028,0010=-1", "0028,0010=70000", "0028,0010=1\\", "0028,0010=\\1",
          "0028,0010=1\\\\2", "7FE0,0010=ab", "0008,1140=x", "0099,1001=x"}) {
        const Finished run = Pgtool({"set", source_, assignment, "-o", output_});
        EXPECT_EQ(run.exitStatus, 1) << assignment;
        EXPECT_THAT(run.err, HasSubstr(assignment));
    }
    for (const char* assignment : {"NoSuchName=x", "PatientsName", "00zz,0010=x"}) {
        EXPECT_EQ(Pgtool({"set", source_, assignment, "-o", output_}).exitStatus, 2) << assignment;
    }
    EXPECT_EQ(Pgtool({"set", source_, "PatientID=7"}).exitStatus, 2);
}

// Values that do not fit the length field of their VR made the tool fail.
TEST_F(PgtoolWriting, ValuesTooLongForTheirVrBecomeUn) {
    const std::string text(70000, 'x');
    std::string numbers;
    for (int i = 0; i < 35000; ++i)
        numbers += std::string("\x01\x02", 2);
    const std::string source = directory_.Write("long", pgkit_test::StreamBuilder()
                                                            .Part10("1.2.840.10008.1.2")
                                                            .Mode(pgkit_test::VrMode::Implicit)
                                                            .Element(0x0010, 0x4000, "LT", text)
                                                            .Element(0x0028, 0x1101, "US", numbers)
                                                            .Data());
    for (const char* mode : {"explicit-le", "explicit-be", "implicit-le"}) {
        const DataSet root = Written({"save", source, output_, "--mode", mode});
        EXPECT_EQ(TextOf(Child(root.get(), 0x0010, 0x4000)), text);
        PGX_Node* element = Child(root.get(), 0x0028, 0x1101);
        const size_t word = element->valueRep == VR_UN ? 1 : 2;
        EXPECT_EQ(TextOf(element), pgkit_test::InHostOrder(numbers, word));
    }
    const DataSet root = Written({"save", source, output_, "--mode", "explicit-le"});
    EXPECT_EQ(Child(root.get(), 0x0010, 0x4000)->valueRep, static_cast<uint32_t>(VR_UN));
    const DataSet set = Written({"set", output_, "0010,0010=DOE", "-o", output_});
    EXPECT_EQ(TextOf(Child(set.get(), 0x0010, 0x4000)), text);
}

}  // namespace
