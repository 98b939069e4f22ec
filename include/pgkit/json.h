// pgkit: data sets as DICOM JSON (PS3.18, annex F), and back.
//
//     {"00080005":{"vr":"CS","Value":["ISO_IR 192"]},
//      "00100010":{"vr":"PN","Value":[{"Alphabetic":"Yamada^Tarou","Ideographic":"山田^太郎"}]},
//      "00280030":{"vr":"DS","Value":[0.25,0.5]}, ...}
//
// What is written
//
//   Data set      One object, without blanks between its parts, elements in ascending
//                 order of their tags. Group lengths and group 0002 are left out: the File Meta
//                 Information is not part of a data set. So is group FFFE, which no element can
//                 have; of several elements of one tag the first one stands. Private elements and
//                 their creators are elements like others.
//   Texts         In UTF-8, as (0008,0005) of their data set or item says (text.h). Each
//                 (0008,0005) is written as ISO_IR 192, and a data set that has none, but texts
//                 beyond ASCII, gets one. Blanks and NULs at the end of each value are padding and
//                 left out (in ST, LT, UT and UR, at the end of the whole).
//   Empty values  An element without value, or with blanks only, has no "Value". One of several
//                 values that is empty is null, an empty item {}.
//   PN            Alphabetic, Ideographic, Phonetic: those that are not empty. More than three
//                 groups there cannot be; what stands behind the third "=" is left out.
//   IS, DS        A number where the text is one of at most 16 characters and a double keeps all of
//                 its digits (IS: where it is an integer of 32 bits), with the digits as they stand
//                 (1.50, not 1.5); else, and so beyond the precision of doubles, a string.
//   SV, UV        A number up to 2^53 either way, beyond that a string.
//   FL, FD        The number that a double has (0.1 in FL is 0.10000000149011612); NaN and the
//                 infinities are the strings "NaN", "inf" and "-inf". In all kinds of numbers a
//                 rest of the value that is shorter than a number is left out.
//   AT            Eight upper-case hexadecimal digits.
//   OB, OD, OF, OL, OV, OW, UN
//                 InlineBinary: base64 of the value, its words in little endian. Values whose VR
//                 is unknown are UN. Elements that a dictionary says to be "US or SS" are SS where
//                 Pixel Representation (0028,0103) of their data set is 1, else US; "OW or OB" is
//                 OW, in groups 50xx OB. What a file lacks of a value not loaded is left out.
//   BulkDataURI   Instead of a value of more than bulkLimit stored bytes, of the VRs for which the
//                 standard allows it: DS, FL, FD, IS, LT, OB, OD, OF, OL, OV, OW, SL, SS, ST, SV,
//                 UC, UL, UN, US, UT, UV. Encapsulated Pixel Data are always one, for no other way
//                 says that they are in fragments. The URI is what the caller's function makes,
//                 else the source with "?offset=N&length=M" behind it (with "&" when the source has
//                 a "?"): where the value's bytes lie in the tree's file, of encapsulated Pixel
//                 Data from the first item to the end of the delimiter. It is in the byte order of
//                 the file. A value that is in no file, and for which the function makes no URI, is
//                 inline.
//
// Memory does not depend on the length of values: they are read, converted and written piece by
// piece.
//
// What is read
//
//   The same, and what the standard allows beyond it: any order of elements and of members, blanks,
//   a byte order mark, digits of tags in lower case, IS, DS, SV and UV as numbers or strings,
//   InlineBinary for numbers. A missing "vr" is taken from the tables, those of the current edition
//   included (edition.h); the VRs of the current edition need that edition. The elements of the new
//   tree are little endian and in ascending order, all values in memory. Group lengths and group
//   0002 are dropped. Where a text needs more than ASCII, the (0008,0005) that holds for it becomes
//   ISO_IR 192, and the data set gets one if there is none. Numbers of DS are taken as they stand,
//   those longer than 16 characters rounded to what 16 can hold. Values are made even as
//   PGX_Node::SetValue does, InlineBinary with a zero: so a value of odd length, which no file
//   should have, comes back a byte longer. A text that its VR cannot have is an error, U+FFFD in a
//   CS or UI among them, which stands where a file has bytes that the standard does not allow
//   there.
//
//   Everything else is an error: see PgxJsonError. Sequences may be nested 2,048 deep, as in files.
//   Memory is bounded by the length of the JSON: at most about 50 times as much for many tiny
//   items, and that of the value for a long one.
//
// Options and places begin with their own size, so that they can grow: set it to sizeof, as the
// macros PGX_JSON_WRITE_OPTIONS and PGX_JSON_READ_OPTIONS do. Null options are those of the macros.
//
// Threads: a tree, and its file, belong to one thread at a time; else all threads may call these
// functions at any time. Nothing is printed. Functions of the caller: see streams.h.
#ifndef PGKIT_JSON_H
#define PGKIT_JSON_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"
#include "pgkit/streams.h"

