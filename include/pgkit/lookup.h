// pgkit: the lookups whose texts have no bound, with one.
//
// Each writes the text that the function of its name without the x writes (dictionary.h,
// sopclass.h), or its beginning, into a buffer of a stated size, and returns how long the whole
// text is:
//
//   size_t length = pgxGetUIDName(uid, NULL, 0);
//   char* name = malloc(length + 1);
//   if (name != NULL) pgxGetUIDName(uid, name, length + 1);
//
// - The result counts the bytes of the text without its terminating zero, whatever the size. It
//   is 0 when there is no such text; then the buffer gets the placeholder that stands with each
//   lookup. (0 is also the length of an empty text, which an entry of the site's file may give: the
//   buffer is empty then, too.)
// - The buffer is terminated whenever size is not 0; a text that does not fit is cut. A null buffer
//   counts as one of size 0.
// - A null key is one that is not found.
// - Nothing is printed or allocated. All threads may call these functions at any time, but
//   not while one of them replaces the private dictionary. A tree belongs to one thread at a time.
#ifndef PGKIT_LOOKUP_H
#define PGKIT_LOOKUP_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"

PGKIT_BEGIN_C

// The name of a UID. Placeholder "<NULL uid>".
PGKIT_API size_t pgxGetUIDName(const char* uid, char* buffer, size_t size);

// The mnemonic of a storage SOP class. Placeholder "XX".
PGKIT_API size_t pgxGetSOPClassUIDToModality(const char* sopClassUid, char* buffer, size_t size);

// The description of a modality code. Placeholder "<NULL modality>".
PGKIT_API size_t pgxGetModalityName(const char* modality, char* buffer, size_t size);

// The printable name of a tag. Placeholder "<Unknown Tag>".
PGKIT_API size_t pgxGetTagPrintableName(uint16_t group, uint16_t element, char* buffer,
                                        size_t size);

// The name of an element: what it was called when it was read (a private element by its creator, as
// the private dictionary was then; "PrivateCreator10xx", "GroupLength0008"), else that of its tag.
// GetTagName of node.h has "<unknown tag>" for elements that had none when they were read.
// Placeholder "<Unknown Tag>".
PGKIT_API size_t pgxGetTagName(PGX_Node* element, char* buffer, size_t size);

// The name of a value representation code. Placeholder "????".
PGKIT_API size_t pgxGetVRPrintableName(uint32_t valueRep, char* buffer, size_t size);

PGKIT_END_C

#endif
