// A folder becomes a medium: scanned, judged, written, and read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "dicomdir/create/scan_fixture.h"
#include "pgkit/pgkit.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/host_system.h"
#include "support/instance_file.h"
#include "support/patient_list.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

class Creation : public ScanTest {
  protected:
    uint32_t Create(const char* profile = "") {
        return pgCreateDicomdirEx(Directory().c_str(), profile, &options_, Note, this);
    }

    // Two patients, three studies, four series and eight images.
    void WriteHierarchy() {
        for (int i = 1; i <= 5; ++i)
            Write("S1/IM" + std::to_string(i), Instance(i));
        Write("S2/IM1", Instance(6).Series("1.2.3.5").Set(0x0020, 0x0011, "IS", "2"));
        Write("S3/IM1", Instance(7).Study("1.2.9").Series("1.2.9.1"));
        Write("S4/IM1", Instance(8).Patient("ID2", "ROE^JANE"));
    }
};

// The first record of a type.
PGX_Node* RecordOf(PGX_Node* root, const std::string& type) {
    for (PGX_Node* item : RecordsOf(root)) {
        if (TextOf(Child(item, 0x0004, 0x1430)) == type) return item;
    }
    ADD_FAILURE() << "no record " << type;
    return nullptr;
}

TEST_F(Creation, OfAnEmptyDirectoryGivesADicomdirWithoutRecords) {
    EXPECT_EQ(Create(), 0u);
    const DataSet root = Open();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(Tags(root.get()),
              "0002,0000 0002,0001 0002,0002 0002,0003 0002,0010 0002,0012 0002,0013 "
              "0004,1130 0004,1200 0004,1202 0004,1212 0004,1220");
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1200)->GetULValue(), 0u);
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1202)->GetULValue(), 0u);
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1212)->GetUSValue(), 0u);
    EXPECT_TRUE(RecordsOf(root.get()).empty());
}

TEST_F(Creation, WritesTheMetaInformation) {
    Create();
    const DataSet root = Open();
    EXPECT_EQ(TextOf(Child(root.get(), 0x0002, 0x0001)), std::string("\0\1", 2));
    const auto uid = [&](uint16_t element) {
        return std::string(TextOf(Child(root.get(), 0x0002, element)).c_str());
    };
    EXPECT_EQ(uid(0x0002), "1.2.840.10008.1.3.10");
    const std::string prefix = "1.2.999.1.47.453.2865.";
    EXPECT_EQ(uid(0x0003).substr(0, prefix.size()), prefix);
    EXPECT_EQ(Pattern(uid(0x0003)).substr(prefix.size(), 16), "##############.#");
    EXPECT_EQ(uid(0x0010), "1.2.840.10008.1.2.1");
    EXPECT_EQ(uid(0x0012), "1.2.999.1.47.453.2865");
    EXPECT_EQ(uid(0x0013), "KIT_ZORVA_2865");
    EXPECT_EQ(pgIsDicomFile(medium_.Path("DICOMDIR").c_str()), 1);
}

TEST_F(Creation, NumbersItsDicomdirs) {
    std::vector<std::string> numbers;
    for (int i = 0; i < 2; ++i) {
        Create();
        const DataSet root = Open();
        const std::string uid = TextOf(Child(root.get(), 0x0002, 0x0003)).c_str();
        numbers.push_back(uid.substr(uid.rfind('.') + 1));
    }
    EXPECT_EQ(std::stoi(numbers[1]), std::stoi(numbers[0]) + 1);
    EXPECT_GE(std::stoi(numbers[0]), 100);
}

TEST_F(Creation, TakesTheFileSetIdOfTheOptions) {
    Create();
    EXPECT_EQ(TextOf(Child(Open().get(), 0x0004, 0x1130)), "KIT_ZORVA_2865");
    std::copy_n("DISC 1", 6, options_.fileSetId);
    Create();
    EXPECT_EQ(TextOf(Child(Open().get(), 0x0004, 0x1130)), "DISC 1");
}