typedef enum PgxJsonError {
    PGX_JSON_NO_MEMORY = -1,    /* or a function of the caller threw something */
    PGX_JSON_NO_DATA_SET = -2,  /* null, a node that is no data set; no object where one must be */
    PGX_JSON_WRITE_FAILED = -3, /* the caller's function took less than it got */
    PGX_JSON_READ_FAILED = -4,  /* the caller's function returned PGX_READ_FAILED */
    PGX_JSON_UNREADABLE = -5,   /* a value beyond 4 GiB in its file, from where nothing is read */
    PGX_JSON_NO_URI = -6,       /* encapsulated Pixel Data that are in no file */
    PGX_JSON_SYNTAX = -7,       /* no JSON, or something behind it */
    PGX_JSON_NOT_UTF8 = -8,     /* also half of a surrogate pair */
    PGX_JSON_TOO_DEEP = -9,     /* data sets nested deeper than depthLimit */
    PGX_JSON_TOO_LARGE = -10,   /* more than sizeLimit; a value of 4 GiB */
    PGX_JSON_WRONG_TYPE = -11,  /* a number where a string must be, or the like */
    PGX_JSON_UNKNOWN_MEMBER = -12, /* of an element or a name */
    PGX_JSON_DUPLICATE = -13,      /* an element, or a member of one, twice */
    PGX_JSON_SEVERAL_VALUES = -14, /* Value, InlineBinary and BulkDataURI beside each other */
    PGX_JSON_BAD_TAG = -15,        /* no 8 hexadecimal digits, group FFFE or FFFFFFFF */
    PGX_JSON_UNKNOWN_VR = -16,     /* or none given and none in the tables */
    PGX_JSON_OUT_OF_RANGE = -17,   /* a number that the VR does not have */
    PGX_JSON_BAD_TEXT = -18,       /* "\" in one of several values, "=" in a name, no ASCII in CS */
    PGX_JSON_BAD_BASE64 = -19,     /* also numbers whose bytes are not whole */
    PGX_JSON_NO_BULK_DATA = -20,   /* a BulkDataURI that nobody supplies */
    PGX_JSON_SEVERAL_DATA_SETS = -21 /* where one was asked for */
} PgxJsonError;

/* A bulkLimit that no value exceeds. */
#define PGX_JSON_ALL_INLINE UINT64_MAX

/* An offset that is none. */
#define PGX_JSON_NO_OFFSET UINT64_MAX

PGKIT_BEGIN_C

// ---- Writing ------------------------------------------------------------------------------------

// Makes the URI of a value. path is its place in the data set, with the keywords of today's
// standard or eight digits: "ReferencedSeriesSequence[0].SeriesInstanceUID", "00091001". offset and
// length say where its bytes lie in the tree's file; offset is PGX_JSON_NO_OFFSET for a value that
// is in none. Writes the URI, in UTF-8, as far as size allows and terminated, into uri and returns
// its length. A length of size or more makes it called again with more room, up to 65,536 bytes. 0
// leaves the value inline.
typedef size_t (*PgxJsonUriFunction)(void* context, PGX_Node* element, const char* path,
                                     uint64_t offset, uint64_t length, char* uri, size_t size);

typedef struct PgxJsonWriteOptions {
    size_t size;            /* sizeof(PgxJsonWriteOptions) */
    uint64_t bulkLimit;     /* longer values become URIs: 0 for all, or PGX_JSON_ALL_INLINE */
    const char* sourceUri;  /* of the file, for URIs without a function, in UTF-8; null is empty */
    PgxJsonUriFunction uri; /* may be null */
    void* uriContext;
    PGX_Node* characterSet; /* holds for an item that has none of its own (text.h); may be null */
} PgxJsonWriteOptions;

