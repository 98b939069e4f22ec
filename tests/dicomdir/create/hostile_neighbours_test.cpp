// Files that a DICOMDIR accepts although their sequences hold what no directory record can carry.
// What is sound of them goes into their records; the files beside them lose nothing.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <ostream>
#include <string>
#include <vector>

#include "dicomdir/create/medium.h"
#include "dicomdir/create/sop_classes.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/patient_list.h"

namespace {

using namespace pgkit_test;

// What follows a code value in the item of a report's concept name, and what the record then has.
struct Neighbour {
    std::string name;
    Bytes content;
    std::string copy;
};

void PrintTo(const Neighbour& neighbour, std::ostream* out) { *out << neighbour.name; }

constexpr char kCodeAlone[] = "(0040,A043)SQ:18{[(0008,0100)SH:2]}";

StreamBuilder Fragments() {
    StreamBuilder content;
    content.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).Item(4).Text("abcd").EndSequence();
    return content;
}

StreamBuilder PixelDataOfUnknownVr() {
    StreamBuilder content;
    content.Header(0x7FE0, 0x0010, "UN", kUndefined).Item(10).U16(8).U16(0x100).U32(2).Text("A2");
    return content.EndSequence();
}

StreamBuilder SequenceOfUnknownVr() {
    StreamBuilder content;
    content.Header(0x0040, 0xA168, "UN", kUndefined).Item(10).U16(8).U16(0x100).U32(2).Text("A2");
    return content.EndSequence();
}

Bytes Element(uint16_t group, uint16_t element, std::string_view vr, std::string_view value) {
    return StreamBuilder().Element(group, element, vr, value).Data();
}

Bytes PrivateSequence() {
    StreamBuilder content;
    content.Element(0x0009, 0x0010, "LO", "ME").Sequence(0x0009, 0x1001).Item();
    return content.Element(0x0009, 0x0010, "LO", "ME").EndItem().EndSequence().Data();
}

const std::vector<Neighbour>& Neighbours() {
    static const std::vector<Neighbour> all = {
        {"Sound", Element(0x0008, 0x0104, "LO", "name"),
         "(0040,A043)SQ:30{[(0008,0100)SH:2 (0008,0104)LO:4]}"},
        // These read as an item, or as nothing, in the DICOMDIR and ended its records there.
        {"ItemTag", Element(0xFFFE, 0xE000, "", "abcd"), kCodeAlone},
        {"OtherTagOfDelimiters", Element(0xFFFE, 0x0001, "", "\x04\x05"), kCodeAlone},
        {"TagWithoutMeaning", Element(0xFFFF, 0x0001, "LO", "x "), kCodeAlone},
        {"CommandElement", Element(0x0000, 0x0002, "UI", "1."), kCodeAlone},
        {"MetaElement", Element(0x0002, 0x0010, "UI", "1.2.840.10008.1.2."), kCodeAlone},
        {"LinkOfARecord", StreamBuilder().ElementUL(0x0004, 0x1400, 400).Data(), kCodeAlone},
        {"GroupLength", StreamBuilder().ElementUL(0x0008, 0x0000, 400).Data(), kCodeAlone},
        // Creation failed, and left an empty DICOMDIR.
        {"Fragments", Fragments().Data(), kCodeAlone},
        {"PixelDataOfUnknownVr", PixelDataOfUnknownVr().Data(), kCodeAlone},
        {"ValueWithoutEnd", StreamBuilder().Header(0x0008, 0x0104, "OB", kUndefined).Data(),
         kCodeAlone},
        {"ValueBeyondTheFile", StreamBuilder().Header(0x0008, 0x0104, "UT", 3000).Data(),
         kCodeAlone},
        {"ShortValueBeyondTheFile", StreamBuilder().Header(0x0008, 0x0104, "LO", 30).Data(),
         kCodeAlone},
        {"HugeValueBeyondTheFile", StreamBuilder().Header(0x0008, 0x0104, "OB", 0xFFFFFFF0).Data(),
         kCodeAlone},
        // Readers give up the whole DICOMDIR when they show them.
        {"HalfANumber", Element(0x0028, 0x0106, "UL", "ab"), kCodeAlone},
        {"HalfATag", Element(0x0028, 0x0009, "AT", "ab"), kCodeAlone},
        // Whoever knows them from a dictionary reads items in them.
        {"UnknownPrivateValue", Element(0x0009, 0x1001, "UN", "\xFE\xFF"), kCodeAlone},
        {"UnknownVrOfPrivateValue", Element(0x0009, 0x1001, "ZZ", ""), kCodeAlone},
        {"SequenceThatIsNone", Element(0x0008, 0x1199, "UN", "abcdef"), kCodeAlone},
        // And these a record can have.
        {"ValueOfUnknownVr", StreamBuilder().Header(0x0008, 0x0120, "UR", 0).Data(),
         "(0040,A043)SQ:30{[(0008,0100)SH:2 (0008,0120)UN:0]}"},
        {"SequenceOfUnknownVr", SequenceOfUnknownVr().Data(),
         "(0040,A043)SQ:48{[(0008,0100)SH:2 (0040,A168)SQ:18{[(0008,0100)SH:2]}]}"},
        {"PrivateSequence", PrivateSequence(),
         "(0040,A043)SQ:58{[(0008,0100)SH:2 (0009,0010)LO:2 (0009,1001)SQ:18{[(0009,0010)LO:2]}]}"},
        {"OddLength", Element(0x0008, 0x0104, "LO", "odd"),
         "(0040,A043)SQ:30{[(0008,0100)SH:2 (0008,0104)LO:4]}"},
        {"CharacterSet", Element(0x0008, 0x0005, "CS", "NO SUCH "),
         "(0040,A043)SQ:34{[(0008,0100)SH:2 (0008,0005)CS:8]}"},
        {"SameElementTwice", Element(0x0008, 0x0100, "SH", "B2"),
         "(0040,A043)SQ:28{[(0008,0100)SH:2 (0008,0100)SH:2]}"},
        {"ItemsOfNothing", StreamBuilder().Sequence(0x0040, 0xA168, 8).Item(0).Data(),
         "(0040,A043)SQ:38{[(0008,0100)SH:2 (0040,A168)SQ:8{[]}]}"},
    };
    return all;
}

