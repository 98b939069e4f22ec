// Texts of directory objects: each has the character set of its record, and that is the one of the
// file the record was made from.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "dicomdir/create/medium.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/instance_file.h"
#include "text/converted.h"

namespace {

using namespace pgkit_test;

std::string NameOf(const PGX_DicomDirPatientNode& patient) {
    return DecodedField(patient.specificCharacterSet, VR_PN, patient.patientsName);
}

TEST(RecordText, FollowsTheCharacterSetOfEachFileOfACreatedMedium) {
    const Medium medium;
    medium.Write("A", InstanceFile()
                          .Patient("1", "Yamada=\033$B;3ED\033(B")
                          .Instance("1.2.3.1")
                          .Study("1.2.1")
                          .Series("1.2.1.1")
                          .Set(0x0008, 0x0005, "CS", "\\ISO 2022 IR 87"));
    medium.Write("B", InstanceFile()
                          .Patient("2", "\304\351\357\355\365\363\351\357\362")
                          .Instance("1.2.3.2")
                          .Study("1.2.2")
                          .Series("1.2.2.1")
                          .Set(0x0008, 0x0005, "CS", "ISO_IR 126"));
    PgDicomdirOptions options = {};
    options.fillMissingKeys = 1;
    CapturePrinted(
        [&] { pgCreateDicomdirEx(medium.Directory().c_str(), "", &options, nullptr, nullptr); });
    BrowsedDirectory browsed(ReadFile(medium.Path("DICOMDIR")));
    EXPECT_EQ(NameOf(browsed.Patient(0)), "Yamada=山田");
    EXPECT_EQ(NameOf(browsed.Patient(1)), "Διονυσιος");
    for (PGX_Node* record :
         {browsed.Patient(1).record, browsed.Study(1).record, browsed.Series(1).record}) {
        EXPECT_EQ(TextOf(Child(record, 0x0008, 0x0005)), "ISO_IR 126");
    }
}

// A field that was cut inside of a character used to end in garbage.
TEST(RecordText, ThatIsCutToFitItsFieldEndsWithTheLastWholeCharacter) {
    DirectoryBuilder directory;
    std::string name = "x";
    std::string expected = "x";
    for (int i = 0; i < 100; ++i)
        name += "\303\251";
    for (int i = 0; i < 96; ++i)
        expected += "\303\251";
    const size_t patient = directory.Patient("1", name);
    directory[patient].Set(0x0008, 0x0005, "CS", "ISO_IR 192");
    directory.Study(patient, "1.2");
    BrowsedDirectory browsed(directory);
    ASSERT_EQ(std::string(browsed.Patient().patientsName).size(), 194u);
    EXPECT_EQ(NameOf(browsed.Patient()), expected);
}

TEST(RecordText, ToleratesTermsThatAreCutToFitTheirField) {
    DirectoryBuilder directory;
    const size_t patient = directory.Patient("1", "\033$)C\310\253");
    directory[patient].Set(0x0008, 0x0005, "CS",
                           "ISO 2022 IR 6\\ISO 2022 IR 87\\ISO 2022 IR 159\\ISO 2022 IR 149");
    directory.Study(patient, "1.2");
    BrowsedDirectory browsed(directory);
    ASSERT_EQ(std::string(browsed.Patient().specificCharacterSet).size(), 50u);
    EXPECT_EQ(NameOf(browsed.Patient()), "홍");
}

}  // namespace
