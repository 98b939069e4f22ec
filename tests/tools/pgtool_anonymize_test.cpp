#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/tree.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Every identifying text holds this word.
constexpr const char* kSecret = "SECRET";

InstanceFile Secretive(int number = 1) {
    return Instance(number)
        .Patient("SECRET1", "SECRET^JOHN")
        .Set(0x0008, 0x0020, "DA", "20240229")
        .Set(0x0008, 0x0080, "LO", "SECRET HOSPITAL")
        .Set(0x0008, 0x1010, "SH", "SECRET STATION")
        .Set(0x0008, 0x1030, "LO", "SECRET STUDY")
        .Set(0x0010, 0x0030, "DA", "19700101")
        .Set(0x0010, 0x1010, "AS", "054Y")
        .Set(0x0010, 0x4000, "LT", "SECRET COMMENT")
        .Set(0x0009, 0x0010, "LO", "SECRET CREATOR")
        .Set(0x0009, 0x1001, "LO", "SECRET PRIVATE")
        .SetSequence(0x0040, 0x0275,
                     StreamBuilder()
                         .Item()
                         .Element(0x0040, 0x0007, "LO", "SECRET STEP ")
                         .Element(0x0040, 0x1001, "SH", "SECRET")
                         .EndItem())
        .SetSequence(0x0008, 0x1140,
                     StreamBuilder()
                         .Item()
                         .Element(0x0008, 0x1150, "UI", "1.2.840.10008.5.1.4.1.1.20")
                         .Element(0x0008, 0x1155, "UI", "1.2.3.99")
                         .Element(0x0010, 0x0010, "PN", "SECRET")
                         .EndItem());
}

class PgtoolAnonymize : public testing::Test {
  protected:
    Finished Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "anonymize");
        return Pgtool(arguments);
    }
    // The bytes of what becomes of a file.
    std::string Anonymized(const Bytes& file, std::vector<std::string> options = {}) {
        options.insert(options.end(), {files_.Write("in", file), "-o", output_});
        const Finished run = Run(options);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        const Bytes bytes = ReadFile(output_);
        return std::string(bytes.begin(), bytes.end());
    }
    std::string Anonymized(const InstanceFile& file, const std::vector<std::string>& options = {}) {
        return Anonymized(file.Data(), options);
    }
    // What the dump of the result prints for an element.
    std::string Value(const std::string& place) const { return ValueIn(output_, place); }
    static std::string ValueIn(const std::string& file, const std::string& place) {
        const std::string out = Pgtool({"dump", file, "-t", place}).out;
        if (out.empty()) return "none";
        const size_t begin = out.find("Value: [") + 8;
        return out.substr(begin, out.find("]\n") - begin);
    }

    TempDir files_;
    const std::string output_ = files_.Path("out");
};

TEST_F(PgtoolAnonymize, NothingThatIdentifiesIsLeft) {
    EXPECT_THAT(Anonymized(Secretive()), Not(HasSubstr(kSecret)));
    EXPECT_EQ(Value("PatientName"), "");
    EXPECT_EQ(Value("StudyDate"), "");
    EXPECT_EQ(Value("PatientID"), "ANONYMIZED");
    for (const char* place : {"PatientComments", "PatientAge", "0009,0010", "0009,1001"})
        EXPECT_EQ(Value(place), "none") << place;
    EXPECT_EQ(Value("Modality"), ValueIn(files_.Path("in"), "Modality"));
}

TEST_F(PgtoolAnonymize, SaysWhatItDid) {
    Anonymized(Secretive());
    EXPECT_EQ(Value("PatientIdentityRemoved"), "YES");
    EXPECT_EQ(Value("DeidentificationMethod"),
              "PS3.15 2024b\\Basic Application Confidentiality Profile");
    EXPECT_EQ(Value("DeidentificationMethodCodeSequence[0].CodeValue"), "113100");
    EXPECT_EQ(Value("DeidentificationMethodCodeSequence[1].CodeValue"), "none");
    EXPECT_EQ(Value("LongitudinalTemporalInformationModified"), "REMOVED");
    Anonymized(Secretive(), {"--retain-dates", "--retain-uids"});
    EXPECT_EQ(Value("DeidentificationMethodCodeSequence[1].CodeValue"), "113106");
    EXPECT_EQ(Value("DeidentificationMethodCodeSequence[2].CodeValue"), "113110");
    EXPECT_EQ(Value("LongitudinalTemporalInformationModified"), "UNMODIFIED");
}

