// pgkit: flat functions over data sets: open, close, allocate, free, find.
#ifndef PGKIT_DATASET_H
#define PGKIT_DATASET_H

#include <stdint.h>
#include <stdio.h>

#include "pgkit/export.h"

#if defined(__cplusplus)
class PGX_Node;
#else
typedef struct PGX_Node PGX_Node;
#endif

// Flags of the open functions. The four "force" flags count only for a file without File Meta
// Information; 0x08 goes before 0x10 and 0x20 before 0x40.
typedef enum PgOpenFlags {
    PG_OPEN_SKIP_FRAGMENTS = 0x01,      /* do not index fragments when the offset table is empty */
    PG_OPEN_FORCE_EXPLICIT_VR = 0x08,   /* decode as explicit VR */
    PG_OPEN_FORCE_IMPLICIT_VR = 0x10,   /* decode as implicit VR */
    PG_OPEN_FORCE_LITTLE_ENDIAN = 0x20, /* decode as little endian */
    PG_OPEN_FORCE_BIG_ENDIAN = 0x40,    /* decode as big endian */
    PG_OPEN_UN_AS_STREAM = 0x200,       /* items of UN sequences keep the surrounding VR mode */
    PG_OPEN_UN_BY_INSPECTION = 0x400,   /* without 0x200: look at their first item to decide */
    PG_OPEN_PAST_PIXEL_DATA = 0x800     /* go on behind fragments that could not be indexed */
} PgOpenFlags;

PGKIT_BEGIN_C

// Opens a DICOM file: with or without preamble, with or without File Meta Information, in explicit
// or implicit VR, little or big endian. Returns the root data set; or null when the file cannot be
// opened, when memory runs out, when File Meta Information is cut short or no tag but (FFFF,FFFF)
// follows it, and when a file without it has fewer than 6 bytes. Everything else gives a tree, if
// an empty one. Nothing is printed.
//
// maxLoadLength, in bytes, decides which values are loaded now: those of a length below it (in
// private, that is odd, groups below 22 at most). Other values stay in the file and are read
// through it when asked for, so the tree keeps the file open until pgCloseDataSet; those of group
// 0002 always do. 0 loads nothing; 0xFFFFFFFF loads every value that the file really holds but
// those of group 0002 and private ones of 22 bytes or more.
//
// A file that is cut short, or whose structure breaks, yields the part of the tree that precedes
// the break. Sequences nested deeper than 2,048 levels count as such a break. Encapsulated Pixel
// Data whose fragments cannot be indexed, or shall not be, are the last element of the tree; with
// PG_OPEN_PAST_PIXEL_DATA their items are passed over up to the delimiter, and what follows is
// read.
//
// Deflated Explicit VR Little Endian (1.2.840.10008.1.2.1.99) is inflated into an unnamed temporary
// file, which takes the place of the file that was opened: that is closed, and the tree's file and
// offsets are those of the temporary one, in which the File Meta Information precedes what was
// inflated. Deflated data that are cut short or damaged yield what precedes the break; what
// inflates to more than 100 times the file and 256 MiB is refused, as is everything when there is
// no room for the temporary file. Data with the header of zlib (RFC 1950) are inflated too; bytes
// behind the deflated data, padding, are not looked at.
PGKIT_API PGX_Node* pgOpenDataSetFile(const char* path, uint32_t maxLoadLength);

// The same with PgOpenFlags; the plain form passes 0.
PGKIT_API PGX_Node* pgOpenDataSetFileEx(const char* path, uint32_t maxLoadLength, uint32_t flags);

// The same on an open, seekable binary stream that stands at its beginning. On success the tree
// owns the stream. On failure the stream has been closed, unless memory ran out: then it is left
// open. A null stream gives null.
PGKIT_API PGX_Node* pgOpenDataSetFileHandle(FILE* stream, uint32_t maxLoadLength);
PGKIT_API PGX_Node* pgOpenDataSetFileHandleEx(FILE* stream, uint32_t maxLoadLength, uint32_t flags);

// 1 when the file has "DICM" at offset 128, else 0. A file that cannot be opened is reported as
// "pgIsDicomFile : unable to open %s\n" on the standard error stream.
PGKIT_API int32_t pgIsDicomFile(const char* path);

// Compares two patient names without regard to case, diacritics, symbols (blanks, carets, hyphens
// and all other punctuation) and character width, by the system's default locale. Returns -1, 0 or
// 1 as a sorts before, with or after b, and -2 when the comparison fails, also for want of memory.
// Null counts as empty.
PGKIT_API int32_t pgComparePatientNames(const char* a, const char* b, int32_t unused);

// A new empty data set (valueRep 0), or null when memory runs out. Free it with
// pgFreeNodeHierarchy.
PGKIT_API PGX_Node* pgAllocateDataSetNode(void);

// Destroys one node and what it owns, not its children or siblings. Null is allowed.
PGKIT_API void pgFreeNode(PGX_Node* node);

// Destroys a node, every sibling that follows it, and all their descendants. Null is allowed. To
// free one element of a data set use PGX_Node::RemoveNode.
PGKIT_API void pgFreeNodeHierarchy(PGX_Node* node);

// Closes the file of an opened data set, if there is one, and frees the tree. Null is allowed.
PGKIT_API void pgCloseDataSet(PGX_Node* root);

// The first direct child with the given tag or element identifier, or null (also for a null data
// set or an identifier above 3781). Sequences are not searched.
PGKIT_API PGX_Node* pgFindNodeWithGroupElement(PGX_Node* dataSet, uint16_t group, uint16_t element);
PGKIT_API PGX_Node* pgFindNodeWithElementId(PGX_Node* dataSet, uint32_t elementId);

PGKIT_END_C

#endif
