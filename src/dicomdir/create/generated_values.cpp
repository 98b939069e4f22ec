#include "dicomdir/create/generated_values.h"

#include <cstdio>

#include "platform/platform.h"

namespace pgkit {

namespace {

template <typename... Numbers>
std::string Formatted(const char* format, Numbers... numbers) {
    char text[64];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

// Counts from 1 to a last value, and then again from 1.
class Counter {
  public:
    explicit constexpr Counter(int last) : last_(last) {}
    int Next() {
        if (value_ >= last_) value_ = 0;
        return ++value_;
    }

  private:
    int value_ = 0;
    int last_;
};

constinit Counter patientIds(999999);
constinit Counter studyIds(99999);
constinit unsigned lastSeriesNumber = 0;  // never starts again

constexpr int kFirstDicomdir = 100;
constexpr int kBehindLastDicomdir = 32001;
constinit int nextDicomdir = kFirstDicomdir;

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
    const int number = nextDicomdir++;
    if (nextDicomdir == kBehindLastDicomdir) nextDicomdir = kFirstDicomdir;
    return "1.2.999.1.47.453.2865." + CurrentDate() + CurrentTime() + "." + std::to_string(number);
}

std::string NewPatientId() { return Formatted("ZORVA_PATID_%06d", patientIds.Next()); }

std::string NewStudyId() { return Formatted("ZORVA_STID_%05d", studyIds.Next()); }

std::string NewSeriesNumber() { return std::to_string(static_cast<int32_t>(++lastSeriesNumber)); }

}  // namespace pgkit
