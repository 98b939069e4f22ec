// Hierarchies that live on without their DICOMDIR.
#include "base/firewall.h"
#include "dicomdir/object_list.h"
#include "pgkit/directory.h"
#include "pgkit/patient_list.h"

using pgkit::AllSeries;
using pgkit::Guarded;
using pgkit::Leaves;
using pgkit::Patients;
using pgkit::Studies;

namespace {

// Directory records hold short keys and small icons: everything below this is worth loading.
constexpr uint32_t kLoadLimit = 0x20000;

// The records go with the DICOMDIR.
void ForgetRecords(PGX_List& patients) {
    for (PGX_DicomDirPatientNode& patient : Patients(patients)) {
        patient.record = nullptr;
        for (PGX_DicomDirStudyNode& study : Studies(patient.studies)) {
            study.record = nullptr;
            for (PGX_DicomDirSeriesNode& series : AllSeries(study.series)) {
                series.record = nullptr;
                for (PGX_DicomDirLeafNode& leaf : Leaves(series.leaves))
                    leaf.record = nullptr;
            }
        }
    }
}

PGX_List* ReadPatients(const char* path, const char* location) {
    PGX_DicomDir directory;
    if (directory.OpenDicomDir(path, kLoadLimit) == 0) return nullptr;
    directory.RelocateOffshoreDicomdir(location);
    directory.Browse(nullptr, nullptr);
    PGX_List* patients = directory.GiveAndForgetPatientList();
    ForgetRecords(*patients);
    return patients;
}

}  // namespace

PGX_List* pgGetPatientListFromFile(const char* path) {
    return pgGetPatientListFromOffshoreFile(path, nullptr);
}

PGX_List* pgGetPatientListFromOffshoreFile(const char* path, const char* location) {
    return Guarded([=] { return ReadPatients(path, location); });
}

void pgEmptyPatientList(PGX_List* patients) {
    Guarded([=] {
        if (patients != nullptr) pgkit::DestroyObjects<PGX_DicomDirPatientNode>(*patients);
    });
}
