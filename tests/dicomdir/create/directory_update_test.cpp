// A DICOMDIR that is changed: what is added, what is removed, and what stays as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pgkit/dicomdir_update.h>

#include <string>
#include <vector>

#include "dicomdir/create/scan_fixture.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/kinds_of_files.h"
#include "support/patient_list.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using testing::HasSubstr;

// Two patients, as another program has listed them: with elements that this library does not know.
DirectoryBuilder ForeignDirectory() {
    DirectoryBuilder directory;
    for (const char* const id : {"ID1", "ID2"}) {
        const size_t patient = directory.Patient(id, "DOE^JOHN");
        directory[patient].Set(0x0010, 0x4000, "LT", "A comment");
        const std::string uid = id == std::string("ID1") ? "1.2" : "1.3";
        const size_t study = directory.Study(patient, uid);
        directory[study].Set(0x0009, 0x0010, "LO", "MAKER").Set(0x0009, 0x1001, "LO", "Private");
        const size_t series = directory.Series(study, uid + ".1", "CT");
        const size_t image = directory.Image(series, uid + ".1.1", 1, "IMG\\" + std::string(id));
        directory[image].Set(0x0009, 0x0010, "LO", "MAKER").Set(0x0009, 0x1002, "UN", "\1\2\3\4");
        const size_t other = directory.Child(series, "PRIVATE");
        directory[other].Set(0x0004, 0x1432, "UI", "1.2.3.4");
    }
    return directory;
}

// The type of every record that can be reached, in the order of the links, with its children:
// "PATIENT(STUDY(SERIES(IMAGE PRIVATE)))".
std::string Links(PGX_Node* root, uint32_t offset) {
    std::string text;
    size_t steps = 0;
    while (offset != 0 && ++steps < 100) {
        PGX_Node* record = nullptr;
        for (PGX_Node* item : RecordsOf(root)) {
            if (item->fileOffset == offset + 8) record = item;
        }
        if (record == nullptr) return text + "LOST";
        std::string type = TextOf(Child(record, 0x0004, 0x1430));
        if (type.ends_with(' ')) type.pop_back();
        const std::string below = Links(root, Child(record, 0x0004, 0x1420)->GetULValue());
        text += (text.empty() ? "" : " ") + type + (below.empty() ? "" : "(" + below + ")");
        offset = Child(record, 0x0004, 0x1400)->GetULValue();
    }
    return text;
}

class DirectoryUpdate : public ScanTest {
  protected:
    void* Start() {
        void* update = nullptr;
        CapturePrinted([&] {
            update = pgxStartDicomdirUpdate(Directory().c_str(), "", &options_, &problem_);
        });
        return update;
    }
    void StartFrom(const DirectoryBuilder& directory) {
        Write("DICOMDIR", directory.Build());
        update_ = Start();
        ASSERT_NE(update_, nullptr) << problem_;
    }
    uint32_t Add(const std::string& name, const InstanceFile& file) {
        const std::string path = outside_.Write("F", file.Data());
        return pgxUpdateAddFile(update_, name.c_str(), path.c_str());
    }
    uint32_t End() {
        const uint32_t result = pgxEndDicomdirUpdate(update_);
        root_ = Open();
        return result;
    }
    std::string Links() {
        return ::Links(root_.get(), Child(root_.get(), 0x0004, 0x1200)->GetULValue());
    }
    std::string Hierarchy() {
        PatientList patients;
        CapturePrinted(
            [&] { patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str())); });
        return Outline(patients.get());
    }
    std::string Content() { return TextFile(medium_.Path("DICOMDIR")); }

    void* update_ = nullptr;
    int32_t problem_ = -1;
    DataSet root_;
};

TEST_F(DirectoryUpdate, AddsAFileBehindThoseOfItsSeries) {
    StartFrom(ForeignDirectory());
    EXPECT_EQ(Add("NEW", Instance(7).Patient("ID1", "DOE^JOHN").Study("1.2").Series("1.2.1")), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(),
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE IMAGE))) "
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE)))");
    EXPECT_EQ(Hierarchy(), "ID1(1.2(1.2.1(1.2.1.1 1.2.3.4.7))) ID2(1.3(1.3.1(1.3.1.1)))");
}

