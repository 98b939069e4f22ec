// pgkit: unique identifiers.
#ifndef PGKIT_UID_H
#define PGKIT_UID_H

#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// 1 when text is a well-formed UID: 3 to 64 characters, decimal numbers separated by single points,
// at least two of them, none but the number 0 itself beginning with a zero. 0 otherwise, also for
// null.
PGKIT_API int32_t pgCheckUID(const char* text);

PGKIT_END_C

#endif
