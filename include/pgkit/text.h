// pgkit: texts of data sets to and from UTF-8, as Specific Character Set (0008,0005) says.
//
// Which character set. The functions take the text of (0008,0005) as it stands in a data set, with
// "\" between its terms; null or empty is the default, ASCII. It holds for SH, LO, ST, LT, UT, UC
// and PN. The other texts (AE, AS, CS, DA, DS, DT, IS, TM, UI, UR) are ASCII whatever it says;
// values of other VRs are no text (PGX_TEXT_NOT_A_TEXT).
//
//   ISO_IR 6 (default), 100, 101, 109, 110, 144, 127, 126, 138, 148, 203, 13, 166
//                          one set; with "ISO 2022 IR " for "ISO_IR ", one that escape sequences
//                          may change to or from
//   ISO 2022 IR 87, 159    Japanese, changed to by escape sequences
//   ISO 2022 IR 149, 58    Korean, simplified Chinese, likewise
//   ISO_IR 192             UTF-8
//   GB18030, GBK           all of Unicode, simplified Chinese
//
// Terms are compared without case, blanks, hyphens and underscores ("iso-ir_144"). These, which are
// not in the standard, are taken for what they mean: ISO_IR and ISO 2022 IR in each other's place,
// several terms of which some have no code extensions (they are taken as if they had), ISO_IR 14
// (13), ISO 2022 58 (ISO 2022 IR 58), ISO 2022 GBK and GB2312 (GBK), UTF-8 (ISO_IR 192), latin1
// (ISO_IR 100), ISO 8859-N (its ISO_IR). A term that is none of all these counts as absent, an
// unknown first one as the default; UTF-8, GB18030 and GBK count as the first term only, and alone.
// At most 1024 bytes are looked at.
//
// In ISO_IR 13 and 14 the byte 5C is a backslash and 7E a tilde. Delimiters after which the sets of
// the first term are active again are CR, LF, FF and TAB, "\" where a VR has several values, "^"
// and "=" in PN. The result has the same delimiters: a "\" in a UTF-8 text of a VR with several
// values is always one between values, whatever bytes 5C were parts of characters before.
//
// Reading never fails for its bytes. What cannot be decoded becomes U+FFFD: one for each byte of a
// single-byte set, for each whole unit (two bytes, four in GB18030) that is no character, for each
// beginning of a unit that is not gone on with (what follows it is read anew), for each sequence of
// bytes that could begin a character in UTF-8, and for each ESC that begins no known sequence.
// Known escape sequences are followed also when (0008,0005) does not declare their set. Bytes above
// 7F for which no set was designated are of the first declared set that has such bytes; without
// one, as in data sets without (0008,0005), the value is UTF-8 when all of it is, else ISO 8859-1.
// In ASCII VRs they become U+FFFD.
//
// Blanks and NULs at the end of a value are padding and left out; everything else is kept, blanks
// at the beginning, blanks of single values before a "\" and control characters included. A NUL
// inside a value is kept, too: the returned length tells.
//
// Writing fails, and changes nothing, when a character is not in the sets: nothing is replaced by
// something similar. ESC is in UTF-8, GB18030, GBK and ASCII VRs only. Sets are chosen in the order
// of the terms; one that is active is kept while it has the characters. Escape sequences stand
// where they are needed, the first one for bytes above 7F at the beginning of the line, value or
// name component; the first term's sets are active again before each delimiter and control
// character and at the end. No padding is added.
//
// Single sets are converted by the system. One that the system lacks (a Linux without the
// conversion modules of its C library; Wine for the four-byte part of GB18030) gives U+FFFD, and
// cannot be written. ASCII, UTF-8, ISO_IR 100 and 13 need no system. Results are the same on every
// platform but for 24 characters, presentation forms and rare ideographs, that editions of GB 18030
// place differently.
//
// Results are the length of the whole text in bytes, without the NUL behind it, or a negative
// PgxTextError. When size is not 0 the buffer holds as much of the text as fits, terminated; UTF-8
// is never cut inside a character. So a call with a size of 0 tells how much there is. On an error
// the buffer holds an empty text. Texts of plain ASCII are only copied; nothing is allocated for
// them.
//
// Threads: the functions on buffers may be called from any thread at any time. Those on nodes use
// the tree and its file, which belong to one thread at a time. Nothing is printed.
#ifndef PGKIT_TEXT_H
#define PGKIT_TEXT_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/export.h"

typedef enum PgxTextError {
    PGX_TEXT_NOT_A_TEXT = -1,      /* the VR, or the node, is none whose value is text */
    PGX_TEXT_NO_VALUE = -2,        /* null, or a position in the file that nothing is read from */
    PGX_TEXT_NOT_EXPRESSIBLE = -3, /* the character set lacks a character */
    PGX_TEXT_INVALID_UTF8 = -4,    /* what was to be written is no UTF-8 */
    PGX_TEXT_TOO_LONG = -5,        /* an element cannot hold that many bytes */
    PGX_TEXT_NO_MEMORY = -6
} PgxTextError;

PGKIT_BEGIN_C

// ---- Bytes --------------------------------------------------------------------------------------

// A value, length bytes as they stand in a file, to UTF-8. Null bytes count as none.
PGKIT_API int64_t pgxTextToUtf8(const char* specificCharacterSet, uint32_t valueRep,
                                const void* bytes, size_t length, char* buffer, size_t size);

// UTF-8 to a value. Null counts as an empty text.
PGKIT_API int64_t pgxTextFromUtf8(const char* specificCharacterSet, uint32_t valueRep,
                                  const char* utf8, size_t length, char* buffer, size_t size);

// A zero-terminated text that may have been cut to fit, such as a field of a directory record
// (patientsName with VR_PN, seriesDescription with VR_LO ...), to UTF-8. Every record object has a
// character set of its own, in its field specificCharacterSet, which may be cut as well: a term
// that is cut counts as absent. A character or an escape sequence that the end of the field cuts in
// two is left out. Null field: PGX_TEXT_NO_VALUE.
PGKIT_API int64_t pgxFieldToUtf8(const char* specificCharacterSet, uint32_t valueRep,
                                 const char* field, char* buffer, size_t size);

// ---- Elements -----------------------------------------------------------------------------------
//
// characterSet says whose (0008,0005) holds: the data set or item that has it, or the element
// (0008,0005) itself, which saves the search; null, and a data set without it, stand for the
// default. Items inherit the character set of what encloses them unless they have one of their own:
//
//     void Walk(PGX_Node* dataSet, PGX_Node* inherited) {
//         PGX_Node* characterSet = pgxFindCharacterSet(dataSet, inherited);
//         for each element: pgxGetUtf8Value(characterSet, element, buffer, sizeof buffer);
//         for each item of a sequence: Walk(item, characterSet);
//     }

// The element (0008,0005) that holds for the values of a data set or item: its own, also when that
// is empty, else inherited, which may be null. A null data set has none of its own.
PGKIT_API PGX_Node* pgxFindCharacterSet(PGX_Node* dataSet, PGX_Node* inherited);

// The value of an element to UTF-8. What its file does not hold any more is left out.
PGKIT_API int64_t pgxGetUtf8Value(PGX_Node* characterSet, PGX_Node* element, char* buffer,
                                  size_t size);

// Replaces the value of an element (PGX_Node::SetValue, which pads it). Returns the length of the
// encoded text before that. When memory runs out for the value the element has what SetValue
// leaves.
PGKIT_API int64_t pgxSetUtf8Value(PGX_Node* characterSet, PGX_Node* element, const char* utf8,
                                  size_t length);

PGKIT_END_C

#endif
