// Records at the root that belong to no patient, and what is known of the types of records.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/kinds_of_files.h"

namespace {

using namespace pgkit_test;

class RootRecords : public testing::Test {
  protected:
    // A patient with one image.
    void AddPatient(const std::string& id) {
        const size_t patient = directory_.Patient(id, "DOE");
        const size_t series =
            directory_.Series(directory_.Study(patient, "1.2." + id), "1.3." + id, "CT");
        directory_.Image(series, "1.4." + id, 1);
    }
    void AddPalette(const std::string& label) {
        directory_[directory_.Child(std::nullopt, "PALETTE")].Set(0x0070, 0x0080, "CS", label);
    }

    // Opens the directory, takes the records and gives their labels.
    std::string Take() {
        const std::string path = folder_.Write("DICOMDIR", directory_.Build());
        EXPECT_EQ(opened_.OpenDicomDir(path.c_str(), 1 << 16), 1);
        const uint32_t count = pgxTakeRootRecords(&opened_, nullptr, 0);
        std::vector<PGX_Node*> records(count);
        EXPECT_EQ(pgxTakeRootRecords(&opened_, records.data(), count), count);
        std::string labels;
        for (PGX_Node* const record : records) {
            char label[17];
            record->FindNode(0x0070, 0x0080)->GetStringValue(label, 16);
            labels += std::string(label, std::strcspn(label, " ")) + " ";
        }
        return labels;
    }
    // The IDs of the patients that a browse finds, and what it prints.
    std::string Browse() {
        std::string found;
        const Printed printed = CapturePrinted([&] {
            PGX_List* const patients = opened_.Browse(nullptr, nullptr);
            for (PGX_ListElement* cell = patients->head; cell != nullptr; cell = cell->next)
                found +=
                    static_cast<PGX_DicomDirPatientNode*>(cell->data)->patientId + std::string(" ");
        });
        if (printed.out.find("error") != std::string::npos) found += printed.out;
        return found;
    }

    DirectoryBuilder directory_;
    TempDir folder_;
    PGX_DicomDir opened_;
};

// A browse ended at the palette, and the patient behind it was lost.
TEST_F(RootRecords, GoOutOfTheWayOfABrowse) {
    AddPalette("COLD");
    AddPalette("WARM");
    AddPatient("1");
    AddPalette("HOT");
    AddPatient("2");
    AddPalette("LAST");
    EXPECT_EQ(Take(), "COLD WARM HOT LAST ");
    EXPECT_EQ(Browse(), "1 2 ");
    EXPECT_EQ(pgxTakeRootRecords(&opened_, nullptr, 0), 0u);
    EXPECT_EQ(Browse(), "1 2 ");
}

TEST_F(RootRecords, AreTakenAfterABrowseToo) {
    AddPatient("1");
    AddPalette("HOT");
    AddPatient("2");
    const std::string path = folder_.Write("DICOMDIR", directory_.Build());
    ASSERT_EQ(opened_.OpenDicomDir(path.c_str(), 1 << 16), 1);
    Browse();
    PGX_Node* record = nullptr;
    EXPECT_EQ(pgxTakeRootRecords(&opened_, &record, 1), 1u);
    EXPECT_EQ(Browse(), "1 2 ");
}

TEST_F(RootRecords, OfAMediumWithoutPatientsLeaveNone) {
    AddPalette("HOT");
    EXPECT_EQ(Take(), "HOT ");
    EXPECT_EQ(Browse(), "");
}

TEST_F(RootRecords, StayWithoutRoomForAllOfThem) {
    AddPalette("COLD");
    AddPalette("HOT");
    AddPatient("1");
    const std::string path = folder_.Write("DICOMDIR", directory_.Build());
    ASSERT_EQ(opened_.OpenDicomDir(path.c_str(), 1 << 16), 1);
    std::array<PGX_Node*, 1> records = {};
    EXPECT_EQ(pgxTakeRootRecords(&opened_, records.data(), 1), 2u);
    EXPECT_EQ(records[0], nullptr);
    EXPECT_EQ(pgxTakeRootRecords(&opened_, nullptr, 0), 2u);
}

TEST_F(RootRecords, OfACircleAreTakenOnce) {
    AddPalette("COLD");
    AddPatient("1");
    directory_[directory_.Child(std::nullopt, "PALETTE")].Set(0x0070, 0x0080, "CS", "HOT").next = 0;
    EXPECT_EQ(Take(), "COLD HOT ");
    EXPECT_EQ(Browse().substr(0, 2), "1 ");
}

TEST_F(RootRecords, AreNoneOfOtherTypesAndWithoutADirectory) {
    directory_.Child(std::nullopt, "TOPIC");
    AddPatient("1");
    EXPECT_EQ(Take(), "");
    PGX_DicomDir closed;
    EXPECT_EQ(pgxTakeRootRecords(&closed, nullptr, 0), 0u);
    EXPECT_EQ(pgxTakeRootRecords(nullptr, nullptr, 0), 0u);
}

// ---- Types --------------------------------------------------------------------------------------

TEST(RecordTypes, AreThoseOfTheSopClass) {
    for (const KindOfFile& kind : EveryKindOfFile()) {
        char type[20];
        const size_t length = pgxRecordTypeOf(kind.sopClass.c_str(), type, sizeof type);
        EXPECT_EQ(std::string(type, length), kind.recordType);
        EXPECT_EQ(pgxIsRootRecordType(kind.recordType), kind.isAtRoot ? 1 : 0) << kind.recordType;
    }
    char type[4] = "***";
    EXPECT_EQ(pgxRecordTypeOf("1.2.840.10008.5.1.4.39.1", type, sizeof type), 7u);
    EXPECT_STREQ(type, "PAL");
    EXPECT_EQ(pgxRecordTypeOf("1.2.840.10008.5.1.4.1.1.2", type, sizeof type), 0u);
    EXPECT_STREQ(type, "");
    EXPECT_EQ(pgxRecordTypeOf(nullptr, nullptr, 0), 0u);
    EXPECT_EQ(pgxIsRootRecordType("PATIENT"), 0);
    EXPECT_EQ(pgxIsRootRecordType(nullptr), 0);
}

std::vector<uint32_t> KeysOf(const char* type) {
    std::vector<uint32_t> keys(static_cast<size_t>(pgxRecordTypeKeys(type, nullptr, 0)));
    EXPECT_EQ(pgxRecordTypeKeys(type, keys.data(), static_cast<uint32_t>(keys.size())),
              static_cast<int32_t>(keys.size()));
    return keys;
}

TEST(RecordTypes, HaveKeysOfType1) {
    EXPECT_EQ(KeysOf("RT DOSE"), (std::vector<uint32_t>{0x00200013, 0x3004000A}));
    EXPECT_EQ(KeysOf("RAW DATA"), (std::vector<uint32_t>{0x00080023, 0x00080033}));
    EXPECT_EQ(KeysOf("PALETTE"), (std::vector<uint32_t>{0x00700080}));
    EXPECT_EQ(KeysOf("PLAN"), std::vector<uint32_t>());
    EXPECT_EQ(pgxRecordTypeKeys("IMAGE", nullptr, 0), -1);
    EXPECT_EQ(pgxRecordTypeKeys(nullptr, nullptr, 0), -1);
    std::array<uint32_t, 2> some = {1, 2};
    EXPECT_EQ(pgxRecordTypeKeys("SPECTROSCOPY", some.data(), 1), 9);
    EXPECT_EQ(some[0], 0x00200013u);
    EXPECT_EQ(some[1], 2u);
}

}  // namespace
