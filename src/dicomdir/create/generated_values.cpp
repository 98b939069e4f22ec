#include "dicomdir/create/generated_values.h"

#include <atomic>
#include <cstdint>
#include <cstdio>

#include "base/counter.h"
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

}  // namespace pgkit
