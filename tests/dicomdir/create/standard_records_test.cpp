// Records of the kinds that today's standard has, and what becomes of keys that files lack.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "dicomdir/create/scan_fixture.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/kinds_of_files.h"
#include "support/patient_list.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using testing::HasSubstr;

std::string Trimmed(std::string text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0'))
        text.pop_back();
    return text;
}

std::string ValueOf(PGX_Node* element) {
    if (element->valueRep != VR_SQ && element->length == 0) return "";
    switch (element->valueRep) {
        case VR_SQ: {
            int items = 0;
            for (PGX_Node* item = element->first; item != nullptr; item = item->next)
                ++items;
            return std::to_string(items);
        }
        case VR_US:
            return std::to_string(element->GetUSValue());
        case VR_UL:
            return std::to_string(element->GetULValue());
        default:
            return Trimmed(TextOf(element));
    }
}

// "3004,000A=PLAN", of all keys that not every leaf has.
std::string KeysOf(PGX_Node* record) {
    std::string keys;
    for (PGX_Node* key = record->first; key != nullptr; key = key->next) {
        const bool isOfEveryLeaf = key->group <= 0x0004 || key->element == 0x0000 ||
                                   (key->group == 0x0008 && key->element == 0x0005) ||
                                   (key->group == 0x0020 && key->element == 0x0013);
        if (isOfEveryLeaf) continue;
        char tag[16];
        std::snprintf(tag, sizeof tag, "%04X,%04X", key->group, key->element);
        keys += (keys.empty() ? "" : " ") + std::string(tag) + "=" + ValueOf(key);
    }
    return keys;
}

std::string TypeOf(PGX_Node* record) { return Trimmed(TextOf(Child(record, 0x0004, 0x1430))); }

class StandardRecords : public ScanTest {
  protected:
    StandardRecords() { options_.flags = PG_DICOMDIR_STANDARD_RECORDS; }

    uint32_t Create() { return pgCreateDicomdirEx(Directory().c_str(), "", &options_, Note, this); }
    // The DICOMDIR of one file, which is read into root_.
    PGX_Node* RecordOf(const InstanceFile& file) {
        Write("F", file);
        EXPECT_EQ(Create(), 0u);
        root_ = Open();
        return ImageRecord(root_.get(), "F");
    }
    PatientList Browse() {
        PatientList patients;
        const Printed printed = CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
        output_ = printed.out;
        return patients;
    }

    DataSet root_;
    std::string output_;
};

TEST_F(StandardRecords, HaveTheTypeAndTheKeysOfTheirSopClass) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    for (size_t i = 0; i < kinds.size(); ++i)
        Write("F" + std::to_string(i), kinds[i].file);
    ASSERT_EQ(Create(), 0u);
    const DataSet root = Open();
    for (size_t i = 0; i < kinds.size(); ++i) {
        PGX_Node* const record = ImageRecord(root.get(), "F" + std::to_string(i));
        ASSERT_NE(record, nullptr) << seen_;
        EXPECT_EQ(TypeOf(record), kinds[i].recordType) << kinds[i].sopClass;
        EXPECT_EQ(KeysOf(record), kinds[i].keys) << kinds[i].recordType;
        EXPECT_EQ(Trimmed(TextOf(Child(record, 0x0004, 0x1510))), kinds[i].sopClass);
    }
}

// The reader has no object classes for most of them.
TEST_F(StandardRecords, BecomePlainLeavesWithTheirRecordTypeWhenTheyAreBrowsed) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    std::vector<std::string> expected;
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (kinds[i].isAtRoot) continue;
        Write("F" + std::to_string(i), kinds[i].file);
        expected.push_back(kinds[i].recordType);
    }
    ASSERT_EQ(Create(), 0u);
    const PatientList patients = Browse();
    ASSERT_NE(patients, nullptr);
    EXPECT_EQ(output_.find("error"), std::string::npos) << output_;
    ASSERT_EQ(patients->count, 1);
    auto* const patient = static_cast<PGX_DicomDirPatientNode*>(patients->head->data);
    auto* const study = static_cast<PGX_DicomDirStudyNode*>(patient->studies.head->data);
    auto* const series = static_cast<PGX_DicomDirSeriesNode*>(study->series.head->data);
    ASSERT_EQ(series->leaves.count, static_cast<int32_t>(expected.size()));
    size_t i = 0;
    for (PGX_ListElement* cell = series->leaves.head; cell != nullptr; cell = cell->next) {
        auto* const leaf = static_cast<PGX_DicomDirLeafNode*>(cell->data);
        EXPECT_EQ(leaf->recordType, expected[i++]);
        const bool hasClass = leaf->leafType != PG_LEAF_OTHER;
        const std::string type = leaf->recordType;
        EXPECT_EQ(hasClass, type == "SR DOCUMENT" || type == "KEY OBJECT DOC" ||
                                type == "PRESENTATION" || type == "WAVEFORM" ||
                                type == "ENCAP DOC" || type == "RAW DATA")
            << type;
    }
}