TEST_F(DirectoryUpdate, AddsStudiesAndPatients) {
    StartFrom(ForeignDirectory());
    EXPECT_EQ(Add("NEW1", Instance(1).Patient("ID1", "DOE^JOHN").Study("1.9").Series("1.9.1")), 0u);
    EXPECT_EQ(Add("NEW2", Instance(2).Patient("ID1", "DOE^JOHN").Study("1.2").Series("1.2.9")), 0u);
    EXPECT_EQ(Add("NEW3", Instance(3).Patient("ID3", "ROE")), 0u);
    EXPECT_EQ(Add("NEW4", Instance(4).Patient("ID3", "ROE")), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(),
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE) SERIES(IMAGE)) STUDY(SERIES(IMAGE))) "
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE))) PATIENT(STUDY(SERIES(IMAGE IMAGE)))");
    EXPECT_EQ(Hierarchy(),
              "ID1(1.2(1.2.1(1.2.1.1) 1.2.9(1.2.3.4.2)) 1.9(1.9.1(1.2.3.4.1))) "
              "ID2(1.3(1.3.1(1.3.1.1))) ID3(1.2.3(1.2.3.4(1.2.3.4.3 1.2.3.4.4)))");
}

TEST_F(DirectoryUpdate, KeepsEveryElementOfTheRecordsThatStay) {
    const DirectoryBuilder directory = ForeignDirectory();
    Write("DICOMDIR", directory.Build());
    std::vector<std::string> former;
    {
        const DataSet root = Open();
        for (PGX_Node* record : RecordsOf(root.get()))
            former.push_back(Describe(record));
    }
    StartFrom(directory);
    EXPECT_EQ(Add("NEW", Instance(1)), 0u);
    EXPECT_EQ(End(), 0u);
    std::vector<std::string> now;
    for (PGX_Node* record : RecordsOf(root_.get()))
        now.push_back(Describe(record));
    ASSERT_EQ(now.size(), former.size() + 3);
    now.resize(former.size());
    EXPECT_EQ(now, former);
    PGX_Node* const image = ImageRecord(root_.get(), "IMG\\ID1");
    EXPECT_EQ(TextOf(Child(image, 0x0009, 0x1002)), "\1\2\3\4");
    EXPECT_EQ(TextOf(Child(RecordsOf(root_.get())[0], 0x0010, 0x4000)), "A comment ");
}

TEST_F(DirectoryUpdate, RemovesAStudyAndPatientsWithoutStudies) {
    StartFrom(ForeignDirectory());
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 0);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2.1"), 0);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, ""), 0);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(), "PATIENT(STUDY(SERIES(IMAGE PRIVATE)))");
    EXPECT_EQ(RecordsOf(root_.get()).size(), 5u);
    EXPECT_EQ(Hierarchy(), "ID2(1.3(1.3.1(1.3.1.1)))");
}

TEST_F(DirectoryUpdate, LeavesNoLinkToWhatIsRemovedFromTheEnd) {
    StartFrom(ForeignDirectory());
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.3"), 1);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(), "PATIENT(STUDY(SERIES(IMAGE PRIVATE)))");
    EXPECT_EQ(Child(root_.get(), 0x0004, 0x1202)->GetULValue(),
              Child(root_.get(), 0x0004, 0x1200)->GetULValue());
}

// A record that no link reached, and stayed, linked one that was gone.
TEST_F(DirectoryUpdate, LeavesNoLinkFromRecordsThatNobodyReaches) {
    DirectoryBuilder directory = ForeignDirectory();
    const size_t lost = directory.Child(4, "IMAGE");
    directory[3].next = std::nullopt;  // the last one in front of the PRIVATE record
    directory[4].next = 1;
    directory[4].lower = 2;
    directory[lost].next = 3;
    StartFrom(directory);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(), "PATIENT(STUDY(SERIES(IMAGE PRIVATE)))");
    PGX_Node* const unreached = RecordsOf(root_.get())[0];
    EXPECT_EQ(TextOf(Child(unreached, 0x0004, 0x1430)), "PRIVATE ");
    EXPECT_EQ(Child(unreached, 0x0004, 0x1400)->GetULValue(), 0u);
    EXPECT_EQ(Child(unreached, 0x0004, 0x1420)->GetULValue(), 0u);
}

TEST_F(DirectoryUpdate, KeepsAPatientWithAnotherStudy) {
    DirectoryBuilder directory = ForeignDirectory();
    const size_t study = directory.Study(0, "1.4");
    directory.Image(directory.Series(study, "1.4.1", "MR"), "1.4.1.1", 1, "IMG\\4");
    StartFrom(directory);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, " 1.2 "), 1);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(), "ID1(1.4(1.4.1(1.4.1.1))) ID2(1.3(1.3.1(1.3.1.1)))");
}

