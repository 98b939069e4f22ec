// Removal from hierarchies, of objects that any call may have failed for, or with any call failing.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "support/browsed_directory.h"

namespace {

using namespace pgkit_test;

enum class Level { Patient, Study, Series, Leaf };

template <typename Object>
Object* FirstOf(PGX_List& list) {
    return static_cast<Object*>(list.GetAt(0));
}

// Removes the first object of a level, or that which lacks children above it. False when the list
// is empty.
bool RemoveFirst(PGX_List& patients, Level level) {
    auto* const patient = FirstOf<PGX_DicomDirPatientNode>(patients);
    if (patient == nullptr) return false;
    auto* const study = FirstOf<PGX_DicomDirStudyNode>(patient->studies);
    if (study == nullptr || level == Level::Patient) {
        pgRemovePatient(&patients, patient);
        return true;
    }
    auto* const series = FirstOf<PGX_DicomDirSeriesNode>(study->series);
    if (series == nullptr || level == Level::Study) {
        pgRemoveStudy(&patients, study);
        return true;
    }
    auto* const leaf = FirstOf<PGX_DicomDirLeafNode>(series->leaves);
    if (leaf == nullptr || level == Level::Series) {
        pgRemoveSeries(&patients, series);
    } else {
        pgRemoveLeaf(&patients, leaf);
    }
    return true;
}

// One object of each level.
void RemoveFour(PGX_List& patients) {
    for (const Level level : {Level::Leaf, Level::Series, Level::Study, Level::Patient})
        RemoveFirst(patients, level);
}

void RemoveAll(PGX_List& patients) {
    while (patients.GetCount() > 0)
        RemoveFour(patients);
}

// The content of RichDirectory, and in front of it a patient with twice as much of everything.
DirectoryBuilder WideDirectory() {
    DirectoryBuilder directory;
    const size_t patient = directory.Patient("P", "DOE^JOHN");
    for (const char* studyUid : {"1.1", "1.2"}) {
        const size_t study = directory.Study(patient, studyUid);
        for (const char* number : {".1", ".2"}) {
            const std::string uid = std::string(studyUid) + number;
            const size_t series = directory.Series(study, uid, "CT");
            directory[series].Set(0x0088, 0x0200, "SQ", SmallIcon());
            const size_t image = directory.Image(series, uid + ".1", 1, "IMG\\X1");
            directory[image].Set(0x0088, 0x0200, "SQ", SmallIcon());
            directory.Image(series, uid + ".2", 2, "IMG\\X2");
        }
    }
    AddRichPatients(directory);
    return directory;
}

class FailingRemoval : public testing::Test {
  protected:
    PGX_List* Read() const {
        PGX_List* const patients = pgGetPatientListFromFile(dicomdir_.c_str());
        EXPECT_NE(patients, nullptr);
        return patients;
    }
    static void Destroy(PGX_List* patients) {
        pgEmptyPatientList(patients);
        delete patients;
    }

    // All that is left of the hierarchy is removed while calls fail.
    template <typename Failing>
    size_t SweepRemovalFromList() const {
        return SweepFailures<Failing>([&](auto&& whileFailing) {
            PGX_List* const patients = Read();
            whileFailing([&] { RemoveAll(*patients); });
            EXPECT_EQ(patients->GetCount(), 0);
            Destroy(patients);
        });
    }

    // The same while the DICOMDIR is open and the records are there.
    template <typename Failing>
    size_t SweepRemovalFromDirectory() const {
        return SweepFailures<Failing>([&](auto&& whileFailing) {
            PGX_DicomDir directory;
            ASSERT_EQ(directory.OpenDicomDir(dicomdir_.c_str(), 0), 1);
            PGX_List* const patients = directory.Browse(nullptr, nullptr);
            whileFailing([&] { RemoveAll(*patients); });
            EXPECT_EQ(patients->GetCount(), 0);
        });
    }

    // What a browse could make of a directory is removed again. All calls of both may fail.
    template <typename Failing>
    size_t SweepBrowseAndRemoval() const {
        return SweepFailures<Failing>([&](auto&& whileFailing) {
            PGX_DicomDir directory;
            whileFailing([&] {
                if (directory.OpenDicomDir(dicomdir_.c_str(), 0) == 0) return;
                directory.Browse(nullptr, nullptr);
            });
            if (directory.GetPatientList() == nullptr) return;
            whileFailing([&] { RemoveAll(*directory.GetPatientList()); });
            EXPECT_EQ(directory.GetPatientList()->GetCount(), 0);
        });
    }

    // What is left after a removal of each kind is written.
    template <typename Failing>
    size_t SweepRemovalAndBuild() const {
        return SweepFailures<Failing>([&](auto&& whileFailing) {
            PGX_List* const patients = Read();
            uint32_t result = 5;
            whileFailing([&] {
                RemoveFour(*patients);
                result = pgBuildDicomdir(patients, files_.Path("OTHER").c_str());
            });
            EXPECT_EQ(Outline(patients), kLeft);
            if (result == 0) {
                EXPECT_EQ(OutlineWritten(), kLeft);
            }
            Destroy(patients);
        });
    }

    std::string OutlineWritten() const {
        PGX_List* const patients = pgGetPatientListFromFile(files_.Path("OTHER/DICOMDIR").c_str());
        const std::string outline = Outline(patients);
        Destroy(patients);
        return outline;
    }

    // A leaf, its series, its study and its patient went, one after the other.
    static constexpr const char* kLeft =
        "4711(1.2.4711(1.2.4711.1(1.2.4711.1.3 1.2.4711.1.1 1.2.4711.1.2))) "
        "4712(1.2.4712(1.2.4712.1(1.2.4712.1.3 1.2.4712.1.1 1.2.4712.1.2)))";

    TempDir files_;
    std::string dicomdir_ = files_.Write("DICOMDIR", WideDirectory().Build());
};

TEST_F(FailingRemoval, NeedsNeitherMemoryNorFiles) {
    EXPECT_EQ(SweepRemovalFromList<FailingNew>(), 0u);
    EXPECT_EQ(SweepRemovalFromList<FailingFiles>(), 0u);
    EXPECT_EQ(SweepRemovalFromDirectory<FailingNew>(), 0u);
    EXPECT_EQ(SweepRemovalFromDirectory<FailingFiles>(), 0u);
}

TEST_F(FailingRemoval, TakesAllThatABrowseCouldBuild) {
    EXPECT_GE(SweepBrowseAndRemoval<FailingNew>(), 100u);
    EXPECT_GE(SweepBrowseAndRemoval<FailingFiles>(), 5u);
}

TEST_F(FailingRemoval, LeavesAHierarchyThatIsWrittenOrNot) {
    std::filesystem::create_directory(files_.Path("OTHER"));
    EXPECT_GE(SweepRemovalAndBuild<FailingNew>(), 50u);
    EXPECT_GE(SweepRemovalAndBuild<FailingFiles>(), 5u);
}

}  // namespace