TEST_F(Creation, ReadsAFileSetIdNoFurtherThanItsField) {
    std::fill_n(options_.fileSetId, sizeof options_.fileSetId, 'X');
    options_.flags = 0;
    Create();
    EXPECT_EQ(TextOf(Child(Open().get(), 0x0004, 0x1130)), std::string(20, 'X'));
}

TEST_F(Creation, LinksTheRecords) {
    Write("A", Instance(1));
    Write("B", Instance(2));
    Write("C", Instance(3).Patient("ID2", "ROE^JANE"));
    EXPECT_EQ(Create(), 0u);
    const DataSet root = Open();
    const std::vector<PGX_Node*> items = RecordsOf(root.get());
    ASSERT_EQ(items.size(), 9u);
    // An item's position is that of its first element; links lead to its tag.
    const auto offset = [&](size_t item) { return items[item]->fileOffset - 8; };
    const auto link = [&](size_t item, uint16_t element) {
        return Child(items[item], 0x0004, element)->GetULValue();
    };
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1200)->GetULValue(), offset(0));
    EXPECT_EQ(Child(root.get(), 0x0004, 0x1202)->GetULValue(), offset(5));
    EXPECT_EQ(link(0, 0x1400), offset(5));
    EXPECT_EQ(link(0, 0x1420), offset(1));
    EXPECT_EQ(link(1, 0x1400), 0u);
    EXPECT_EQ(link(1, 0x1420), offset(2));
    EXPECT_EQ(link(2, 0x1400), 0u);
    EXPECT_EQ(link(2, 0x1420), offset(3));
    EXPECT_EQ(link(3, 0x1400), offset(4));
    EXPECT_EQ(link(3, 0x1420), 0u);
    EXPECT_EQ(link(4, 0x1400), 0u);
    EXPECT_EQ(link(5, 0x1400), 0u);
    EXPECT_EQ(link(5, 0x1420), offset(6));
    for (PGX_Node* item : items)
        EXPECT_EQ(Child(item, 0x0004, 0x1410)->GetUSValue(), 0xFFFF);
}

TEST_F(Creation, WritesEveryKeyOfARecordAlsoEmptyOnes) {
    Write("A", InstanceFile());
    Create();
    const DataSet root = Open();
    const std::string head = "0004,1400 0004,1410 0004,1420 0004,1430 ";
    EXPECT_EQ(Tags(RecordOf(root.get(), "PATIENT ")),
              head + "0008,0005 0010,0010 0010,0020 0010,0030 0010,0040");
    EXPECT_EQ(Tags(RecordOf(root.get(), "STUDY ")),
              head +
                  "0008,0005 0008,0020 0008,0030 0008,0050 0008,0090 0008,1030 0020,000D "
                  "0020,0010");
    EXPECT_EQ(Tags(RecordOf(root.get(), "SERIES")),
              head +
                  "0008,0005 0008,0060 0008,0080 0008,0081 0008,103E 0008,1050 0020,000E "
                  "0020,0011");
    EXPECT_EQ(Tags(RecordOf(root.get(), "IMAGE ")),
              head +
                  "0004,1500 0004,1510 0004,1511 0004,1512 0008,0005 0008,0008 0020,0013 "
                  "0028,0008 0028,0010 0028,0011");
    EXPECT_EQ(Child(RecordOf(root.get(), "STUDY "), 0x0008, 0x1030)->length, 0u);
}

