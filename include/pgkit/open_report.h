// pgkit: opening with a report of what was found, and opening from and saving to places that are no
// files.
//
// The functions of dataset.h give a tree or none, whatever the file is. These also tell why:
// whether the file is a data set at all, whether it is there as a whole and where it ends if not,
// and how its encoding was found out.
//
// What is a data set. With File Meta Information, or "DICM" behind a preamble, everything is, and
// the transfer syntax says how it is encoded. Without, only what begins like one: with elements of
// tags that the dictionaries know (the first of them; later ones may be private), in ascending
// order, of a known VR where there is one, that fit into the file. Texts, pictures, archives and
// programs are none. The encoding is the one in which the beginning looks so, explicit VR little
// endian before implicit; one of the "force" flags (PgOpenFlags) leaves only the encodings that it
// says. Big endian is looked for only with PGX_OPEN_DETECT_BIG_ENDIAN or a force flag.
//
// Complete is a file that ends behind an outermost element. Anywhere else, in a value, a header, a
// sequence, or the File Meta Information, it is cut short; what precedes the cut is in the tree. So
// is a file that ends right behind its File Meta Information: it has no data set.
//
// Deflated Explicit VR Little Endian is inflated into a temporary file, which becomes the tree's
// (dataset.h): offsets count there. File Meta Information stands there as in the original.
//
// Trees from memory and from a read function have everything in memory, whatever its size, and file
// is null: the bytes may go when the function has returned, and values count as set in memory. For
// a moment the tree and the bytes that a function has read are both there. fileOffset says where
// the value stood. A value that the end cuts short has the missing bytes as zeros, if it claims at
// most 64 MiB; a longer one has the length of what is there. Encapsulated Pixel Data are loaded
// too: one entry of the fragment table for each fragment or, where the Basic Offset Table leads to
// the fragments that begin frames, one for each frame, with the bytes of its fragments behind each
// other. PG_OPEN_SKIP_FRAGMENTS and PG_OPEN_PAST_PIXEL_DATA mean nothing then: elements behind
// Pixel Data are always read.
//
// Threads: as the tree, any; the functions share nothing. Nothing is printed but by the save, on
// the standard output, as SaveDataSetAsEx does.
#ifndef PGKIT_OPEN_REPORT_H
#define PGKIT_OPEN_REPORT_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"
#include "pgkit/streams.h"

// What became of a file. Below 0 there is no tree; with PGX_OPEN_READ_FAILED there may be none.
typedef enum PgxOpenResult {
    PGX_OPEN_COMPLETE = 0,
    PGX_OPEN_CUT_SHORT = 1, /* the bytes end at offset, in the element tag */
    PGX_OPEN_BROKEN = 2,    /* at offset stands a header that cannot be read, or a delimiter of
                               nothing; what follows it was not read */
    PGX_OPEN_LEFT_AFTER_FRAGMENTS = 3, /* nobody knows where the encapsulated Pixel Data at offset
                                 end, and what follows them was not read: their fragments were not
                                 indexed. Not with PG_OPEN_PAST_PIXEL_DATA */
    PGX_OPEN_TOO_DEEP = 4,     /* sequences nested deeper than 2,048 levels; the element tag, whose
                                  value begins at offset, was not read, and its data set ends there */
    PGX_OPEN_READ_FAILED = 5,  /* the system, or the read function, has failed at offset */
    PGX_OPEN_CANNOT_OPEN = -1, /* there is no such file, or it may not be read; also null */
    PGX_OPEN_NOT_A_DATA_SET = -2,
    PGX_OPEN_TOO_LARGE = -3,    /* inflates to more than 100 times the file and 256 MiB */
    PGX_OPEN_NO_TEMPORARY = -4, /* the temporary file for what is inflated cannot be written */
    PGX_OPEN_NO_MEMORY = -5
} PgxOpenResult;

