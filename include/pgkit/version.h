// pgkit: version queries.
#ifndef PGKIT_VERSION_H
#define PGKIT_VERSION_H

#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// Copies the version text, 17 characters, into buffer: at most size characters, the rest of the
// buffer filled with zeros. No terminating zero is written when size is 17 or less. Returns 17,
// whatever the size. A null buffer, or a size of 0 or less, writes nothing.
PGKIT_API int32_t pgGetVersionString(char* buffer, int32_t size);

// The version as a number.
PGKIT_API float pgGetVersionFloat(void);

PGKIT_END_C

#endif
