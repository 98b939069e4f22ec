// Values that creation makes up: by the clock and by counters that live as long as the process.
#pragma once

#include <string>

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

}  // namespace pgkit
