#include <string>

#include "base/text.h"
#include "pgkit/dataset.h"
#include "platform/platform.h"

int32_t pgComparePatientNames(const char* a, const char* b, int32_t) {
    using pgkit::OrEmpty;
    using pgkit::TrimBlanks;
    return pgkit::platform::CompareNames(std::string(TrimBlanks(OrEmpty(a))),
                                         std::string(TrimBlanks(OrEmpty(b))));
}
