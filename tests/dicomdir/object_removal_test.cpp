#include <gtest/gtest.h>

#include <string>

#include "pgkit/patient_list.h"
#include "support/browsed_directory.h"

namespace {

using pgkit_test::Outline;

// A leaf that notes its destruction.
class NotedLeaf : public PGX_DicomDirLeafNode {
  public:
    explicit NotedLeaf(bool* destroyed) : destroyed_(destroyed) {}
    ~NotedLeaf() override { *destroyed_ = true; }

  private:
    bool* destroyed_;
};

template <typename Object, size_t Size>
Object* Named(char (Object::*name)[Size], const std::string& text) {
    Object* object = new Object;
    text.copy(object->*name, Size - 1);
    return object;
}

// Two patients made by hand: P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5))).
class Removal : public testing::Test {
  protected:
    Removal() {
        AddPatient(p_, "P");
        AddPatient(q_, "Q");
        AddStudy(p_, s_, "S");
        AddStudy(p_, t_, "T");
        AddStudy(q_, u_, "U");
        AddSeries(s_, e_, "E");
        AddSeries(s_, f_, "F");
        AddSeries(t_, g_, "G");
        AddSeries(u_, h_, "H");
        AddLeaf(e_, 0);
        AddLeaf(e_, 1);
        AddLeaf(f_, 2);
        AddLeaf(g_, 3);
        AddLeaf(h_, 4);
    }
    ~Removal() override { pgEmptyPatientList(&patients_); }

    void AddPatient(PGX_DicomDirPatientNode*& patient, const char* id) {
        patient = Named(&PGX_DicomDirPatientNode::patientId, id);
        patients_.AddTail(patient);
    }
    void AddStudy(PGX_DicomDirPatientNode* patient, PGX_DicomDirStudyNode*& study,
                  const char* uid) {
        study = Named(&PGX_DicomDirStudyNode::studyInstanceUid, uid);
        patient->studies.AddTail(study);
    }
    void AddSeries(PGX_DicomDirStudyNode* study, PGX_DicomDirSeriesNode*& series, const char* uid) {
        series = Named(&PGX_DicomDirSeriesNode::seriesInstanceUid, uid);
        study->series.AddTail(series);
    }
    void AddLeaf(PGX_DicomDirSeriesNode* series, int index) {
        leaves_[index] = new NotedLeaf(&destroyed_[index]);
        std::to_string(index + 1).copy(leaves_[index]->instanceUid, 64);
        series->leaves.AddTail(leaves_[index]);
    }

    // The numbers of the leaves that were destroyed.
    std::string Destroyed() {
        std::string text;
        for (int i = 0; i < 5; ++i)
            if (destroyed_[i]) text += std::to_string(i + 1);
        return text;
    }

    PGX_List patients_;
    PGX_DicomDirPatientNode *p_, *q_;
    PGX_DicomDirStudyNode *s_, *t_, *u_;
    PGX_DicomDirSeriesNode *e_, *f_, *g_, *h_;
    PGX_DicomDirLeafNode* leaves_[5];
    bool destroyed_[5] = {};
};

TEST_F(Removal, OfAPatientTakesAllBelowIt) {
    pgRemovePatient(&patients_, p_);
    EXPECT_EQ(Outline(&patients_), "Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "1234");
}

TEST_F(Removal, OfAPatientThatIsNotInTheListDestroysItAllTheSame) {
    bool destroyed = false;
    auto* series = new PGX_DicomDirSeriesNode;
    series->leaves.AddTail(new NotedLeaf(&destroyed));
    auto* study = new PGX_DicomDirStudyNode;
    study->series.AddTail(series);
    auto* patient = new PGX_DicomDirPatientNode;
    patient->studies.AddTail(study);
    pgRemovePatient(&patients_, patient);
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(patients_.GetCount(), 2);
}

TEST_F(Removal, OfAStudyLeavesItsPatientTheOthers) {
    pgRemoveStudy(&patients_, s_);
    EXPECT_EQ(Outline(&patients_), "P(T(G(4))) Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "123");
}

TEST_F(Removal, OfTheOnlyStudyTakesThePatient) {
    pgRemoveStudy(&patients_, u_);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4)))");
    EXPECT_EQ(Destroyed(), "5");
}

TEST_F(Removal, OfASeriesLeavesItsStudyTheOthers) {
    pgRemoveSeries(&patients_, e_);
    EXPECT_EQ(Outline(&patients_), "P(S(F(3)) T(G(4))) Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "12");
}

TEST_F(Removal, OfTheOnlySeriesTakesTheStudy) {
    pgRemoveSeries(&patients_, g_);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3))) Q(U(H(5)))");
}

TEST_F(Removal, OfTheOnlySeriesOfTheOnlyStudyTakesThePatient) {
    pgRemoveSeries(&patients_, h_);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4)))");
}

TEST_F(Removal, OfOneOfTwoLeavesLeavesTheSeries) {
    pgRemoveLeaf(&patients_, leaves_[0]);
    EXPECT_EQ(Outline(&patients_), "P(S(E(2) F(3)) T(G(4))) Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "1");
}

TEST_F(Removal, OfTheOnlyLeafTakesTheSeries) {
    pgRemoveLeaf(&patients_, leaves_[2]);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2)) T(G(4))) Q(U(H(5)))");
}

TEST_F(Removal, OfTheOnlyLeafOfTheOnlySeriesTakesTheStudy) {
    pgRemoveLeaf(&patients_, leaves_[3]);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3))) Q(U(H(5)))");
}

TEST_F(Removal, OfTheOnlyLeafOfAPatientTakesThePatient) {
    pgRemoveLeaf(&patients_, leaves_[4]);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4)))");
    EXPECT_EQ(Destroyed(), "5");
}

TEST_F(Removal, OfWhatIsNotInTheHierarchyChangesNothing) {
    PGX_DicomDirStudyNode study;
    PGX_DicomDirSeriesNode series;
    PGX_DicomDirLeafNode leaf;
    pgRemoveStudy(&patients_, &study);
    pgRemoveSeries(&patients_, &series);
    pgRemoveLeaf(&patients_, &leaf);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
}

TEST_F(Removal, OfAStudyOfAnotherListLeavesBothAlone) {
    PGX_List other;
    pgRemoveStudy(&other, s_);
    EXPECT_EQ(other.GetCount(), 0);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "");
}

TEST_F(Removal, OfNullDoesNothing) {
    pgRemovePatient(&patients_, nullptr);
    pgRemoveStudy(&patients_, nullptr);
    pgRemoveSeries(&patients_, nullptr);
    pgRemoveLeaf(&patients_, nullptr);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
}

// Which no browse makes.
TEST_F(Removal, OfNullTakesACellWithoutAnObject) {
    h_->leaves.AddHead(nullptr);
    pgRemoveLeaf(&patients_, nullptr);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
    u_->series.AddTail(nullptr);
    pgRemoveSeries(&patients_, nullptr);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
    pgRemoveLeaf(&patients_, leaves_[4]);
    h_ = nullptr;
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4)))");
}

TEST_F(Removal, FromANullListDoesNothing) {
    pgRemovePatient(nullptr, p_);
    pgRemoveStudy(nullptr, s_);
    pgRemoveSeries(nullptr, e_);
    pgRemoveLeaf(nullptr, leaves_[0]);
    EXPECT_EQ(Outline(&patients_), "P(S(E(1 2) F(3)) T(G(4))) Q(U(H(5)))");
    EXPECT_EQ(Destroyed(), "");
}

}  // namespace
