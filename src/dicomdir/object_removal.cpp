// Removal of single objects from a hierarchy, and of the parents that it leaves empty.
#include "base/firewall.h"
#include "dicomdir/object_list.h"
#include "pgkit/patient_list.h"

using pgkit::AllSeries;
using pgkit::Guarded;
using pgkit::Patients;
using pgkit::Studies;

namespace {

// Whether the list held the object, which is destroyed then. Cells without an object match null.
template <typename Object>
bool RemoveFrom(PGX_List& list, Object* object) {
    for (PGX_ListElement* cell = list.head; cell != nullptr; cell = cell->next) {
        if (cell->data != object) continue;
        list.RemoveElement(object);
        pgkit::Destroy(object);
        return true;
    }
    return false;
}

void RemovePatient(PGX_List* patients, PGX_DicomDirPatientNode* patient) {
    if (patients == nullptr || patient == nullptr) return;
    patients->RemoveElement(patient);
    delete patient;
}

void RemoveStudy(PGX_List* patients, PGX_DicomDirStudyNode* study) {
    if (patients == nullptr || study == nullptr) return;
    for (PGX_DicomDirPatientNode& patient : Patients(*patients)) {
        if (!RemoveFrom(patient.studies, study)) continue;
        if (patient.studies.count == 0) RemovePatient(patients, &patient);
        return;
    }
}

void RemoveSeries(PGX_List* patients, PGX_DicomDirSeriesNode* series) {
    if (patients == nullptr) return;
    for (PGX_DicomDirPatientNode& patient : Patients(*patients)) {
        for (PGX_DicomDirStudyNode& study : Studies(patient.studies)) {
            if (!RemoveFrom(study.series, series)) continue;
            if (study.series.count == 0) RemoveStudy(patients, &study);
            return;
        }
    }
}

void RemoveLeaf(PGX_List* patients, PGX_DicomDirLeafNode* leaf) {
    if (patients == nullptr) return;
    for (PGX_DicomDirPatientNode& patient : Patients(*patients)) {
        for (PGX_DicomDirStudyNode& study : Studies(patient.studies)) {
            for (PGX_DicomDirSeriesNode& series : AllSeries(study.series)) {
                if (!RemoveFrom(series.leaves, leaf)) continue;
                if (series.leaves.count == 0) RemoveSeries(patients, &series);
                return;
            }
        }
    }
}

}  // namespace

void pgRemovePatient(PGX_List* patients, PGX_DicomDirPatientNode* patient) {
    Guarded([=] { RemovePatient(patients, patient); });
}

void pgRemoveStudy(PGX_List* patients, PGX_DicomDirStudyNode* study) {
    Guarded([=] { RemoveStudy(patients, study); });
}

void pgRemoveSeries(PGX_List* patients, PGX_DicomDirSeriesNode* series) {
    Guarded([=] { RemoveSeries(patients, series); });
}

void pgRemoveLeaf(PGX_List* patients, PGX_DicomDirLeafNode* leaf) {
    Guarded([=] { RemoveLeaf(patients, leaf); });
}