TEST_F(StandardRecords, OfFilesWithoutKeysHaveThemEmptyOrNotAtAll) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    const std::string dated = "0008,0023= 0008,0033=";
    const std::map<std::string, std::string> expected = {
        {"RT DOSE", "3004,000A="},
        {"RADIOTHERAPY", "0070,0081= 0070,0084="},
        {"PRESENTATION", "0070,0080= 0070,0081= 0070,0082= 0070,0083= 0070,0084="},
        {"ENCAP DOC", dated + " 0040,A043=0 0042,0010= 0042,0012="},
        {"VALUE MAP", dated + " 0070,0080= 0070,0081= 0070,0084="},
        {"IMPLANT", "0008,0070= 0022,1095= 0022,1097="},
        {"IMPLANT ASSY", "0008,0070= 0076,0001= 0076,0020=0"},
        {"STEREOMETRIC", "0070,0080= 0070,0081= 0070,0084="},
    };
    size_t compared = 0;
    for (const KindOfFile& kind : kinds) {
        const auto keys = expected.find(kind.recordType);
        if (keys == expected.end()) continue;
        EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(kind))), keys->second) << kind.sopClass;
        ++compared;
    }
    EXPECT_GE(compared, expected.size());
}

TEST_F(StandardRecords, HaveMadeUpKeysOfType1OnDemand) {
    options_.fillMissingKeys = 1;
    const std::string dated = "0008,0023=20240229 0008,0033=115959";
    const std::map<std::string, std::string> expected = {
        {"RT DOSE", "3004,000A=UNKNOWN"},
        {"VALUE MAP", dated + " 0070,0080=UNKNOWN 0070,0081= 0070,0084="},
        {"WAVEFORM", dated},
        {"RAW DATA", dated},
        {"SR DOCUMENT", dated + " 0040,A491=PARTIAL 0040,A493=UNVERIFIED"},
        {"ENCAP DOC",
         "0008,0023= 0008,0033= 0040,A043=0 0042,0010= 0042,0012=application/octet-stream"},
        {"SPECTROSCOPY", "0008,0008=UNKNOWN " + dated +
                             " 0028,0008=1 0028,0010=0 0028,0011=0 0028,9001=0 0028,9002=0"},
        {"HANGING PROTOCOL",
         "0072,0002=UNKNOWN 0072,0004=UNKNOWN 0072,0006=SITE 0072,0008=UNKNOWN "
         "0072,000A=20240229115959 0072,000C=0 0072,000E=0 0072,0014=0"},
    };
    size_t compared = 0;
    for (const KindOfFile& kind : EveryKindOfFile()) {
        const auto keys = expected.find(kind.recordType);
        if (keys == expected.end()) continue;
        PGX_Node* const record = RecordOf(WithoutKeys(kind));
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(Pattern(KeysOf(record)), Pattern(keys->second)) << kind.recordType;
        ++compared;
    }
    EXPECT_GE(compared, expected.size());
}

TEST_F(StandardRecords, OfSegmentationsAndUnknownClassesAreImages) {
    for (const char* const sopClass :
         {"1.2.840.10008.5.1.4.1.1.66.4", "1.2.840.10008.5.1.4.1.1.66.7",
          "1.2.840.10008.5.1.4.1.1.30", "1.2.840.10008.5.1.4.1.1.481.1",
          "1.2.840.10008.5.1.4.1.1.2", "1.2.3.4.5.6.7"}) {
        EXPECT_EQ(TypeOf(RecordOf(InstanceFile().SopClass(sopClass))), "IMAGE") << sopClass;
    }
}

TEST_F(StandardRecords, AreNotMadeWithoutTheFlag) {
    options_.flags = 0;
    for (const KindOfFile& kind : EveryKindOfFile()) {
        if (kind.isAtRoot) continue;
        const std::string type = TypeOf(RecordOf(kind.file));
        const bool wasKnown = kind.sopClass == "1.2.840.10008.5.1.4.1.1.11.1" ||
                              kind.sopClass == "1.2.840.10008.5.1.4.1.1.104.1" ||
                              kind.sopClass == "1.2.840.10008.5.1.4.1.1.88.59" ||
                              kind.sopClass == "1.2.840.10008.5.1.4.1.1.66";
        EXPECT_EQ(type, wasKnown ? kind.recordType : "IMAGE") << kind.sopClass;
    }
}

