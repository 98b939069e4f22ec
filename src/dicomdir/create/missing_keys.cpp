#include "dicomdir/create/missing_keys.h"

#include <string>

#include "base/text.h"
#include "dicomdir/create/generated_values.h"
#include "dicomdir/record_list.h"
#include "pgkit/directory_records.h"

namespace pgkit {

namespace {

template <size_t Size>
void Fill(char (&field)[Size], std::string (*newValue)()) {
    if (field[0] == '\0') CopyToField(field, newValue());
}

}  // namespace

void FillMissingKeys(PGX_List& patients) {
    for (PGX_DicomDirPatientNode& patient : Records<PGX_DicomDirPatientNode>(patients)) {
        Fill(patient.patientId, NewPatientId);
        for (PGX_DicomDirStudyNode& study : Records<PGX_DicomDirStudyNode>(patient.studies)) {
            Fill(study.studyId, NewStudyId);
            Fill(study.studyDate, CurrentDate);
            Fill(study.studyTime, CurrentTime);
            for (PGX_DicomDirSeriesNode& series : Records<PGX_DicomDirSeriesNode>(study.series))
                Fill(series.seriesNumber, NewSeriesNumber);
        }
    }
}

}  // namespace pgkit
