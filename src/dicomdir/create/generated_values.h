// Values that creation makes up: by the clock and by counters that live as long as the process.
#pragma once

#include <string>

#include "pgkit/list.h"

namespace pgkit {

// "YYYYMMDD" and "HHMMSS", local.
std::string CurrentDate();
std::string CurrentTime();

// The SOP Instance UID of a new DICOMDIR.
std::string NewDicomdirUid();

// For keys that files lack.
std::string NewPatientId();
std::string NewStudyId();
std::string NewSeriesNumber();

// Completes a hierarchy in which readers would miss keys: every patient gets an ID, every study an
// ID, a date and a time, every series a number, where they are empty.
void FillMissingKeys(PGX_List& patients);

}  // namespace pgkit