// What else there is to know.
typedef enum PgxOpenNotes {
    PGX_OPEN_HAS_META = 0x01, /* File Meta Information */
    PGX_OPEN_DEFLATED = 0x02,
    PGX_OPEN_GUESSED = 0x04,         /* the encoding: see certainty */
    PGX_OPEN_CREATORS_IGNORED = 0x08 /* a data set has more than 39 private creators: names and VRs
                                        of the others' elements are not looked up */
} PgxOpenNotes;

// How sure the encoding is.
typedef enum PgxCertainty {
    PGX_CERTAINTY_NONE = 0,  /* there is no data set */
    PGX_CERTAINTY_LOW = 1,   /* guessed from one element or two */
    PGX_CERTAINTY_HIGH = 2,  /* guessed from three or more, or from all there are */
    PGX_CERTAINTY_STATED = 3 /* the transfer syntax says it, or without one the flags do */
} PgxCertainty;

typedef enum PgxOpenOptions {
    PGX_OPEN_DETECT_BIG_ENDIAN = 0x01 /* without File Meta Information look for big endian, too */
} PgxOpenOptions;

// size and options are the caller's: size is sizeof(PgxOpenReport). The rest is filled in, as far
// as size reaches: later versions append fields.
typedef struct PgxOpenReport {
    uint32_t size;           /* of this structure, in bytes */
    uint32_t options;        /* PgxOpenOptions */
    int32_t result;          /* PgxOpenResult */
    uint32_t notes;          /* PgxOpenNotes */
    int32_t certainty;       /* PgxCertainty */
    uint32_t syntaxFlags;    /* PgSyntaxFlags of the tree; 0xFFFFFFFF without one */
    uint64_t elements;       /* in the tree, on all levels */
    uint64_t offset;         /* as the result says; where the data end when it is complete */
    uint16_t group;          /* tag of the element that the result speaks of: the innermost one, */
    uint16_t element;        /* (FFFF,FFFF) when there is none */
    char transferSyntax[68]; /* UID of (0002,0010) without padding; empty when there is none; the
                                 first 64 characters of a longer one */
} PgxOpenReport;

PGKIT_BEGIN_C

// Opens a file as pgOpenDataSetFileEx does, but for files without File Meta Information (above).
// Where the File Meta Information is cut short the tree has what there is of it. The report may be
// null.
PGKIT_API PGX_Node* pgxOpenFile(const char* path, uint32_t maxLoadLength, uint32_t flags,
                                PgxOpenReport* report);

// The same from size bytes, and from all bytes that a function gives. Null bytes of a size that is
// not 0, and a null function, cannot be opened.
PGKIT_API PGX_Node* pgxOpenMemory(const void* bytes, size_t size, uint32_t flags,
                                  PgxOpenReport* report);
PGKIT_API PGX_Node* pgxOpenFrom(PgxReadFunction read, void* context, uint32_t flags,
                                PgxOpenReport* report);

// What SaveDataSetAsEx(path, mode) would write, links of a DICOMDIR included, goes to a function or
// to a buffer. The tree changes as there.
//
// pgxSaveTo returns the results of SaveDataSetAsEx; 3 when the function fails, also a null one;
// 0xFFFFFFFF for a null node. pgxSaveToMemory returns the size of the whole, of which the buffer
// gets as much as it has room for, or the result as a negative number (-1 for a null node): a size
// of 0 only asks. A null buffer counts as one of size 0. To ask is to save, with the same changes:
// a private transfer syntax that becomes Explicit VR Little Endian is native at the second call,
// which so may write the encoding that was asked for. Save once, with room, where that matters.
PGKIT_API uint32_t pgxSaveTo(PGX_Node* root, int32_t mode, PgxWriteFunction write, void* context);
PGKIT_API int64_t pgxSaveToMemory(PGX_Node* root, int32_t mode, void* buffer, size_t size);

PGKIT_END_C

#endif
