// Directories that are browsed, changed and written again: their links lead to the same records,
// wherever these stand then.
#include <gtest/gtest.h>

#include <string>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::Bytes;
using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::kPart10Big;
using pgkit_test::kPart10Explicit;
using pgkit_test::kPart10Implicit;
using pgkit_test::ReadFile;
using pgkit_test::TempDir;
using pgkit_test::TestData;

constexpr uint32_t kWithDelimiters = kPart10Explicit | PG_UNDEFINED_LENGTHS;

// Two patients. Records: 0 P, 1 S, 2 E, 3 to 5 images, 6 Q, ...
DirectoryBuilder FourImages() {
    DirectoryBuilder directory;
    size_t series =
        directory.Series(directory.Study(directory.Patient("P", "DOE"), "S"), "E", "CT");
    for (int i = 1; i <= 3; ++i)
        directory.Image(series, std::to_string(i), i);
    series = directory.Series(directory.Study(directory.Patient("Q", "ROE"), "T"), "F", "CT");
    directory.Image(series, "4", 1);
    return directory;
}

PGX_Node* Records(BrowsedDirectory& browsed) { return browsed->dataSet->FindNode(0x0004, 0x1220); }

void Link(PGX_Node* offsetElement, PGX_Node* target) {
    offsetElement->offsetPending = 1;
    offsetElement->offsetTarget = target;
}

class SavedDirectory : public testing::Test {
  protected:
    Bytes Save(BrowsedDirectory& browsed, int32_t mode) {
        EXPECT_EQ(browsed->dataSet->SaveDataSetAsEx(path_.c_str(), mode), 0u);
        return ReadFile(path_);
    }
    Bytes Save(BrowsedDirectory& browsed, int32_t mode, PGX_Node* firstRecord) {
        Link(browsed->dataSet->FindNode(0x0004, 0x1200), firstRecord);
        return Save(browsed, mode);
    }

    TempDir files_;
    const std::string path_ = files_.Path("SAVED");
};

TEST_F(SavedDirectory, BrowsesBackEqualInEveryEncoding) {
    for (const int32_t mode : {kPart10Explicit, kPart10Implicit, kWithDelimiters, kPart10Big}) {
        BrowsedDirectory browsed(FourImages());
        BrowsedDirectory saved(Save(browsed, mode));
        EXPECT_EQ(saved.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))") << mode;
        EXPECT_EQ(saved.Messages(), "") << mode;
    }
}

TEST_F(SavedDirectory, HasOffsetsThatDifferWhenTheRecordsMoved) {
    BrowsedDirectory browsed(FourImages());
    browsed.Record(0)->InsertNode(0x0010, 0x4000, "a comment that moves all other records", 38);
    BrowsedDirectory saved(Save(browsed, kPart10Explicit));
    EXPECT_EQ(saved.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))");
    EXPECT_EQ(saved.Messages(), "");
    PGX_Node* lower = saved.Record(0)->FindNode(0x0004, 0x1420);
    EXPECT_EQ(lower->GetULValue() + 8, saved.Record(1)->fileOffset);
}

TEST_F(SavedDirectory, LeadsToItsFirstAndLastRecordWhereverTheyMoved) {
    BrowsedDirectory browsed(FourImages());
    const uint32_t last = browsed.Record(6)->fileOffset - 8;
    browsed->dataSet->InsertNode(0x0004, 0x1202, &last, 4);
    const uint32_t oldFirst = browsed->dataSet->FindNode(0x0004, 0x1200)->GetULValue();
    BrowsedDirectory saved(Save(browsed, kWithDelimiters));
    browsed.Record(0)->InsertNode(0x0010, 0x4000, "a comment that moves all other records", 38);
    BrowsedDirectory moved(Save(browsed, kPart10Big));
    for (BrowsedDirectory* directory : {&saved, &moved}) {
        const auto offset = [&](uint16_t element) {
            return (*directory)->dataSet->FindNode(0x0004, element)->GetULValue();
        };
        EXPECT_EQ(offset(0x1200) + 8, directory->Record(0)->fileOffset);
        EXPECT_EQ(offset(0x1202) + 8, directory->Record(6)->fileOffset);
    }
    EXPECT_EQ(browsed->dataSet->FindNode(0x0004, 0x1200)->GetULValue(), oldFirst);
}

TEST_F(SavedDirectory, CanBeBrowsedAndSavedAgain) {
    BrowsedDirectory browsed(FourImages());
    for (const int32_t mode : {kPart10Implicit, kPart10Explicit, kPart10Big}) {
        browsed.Record(1)->InsertNode(0x0008, 0x1030, "another study", 13);
        BrowsedDirectory saved(Save(browsed, mode));
        EXPECT_EQ(saved.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))") << mode;
        browsed->Browse(nullptr, nullptr);
        EXPECT_EQ(browsed.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))") << mode;
    }
}

