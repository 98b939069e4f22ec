// Reports of the open functions.
#pragma once

#include <pgkit/open_report.h>

namespace pgkit_test {

inline PgxOpenReport NewReport(uint32_t options = 0) {
    PgxOpenReport report{};
    report.size = sizeof report;
    report.options = options;
    return report;
}

}  // namespace pgkit_test
