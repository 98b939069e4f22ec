// pgkit: what the acceptance codes mean that creation gives files (PgAcceptanceCode in
// dicomdir_creation.h).
//
// The function of this header reads a constant table: any thread may call it at any time. It prints
// nothing and allocates nothing.
#ifndef PGKIT_ACCEPTANCE_H
#define PGKIT_ACCEPTANCE_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// The text of an acceptance code, as the header of the acceptance list file has it: "File is a
// DICOMDIR" for 4. The codes count from 0 without a gap; the first one without a text is the end.
//
// Returns the length of the text and copies as much of it as fits with a terminating zero into size
// bytes of buffer; a null buffer or a size of 0 gets nothing. 0, and an empty text, for a number
// that is no code.
PGKIT_API size_t pgxAcceptanceText(uint32_t code, char* buffer, size_t size);

PGKIT_END_C

#endif
