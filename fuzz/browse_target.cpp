#include <pgkit/pgkit.h>

#include <optional>
#include <string>

#include "allocated_memory.h"
#include "input.h"
#include "support/patient_list.h"
#include "support/save_modes.h"
#include "support/temp_dir.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

constexpr uint32_t kOrdinaryLimit = 0x20000;

using namespace pgkit_test;

int32_t Pass(PGX_DicomDirCallbackReason*, const char*, void*) { return 0; }

// A random child; null when there is none.
template <typename Child>
Child* Pick(PGX_List& children, Input& input) {
    if (children.count == 0) return nullptr;
    const uint32_t index = input.Below(static_cast<uint32_t>(children.count));
    return static_cast<Child*>(children.GetAt(static_cast<int32_t>(index)));
}

// Removes one object, of the level that the input says or the deepest above it that is there.
void RemoveOne(PGX_List* patients, Input& input) {
    const uint32_t level = input.Byte() % 4;
    auto* const patient = Pick<PGX_DicomDirPatientNode>(*patients, input);
    if (patient == nullptr || level == 0) return pgRemovePatient(patients, patient);
    auto* const study = Pick<PGX_DicomDirStudyNode>(patient->studies, input);
    if (study == nullptr || level == 1) return pgRemoveStudy(patients, study);
    auto* const series = Pick<PGX_DicomDirSeriesNode>(study->series, input);
    if (series == nullptr || level == 2) return pgRemoveSeries(patients, series);
    pgRemoveLeaf(patients, Pick<PGX_DicomDirLeafNode>(series->leaves, input));
}

// Opens and browses; false when the file cannot be opened. With large values loaded, the tree may
// have zeros for those that lengths merely claim.
bool OpenAndBrowse(PGX_DicomDir& directory, const std::string& path, uint32_t limit, size_t size) {
    const std::optional<uint64_t> before = AllocatedMemory();
    if (directory.OpenDicomDir(path.c_str(), limit) == 0) return false;
    Require(directory.Browse(Pass, nullptr) == directory.GetPatientList(),
            "a browse gives the list");
    const std::optional<uint64_t> after = AllocatedMemory();
    if (before && after && limit <= kOrdinaryLimit) {
        Require(*after <= *before + (uint64_t{64} << 20) + 60 * size,
                "tree and objects are in proportion to the file");
    }
    return true;
}

// Saved links still lead to the same records of the tree.
void SaveAndBrowseAgain(PGX_DicomDir& directory, const std::string& path, int32_t mode) {
    if (directory.dataSet->SaveDataSetAsEx(path.c_str(), mode) != 0) return;
    const int32_t leafCount = directory.leafCount;
    directory.Browse(Pass, nullptr);
    Require(directory.leafCount == leafCount, "a directory that was saved is browsed as before");
}

}  // namespace

void Browse(Bytes bytes) {
    Input input(bytes);
    constexpr uint32_t kLimits[] = {0, 64, kOrdinaryLimit, 0xFFFFFFFF};
    const uint32_t limit = input.Pick(kLimits);
    const uint8_t removals = input.Byte() % 16;
    constexpr int32_t kModes[] = {kAsRead,
                                  kPart10Explicit,
                                  kPart10Implicit,
                                  kPart10Big,
                                  kPart10Explicit | PG_UNDEFINED_LENGTHS,
                                  kExplicitLittle};
    const int32_t mode = input.Pick(kModes);
    const pgkit_test::TempDir medium;
    const std::string path = pgkit_test::LibraryPath(medium.Write("DICOMDIR", input.Rest()));
    pgkit_test::PatientList patients;
    {
        PGX_DicomDir directory;
        if (!OpenAndBrowse(directory, path, limit, input.Rest().size())) return;
        SaveAndBrowseAgain(directory, medium.Path("SAVED"), mode);
        directory.RelocateOffshoreDicomdir("X:\\ELSEWHERE\\DICOMDIR");
        patients.reset(directory.GiveAndForgetPatientList());
    }
    if (patients == nullptr) return;
    for (uint8_t i = 0; i < removals; ++i)
        RemoveOne(patients.get(), input);
    // The hierarchy outlives its file, and becomes another one.
    pgBuildDicomdir(patients.get(), pgkit_test::LibraryPath(medium.Path("")).c_str());
}

}  // namespace pgkit_fuzz
