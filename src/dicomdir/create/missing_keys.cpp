#include "dicomdir/create/missing_keys.h"

#include <set>
#include <string>

#include "base/text.h"
#include "dicomdir/create/generated_values.h"
#include "dicomdir/object_list.h"
#include "pgkit/directory_records.h"

namespace pgkit {

namespace {

template <size_t Size>
void Fill(char (&field)[Size], std::string (*newValue)()) {
    if (field[0] == '\0') CopyToField(field, newValue());
}

// A patient must not become another one of the list: media that were made here have such IDs, and a
// browse would make one of the two and drop what both have.
void FillPatientIds(PGX_List& patients) {
    std::set<std::string> known;
    for (const PGX_DicomDirPatientNode& patient : Patients(patients))
        known.insert(patient.patientId);
    if (!known.contains("")) return;
    for (PGX_DicomDirPatientNode& patient : Patients(patients)) {
        if (patient.patientId[0] != '\0') continue;
        std::string id = NewPatientId();
        for (size_t tries = known.size(); tries > 0 && known.contains(id); --tries)
            id = NewPatientId();
        CopyToField(patient.patientId, id);
    }
}

}  // namespace

void FillMissingKeys(PGX_List& patients) {
    FillPatientIds(patients);
    for (PGX_DicomDirPatientNode& patient : Patients(patients)) {
        for (PGX_DicomDirStudyNode& study : Studies(patient.studies)) {
            Fill(study.studyId, NewStudyId);
            Fill(study.studyDate, CurrentDate);
            Fill(study.studyTime, CurrentTime);
            for (PGX_DicomDirSeriesNode& series : AllSeries(study.series))
                Fill(series.seriesNumber, NewSeriesNumber);
        }
    }
}

}  // namespace pgkit