StreamBuilder ItemOf(const Bytes& content) {
    StreamBuilder item;
    return item.Item().Element(0x0008, 0x0100, "SH", "A1").Append(content).EndItem();
}

InstanceFile ReportOf(int number) {
    return Instance(number)
        .SopClass(kReport)
        .Study("1.9." + std::to_string(number))
        .Patient("ID" + std::to_string(number), "DOE")
        .Set(0x0008, 0x0060, "CS", "SR");
}

InstanceFile Report(int number, const Bytes& content) {
    return ReportOf(number).SetSequence(0x0040, 0xA043, ItemOf(content));
}

// The first record of this kind of the instance; a test failure when there is none.
PGX_Node* RecordOfInstance(PGX_Node* dicomdir, const std::string& instanceUid) {
    for (PGX_Node* record : RecordsOf(dicomdir)) {
        PGX_Node* const uid = record->FindNode(0x0004, 0x1511);
        if (uid != nullptr && TextOf(uid).c_str() == instanceUid) return record;
    }
    ADD_FAILURE() << "no record for " << instanceUid;
    return nullptr;
}

// Everything of a record but its links.
std::string ContentOf(PGX_Node* record) {
    std::string text;
    for (PGX_Node* key = record == nullptr ? nullptr : record->first; key != nullptr;
         key = key->next) {
        if (key->group == 0x0004 && key->element < 0x1430) continue;
        text += Describe(key) + (key->valueRep == VR_SQ ? "" : "=" + TextOf(key)) + "\n";
    }
    return text;
}

class HostileNeighbour : public testing::TestWithParam<Neighbour> {
  protected:
    // Two that stand behind the hostile one in the DICOMDIR, whose records are those that they have
    // without it.
    void ExpectGoodOnes() {
        const Medium alone;
        alone.Write("B", Good(2));
        alone.Write("C", Good(3));
        ASSERT_EQ(Create(alone), 0u);
        const DataSet expected = alone.Open();
        const DataSet written = medium_.Open();
        for (const char* uid : {"1.2.3.4.2", "1.2.3.4.3"}) {
            EXPECT_EQ(ContentOf(RecordOfInstance(written.get(), uid)),
                      ContentOf(RecordOfInstance(expected.get(), uid)));
        }
    }

