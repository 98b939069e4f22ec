// pgview32: the companion imaging module, which makes bitmaps of grayscale images. The library
// loads it at run time for the icons of media directories and makes none without it; a program may
// load or link it for itself.
//
// Conventions of its functions, valid unless the documentation of one says otherwise:
//
//  1. Linkage. All are C functions with the platform's default calling convention, named as they
//     stand in the export table: of pgview32.dll on Windows, of pgview32.so on POSIX systems.
//  2. Results. A function that yields an object gives a handle, null on failure; a question or an
//     action gives 1 for yes or success, 0 for no or failure. Nothing is printed and no exception
//     leaves the module: exhausted memory is a failure like others.
//  3. Images. The handle of an image belongs to the caller until vwImaFreeDicomImage. An image is
//     used by one thread at a time. A loaded image keeps its file open.
//  4. Bitmaps. A bitmap handle belongs to the caller who received it, also after the image it was
//     made of is freed; functions that take one leave it as it is. On Windows it is a movable
//     global memory block (HGLOBAL): GlobalLock gives its bytes, GlobalFree frees it. On POSIX
//     systems it is the address of the bitmap's first byte, and free() frees it.
//  5. The bytes of a bitmap are a device-independent bitmap: a BITMAPINFOHEADER (40 bytes, little
//     endian), the colour table (4 bytes for each entry: blue, green, red, 0), and the rows of the
//     picture. The bottom row comes first; zeros fill each row up to a multiple of 4 bytes.
//
//        offset  size  field
//             0     4  biSize           40
//             4     4  biWidth          pixels in a row
//             8     4  biHeight         rows; positive
//            12     2  biPlanes         1
//            14     2  biBitCount       8
//            16     4  biCompression    0
//            20     4  biSizeImage      bytes of all rows, padding included
//            24     4  biXPelsPerMeter  0
//            28     4  biYPelsPerMeter  0
//            32     4  biClrUsed        256
//            36     4  biClrImportant   0
//            40  1024  colour table     entry i is the gray i
//          1064        rows             a byte for each pixel, 0 black, 255 white
//
//     This is what the module makes of images. It also takes, and makes of such, 24-bit bitmaps
//     (biBitCount 24, no colour table, blue, green and red for each pixel) and takes 8-bit bitmaps
//     with any other table of at most 256 grays (biClrUsed 0 means 256). It takes no other bitmaps,
//     and none that exceeds its block, whatever its header says: a bitmap that a program hands in
//     has to be such a block of its own, of GlobalAlloc or of malloc.
//  6. Bounds. No bitmap has a side of more than 65,535 pixels, or more than 2^28 pixels: what would
//     give a larger one gives null, and larger ones are not taken. Beside the tree of its file
//     (pgOpenDataSetFile, with nothing loaded) and the bitmap that it gives, no function takes more
//     memory than 64 MiB and 8 times the file.
#ifndef PGKIT_IMAGING_H
#define PGKIT_IMAGING_H

#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// A new image without content, or null.
PGVIEW_API void* vwImaAllocEmptyDicomImage(void);

// Frees an image and closes its file. Null is allowed.
PGVIEW_API void vwImaFreeDicomImage(void* image);

// Loads an image from a DICOM file, in the place of what was loaded before. Pixels are read when a
// bitmap is asked for. A backslash in the path separates components on every platform.
//
// Returns 1 when the file holds an image, grayscale or not, whose Pixel Data (7FE0,0010) is native
// or in RLE Lossless. Returns 0, and leaves the image without content, for a null image or path, a
// file that cannot be opened or is no DICOM file, any other compression, a data set without pixels,
// without rows or columns, with other than 8, 16 or 32 Bits Allocated, or with Bits Stored or a
// High Bit that do not fit into these.
PGVIEW_API int32_t vwImaLoadFrom(void* image, const char* path);

// 1 when the image has one sample for each pixel and a Photometric Interpretation that begins with
// "MONOCHROME"; 0 for colour (RGB, YBR, PALETTE COLOR), for an image without content and for null.
PGVIEW_API int32_t vwImaIsGrayscaleImage(void* image);

// The number of frames that the file states, 1 when it states none or less than 1; 0 for an image
// without content and for null.
PGVIEW_API uint32_t vwImaGetNumber(void* image);

// A new bitmap of one frame, counted from 0. Null for a frame that the image does not have, for an
// image that is not grayscale, and when the file holds the frame's pixels only in part.
//
// Stored values, Bits Stored bits below and including the High Bit, signed as Pixel Representation
// says, go through Rescale Slope and Intercept (1 and 0 when absent) and then through the first
// window of Window Center and Width, by the linear function of DICOM PS3.3 C.11.2.1.2 onto 0 to
// 255, rounded to the nearest gray. Without a window, or with a width below 1, the lowest value of
// the frame becomes 0 and the highest 255; a frame of one value becomes 0. MONOCHROME1 inverts the
// result. Tables (Modality LUT, VOI LUT, Presentation LUT) and the windows of functional groups are
// not applied; where there is a Modality LUT Sequence, the window is for its output and not used.
PGVIEW_API void* vwImaGetHDib(void* image, uint32_t frame);

// A new bitmap of the frame one third into the image (index number of frames / 3), scaled to fit a
// square: its longer side has size pixels, the other is as long as the proportion says, rounded
// to the nearest, and at least 1. Small images are enlarged. Null as vwImaGetHDib, and for a size
// of 0.
PGVIEW_API void* vwGetThumbnailDib(void* image, uint32_t size);

// A new bitmap, scaled by the same factor in both directions. Each side becomes the old one times
// zoom, rounded to the nearest (halves up), and at least 1. Every new pixel is the mean of the area
// that it covers, by exact arithmetic, rounded to the nearest; enlarging by a whole factor so
// repeats pixels. Zoom 1.0 gives a copy of the bitmap. Null when dib is null or is no bitmap that
// the module takes, and when zoom is not a number above 0 or makes a bitmap that is too large.
PGVIEW_API void* vwDuplicateZoomDib(void* dib, double zoom);

// The same with soft edges: where a bitmap is enlarged, new pixels lie between the centres of the
// old ones and are interpolated linearly in both directions. Reducing is as vwDuplicateZoomDib.
PGVIEW_API void* vwInterpolateZoomDib(void* dib, double zoom);

// Writes a bitmap as a BMP file: a BITMAPFILEHEADER of 14 bytes, and the bitmap. A backslash in the
// path separates components on every platform. An existing file is replaced. Returns 0 when dib is
// null or is no bitmap that the module takes, and when the file cannot be created or written.
PGVIEW_API int32_t vwWriteDib(void* dib, const char* path);

PGKIT_END_C

#endif
