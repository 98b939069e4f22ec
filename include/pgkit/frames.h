// pgkit: where the frames of encapsulated Pixel Data lie.
//
// A frame is one fragment or several behind each other. The fragment table of the Pixel Data
// (GetEncodedPixelInfo) cannot say so in all cases: its entries are frames or fragments, depending
// on the file, and some files have none. This function goes to the items themselves and tells the
// pieces of every frame, in order. It takes the first of these that is consistent:
//
// 1. The Extended Offset Table (7FE0,0001) with its lengths (7FE0,0002), which leave the padding of
//    frames out.
// 2. The Basic Offset Table.
// 3. One fragment for each frame, when there are as many as Number of Frames (0028,0008) says.
// 4. All fragments for one frame, when that says 1 or is absent.
//
// An offset table is consistent when its first offset is 0, every offset is larger than the one
// before and that of a fragment, and, where there is a Number of Frames, it has as many entries.
// Lengths must not exceed what is between the offsets.
#ifndef PGKIT_FRAMES_H
#define PGKIT_FRAMES_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"

typedef enum PgxFrameSource {
    PGX_FRAMES_NONE = 0, /* nothing is consistent, or there are no fragments */
    PGX_FRAMES_EXTENDED_OFFSETS = 1,
    PGX_FRAMES_BASIC_OFFSETS = 2,
    PGX_FRAMES_FRAGMENTS = 3,
    PGX_FRAMES_SINGLE = 4
} PgxFrameSource;

// What pgxFindFrames gives when there is nothing to look at.
typedef enum PgxFrameError {
    PGX_FRAMES_NOT_ENCAPSULATED = -1, /* no encapsulated Pixel Data, or a null data set */
    PGX_FRAMES_NOT_READABLE = -2,     /* the file cannot be read, or they begin beyond 4 GiB */
    PGX_FRAMES_NO_MEMORY = -3
} PgxFrameError;

// A part of a frame: the value, or the beginning of the value, of one item.
typedef struct PgxFramePiece {
    uint32_t frame;       /* from 0 */
    uint32_t length;      /* in bytes, of those that the file really holds */
    uint64_t offset;      /* in the file of the tree (PGX_Node::file); 0 for a piece in memory */
    const uint8_t* bytes; /* the piece, when it is in memory: valid as long as the Pixel Data stay
                             as they are; else null */
} PgxFramePiece;

PGKIT_BEGIN_C

// The pieces of all frames of the Pixel Data of a data set, of which the array gets as many as it
// has room for (null counts as no room). Returns how many there are, 0 when the frames cannot be
// told, or a PgxFrameError. source, which may be null, receives what they were taken from. Empty
// fragments are no pieces: a frame of nothing else has none.
//
// Pixel Data in memory (built, or opened from memory) have the fragments of their table, and no
// Basic Offset Table. Reads the tree's file, and moves it: a tree and its file belong to one thread
// at a time. Time and memory are in proportion to the number of fragments. Nothing is printed.
PGKIT_API int64_t pgxFindFrames(PGX_Node* dataSet, PgxFramePiece* pieces, size_t count,
                                int32_t* source);

PGKIT_END_C

#endif