TEST_F(StandardRecords, TellInTheListWhatBelongsToNoPatient) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    Write("A", Instance(1));
    Write("P", kinds[kinds.size() - 5].file);  // a palette
    options_.flags = 0;
    ASSERT_EQ(Create(), 0u);
    EXPECT_THAT(ListLines(), HasSubstr("9\tP\n"));
    options_.flags = PG_DICOMDIR_STANDARD_RECORDS;
    ASSERT_EQ(Create(), 0u);
    EXPECT_EQ(ListLines(), "4\tDICOMDIR\n2\tdcmdir.lst\n0\tA\n0\tP\n");
}

// What stands at the root and is no patient comes last: a browse ends there.
TEST_F(StandardRecords, OfNoPatientStandBehindAllPatients) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (kinds[i].isAtRoot) Write("A" + std::to_string(i), kinds[i].file);
    }
    Write("B", Instance(1));
    Write("C", Instance(2).Patient("ID2", "ROE"));
    ASSERT_EQ(Create(), 0u);
    const DataSet root = Open();
    const std::vector<PGX_Node*> records = RecordsOf(root.get());
    std::vector<std::string> types;
    for (PGX_Node* const record : records)
        types.push_back(TypeOf(record));
    EXPECT_THAT(types,
                testing::ElementsAre("PATIENT", "STUDY", "SERIES", "IMAGE", "PATIENT", "STUDY",
                                     "SERIES", "IMAGE", "HANGING PROTOCOL", "PALETTE", "IMPLANT",
                                     "IMPLANT ASSY", "IMPLANT GROUP", "INVENTORY"));
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1202)->GetULValue() + 8, records.back()->fileOffset);
    const PatientList patients = Browse();
    EXPECT_EQ(Outline(patients.get()).substr(0, 64),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1))) ID2(1.2.3(1.2.3.4(1.2.3.4.2))) ()");
}

TEST_F(StandardRecords, OfTheSameInstanceWithoutPatientAreListedOnce) {
    const InstanceFile palette = EveryKindOfFile()[EveryKindOfFile().size() - 5].file;
    Write("A", palette);
    Write("B", palette);
    ASSERT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||0;B||6;dcmdir.lst||2;");
}

TEST_F(StandardRecords, HaveNoPlaceInAHierarchyWhenTheyBelongToNoPatient) {
    Write("P", EveryKindOfFile()[EveryKindOfFile().size() - 5].file);
    PGX_List patients;
    EXPECT_EQ(pgBrowseDisk(Directory().c_str(), "", &options_, &patients, Note, this), 0);
    EXPECT_EQ(pgAddFile(&patients, Directory().c_str(), medium_.Path("P").c_str(), "", &options_),
              PG_NO_STUDY_INSTANCE_UID);
    EXPECT_THAT(seen_, HasSubstr("P||9;"));
}

// Keys without a field go along with the objects of a hierarchy.
TEST_F(StandardRecords, KeepTheirKeysFromAScanToABuild) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (!kinds[i].isAtRoot) Write("F" + std::to_string(i), kinds[i].file);
    }
    PGX_List patients;
    ASSERT_EQ(pgBrowseDisk(Directory().c_str(), "", &options_, &patients, nullptr, nullptr), 1);
    EXPECT_EQ(pgBuildDicomdirEx(&patients, Directory().c_str(), nullptr), 0u);
    pgEmptyPatientList(&patients);
    const DataSet root = Open();
    for (size_t i = 0; i < kinds.size(); ++i) {
        if (kinds[i].isAtRoot) continue;
        PGX_Node* const record = ImageRecord(root.get(), "F" + std::to_string(i));
        EXPECT_EQ(TypeOf(record), kinds[i].recordType);
        EXPECT_EQ(KeysOf(record), kinds[i].keys);
    }
}

TEST_F(StandardRecords, AreMadeFileByFile) {
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    void* const creation = pgStartCreateOffshoreDicomdir(Directory().c_str(), "", &options_);
    for (size_t i = 0; i < kinds.size(); ++i) {
        const std::string path = outside_.Write("F", kinds[i].file.Data());
        const std::string name = "F" + std::to_string(i);
        EXPECT_EQ(pgAddFileToOffshoreDicomdir(creation, name.c_str(), path.c_str()), 0u);
    }
    ASSERT_EQ(pgEndCreateOffshoreDicomdir(creation), 0u);
    const DataSet root = Open();
    for (size_t i = 0; i < kinds.size(); ++i)
        EXPECT_EQ(KeysOf(ImageRecord(root.get(), "F" + std::to_string(i))), kinds[i].keys);
}

