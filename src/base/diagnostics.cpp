#include "base/diagnostics.h"

#include <cstdarg>
#include <cstdio>

namespace pgkit {

void PrintOut(const char* format, ...) {
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
