#include "dicomdir/create/generated_values.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <set>

#include "base/counter.h"
#include "base/text.h"
#include "dicomdir/object_list.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

template <typename... Numbers>
std::string Formatted(const char* format, Numbers... numbers) {
    char text[64];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

constinit Counter dicomdirs(100, 32000);
constinit Counter patientIds(1, 999999);
constinit Counter studyIds(1, 99999);
constinit std::atomic<uint32_t> lastSeriesNumber = 0;  // never starts again

}  // namespace

std::string CurrentDate() {
    const platform::CalendarTime now = platform::LocalTime();
    return Formatted("%04d%02d%02d", now.year, now.month, now.day);
}

std::string CurrentTime() {
    const platform::CalendarTime now = platform::LocalTime();
    return Formatted("%02d%02d%02d", now.hour, now.minute, now.second);
}

std::string NewDicomdirUid() {
    const std::string number = std::to_string(dicomdirs.Next());
    return "1.2.999.1.47.453.2865." + CurrentDate() + CurrentTime() + "." + number;
}

std::string NewPatientId() { return Formatted("ZORVA_PATID_%06d", patientIds.Next()); }

std::string NewStudyId() { return Formatted("ZORVA_STID_%05d", studyIds.Next()); }

std::string NewSeriesNumber() { return std::to_string(static_cast<int32_t>(++lastSeriesNumber)); }

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
