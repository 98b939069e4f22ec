// How offsets become links, what is marked in the tree, and what a damaged one leaves behind.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/directory_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;

// Two patients, of whom the first has two images: records 0 P, 1 S, 2 E, 3 and 4 images, 5 Q, ...
DirectoryBuilder TwoPatients() {
    DirectoryBuilder directory;
    size_t series =
        directory.Series(directory.Study(directory.Patient("P", "DOE"), "S"), "E", "CT");
    directory.Image(series, "1", 1);
    directory.Image(series, "2", 2);
    series = directory.Series(directory.Study(directory.Patient("Q", "ROE"), "T"), "F", "CT");
    directory.Image(series, "3", 1);
    return directory;
}

constexpr char kWhole[] = "P(S(E(1 2))) Q(T(F(3)))";

PGX_Node* NextOf(PGX_Node* item) { return item->FindNode(0x0004, 0x1400); }
PGX_Node* LowerOf(PGX_Node* item) { return item->FindNode(0x0004, 0x1420); }

TEST(RecordLinks, LeadToTheItemsAtTheirOffsets) {
    BrowsedDirectory browsed(TwoPatients());
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(RecordLinks, MarkTheOffsetElements) {
    BrowsedDirectory browsed(TwoPatients());
    EXPECT_EQ(NextOf(browsed.Record(0))->offsetPending, 1u);
    EXPECT_EQ(NextOf(browsed.Record(0))->offsetTarget, browsed.Record(5));
    EXPECT_EQ(LowerOf(browsed.Record(0))->offsetPending, 1u);
    EXPECT_EQ(LowerOf(browsed.Record(0))->offsetTarget, browsed.Record(1));
    EXPECT_EQ(NextOf(browsed.Record(3))->offsetTarget, browsed.Record(4));
}

TEST(RecordLinks, OfZeroAreMarkedWithoutATarget) {
    BrowsedDirectory browsed(TwoPatients());
    EXPECT_EQ(NextOf(browsed.Record(5))->offsetPending, 1u);
    EXPECT_EQ(NextOf(browsed.Record(5))->offsetTarget, nullptr);
    EXPECT_EQ(LowerOf(browsed.Record(4))->offsetPending, 1u);
    EXPECT_EQ(LowerOf(browsed.Record(4))->offsetTarget, nullptr);
}

TEST(RecordLinks, RootOffsetsAreNotMarked) {
    BrowsedDirectory browsed(TwoPatients());
    EXPECT_EQ(browsed->dataSet->FindNode(0x0004, 0x1200)->offsetPending, 0u);
}

TEST(RecordLinks, MayPointBack) {
    DirectoryBuilder directory = TwoPatients();
    directory.fileOrder = {8, 7, 6, 5, 4, 3, 2, 1, 0};
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(RecordLinks, MayPointBackAndForth) {
    DirectoryBuilder directory = TwoPatients();
    directory.fileOrder = {4, 0, 8, 2, 6, 1, 5, 3, 7};
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_EQ(browsed.Messages(), "");
}

TEST(RecordLinks, AreReadInFullWithoutLoadedValues) {
    BrowsedDirectory browsed(TwoPatients().Build(), 0);
    EXPECT_EQ(browsed.Outline(), kWhole);
}

TEST(RecordLinks, StopBeingResolvedAtTheFirstThatIsLost) {
    DirectoryBuilder directory = TwoPatients();
    directory[3].lowerOffset = 5;  // an image's lower level is never followed
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_EQ(browsed.Messages(), "DICOMDIR resolve error : Item not found \n");
    EXPECT_EQ(NextOf(browsed.Record(2))->offsetPending, 1u);
    EXPECT_EQ(NextOf(browsed.Record(3))->offsetPending, 1u);
    EXPECT_EQ(NextOf(browsed.Record(3))->offsetTarget, browsed.Record(4));
    EXPECT_EQ(LowerOf(browsed.Record(3))->offsetPending, 0u);
    EXPECT_EQ(NextOf(browsed.Record(4))->offsetPending, 0u);
    EXPECT_EQ(NextOf(browsed.Record(5))->offsetPending, 0u);
}

TEST(RecordLinks, ThatAreUnresolvedAreFollowedByTheirOffsets) {
    DirectoryBuilder directory = TwoPatients();
    directory[0].nextOffset = directory.OffsetOf(5);
    directory[1].nextOffset = 7;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Study not found\n");
}

TEST(RecordLinks, ThatAreUnresolvedAndZeroAreSilentlyNone) {
    DirectoryBuilder directory = TwoPatients();
    directory[1].nextOffset = 7;
    directory[5].lowerOffset = 0;
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1 2))) Q()");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Study not found\n"
              "DICOMDIR parsing error: Patient without Study\n");
}

TEST(RecordLinks, AreResolvedAnewByEachBrowse) {
    BrowsedDirectory browsed(TwoPatients());
    const uint32_t lost = 7;
    NextOf(browsed.Record(1))->SetValue(&lost, 4);
    const std::string output =
        pgkit_test::CapturePrinted([&] { browsed->Browse(nullptr, nullptr); }).out;
    EXPECT_EQ(browsed.Outline(), kWhole);
    EXPECT_NE(output.find("DICOMDIR resolve error : Item not found \n"), std::string::npos);
    EXPECT_EQ(NextOf(browsed.Record(1))->offsetPending, 0u);
    EXPECT_EQ(NextOf(browsed.Record(5))->offsetPending, 0u);
}

// Such items stand at no position of the file, whatever their place among the others.
TEST(RecordLinks, PassOverItemsThatWereAddedInMemory) {
    BrowsedDirectory browsed(TwoPatients());
    PGX_Node* sequence = browsed->dataSet->FindNode(0x0004, 0x1220);
    sequence->SeqAddTail(pgAllocateDataSetNode());
    PGX_Node* inserted = pgAllocateDataSetNode();
    inserted->next = sequence->first->next;
    sequence->first->next = inserted;
    pgkit_test::CapturePrinted([&] { browsed->Browse(nullptr, nullptr); });
    EXPECT_EQ(browsed.Outline(), kWhole);
}

class DamagedLink : public testing::TestWithParam<uint32_t> {};

// Offsets at which no record begins, in the place of a next record and of a lower level.
TEST_P(DamagedLink, ToANextRecordEndsItsLevel) {
    DirectoryBuilder directory = TwoPatients();
    directory[3].nextOffset = GetParam();
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E(1))) Q(T(F(3)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: Next Leaf item not found\n");
}

TEST_P(DamagedLink, ToALowerLevelLeavesItsRecordChildless) {
    DirectoryBuilder directory = TwoPatients();
    directory[2].lowerOffset = GetParam();
    BrowsedDirectory browsed(directory);
    EXPECT_EQ(browsed.Outline(), "P(S(E())) Q(T(F(3)))");
    EXPECT_EQ(browsed.Messages(),
              "DICOMDIR resolve error : Item not found \n"
              "DICOMDIR parsing error: First Image item not found at " +
                  std::to_string(GetParam()) +
                  "\n"
                  "DICOMDIR parsing error: Series without Image\n");
}

const uint32_t kFourth = TwoPatients().OffsetOf(4);

INSTANTIATE_TEST_SUITE_P(Offsets, DamagedLink,
                         testing::Values(1u, 8u, 132u, kFourth - 1, kFourth + 1, kFourth + 2,
                                         kFourth - 8, kFourth + 8, 1000000u, 0x7FFFFFFFu,
                                         0x80000000u, 0xFFFFFFF7u, 0xFFFFFFF8u, 0xFFFFFFFFu));

}  // namespace
