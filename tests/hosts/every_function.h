/* Calls of every flat function, in a host that is written in C. */
#pragma once

#include <pgkit/export.h>

PGKIT_BEGIN_C

/* What the calls read and write. */
typedef struct HostFiles {
    const char* dataSet;           /* of Part 10, with a nested sequence and fragments */
    const char* dicomdir;          /* with records of all levels */
    const char* medium;            /* a directory of files to make a DICOMDIR of */
    const char* fileOfMedium;      /* one of them, by its path */
    const char* privateDictionary; /* with one line */
    const char* output;            /* a file to write */
} HostFiles;

/* Returns how many of the results are none that the headers state, for any amount of memory. */
int CallEveryFunction(const HostFiles* files);

PGKIT_END_C
