// pgkit: frames of RLE Lossless (PS3.5, annex G).
#ifndef PGKIT_RLE_H
#define PGKIT_RLE_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// Decodes a frame: length bytes, the fragments of the frame behind each other. It has a segment for
// each byte of each sample, the most significant byte first: samplesPerPixel *
// ((bitsAllocated + 7) / 8) of them, at most 15. buffer gets the samples, those of a plane behind
// each other (Planar Configuration 1), in host byte order: bytesPerSample (1, 2, 4 or 8) bytes
// each, segments / bytesPerSample planes, size / segments pixels.
//
// Returns 1; or 0 when the frame does not have this many segments, when a segment does not lie in
// it or has fewer bytes than pixels, for numbers that do not divide each other, and for null. Then
// the buffer holds what could be decoded, and zeros. What a segment has too much is passed over.
//
// Any thread may call this at any time. Nothing is printed or allocated.
PGKIT_API int32_t pgxDecodeRle(const void* frame, size_t length, uint32_t segments,
                               uint32_t bytesPerSample, void* buffer, size_t size);

PGKIT_END_C

#endif