TEST_F(DirectoryUpdate, AddsAgainWhatWasRemoved) {
    StartFrom(ForeignDirectory());
    const InstanceFile file = Instance(1).Patient("ID1", "DOE^JOHN").Study("1.2").Series("1.2.1");
    EXPECT_EQ(Add("IMG\\ID1", file), PG_INSTANCE_KNOWN);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(Add("IMG\\ID1", file), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(), "ID2(1.3(1.3.1(1.3.1.1))) ID1(1.2(1.2.1(1.2.3.4.1)))");
}

TEST_F(DirectoryUpdate, RemovesWhatItHasAdded) {
    StartFrom(ForeignDirectory());
    EXPECT_EQ(Add("NEW", Instance(1).Study("1.9")), 0u);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.9"), 1);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(RecordsOf(root_.get()).size(), ForeignDirectory().Count());
}

// The hierarchy has one patient of two records; the first of them goes.
TEST_F(DirectoryUpdate, AddsToAPatientOneOfWhoseRecordsWasRemoved) {
    DirectoryBuilder directory = ForeignDirectory();
    const size_t again = directory.Patient("ID1", "DOE^JOHN");
    directory.Image(directory.Series(directory.Study(again, "1.4"), "1.4.1", "MR"), "1.4.1.1", 1,
                    "IMG\\4");
    StartFrom(directory);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(Add("NEW", Instance(1).Patient("ID1", "DOE^JOHN").Study("1.5")), 0u);
    EXPECT_EQ(Add("NEW2", Instance(2).Patient("ID1", "DOE^JOHN").Study("1.4").Series("1.4.1")), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(),
              "ID2(1.3(1.3.1(1.3.1.1))) "
              "ID1(1.4(1.4.1(1.4.1.1 1.2.3.4.2)) 1.5(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(DirectoryUpdate, ListsNoFileTwice) {
    StartFrom(ForeignDirectory());
    // The name is taken, in whatever case; or the instance is.
    EXPECT_EQ(Add("img\\id1", Instance(1)), PG_INSTANCE_KNOWN);
    EXPECT_EQ(Add("IMG/ID1", Instance(1)), PG_INSTANCE_KNOWN);
    const InstanceFile known =
        InstanceFile().Instance("1.2.1.1").Patient("ID1", "DOE^JOHN").Study("1.2").Series("1.2.1");
    EXPECT_EQ(Add("NEW", known), PG_INSTANCE_KNOWN);
    EXPECT_EQ(Add("NEW", Instance(1)), 0u);
    EXPECT_EQ(Add("NEW", Instance(2)), PG_INSTANCE_KNOWN);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(RecordsOf(root_.get()).size(), ForeignDirectory().Count() + 3);
}

TEST_F(DirectoryUpdate, AppendsToTheAcceptanceList) {
    Write("A", Instance(1));
    pgCreateDicomdirEx(Directory().c_str(), "", nullptr, nullptr, nullptr);
    update_ = Start();
    EXPECT_EQ(pgxUpdateAddFile(update_, "A", medium_.Path("A").c_str()), PG_INSTANCE_KNOWN);
    EXPECT_EQ(Add("B", Instance(2)), 0u);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n0\tA\n");
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(ListLines(), "2\tdcmdir.lst\n0\tA\n6\tA\n0\tB\n");
}

TEST_F(DirectoryUpdate, ChangesNothingWhenItIsCancelledOrRefused) {
    StartFrom(ForeignDirectory());
    const std::string former = Content();
    EXPECT_EQ(Add("NEW", Instance(1)), 0u);
    pgxCancelDicomdirUpdate(update_);
    EXPECT_EQ(Content(), former);
    EXPECT_FALSE(Exists("dcmdir.lst"));

    options_.flags = PG_DICOMDIR_ALL_OR_NOTHING;
    update_ = Start();
    EXPECT_EQ(Add("NEW", Instance(1)), 0u);
    EXPECT_EQ(Add("NEW", Instance(1)), PG_INSTANCE_KNOWN);
    EXPECT_EQ(End(), PG_CREATION_FILES_REFUSED);
    EXPECT_EQ(Content(), former);

    options_.flags = PG_DICOMDIR_NEVER_EMPTY;
    update_ = Start();
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.3"), 1);
    EXPECT_EQ(End(), PG_CREATION_NOTHING_ACCEPTED);
    EXPECT_EQ(Content(), former);

    options_.flags = 0;
    update_ = Start();
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.2"), 1);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.3"), 1);
    EXPECT_EQ(End(), 0u);
    EXPECT_TRUE(RecordsOf(root_.get()).empty());
    update_ = Start();
    ASSERT_NE(update_, nullptr) << problem_;
    EXPECT_EQ(Add("NEW", Instance(1)), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Hierarchy(), "ID1(1.2.3(1.2.3.4(1.2.3.4.1)))");
}

