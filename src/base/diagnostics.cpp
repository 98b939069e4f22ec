#include "base/diagnostics.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include "base/firewall.h"
#include "pgkit/diagnostics.h"

namespace pgkit {

namespace {

constinit std::atomic<int32_t> verbosity = 1;

}  // namespace

void PrintOut(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
}

void PrintRemark(const char* format, ...) {
    if (verbosity.load(std::memory_order_relaxed) == 0) return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
}

void PrintError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

}  // namespace pgkit

int32_t pgxSetVerbosity(int32_t level) {
    return pgkit::Guarded([=] { return pgkit::verbosity.exchange(level); });
}