TEST_F(Creation, WritesTheValuesOfAnImage) {
    Write("SUB/A", InstanceFile().InstanceNumber(17).Set(0x0008, 0x0008, "CS", "ORIGINAL"));
    Create();
    const DataSet root = Open();
    PGX_Node* const image = RecordOf(root.get(), "IMAGE ");
    EXPECT_EQ(TextOf(Child(image, 0x0004, 0x1500)), "SUB\\A ");
    EXPECT_STREQ(TextOf(Child(image, 0x0004, 0x1510)).c_str(), "1.2.840.10008.5.1.4.1.1.2");
    EXPECT_STREQ(TextOf(Child(image, 0x0004, 0x1511)).c_str(), "1.2.3.4.1");
    EXPECT_STREQ(TextOf(Child(image, 0x0004, 0x1512)).c_str(), "1.2.840.10008.1.2.1");
    EXPECT_EQ(TextOf(Child(image, 0x0008, 0x0008)), "ORIGINAL");
    EXPECT_EQ(TextOf(Child(image, 0x0020, 0x0013)), "17");
    EXPECT_EQ(TextOf(Child(image, 0x0028, 0x0008)), "1 ");
    EXPECT_EQ(Child(image, 0x0028, 0x0010)->GetUSValue(), 2);
    EXPECT_EQ(Child(image, 0x0028, 0x0011)->GetUSValue(), 3);
}

std::string KeysOfLeaf(PGX_Node* record) {
    const std::string tags = Tags(record);
    const std::string common =
        "0004,1400 0004,1410 0004,1420 0004,1430 0004,1500 0004,1510 0004,1511 0004,1512 ";
    EXPECT_EQ(tags.substr(0, common.size()), common);
    return tags.substr(common.size());
}

TEST_F(Creation, WritesTheKeysOfEveryKindOfLeaf) {
    StreamBuilder code;
    code.Item().Element(0x0008, 0x0100, "SH", "121070").EndItem();
    StreamBuilder modifiers;
    modifiers.Item().Element(0x0040, 0xA010, "CS", "HAS CONCEPT MOD ").EndItem();
    StreamBuilder observers;
    observers.Item().Element(0x0040, 0xA030, "DT", "20200102030405").EndItem();
    const auto file = [&](int number, const char* sopClass) {
        return Instance(number)
            .SopClass(sopClass)
            .SetSequence(0x0040, 0xA043, code)
            .SetSequence(0x0040, 0xA730, modifiers)
            .SetSequence(0x0008, 0x1115, code);
    };
    Write("A", file(1, "1.2.840.10008.5.1.4.1.1.88.11")
                   .Set(0x0040, 0xA493, "CS", "VERIFIED")
                   .SetSequence(0x0040, 0xA073, observers));
    Write("B", file(2, "1.2.840.10008.5.1.4.1.1.88.59"));
    Write("C", file(3, "1.2.840.10008.5.1.4.1.1.11.1"));
    Write("D", file(4, "1.2.840.10008.5.1.4.1.1.104.1"));
    Write("E", file(5, "1.2.840.10008.5.1.4.1.1.9.1.1"));
    Write("F", file(6, "1.2.840.10008.5.1.4.1.1.66"));
    Create();
    const DataSet root = Open();
    const auto keys = [&](const char* type) { return KeysOfLeaf(RecordOf(root.get(), type)); };
    EXPECT_EQ(keys("SR DOCUMENT "),
              "0008,0005 0008,0023 0008,0033 0020,0013 0040,A030 0040,A043 0040,A491 0040,A493 "
              "0040,A730");
    EXPECT_EQ(keys("KEY OBJECT DOC"),
              "0008,0005 0008,0023 0008,0033 0020,0013 0040,A043 0040,A730");
    EXPECT_EQ(keys("PRESENTATION"),
              "0008,0005 0008,1115 0020,0013 0070,0080 0070,0081 0070,0082 0070,0083 0070,0084");
    EXPECT_EQ(keys("ENCAP DOC "),
              "0008,0005 0008,0023 0008,0033 0020,0013 0040,A043 0042,0010 0042,0012");
    EXPECT_EQ(keys("WAVEFORM"), "0008,0005 0008,0023 0008,0033 0020,0013");
    EXPECT_EQ(keys("RAW DATA"), "0008,0005 0008,0023 0008,0033 0020,0013");
    PGX_Node* const report = RecordOf(root.get(), "SR DOCUMENT ");
    EXPECT_EQ(TextOf(Child(Child(report, 0x0040, 0xA043)->first, 0x0008, 0x0100)), "121070");
    EXPECT_EQ(TextOf(Child(report, 0x0040, 0xA030)), "20200102030405");
}

