#include "dataset/patient_names.h"

#include <string>

#include "base/firewall.h"
#include "base/text.h"
#include "pgkit/dataset.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr int32_t kCannotCompare = -2;

}  // namespace

int32_t ComparePatientNames(std::string_view a, std::string_view b) {
    return platform::CompareNames(std::string(TrimBlanks(a)), std::string(TrimBlanks(b)));
}

}  // namespace pgkit

int32_t pgComparePatientNames(const char* a, const char* b, int32_t) {
    return pgkit::Guarded(
        [=] { return pgkit::ComparePatientNames(pgkit::OrEmpty(a), pgkit::OrEmpty(b)); },
        pgkit::kCannotCompare);
}
