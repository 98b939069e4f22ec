// pgkit: the built-in data dictionary, the value representations and the private dictionary.
//
// The built-in dictionary has 3782 rows. A row's index is its element identifier. Private elements
// read from a private dictionary file are consulted after the built-in rows, never before them.
// When the module is loaded it reads the file "privdict.dic" that lies beside the host program's
// executable; a missing file is no error.
//
// Lookups print nothing, allocate nothing and take constant time. Outputs may be null.
#ifndef PGKIT_DICTIONARY_H
#define PGKIT_DICTIONARY_H

#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// The tag of an element identifier. Returns 1, or 0 with the outputs untouched when the identifier
// is negative or above 3781.
PGKIT_API uint32_t pgFindElementIdInfo(int32_t elementId, uint16_t* group, uint16_t* element);

// The same, and the value representation that pgFindValueRepresentation gives for the tag.
PGKIT_API uint32_t pgFindElementIdInfoAndVR(int32_t elementId, uint16_t* group, uint16_t* element,
                                            uint8_t* valueRep);

// The element identifier of a tag, or 0xFFFFFFFF. The tag must stand in the dictionary as given:
// repeating groups match their base row only, private dictionary entries never.
PGKIT_API uint32_t pgFindElementIdType(uint16_t group, uint16_t element);

// The element identifier of a built-in name, case ignored ("PatientsName"), or 0xFFFFFFFF when no
// name is equal, the name is null or longer than 127 characters.
PGKIT_API uint32_t pgGetTagElementId(const char* name);

// The value representation code of a tag, 255 when unknown. In this order: LO for a private creator
// (odd group, element 0x0010 to 0x00FF), UL for a group length (element 0), the built-in row, where
// the curve and overlay groups 50xx and 60xx are answered by the rows of 5000 and 6000, and last
// the first private dictionary entry whose group and element number are both equal.
PGKIT_API uint32_t pgFindValueRepresentation(uint16_t group, uint16_t element);

// The code of a VR name ("OW"; the ambiguous ones as "USSS" and "OWOB"), exact and case-sensitive;
// 255 for any other text or null.
PGKIT_API uint32_t pgFindValueRepresentationVR(const char* text);

// The name of a VR code. Writes "????" and returns 0 when the code names none. buffer must hold at
// least 5 bytes.
PGKIT_API uint32_t pgGetVRPrintableName(uint32_t valueRep, char* buffer);

// 1 for the value representations whose text depends on the Specific Character Set (SH, LO, ST, LT,
// PN, UT), by code and by name; else 0, also for a null name.
PGKIT_API uint32_t pgIsCharsetEncodedVR(uint32_t valueRep);
PGKIT_API uint32_t pgIsCharsetEncodedVRValue(const char* text);

// The printable name of a tag: the built-in row's (repeating groups by their base row), else the
// private dictionary's, else "GroupLength" for element 0 and "FileCreator" for element 0x0010.
// Returns 1; or 0 with "<Unknown Tag>" in the buffer. The copy is unbounded: the buffer must hold
// 128 bytes. pgxGetTagPrintableName (lookup.h) is bounded.
PGKIT_API uint32_t pgGetTagPrintableName(uint16_t group, uint16_t element, char* buffer);

// Replaces the private dictionary with the content of a text file. The present entries are dropped
// first, whatever follows. Returns 0 when path is null, empty, missing or a directory; else 1, also
// when the file cannot be read or holds no valid line. When memory runs out it returns 0, too, and
// the dictionary stays empty. Lines have the form
//
//   (0019,"ACME 1.1",10) LO Name 1
//
// that is group, creator, low byte of the element, VR, name and multiplicity. A range of groups
// (6000-60FF) counts as its first, and the VR ox is read as OWOB. Other lines are skipped silently,
// and so are lines whose group begins with "7F" (exactly so), whose VR is up, xs or na, or with a
// field longer than 127 characters (creator, name) or 15 (others). Every 1023 characters of a
// longer line count as a line of their own.
PGKIT_API uint32_t pgSetPrivateDictionaryFile(const char* path);

// Switches the decoding of UN elements on (any value but 0; the state after loading) or off, and
// returns the argument. When on, the parser looks UN elements up in the private dictionary and
// reads those of undefined length as sequences. A file that is being opened goes by the state it
// found; any thread may switch at any time.
PGKIT_API uint32_t pgTryToDecodeUNSequences(uint32_t flag);

PGKIT_END_C

#endif