TEST_F(Creation, WritesNoVerificationOfAReportThatIsNotVerified) {
    Write("A", InstanceFile().SopClass("1.2.840.10008.5.1.4.1.1.88.11"));
    Create();
    EXPECT_EQ(KeysOfLeaf(RecordOf(Open().get(), "SR DOCUMENT ")),
              "0008,0005 0008,0023 0008,0033 0020,0013 0040,A491 0040,A493");
}

TEST_F(Creation, WritesTheFileSizeOnDemand) {
    Write("A", InstanceFile());
    options_.storeFileSize = 1;
    Create();
    const DataSet root = Open();
    PGX_Node* const image = RecordOf(root.get(), "IMAGE ");
    EXPECT_EQ(TextOf(Child(image, 0x2137, 0x0010)), "ZORVA DICOMDIR");
    EXPECT_EQ(std::stoul(TextOf(Child(image, 0x2137, 0x1040))), InstanceFile().Data().size());
}

TEST_F(Creation, IsReadBackAsTheSameHierarchy) {
    WriteHierarchy();
    Create();
    PatientList patients;
    const Printed printed = CapturePrinted(
        [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
    EXPECT_EQ(printed.out, "Patient created DOE^JOHN\nPatient created ROE^JANE\n");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(Outline(patients.get()),
              "ID1(1.2.3(1.2.3.4(1.2.3.4.1 1.2.3.4.2 1.2.3.4.3 1.2.3.4.4 1.2.3.4.5) "
              "1.2.3.5(1.2.3.4.6)) 1.2.9(1.2.9.1(1.2.3.4.7))) ID2(1.2.3(1.2.3.4(1.2.3.4.8)))");
}

TEST_F(Creation, NamesTheFileOfEachImage) {
    WriteHierarchy();
    Create();
    std::string names;
    const DataSet root = Open();
    for (PGX_Node* record : RecordsOf(root.get())) {
        if (record->FindNode(0x0004, 0x1500) == nullptr) continue;
        names += TextOf(Child(record, 0x0004, 0x1511)).c_str() + std::string(":") +
                 TextOf(Child(record, 0x0004, 0x1500)) + ";";
    }
    EXPECT_EQ(names,
              "1.2.3.4.1:S1\\IM1;1.2.3.4.2:S1\\IM2;1.2.3.4.3:S1\\IM3;1.2.3.4.4:S1\\IM4;"
              "1.2.3.4.5:S1\\IM5;1.2.3.4.6:S2\\IM1;1.2.3.4.7:S3\\IM1;1.2.3.4.8:S4\\IM1;");
}

TEST_F(Creation, IsTheSameWhenWrittenFromWhatWasRead) {
    WriteHierarchy();
    Create();
    PatientList patients;
    CapturePrinted(
        [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
    EXPECT_EQ(pgBuildDicomdir(patients.get(), outside_.Path(".").c_str()), 0u);
    const DataSet first = Open();
    const DataSet second(pgOpenDataSetFile(outside_.Path("DICOMDIR").c_str(), kLoadAll));
    EXPECT_EQ(Describe(second.get()), Describe(first.get()));
}

TEST_F(Creation, HandlesFilesInTheOrderOfTheirNamesBeforeSubdirectories) {
    for (const char* name : {"b", "Z", ".hidden", "SUB/y", "A_DIR/x", "A_DIR/DEEP/w", "SUB/.z"})
        Write(name, Bytes{1, 2, 3});
    Create();
    EXPECT_EQ(seen_,
              ".hidden||2;Z||2;b||2;dcmdir.lst||2;x|A_DIR|2;w|A_DIR\\DEEP|2;.z|SUB|2;y|SUB|2;");
}

TEST_F(Creation, StaysOutOfSubdirectoriesOnDemand) {
    Write("A", InstanceFile());
    Write("SUB/B", Instance(2));
    options_.flags = PG_DICOMDIR_NO_RECURSION | PG_DICOMDIR_NO_LIST;
    Create();
    EXPECT_EQ(seen_, "A||0;");
}

TEST_F(Creation, StopsWhenTheCallbackSaysSoAndWritesWhatItHas) {
    for (const char* name : {"A", "B", "SUB/C"})
        Write(name, Instance(name[0]));
    stopAfter_ = 1;
    options_.flags = PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A||0;");
    EXPECT_EQ(RecordsOf(Open().get()).size(), 4u);
}

TEST_F(Creation, NeedsNoCallbackAndNoOptions) {
    Write("A", InstanceFile());
    EXPECT_EQ(pgCreateDicomdir(Directory().c_str(), nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(RecordsOf(Open().get()).size(), 4u);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n0\tA\n");
}

TEST_F(Creation, ListsRefusedFilesAsTheyComeAndThenTheAcceptedOnes) {
    Write("A", InstanceFile());
    Write("DUP", InstanceFile());
    Write("SUB/NOSERIES", Instance(3).Remove(0x0020, 0x000E));
    Write("SUB/OTHER", Instance(4).TransferSyntax("1.2.840.10008.1.2.4.50"));
    Write("SUB/TEXT", Bytes{'x'});
    Write("SUB/DICOMDIR", Instance(5).SopClass("1.2.840.10008.1.3.10"));
    Create("STD-GEN-CD");
    EXPECT_EQ(ListLines(),
              "6\tDUP\n2\tdcmdir.lst\n4\tSUB\\DICOMDIR\n8\tSUB\\NOSERIES\n5\tSUB\\OTHER\n"
              "2\tSUB\\TEXT\n0\tA\n");
}

TEST_F(Creation, StartsTheListAnew) {
    Create();
    Create();
    EXPECT_EQ(ListLines(), "4\tDICOMDIR\n2\tdcmdir.lst\n");
}

TEST_F(Creation, WritesNoListOnDemand) {
    Write("A", InstanceFile());
    options_.flags = PG_DICOMDIR_NO_LIST;
    Create();
    EXPECT_EQ(ListLines(), "no list");
    EXPECT_FALSE(std::filesystem::exists(medium_.Path("dcmdir.lst")));
}

TEST_F(Creation, DropsOneTrailingBackslash) {
    Write("A", InstanceFile());
    const std::string directory = Directory() + "\\";
    EXPECT_EQ(pgCreateDicomdir(directory.c_str(), "", nullptr, nullptr), 0u);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n0\tA\n");
}

TEST_F(Creation, FailsWhereItCannotWrite) {
    const std::string missing = outside_.Path("missing");
    uint32_t result = 0;
    const Printed printed =
        CapturePrinted([&] { result = pgCreateDicomdir(missing.c_str(), "", nullptr, nullptr); });
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open " + missing + "\\DICOMDIR\n");
    EXPECT_EQ(pgCreateDicomdir(nullptr, "", nullptr, nullptr), 1u);
}

// What an earlier creation left behind was scanned and stayed.
TEST_F(Creation, RemovesStraysOfEarlierCreations) {
    Create();
    Write("A", InstanceFile());
    Write("DICOMDIR.new7", Bytes{1});
    Write("SUB/DICOMDIR.new7", Bytes{1});
    for (const char* name : {"DICOMDIR.new", "DICOMDIR.new7x", "DICOMDIR.old"})
        Write(name, Bytes{1});
    EXPECT_EQ(Create(), 0u);
    EXPECT_FALSE(Exists("DICOMDIR.new7"));
    for (const char* name : {"SUB/DICOMDIR.new7", "DICOMDIR.new", "DICOMDIR.new7x", "DICOMDIR.old"})
        EXPECT_TRUE(Exists(name)) << name;
}

TEST_F(Creation, RemovesStraysWhereThereWasNoDicomdirYet) {
    Write("A", Instance(1));
    Write("DICOMDIR.new0", Instance(2));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n0\tA\n");
    EXPECT_FALSE(Exists("DICOMDIR.new0"));
    EXPECT_EQ(RecordsOf(Open().get()).size(), 4u);
}

TEST_F(Creation, LeavesTheDicomdirOnDemandWhenNothingIsAccepted) {
    Write("A", InstanceFile());
    Create();
    const Bytes before = ReadFile(medium_.Path("DICOMDIR"));
    options_.flags = PG_DICOMDIR_NEVER_EMPTY;
    EXPECT_EQ(Create("STD-DEN"), PG_CREATION_NOTHING_ACCEPTED);
    EXPECT_EQ(ReadFile(medium_.Path("DICOMDIR")), before);
    EXPECT_EQ(ListLines(), "5\tA\n4\tDICOMDIR\n2\tdcmdir.lst\n");
    EXPECT_EQ(Create(), 0u);
}

// A referenced file ID was cut, and led to another file or to none.
TEST_F(Creation, RefusesAFileWhoseIdDoesNotFit) {
    if (kIsWindows) GTEST_SKIP() << "paths are shorter here";
    const std::string folder(200, 'D');
    Write(folder + "/" + std::string(58, 'F'), Instance(1));
    Write(folder + "/" + std::string(59, 'G'), Instance(2));
    EXPECT_EQ(Create(), 0u);
    const std::string fits = folder + "\\" + std::string(58, 'F');
    EXPECT_EQ(ListLines(),
              "2\tdcmdir.lst\n1\t" + folder + "\\" + std::string(59, 'G') + "\n0\t" + fits + "\n");
    EXPECT_EQ(TextOf(Child(RecordOf(Open().get(), "IMAGE "), 0x0004, 0x1500)).substr(0, 259), fits);
}

// The files behind the names that these seem to have were read.
TEST_F(Creation, RefusesNamesWithBackslashesAndDoesNotEnterThem) {
    if (kIsWindows) GTEST_SKIP() << "there are none here";
    Write("A/B", Instance(1));
    Write("A\\B", Instance(2));
    Write("C\\D/E", Instance(3));
    Write("C/D/E", Instance(4));
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A\\B||1;C\\D||1;dcmdir.lst||2;B|A|0;E|C\\D|0;");
    EXPECT_EQ(ListLines(), "1\tA\\B\n1\tC\\D\n2\tdcmdir.lst\n0\tA\\B\n0\tC\\D\\E\n");
    EXPECT_EQ(RecordsOf(Open().get()).size(), 5u);
}

TEST_F(Creation, MakesUpMissingKeysOnDemand) {
    const InstanceFile file = InstanceFile().Patient("", "X").Set(0x0020, 0x0011, "IS", "");
    Write("A", file);
    Create();
    EXPECT_EQ(Child(RecordOf(Open().get(), "PATIENT "), 0x0010, 0x0020)->length, 0u);
    options_.fillMissingKeys = 1;
    Create();
    const DataSet root = Open();
    const auto key = [&](const char* type, uint16_t group, uint16_t element) {
        return TextOf(Child(RecordOf(root.get(), type), group, element));
    };
    EXPECT_EQ(Pattern(key("PATIENT ", 0x0010, 0x0020)), "ZORVA_PATID_######");
    EXPECT_EQ(Pattern(key("STUDY ", 0x0020, 0x0010)), "ZORVA_STID_#####");
    EXPECT_EQ(Pattern(key("STUDY ", 0x0008, 0x0020)), "########");
    EXPECT_EQ(Pattern(key("STUDY ", 0x0008, 0x0030)), "######");
    EXPECT_EQ(Pattern(key("SERIES", 0x0020, 0x0011))[0], '#');
}

TEST_F(Creation, LeavesKeysAloneThatAreThere) {
    Write("A", InstanceFile()
                   .Set(0x0020, 0x0010, "SH", "ST")
                   .Set(0x0008, 0x0020, "DA", "19990101")
                   .Set(0x0008, 0x0030, "TM", "010203")
                   .Remove(0x0020, 0x0011));
    options_.fillMissingKeys = 1;
    Create();
    const DataSet root = Open();
    EXPECT_EQ(TextOf(Child(RecordOf(root.get(), "PATIENT "), 0x0010, 0x0020)), "ID1 ");
    EXPECT_EQ(TextOf(Child(RecordOf(root.get(), "STUDY "), 0x0020, 0x0010)), "ST");
    EXPECT_EQ(TextOf(Child(RecordOf(root.get(), "STUDY "), 0x0008, 0x0020)), "19990101");
    EXPECT_EQ(TextOf(Child(RecordOf(root.get(), "SERIES"), 0x0020, 0x0011)), "0 ");
}

TEST_F(Creation, VisitsADirectoryThatALinkLeadsBackToOnce) {
    Write("SUB/A", InstanceFile());
    std::error_code error;
    std::filesystem::create_directory_symlink(Directory(), medium_.Path("SUB/LOOP"), error);
    if (error) GTEST_SKIP() << "no links here";
    options_.flags = PG_DICOMDIR_NO_LIST;
    EXPECT_EQ(Create(), 0u);
    EXPECT_EQ(seen_, "A|SUB|0;");
}

TEST(BuildDicomdir, RefusesNullArguments) {
    const TempDir directory;
    PGX_List patients;
    EXPECT_EQ(pgBuildDicomdir(nullptr, directory.Path(".").c_str()), 1u);
    EXPECT_EQ(pgBuildDicomdir(&patients, nullptr), 1u);
    EXPECT_FALSE(std::filesystem::exists(directory.Path("DICOMDIR")));
}

TEST(BuildDicomdir, HasADefaultForTheFileSetId) {
    const TempDir directory;
    PGX_List patients;
    for (const char* id : {static_cast<const char*>(nullptr), ""}) {
        EXPECT_EQ(pgBuildDicomdirEx(&patients, directory.Path(".").c_str(), id), 0u);
        const DataSet root(pgOpenDataSetFile(directory.Path("DICOMDIR").c_str(), kLoadAll));
        EXPECT_EQ(TextOf(Child(root.get(), 0x0004, 0x1130)), "KIT_ZORVA_2865");
    }
}

TEST(BuildDicomdir, ListsPathsBelowADirectoryThatIsGivenWithABackslash) {
    Medium medium;
    medium.Write("A", InstanceFile());
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    PGX_List patients;
    ASSERT_EQ(
        pgAddFile(&patients, medium.Directory().c_str(), medium.Path("A").c_str(), "", &options),
        0u);
    EXPECT_EQ(pgBuildDicomdir(&patients, (medium.Directory() + "\\").c_str()), 0u);
    EXPECT_EQ(TextFile(medium.Path("dcmdir.lst")), "0\tA\n");
    EXPECT_NE(medium.Open(), nullptr);
    pgEmptyPatientList(&patients);
}

TEST(BuildDicomdir, AppendsItsLeavesToTheList) {
    const TempDir directory;
    PGX_List patients;
    auto* patient = new PGX_DicomDirPatientNode;
    auto* study = new PGX_DicomDirStudyNode;
    auto* series = new PGX_DicomDirSeriesNode;
    auto* leaf = new PGX_DicomDirLeafNode;
    patients.AddTail(patient);
    patient->studies.AddTail(study);
    study->series.AddTail(series);
    series->leaves.AddTail(leaf);
    std::copy_n("SUB\\A", 5, leaf->referencedFileId);
    std::copy_n("PLAN", 5, leaf->recordType);
    leaf->referencedDataSetSize = -2;  // 4 GiB less two bytes
    EXPECT_EQ(pgBuildDicomdir(&patients, directory.Path(".").c_str()), 0u);
    EXPECT_EQ(TextFile(directory.Path("dcmdir.lst")), "0\tSUB\\A\n");
    const DataSet root(pgOpenDataSetFile(directory.Path("DICOMDIR").c_str(), kLoadAll));
    PGX_Node* const record = RecordOf(root.get(), "PLAN");
    EXPECT_EQ(KeysOfLeaf(record), "0008,0005 0020,0013 2137,0010 2137,1040");
    EXPECT_EQ(TextOf(Child(record, 0x2137, 0x1040)), "4294967294");
    pgEmptyPatientList(&patients);
}

}  // namespace
