// What the public headers, the host and the examples need of this header of the C library.
#pragma once

#if defined(_WIN32)
#include <stdarg.h>

typedef struct _iobuf FILE;

// As in the header of the universal C runtime: it has streams by number, and one function that
// prints, around which the well-known ones are made where they are used.
extern "C" FILE* __acrt_iob_func(unsigned number);
extern "C" int __stdio_common_vfprintf(unsigned long long options, FILE* stream, const char* format,
                                       void* locale, va_list arguments);

#define stdout __acrt_iob_func(1)
#define stderr __acrt_iob_func(2)

inline int fprintf(FILE* stream, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int printed = __stdio_common_vfprintf(0, stream, format, nullptr, arguments);
    va_end(arguments);
    return printed;
}

inline int printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int printed = __stdio_common_vfprintf(0, stdout, format, nullptr, arguments);
    va_end(arguments);
    return printed;
}
#else
typedef struct _IO_FILE FILE;
#endif
