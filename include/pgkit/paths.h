// pgkit: how paths are written, which of them a medium may have, and where its files really are.
#ifndef PGKIT_PATHS_H
#define PGKIT_PATHS_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/directory_records.h"
#include "pgkit/export.h"

PGKIT_BEGIN_C

// What the bytes of paths mean, on Windows; elsewhere a path is its bytes. By default they are
// characters of the code page that the system's narrow functions use: UTF-8 when the program's
// manifest says so (activeCodePage) or the system is set to it, else some page with few of the
// world's letters.
typedef enum PgxPathEncoding {
    PGX_PATHS_SYSTEM = 0, /* the system's code page */
    PGX_PATHS_UTF8 = 1    /* UTF-8, whatever the code page */
} PgxPathEncoding;

// Sets the encoding of all paths that the library and the imaging module take and give, for the
// whole process, and returns the former one: PGX_PATHS_SYSTEM when the library is loaded. Any other
// value changes nothing. With PGX_PATHS_UTF8 a path that is not valid UTF-8 names no file. Paths
// that the library keeps (PGX_DicomDir::folder, content files) are read as the encoding is when
// they are used.
//
// May be called by any thread at any time; the value is a single atomic one. A program chooses
// once, before its first path.
PGKIT_API int32_t pgxSetPathEncoding(int32_t encoding);
PGKIT_API int32_t pgxGetPathEncoding(void);

// The path of the file that a leaf refers to, as it is there: other than fullPath, which is in
// upper case and need not exist. The referenced file ID is looked up below folder, each component
// as it is written or else without regard to case and to the blanks at its end. folder is where the
// DICOMDIR is, as for PGX_DicomDir::folder; null takes the beginning of fullPath.
//
// Returns the length of the path without the zero at its end, and writes as much of it as fits into
// size bytes, always terminated when size is not 0. The path is one that fopen takes: it begins
// with folder, with the system's own separators. Returns 0, with an empty text, when there is no
// such file or it is a directory, when the leaf is null or refers to no file, when memory runs out,
// and when the ID leads out of the folder ("..", a drive): then nothing is looked up. Links are
// followed.
//
// Prints nothing, changes nothing. Leaves of different hierarchies may be asked by different
// threads.
PGKIT_API size_t pgxLeafFile(PGX_DicomDirLeafNode* leaf, const char* folder, char* path,
                             size_t size);

// 1 when a path below the directory of a medium is a File ID of the standard (PS3.10): at most 8
// components of 1 to 8 characters each, which are A to Z, 0 to 9 and underscores; backslashes or
// slashes are between them. Else 0, also for null. Media with other names are read by many
// programs, and not by all.
//
// Reads its argument alone: any thread may call it at any time.
PGKIT_API int32_t pgxIsFileId(const char* path);

PGKIT_END_C

#endif