    void ExpectAll() {
        EXPECT_EQ(Hierarchy(),
                  "ID1(1.9.1(1.2.3.4(1.2.3.4.1))) ID2(1.9.2(1.2.3.4(1.2.3.4.2))) "
                  "ID3(1.9.3(1.2.3.4(1.2.3.4.3)))");
        const DataSet written = medium_.Open();
        PGX_Node* const record = RecordOfInstance(written.get(), "1.2.3.4.1");
        PGX_Node* const copy = record == nullptr ? nullptr : record->FindNode(0x0040, 0xA043);
        EXPECT_EQ(Describe(copy), GetParam().copy);
        ExpectGoodOnes();
    }

    static InstanceFile Good(int number) {
        return Report(number, Element(0x0008, 0x0104, "LO", "good"));
    }

    static uint32_t Create(const Medium& medium) {
        uint32_t result = 0;
        CapturePrinted(
            [&] { result = pgCreateDicomdir(medium.Directory().c_str(), "", nullptr, nullptr); });
        return result;
    }

    PatientList Browsed() {
        PatientList patients;
        CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
        return patients;
    }

    std::string Hierarchy() { return Outline(Browsed().get()); }

    Medium medium_;
};

TEST_P(HostileNeighbour, TakesNothingFromAMedium) {
    medium_.Write("A", Report(1, GetParam().content));
    medium_.Write("B", Good(2));
    medium_.Write("C", Good(3));
    ASSERT_EQ(Create(medium_), 0u);
    ExpectAll();
}

TEST_P(HostileNeighbour, TakesNothingFromAnOffshoreDicomdir) {
    const TempDir outside;
    void* const creation =
        pgStartCreateOffshoreDicomdir(medium_.Directory().c_str(), nullptr, nullptr);
    const auto add = [&](const char* name, const InstanceFile& file) {
        const std::string path = outside.Write(name, file.Data());
        EXPECT_EQ(pgAddFileToOffshoreDicomdir(creation, name, path.c_str()), 0u);
    };
    add("A", Report(1, GetParam().content));
    add("B", Good(2));
    add("C", Good(3));
    ASSERT_EQ(pgEndCreateOffshoreDicomdir(creation), 0u);
    ExpectAll();
}

// Its record comes last in the DICOMDIR that is read, and first in the one that is written.
TEST_P(HostileNeighbour, TakesNothingFromADicomdirThatIsWrittenAgain) {
    DirectoryBuilder directory;
    for (const int number : {1, 2, 3}) {
        const std::string digit = std::to_string(number);
        const size_t series = directory.Series(
            directory.Study(directory.Patient("ID" + digit, "DOE"), "1.9." + digit), "1.2.3.4",
            "SR");
        const size_t leaf = directory.Child(series, "SR DOCUMENT");
        const Bytes content =
            number == 1 ? GetParam().content : Element(0x0008, 0x0104, "LO", "good");
        const Bytes item = ItemOf(content).Data();
        directory[leaf]
            .Set(0x0004, 0x1500, "CS", std::string(1, static_cast<char>('A' + number - 1)))
            .Set(0x0004, 0x1511, "UI", "1.2.3.4." + digit)
            .Set(0x0040, 0xA043, "SQ", std::string(item.begin(), item.end()));
    }
    directory.fileOrder = {4, 5, 6, 7, 8, 9, 10, 11, 0, 1, 2, 3};
    medium_.Write("DICOMDIR", directory.Build());
    const PatientList patients = Browsed();
    ASSERT_EQ(pgBuildDicomdir(patients.get(), medium_.Directory().c_str()), 0u);
    EXPECT_EQ(Hierarchy(),
              "ID1(1.9.1(1.2.3.4(1.2.3.4.1))) ID2(1.9.2(1.2.3.4(1.2.3.4.2))) "
              "ID3(1.9.3(1.2.3.4(1.2.3.4.3)))");
    const DataSet written = medium_.Open();
    EXPECT_EQ(Describe(RecordOfInstance(written.get(), "1.2.3.4.1")->FindNode(0x0040, 0xA043)),
              GetParam().copy);
}

INSTANTIATE_TEST_SUITE_P(Every, HostileNeighbour, testing::ValuesIn(Neighbours()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