TEST_F(DirectoryUpdate, SaysWhyItCannotStart) {
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_NO_DICOMDIR);
    EXPECT_EQ(pgxStartDicomdirUpdate(nullptr, nullptr, nullptr, nullptr), nullptr);

    Write("DICOMDIR", Bytes{1, 2, 3});
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_NOT_A_DICOMDIR);
    Write("DICOMDIR", InstanceFile());
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_NOT_A_DICOMDIR);

    DirectoryBuilder directory = ForeignDirectory();
    Bytes cut = directory.Build();
    cut.resize(cut.size() - 20);
    Write("DICOMDIR", cut);
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_DAMAGED);
    directory[1].nextOffset = 12;
    Write("DICOMDIR", directory.Build());
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_DAMAGED);
    directory = ForeignDirectory();
    directory.rootOffset = 12;
    Write("DICOMDIR", directory.Build());
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(problem_, PGX_UPDATE_DAMAGED);
}

TEST_F(DirectoryUpdate, ToleratesNull) {
    EXPECT_EQ(pgxUpdateAddFile(nullptr, "A", "A"), 0xFFFFFFFF);
    EXPECT_EQ(pgxUpdateRemoveStudy(nullptr, "1"), 0);
    EXPECT_EQ(pgxEndDicomdirUpdate(nullptr), 0xFFFFFFFF);
    pgxCancelDicomdirUpdate(nullptr);
    StartFrom(ForeignDirectory());
    EXPECT_EQ(pgxUpdateAddFile(update_, nullptr, "A"), PG_INVALID_FILE_NAME);
    EXPECT_EQ(pgxUpdateAddFile(update_, "A", nullptr), PG_INVALID_FILE_NAME);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, nullptr), 0);
    pgxCancelDicomdirUpdate(update_);
}

// Everything at the root is a patient to a browse, and ends it where nothing is below.
TEST_F(DirectoryUpdate, KeepsWhatBelongsToNoPatientBehindThePatients) {
    DirectoryBuilder directory = ForeignDirectory();
    const size_t palette = directory.Child(std::nullopt, "PALETTE");
    directory[palette].Set(0x0070, 0x0080, "CS", "HOT_IRON");
    options_.flags = PG_DICOMDIR_STANDARD_RECORDS;
    StartFrom(directory);
    EXPECT_EQ(Add("NEW", Instance(1).Patient("", "")), 0u);
    const std::vector<KindOfFile> kinds = EveryKindOfFile();
    for (const size_t i : {size_t{0}, kinds.size() - 1, kinds.size() - 2})
        EXPECT_EQ(Add("K" + std::to_string(i), kinds[i].file), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_EQ(Links(),
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE)) STUDY(SERIES(RT DOSE))) "
              "PATIENT(STUDY(SERIES(IMAGE PRIVATE))) PATIENT(STUDY(SERIES(IMAGE))) "
              "PALETTE IMPLANT GROUP INVENTORY");
    EXPECT_EQ(Child(root_.get(), 0x0004, 0x1202)->GetULValue() + 8,
              ImageRecord(root_.get(), "K" + std::to_string(kinds.size() - 1))->fileOffset);
}

// A directory whose links run in circles, and are shared, is changed in finite time.
TEST_F(DirectoryUpdate, EndsWhereLinksRunInCircles) {
    DirectoryBuilder directory = ForeignDirectory();
    directory[3].next = 3;   // an image leads to itself
    directory[1].lower = 7;  // both studies have the series of the second one
    directory[5].next = 0;   // and the patients lead to each other
    StartFrom(directory);
    EXPECT_EQ(Add("NEW", Instance(1).Patient("ID1", "DOE^JOHN").Study("1.2").Series("1.3.1")), 0u);
    EXPECT_EQ(pgxUpdateRemoveStudy(update_, "1.3"), 1);
    EXPECT_EQ(Add("NEW2", Instance(2).Patient("ID2", "DOE^JOHN").Study("1.3").Series("1.3.1")), 0u);
    EXPECT_EQ(End(), 0u);
    EXPECT_THAT(Hierarchy(), HasSubstr("1.2.3.4.2"));
}

}  // namespace