#define PGX_JSON_WRITE_OPTIONS \
    { sizeof(PgxJsonWriteOptions), PGX_JSON_ALL_INLINE, NULL, NULL, NULL, NULL }

// Writes a data set, or an item, through the caller's function. Returns how many bytes that are, or
// a PgxJsonError; then what was written before is without use. For an array of data sets the caller
// writes the brackets and commas.
PGKIT_API int64_t pgxWriteJson(PGX_Node* dataSet, const PgxJsonWriteOptions* options,
                               PgxWriteFunction write, void* context);

// The same into a buffer. Returns the length of the whole, without the NUL behind it. When size is
// not 0 the buffer holds as much as fits, terminated and not cut inside a character; on an error it
// is empty. With a size of 0 it is only counted.
PGKIT_API int64_t pgxGetJson(PGX_Node* dataSet, const PgxJsonWriteOptions* options, char* buffer,
                             size_t size);

// ---- Reading ------------------------------------------------------------------------------------

// Supplies the value that a BulkDataURI stands for: gives it to element (pgKitSetValue,
// pgKitSetFileContentValue), whose tag and VR are set and which is in no tree yet, and returns 1. 0
// is an error of the data set.
typedef int32_t (*PgxJsonBulkFunction)(void* context, PGX_Node* element, const char* path,
                                       const char* uri);

typedef struct PgxJsonReadOptions {
    size_t size;              /* sizeof(PgxJsonReadOptions) */
    uint32_t depthLimit;      /* of nested data sets, 1 for no sequences; 0, or more, for 2,049 */
    uint64_t sizeLimit;       /* of the JSON in bytes; 0 for none */
    PgxJsonBulkFunction bulk; /* null: a BulkDataURI is an error */
    void* bulkContext;
} PgxJsonReadOptions;

#define PGX_JSON_READ_OPTIONS \
    { sizeof(PgxJsonReadOptions), 0, 0, NULL, NULL }

enum { PGX_JSON_PATH_SIZE = 256 };

// Where reading failed.
typedef struct PgxJsonPlace {
    size_t size;     /* sizeof(PgxJsonPlace), set by the caller */
    int32_t error;   /* PgxJsonError; 0 when nothing failed */
    uint64_t offset; /* in bytes from the beginning, at or behind what is wrong */
    /* As for PgxJsonUriFunction, in an array behind the number of the data set, from 0
       ("[2].PatientName"); empty outside of all elements. Of a longer one the end, behind "...". */
    char path[PGX_JSON_PATH_SIZE];
} PgxJsonPlace;

// Reads one data set: an object, or an array of one object. Returns a new tree, the caller's
// (pgCloseDataSet), or null. place may be null.
PGKIT_API PGX_Node* pgxReadJson(PgxReadFunction read, void* context,
                                const PgxJsonReadOptions* options, PgxJsonPlace* place);

// The same from memory. Null counts as nothing, which is PGX_JSON_SYNTAX.
PGKIT_API PGX_Node* pgxParseJson(const char* json, size_t length, const PgxJsonReadOptions* options,
                                 PgxJsonPlace* place);

// Takes a data set, which is the caller's from now on. Returns 1 to go on, 0 to stop.
typedef int32_t (*PgxJsonDataSetFunction)(void* context, PGX_Node* dataSet);

// Reads data sets: an array of objects, each of which is handed over when it is complete, or a
// single object. Returns how many were handed over, or a PgxJsonError: then those before are the
// caller's all the same. What follows the data set at which the caller stops is not looked at.
PGKIT_API int64_t pgxReadJsonDataSets(PgxReadFunction read, void* context,
                                      const PgxJsonReadOptions* options,
                                      PgxJsonDataSetFunction take, void* takeContext,
                                      PgxJsonPlace* place);

// The same from memory.
PGKIT_API int64_t pgxParseJsonDataSets(const char* json, size_t length,
                                       const PgxJsonReadOptions* options,
                                       PgxJsonDataSetFunction take, void* takeContext,
                                       PgxJsonPlace* place);

// What an error means, in English: "the same element or member twice". The result is the length of
// the whole text, of which the buffer holds what fits, terminated; 0 for what is no PgxJsonError.
PGKIT_API size_t pgxJsonErrorText(int32_t error, char* buffer, size_t size);

PGKIT_END_C

#endif
