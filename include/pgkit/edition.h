// pgkit: the editions of the standard that the library knows.
//
// 1. The built-in dictionary (dictionary.h) is that of 2011, and every lookup answers by it until a
//    program asks for the current edition. Element identifiers and built-in answers never change:
//    the current edition adds what the built-in dictionary does not know.
// 2. With the current edition
//    - tags without a built-in row are found in the tables of today's standard, before the private
//      dictionary: their value representation (pgFindValueRepresentation) and, as their name, their
//      keyword (pgGetTagPrintableName). So sequences of today are read as sequences in implicit VR.
//    - the value representations VR_OD, VR_OL, VR_OV, VR_SV, VR_UC, VR_UR and VR_UV exist
//    everywhere:
//      they are read, named, converted between byte orders, printed and written under their
//      letters. In the built-in edition their letters name nothing, and their codes have no name.
// 3. The edition is one value for the whole process. Choose it at the start: a tree that was
//    read in the current edition and is written or printed in the built-in one loses the meaning of
//    the new value representations, though no byte of their values.
// 4. Texts are written to a buffer of a given size, cut to fit and always terminated (when the size
//    is not 0), and the length of the whole text is returned, without its terminating zero; 0 means
//    that there is none, and the buffer is then empty. A null buffer is allowed with a size of 0.
// 5. Any thread may call any of these functions at any time, but that edition and private
//    dictionary should not be changed while others look things up. They print nothing and allocate
//    nothing.
#ifndef PGKIT_EDITION_H
#define PGKIT_EDITION_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

#if defined(__cplusplus)
class PGX_Node;
#else
typedef struct PGX_Node PGX_Node;
#endif

typedef enum PgxEdition {
    PGX_EDITION_BUILT_IN = 0, /* that of 2011; the one after loading */
    PGX_EDITION_CURRENT = 1   /* 2024d */
} PgxEdition;

// Chooses the edition that the library answers by and returns the one that it answered by before.
// Any other value changes nothing and returns -1.
PGKIT_API int32_t pgxUseEdition(int32_t edition);

// ---- Lookups that are the same in either edition ------------------------------------------------

// The keyword of a tag in today's standard ("PatientName"), the tags of repeating groups and other
// ranges included. 0 for private tags, for those that today's standard does not list, and for the
// few that have lost their keyword.
PGKIT_API size_t pgxTagKeyword(uint16_t group, uint16_t element, char* buffer, size_t size);

// The value multiplicity of a tag in today's standard, as it is printed there: "1", "1-n", "2-2n".
// 0 where it lists none.
PGKIT_API size_t pgxTagMultiplicity(uint16_t group, uint16_t element, char* buffer, size_t size);

// The tag that a text names: a built-in name ("PatientsName") or a keyword of today
// ("PatientName"), case ignored, or the numbers in hexadecimal as "gggg,eeee", "(gggg,eeee)" or
// "ggggeeee". The name of a repeating group stands for its first group ("OverlayData" for
// (6000,3000)), and so does an x for a digit ("60xx,3000"). Returns 1; or 0, with the outputs
// untouched, for any other text and for null. The outputs may be null.
PGKIT_API int32_t pgxFindTag(const char* name, uint16_t* group, uint16_t* element);

// The tags that today's standard lists, one after the other: for lists to choose from. Of a
// repeating group, or another range, it is the first tag. The index counts from 0; tags of one
// place ascend, the ranges stand behind them. Returns 1; or 0, with the outputs untouched, for an
// index beyond the last one. The outputs may be null.
PGKIT_API int32_t pgxCurrentTagAt(uint32_t index, uint16_t* group, uint16_t* element);

// The name ("CT Image Storage") and the keyword ("CTImageStorage") of a UID in today's standard. 0
// for a UID that it does not list, for one that has lost its name, and for null. The comparison is
// exact.
PGKIT_API size_t pgxUidName(const char* uid, char* buffer, size_t size);
PGKIT_API size_t pgxUidKeyword(const char* uid, char* buffer, size_t size);

// ---- Numbers of 64 bits -------------------------------------------------------------------------

// The first value of an element as a number of 64 bits, in host byte order: what the value
// representations SV and UV hold. Bytes that a shorter value lacks count as zero. 0 for an element
// without a value, a data set, a sequence, encapsulated Pixel Data and null. A value that was not
// loaded is read from the tree's file: the tree belongs to one thread at a time.
PGKIT_API int64_t pgxGetSVValue(PGX_Node* element);
PGKIT_API uint64_t pgxGetUVValue(PGX_Node* element);

PGKIT_END_C

#endif
