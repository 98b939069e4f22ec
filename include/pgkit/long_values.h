// pgkit: values that are too long for their value representation.
//
// In explicit VR most value representations have a length of 16 bits, and saving refuses what is
// longer (result 6). In memory, and in implicit VR, there may be such values all the same. Under
// the VR UN, whose length has 32 bits, they can be saved in every encoding.
#ifndef PGKIT_LONG_VALUES_H
#define PGKIT_LONG_VALUES_H

#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"

PGKIT_BEGIN_C

// Gives the VR UN to all values of 65,535 bytes and more, in the tree below root, whose VR has a
// length of 16 bits in explicit VR. Sequences and encapsulated Pixel Data stay what they are. The
// bytes of UN are little endian in every encoding, so numbers of a big endian tree are swapped, and
// in memory then; everything else stays where it is. A value that its file holds only in part gets
// the VR and nothing else: saving will fail for it.
//
// Returns 1; 0 for a null root, when a value cannot be read and when there is no memory: those in
// front of it are changed then.
//
// Threads: a tree, and its file, belong to one thread at a time. Nothing is printed.
PGKIT_API int32_t pgxMakeLongValuesUn(PGX_Node* root);

PGKIT_END_C

#endif
