// What the objects of a hierarchy destroy with themselves, and what their copies share.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>

#include "dicomdir/object_classes.h"
#include "pgkit/dataset.h"

namespace {

using namespace pgkit_test::object_classes;

// A leaf that counts how often it is destroyed.
class CountedLeaf : public Leaf {
  public:
    explicit CountedLeaf(int* destroyed) : destroyed_(destroyed) {}
    ~CountedLeaf() override { ++*destroyed_; }

  private:
    int* destroyed_;
};

PGX_Node* SmallSequence() {
    PGX_Node* sequence = new PGX_Node(NT_DataElement, ET_LittleEndian, 0x0040, 0xA043, VR_SQ, 0);
    sequence->first = pgAllocateDataSetNode();
    sequence->first->first = new PGX_Node;
    return sequence;
}

// Leaks and double frees in these tests show in the sanitized build.
TEST(Ownership, APatientDestroysItsStudiesSeriesAndLeaves) {
    int destroyed = 0;
    auto* series = new Series;
    series->leaves.AddTail(new CountedLeaf(&destroyed));
    series->leaves.AddTail(new CountedLeaf(&destroyed));
    auto* study = new Study;
    study->series.AddTail(series);
    study->series.AddTail(new Series);
    {
        Patient patient;
        patient.studies.AddTail(study);
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(Ownership, ASeriesDestroysLeavesOfAllClassesEachByItsOwn) {
    Series series;
    auto* report = new Report;
    report->conceptNameCodeSequence = SmallSequence();
    report->contentSequence = SmallSequence();
    auto* object = new KeyObject;
    object->conceptNameCodeSequence = SmallSequence();
    object->contentSequence = SmallSequence();
    auto* state = new Presentation;
    state->referencedSeriesSequence = SmallSequence();
    auto* document = new Document;
    document->conceptNameCodeSequence = SmallSequence();
    for (Leaf* leaf : std::initializer_list<Leaf*>{report, object, state, document, new Image,
                                                   new Waveform, new RawData, new Leaf})
        series.leaves.AddTail(leaf);
    EXPECT_EQ(series.leaves.GetCount(), 8);
}

TEST(Ownership, RecordsAreNotDestroyedWithTheirObjects) {
    PGX_Node record;
    {
        Patient patient;
        patient.record = &record;
        Image image;
        image.record = &record;
    }
    EXPECT_EQ(record.nodeType, NT_DataSet);
}

TEST(Copies, OfAPatientShareItsStudies) {
    Study study;
    Patient patient;
    std::strcpy(patient.patientId, "4711");
    patient.studies.AddTail(&study);
    patient.clientFlags = 5;
    Patient copy;
    EXPECT_EQ(&(copy = patient), &copy);
    EXPECT_STREQ(copy.patientId, "4711");
    EXPECT_EQ(copy.clientFlags, 5u);
    EXPECT_EQ(copy.studies.GetFirstPosition(), patient.studies.GetFirstPosition());
    // Only one may free the shared cell, and none the study.
    copy.studies = PGX_List();
    patient.studies.RemoveHead();
}

TEST(Copies, OfStudiesAndSeriesAreMemberwise) {
    Study study;
    std::strcpy(study.modality, "...");
    Study studyCopy;
    studyCopy = study;
    EXPECT_STREQ(studyCopy.modality, "...");

    Series series;
    std::strcpy(series.modality, "CT");
    Series seriesCopy;
    seriesCopy = series;
    EXPECT_STREQ(seriesCopy.modality, "CT");
}

TEST(Copies, OfALeafShareItsSequences) {
    Report report;
    report.leafType = PG_LEAF_REPORT;
    std::strcpy(report.instanceUid, "1.2.3");
    report.contentSequence = SmallSequence();
    Report copy(report);
    EXPECT_STREQ(copy.instanceUid, "1.2.3");
    EXPECT_EQ(copy.contentSequence, report.contentSequence);
    Report assigned;
    assigned = report;
    EXPECT_EQ(assigned.contentSequence, report.contentSequence);
    copy.contentSequence = nullptr;
    assigned.contentSequence = nullptr;
}

}  // namespace