TEST_F(PgtoolAnonymize, UidsAreNewAndTheSameInAllFilesOfARun) {
    std::filesystem::create_directory(files_.Path("dir"));
    files_.Write("dir/a", Secretive(1).Study("1.2.3").Data());
    files_.Write("dir/b", Secretive(2).Study("1.2.3").Data());
    const auto studyOf = [&](const std::string& name) {
        return ValueIn(files_.Path("to/" + name), "StudyInstanceUID");
    };
    ASSERT_EQ(Run({"-r", files_.Path("dir"), "-o", files_.Path("to")}).exitStatus, 0);
    const std::string study = studyOf("a");
    EXPECT_THAT(study, StartsWith("2.25."));
    EXPECT_LE(study.size(), 44u);
    EXPECT_EQ(studyOf("b"), study);
    EXPECT_NE(ValueIn(files_.Path("to/a"), "SOPInstanceUID"),
              ValueIn(files_.Path("to/b"), "SOPInstanceUID"));
    EXPECT_EQ(ValueIn(files_.Path("to/a"), "0002,0003"),
              ValueIn(files_.Path("to/a"), "SOPInstanceUID"));
    // References follow, classes stay.
    const std::string reference = "ReferencedImageSequence[0].ReferencedSOP";
    EXPECT_THAT(ValueIn(files_.Path("to/a"), reference + "InstanceUID"), StartsWith("2.25."));
    EXPECT_EQ(ValueIn(files_.Path("to/a"), reference + "ClassUID"), "1.2.840.10008.5.1.4.1.1.20");
    // Another run has other ones.
    ASSERT_EQ(Run({"-r", files_.Path("dir"), "-o", files_.Path("to")}).exitStatus, 0);
    EXPECT_NE(studyOf("a"), study);
}

TEST_F(PgtoolAnonymize, AKeyMakesUidsTheSameInEveryRun) {
    const std::string key = files_.Path("key");
    const auto study = [&] {
        Anonymized(Secretive(), {"--key", key});
        return Value("StudyInstanceUID");
    };
    const std::string first = study();
    EXPECT_EQ(study(), first);
    files_.Write("key", std::string(64, '0') + "\n");
    EXPECT_NE(study(), first);
    files_.Write("key", "something else");
    EXPECT_EQ(Run({files_.Path("in"), "-o", output_, "--key", key}).exitStatus, 1);
    EXPECT_EQ(Run({files_.Path("in"), "-o", output_, "--key", files_.Path("no/key")}).exitStatus,
              1);
}

TEST_F(PgtoolAnonymize, OptionsRetainWhatTheySay) {
    Anonymized(Secretive(), {"--retain-dates"});
    EXPECT_EQ(Value("StudyDate"), "20240229");
    EXPECT_EQ(Value("PatientBirthDate"), "");  // no date of an examination
    Anonymized(Secretive(), {"--retain-institution-identity"});
    EXPECT_EQ(Value("InstitutionName"), "SECRET HOSPITAL");
    Anonymized(Secretive(), {"--retain-device-identity"});
    EXPECT_EQ(Value("StationName"), "SECRET STATION");
    Anonymized(Secretive(), {"--retain-patient-characteristics"});
    EXPECT_EQ(Value("PatientAge"), "054Y");
    Anonymized(Secretive().Study("1.2.3"), {"--retain-uids"});
    EXPECT_EQ(Value("StudyInstanceUID"), "1.2.3");
}

TEST_F(PgtoolAnonymize, DatesMoveByDays) {
    Anonymized(Secretive(), {"--modify-dates", "1"});
    EXPECT_EQ(Value("StudyDate"), "20240301");
    EXPECT_EQ(Value("LongitudinalTemporalInformationModified"), "MODIFIED");
    Anonymized(Secretive(), {"--modify-dates=-60"});
    EXPECT_EQ(Value("StudyDate"), "20231231");
    // What is no date is not kept.
    Anonymized(Secretive().Set(0x0008, 0x0020, "DA", "SECRET"), {"--modify-dates", "1"});
    EXPECT_EQ(Value("StudyDate"), "");
    for (const char* days : {"--modify-dates=soon", "--modify-dates=40000", "--modify-dates=1x"})
        EXPECT_EQ(Run({files_.Path("in"), "-o", output_, days}).exitStatus, 2) << days;
    EXPECT_EQ(
        Run({files_.Path("in"), "-o", output_, "--modify-dates=1", "--retain-dates"}).exitStatus,
        2);
}

