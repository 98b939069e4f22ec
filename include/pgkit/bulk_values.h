// pgkit: the elements of a data set, or the values of some of its tags, in one call and one buffer.
//
// For callers to whom a call is dear: bindings of other languages, programs that read a few values
// of many files. The functions give a block of bytes (all numbers in host byte order):
//
//     PgxLevelHeader
//     uint32_t tags[count]                     (group << 16 | element)
//     four bytes of zeros when count is odd
//     PgxElementRecord records[count]          the same order
//     the values, each at a multiple of 8 bytes, with a NUL behind it
//
// so that a tag is looked for in a few cache lines, and a record found by its index.
//
// Values of text VRs are UTF-8, as text.h says, without the padding at their end: offset and size
// say where, "\" separates values. Others are what pgKitGetValue gives: numbers in host byte order.
// A value of more than longestValue bytes, as its element's length says, or of which the file holds
// only a part, is left out (PGX_VALUE_LEFT_OUT): so Pixel Data do not get into a block by accident,
// and a length that lies costs no memory. Sequences have their items as a block of their own:
// pgxReadLevel of the sequence element gives a record for each item, with the tag FFFEE000, and
// pgxReadLevel of the item its elements.
//
// Results are the size of the whole block in bytes. When the buffer has less room, it gets the
// header with a count of 0 if that fits, and nothing else of use: nothing half written has to be
// understood, and the call may be repeated with the size that was returned. A null buffer counts as
// one of size 0. 0 is a failure: a null node, no memory, a block of 4 GiB and more.
//
// Nodes in records are the tree's, and valid as long as they are in it. Records of elements that
// are not there, and those of pgxReadFileValues, have 0.
//
// Threads: a tree, and its file, belong to one thread at a time. pgxReadFileValues may be called by
// any number of threads. Nothing is printed.
#ifndef PGKIT_BULK_VALUES_H
#define PGKIT_BULK_VALUES_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"
#include "pgkit/open_report.h"

typedef enum PgxValueKind {
    PGX_VALUE_ABSENT = 0,       /* there is no such element */
    PGX_VALUE_TEXT = 1,         /* UTF-8 */
    PGX_VALUE_BYTES = 2,        /* numbers and everything else */
    PGX_VALUE_SEQUENCE = 3,     /* an element with items, or of VR SQ */
    PGX_VALUE_ENCAPSULATED = 4, /* Pixel Data in fragments */
    PGX_VALUE_LEFT_OUT = 5,     /* too long, or not in the file as a whole */
    PGX_VALUE_ITEM = 6          /* an item of a sequence */
} PgxValueKind;

typedef struct PgxLevelHeader {
    uint32_t count; /* of records */
    uint32_t size;  /* of the block in bytes */
    /* the PGX_Node* of the element (0008,0005) that holds for the values (text.h), 0 when there is
       none: what the items of this data set inherit */
    uint64_t characterSet;
} PgxLevelHeader;

typedef struct PgxElementRecord {
    uint64_t node; /* PGX_Node* */
    uint32_t tag;
    uint32_t valueRep; /* ValueRepresentation; 255 where it is not known */
    uint32_t length;   /* of the stored value, 0xFFFFFFFF when it is undefined */
    uint32_t kind;     /* PgxValueKind */
    uint32_t offset;   /* of the value, from the beginning of the block */
    uint32_t size;     /* of the value in bytes, without the NUL behind it */
} PgxElementRecord;

PGKIT_BEGIN_C

// All elements of a data set or item, in the order in which they stand there; all items of a
// sequence. characterSet is what an item inherits (text.h), null for a root.
PGKIT_API size_t pgxReadLevel(PGX_Node* dataSet, PGX_Node* characterSet, uint32_t longestValue,
                              void* buffer, size_t size);

// The first element of each of these tags, a record for each tag, in the order of the list. A null
// list counts as an empty one.
PGKIT_API size_t pgxReadValues(PGX_Node* dataSet, PGX_Node* characterSet, const uint32_t* tags,
                               uint32_t count, uint32_t longestValue, void* buffer, size_t size);

// The same of a file, which is opened (pgxOpenFile with these PgOpenFlags) and closed again. 0 also
// when there is no tree; the report, which may be null, says why.
PGKIT_API size_t pgxReadFileValues(const char* path, uint32_t flags, const uint32_t* tags,
                                   uint32_t count, uint32_t longestValue, void* buffer, size_t size,
                                   PgxOpenReport* report);

PGKIT_END_C

#endif