TEST_F(SavedDirectory, CanBeSavedTwice) {
    BrowsedDirectory browsed(FourImages());
    browsed.Record(0)->InsertNode(0x0010, 0x4000, "a comment that moves all other records", 38);
    for (const int32_t mode : {kPart10Implicit, kPart10Explicit, kPart10Big}) {
        BrowsedDirectory saved(Save(browsed, mode));
        EXPECT_EQ(saved.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))") << mode;
        EXPECT_EQ(saved.Messages(), "") << mode;
    }
}

// As it would for a caller who wants the record to be the last of its level.
TEST_F(SavedDirectory, KeepsALinkThatWasChangedAfterASave) {
    BrowsedDirectory browsed(FourImages());
    Save(browsed, kPart10Explicit);
    const uint32_t none = 0;
    browsed.Record(3)->FindNode(0x0004, 0x1400)->SetValue(&none, 4);
    BrowsedDirectory saved(Save(browsed, kPart10Implicit));
    EXPECT_EQ(saved.Outline(), "P(S(E(1))) Q(T(F(4)))");
}

TEST_F(SavedDirectory, MayLeaveOutARecordThatIsLinkedNoMore) {
    BrowsedDirectory browsed(FourImages());
    Link(browsed.Record(3)->FindNode(0x0004, 0x1400), browsed.Record(5));
    Records(browsed)->RemoveNode(browsed.Record(4));
    BrowsedDirectory saved(Save(browsed, kPart10Explicit));
    EXPECT_EQ(saved.Outline(), "P(S(E(1 3))) Q(T(F(4)))");
    EXPECT_EQ(saved.Messages(), "");
}

TEST_F(SavedDirectory, MayBeginWithAnotherPatient) {
    BrowsedDirectory browsed(FourImages());
    BrowsedDirectory saved(Save(browsed, kPart10Explicit, browsed.Record(6)));
    EXPECT_EQ(saved.Outline(), "Q(T(F(4)))");
}

// What is removed from the hierarchy is not removed from the tree.
TEST_F(SavedDirectory, KeepsTheRecordsOfRemovedObjects) {
    BrowsedDirectory browsed(FourImages());
    pgRemoveLeaf(browsed->GetPatientList(), &browsed.Leaf(1));
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 3))) Q(T(F(4)))");
    BrowsedDirectory saved(Save(browsed, kPart10Explicit));
    EXPECT_EQ(saved.Outline(), "P(S(E(1 2 3))) Q(T(F(4)))");
}

class RealDirectory : public SavedDirectory {
  protected:
    BrowsedDirectory browsed_{ReadFile(TestData("dicomdir/DICOMDIR_implicit"))};
};

TEST_F(RealDirectory, InImplicitVrIsBrowsed) {
    EXPECT_EQ(browsed_->IsDicomDir(), 1);
    EXPECT_EQ(browsed_.Messages(), "");
    EXPECT_EQ(browsed_->leafCount, 31);
    ASSERT_EQ(browsed_->GetPatientList()->GetCount(), 2);
    EXPECT_STREQ(browsed_.Patient().patientId, "77654033");
    EXPECT_STREQ(browsed_.Patient().patientsName, "Doe^Archibald");
    ASSERT_EQ(browsed_.Patient().studies.GetCount(), 2);
    EXPECT_STREQ(browsed_.Study().studyDate, "20010101");
    EXPECT_STREQ(browsed_.Study().studyDescription, "XR C Spine Comp Min 4 Views");
    EXPECT_STREQ(browsed_.Study().modality, "CR");
    EXPECT_STREQ(browsed_.Series().seriesNumber, "1");
    EXPECT_EQ(browsed_.Patient(1).studies.GetCount(), 4);
    EXPECT_EQ(browsed_.Leaf().leafType, PG_LEAF_IMAGE);
    EXPECT_STREQ(browsed_.Leaf().sopClassUid, "1.2.840.10008.5.1.4.1.1.1");
    EXPECT_STREQ(browsed_.Leaf().transferSyntaxUid, "1.2.840.10008.1.2.1");
}

TEST_F(RealDirectory, BrowsesBackEqualWhenItIsSaved) {
    for (const int32_t mode : {kPart10Implicit, kPart10Explicit}) {
        BrowsedDirectory saved(Save(browsed_, mode));
        EXPECT_EQ(saved.Outline(), browsed_.Outline()) << mode;
        EXPECT_EQ(saved.Messages(), "") << mode;
        // Saving puts the offsets into the tree and takes the marks off.
        CapturePrinted([&] { browsed_->Browse(nullptr, nullptr); });
    }
}

}  // namespace