TEST_F(PgtoolAnonymize, PrivateBlocksThatAreCalledSafeMayStay) {
    const auto file = [](const char* status) {
        return Secretive()
            .Set(0x0009, 0x0011, "LO", "OTHER")
            .Set(0x0009, 0x1101, "LO", "HARMLESS")
            .SetSequence(0x0008, 0x0300,
                         StreamBuilder()
                             .Item()
                             .ElementUS(0x0008, 0x0301, 0x0009)
                             .Element(0x0008, 0x0302, "LO", "OTHER ")
                             .Element(0x0008, 0x0303, "CS", status)
                             .EndItem());
    };
    const std::string kept = Anonymized(file("SAFE"), {"--retain-safe-private"});
    EXPECT_THAT(kept, AllOf(HasSubstr("HARMLESS"), HasSubstr("OTHER"), Not(HasSubstr(kSecret))));
    EXPECT_THAT(Anonymized(file("UNSAFE"), {"--retain-safe-private"}), Not(HasSubstr("HARMLESS")));
    EXPECT_THAT(Anonymized(file("SAFE")), Not(HasSubstr("HARMLESS")));
}

TEST_F(PgtoolAnonymize, PreambleAndMetaInformationAreNew) {
    Bytes file = Secretive().Data();
    std::fill(file.begin(), file.begin() + 128, uint8_t{'S'});
    const std::string result = Anonymized(file);
    EXPECT_EQ(result.substr(0, 128), std::string(128, '\0'));
    EXPECT_EQ(Value("TransferSyntaxUID"), "1.2.840.10008.1.2.1");
    StreamBuilder sender;
    sender.Preamble()
        .MetaElement(0x0010, "UI", std::string("1.2.840.10008.1.2\0", 18))
        .MetaElement(0x0016, "AE", "SECRETAE")
        .Mode(VrMode::Implicit)
        .Element(0x0008, 0x0018, "UI", "1.2.3.4 ")
        .Element(0x0010, 0x0010, "PN", "SECRET");
    EXPECT_THAT(Anonymized(sender.Data()), Not(HasSubstr(kSecret)));
    EXPECT_EQ(Value("TransferSyntaxUID"), "1.2.840.10008.1.2");
}

TEST_F(PgtoolAnonymize, ValuesOfAWrongVrAreNotKept) {
    const StreamBuilder file = StreamBuilder()
                                   .Part10("1.2.840.10008.1.2.1")
                                   .Element(0x0008, 0x0018, "LO", "SECRET")
                                   .Element(0x0008, 0x0020, "UN", "SECRET")
                                   .Element(0x0010, 0x0010, "UN", "SECRET")
                                   .Element(0x0010, 0x0020, "UN", "SECRET")
                                   .Element(0x0010, 0x7774, "LO", "SECRET");
    EXPECT_THAT(Anonymized(file.Data()), Not(HasSubstr(kSecret)));
    EXPECT_THAT(Anonymized(file.Data(), {"--modify-dates=1"}), Not(HasSubstr(kSecret)));
}

// A sequence whose items were never read is a value like others, with all that is in it.
TEST_F(PgtoolAnonymize, SequencesOfAWrongVrAreRemoved) {
    const StreamBuilder file = StreamBuilder()
                                   .Part10("1.2.840.10008.1.2.1")
                                   .Element(0x0008, 0x1115, "OB", "SECRET")
                                   .Element(0x0008, 0x2218, "OB", "SECRET")
                                   .Element(0x0010, 0x0040, "CS", "M ");
    EXPECT_THAT(Anonymized(file.Data()), Not(HasSubstr(kSecret)));
}

TEST_F(PgtoolAnonymize, WarnsAboutTextsInPixels) {
    const auto warned = [&](const InstanceFile& file) {
        return Run({files_.Write("in", file.Data()), "-o", output_}).err;
    };
    const auto image = [] { return Secretive().Set(0x7FE0, 0x0010, "OB", "abcd"); };
    EXPECT_THAT(warned(image().Set(0x0028, 0x0301, "CS", "YES")), HasSubstr("texts are burnt"));
    EXPECT_THAT(warned(image().Set(0x0008, 0x0060, "CS", "US")), HasSubstr("texts may be burnt"));
    EXPECT_THAT(warned(image().Set(0x0008, 0x0060, "CS", "US").Set(0x0028, 0x0301, "CS", "NO")),
                IsEmpty());
    EXPECT_THAT(warned(image().Set(0x0008, 0x0060, "CS", "CT")), IsEmpty());
}

TEST_F(PgtoolAnonymize, ADicomdirIsRefused) {
    const Finished run = Run({TestData("dicomdir/DICOMDIR_implicit"), "-o", output_});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("it is a DICOMDIR"));
    EXPECT_FALSE(std::filesystem::exists(output_));
}

}  // namespace