// An element of the wrong kind is none.
TEST_F(StandardRecords, TakeTextsOfEveryVrAndNothingElse) {
    const KindOfFile dose = EveryKindOfFile()[0];
    EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(dose).Set(0x3004, 0x000A, "LO", "BEAM"))),
              "3004,000A=BEAM");
    EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(dose).Set(0x3004, 0x000A, "UN", "BEAM"))),
              "3004,000A=BEAM");
    EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(dose).SetUS(0x3004, 0x000A, 0x4141))), "3004,000A=");
    EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(dose).Set(0x3004, 0x000A, "UT", std::string(1025, 'X')))),
              "3004,000A=");
    EXPECT_EQ(KeysOf(RecordOf(WithoutKeys(dose).Set(0x3004, 0x000A, "UT", std::string(1024, 'X')))),
              "3004,000A=" + std::string(1024, 'X'));
}

// ---- Names and refusals -------------------------------------------------------------------------

class CreationRules : public ScanTest {
  protected:
    uint32_t Create(uint32_t flags) {
        options_.flags = flags;
        return pgCreateDicomdirEx(Directory().c_str(), "", &options_, Note, this);
    }
};

TEST_F(CreationRules, StrictNamesAreThoseOfTheStandard) {
    int number = 0;
    for (const char* const name : {"A", "ABCDEFGH", "A_1/2/3/4/5/6/7/8"})
        Write(name, Instance(++number));
    for (const char* const name :
         {"low", "ABCDEFGHI", "IM.DCM", "A B", "A-B", "A_1/2/3/4/5/6/7/8B/9", "SUB/x"}) {
        Write(name, Instance(++number));
    }
    EXPECT_EQ(Create(PG_DICOMDIR_STRICT_NAMES), 0u);
    EXPECT_EQ(ListLines(),
              "1\tA B\n1\tA-B\n1\tABCDEFGHI\n1\tIM.DCM\n2\tdcmdir.lst\n1\tlow\n"
              "1\tA_1\\2\\3\\4\\5\\6\\7\\8B\\9\n1\tSUB\\x\n"
              "0\tA\n0\tABCDEFGH\n0\tA_1\\2\\3\\4\\5\\6\\7\\8\n");
}

TEST_F(CreationRules, AllOrNothingWritesWhereEverythingIsAccepted) {
    Write("A", Instance(1));
    EXPECT_EQ(Create(PG_DICOMDIR_ALL_OR_NOTHING), 0u);
    // The DICOMDIR and the list are there now, and refused.
    EXPECT_EQ(Create(PG_DICOMDIR_ALL_OR_NOTHING), 0u);
    EXPECT_EQ(seen_, "A||0;dcmdir.lst||2;A||0;DICOMDIR||4;dcmdir.lst||2;");
}

TEST_F(CreationRules, AllOrNothingLeavesTheFormerDicomdirWhereAFileIsRefused) {
    Write("A", Instance(1));
    ASSERT_EQ(Create(0), 0u);
    const std::string former = TextFile(medium_.Path("DICOMDIR"));
    Write("B", Bytes{1, 2, 3});
    EXPECT_EQ(Create(PG_DICOMDIR_ALL_OR_NOTHING), PG_CREATION_FILES_REFUSED);
    EXPECT_EQ(TextFile(medium_.Path("DICOMDIR")), former);
    EXPECT_EQ(ListLines(), "2\tB\n4\tDICOMDIR\n2\tdcmdir.lst\n");
    EXPECT_EQ(Create(PG_DICOMDIR_ALL_OR_NOTHING | PG_DICOMDIR_NO_LIST), PG_CREATION_FILES_REFUSED);
}

TEST_F(CreationRules, AllOrNothingHoldsForFilesAddedOneByOne) {
    options_.flags = PG_DICOMDIR_ALL_OR_NOTHING;
    const std::string path = outside_.Write("F", Bytes{1, 2, 3});
    void* const creation = pgStartCreateOffshoreDicomdir(Directory().c_str(), "", &options_);
    EXPECT_EQ(pgAddFileToOffshoreDicomdir(creation, "F", path.c_str()), 2u);
    EXPECT_EQ(pgEndCreateOffshoreDicomdir(creation), PG_CREATION_FILES_REFUSED);
    EXPECT_FALSE(Exists("DICOMDIR"));
}

}  // namespace
