// pgkit: the built-in media application profiles, whose names pgDirAcceptDataset and the
// creation of a DICOMDIR (dicomdir_creation.h) take.
//
// The functions of this header read constant tables: any thread may call them at any time. They
// print nothing and allocate nothing.
#ifndef PGKIT_PROFILES_H
#define PGKIT_PROFILES_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// How many there are.
PGKIT_API int32_t pgxProfileCount(void);

// The name of a profile, by its index from 0 to pgxProfileCount() - 1, such as "STD-GEN-CD".
// Returns the length of the name and copies as much of it as fits with a terminating zero into size
// bytes of buffer; a null buffer or a size of 0 gets nothing. 0, and an empty text, for any other
// index.
PGKIT_API size_t pgxProfileName(int32_t index, char* buffer, size_t size);

// 1 when there is a profile of exactly this name, else 0; also 0 for null and for an empty name,
// which as an argument of the other functions means that no profile is asked for.
PGKIT_API int32_t pgxIsProfile(const char* name);

// What a profile allows, as lines of text: the rules of the profile at an index, in their order. A
// file needs one that fits it.
//
//   image           SOP class  modality  transfer syntax   a file of a SOP class of images
//   photometric     value      (empty)   transfer syntax   an image needs one of these, too, where
//                                                          there are any
//   other           SOP class  modality  transfer syntax   any other file
//
// Columns are divided by a tab, and every line ends with a line feed. SOP classes and transfer
// syntaxes are UIDs; "*" is any of them, and an empty modality any modality. A profile without
// rules allows nothing.
//
// Returns the length of the text and copies as much of it as fits with a terminating zero into size
// bytes of buffer; a null buffer or a size of 0 gets nothing. 0, and an empty text, for any other
// index.
PGKIT_API size_t pgxProfileRules(int32_t index, char* buffer, size_t size);

PGKIT_END_C

#endif
