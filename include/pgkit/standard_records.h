// pgkit: the types of directory records that today's standard (PS3.3, annex F) has for instances,
// and the records of a DICOMDIR that belong to no patient.
//
// These are the types that a creation with PG_DICOMDIR_STANDARD_RECORDS writes for what is no image
// ("RT DOSE", "PALETTE"); those of patients, studies, series and images are not among them.
//
// The first three functions read constant tables: any thread may call them at any time. They print
// and allocate nothing.
#ifndef PGKIT_STANDARD_RECORDS_H
#define PGKIT_STANDARD_RECORDS_H

#include <stddef.h>
#include <stdint.h>

#include "pgkit/dataset.h"
#include "pgkit/directory.h"
#include "pgkit/export.h"

PGKIT_BEGIN_C

// The type of the record for instances of a SOP class, by its UID. Returns the length of the name
// and copies as much of it as fits with a terminating zero into size bytes of buffer; a null buffer
// or a size of 0 gets nothing. 0, and an empty text, for images, for SOP classes that are not known
// and for null.
PGKIT_API size_t pgxRecordTypeOf(const char* sopClassUid, char* buffer, size_t size);

// 1 for the types whose records belong to no patient and stand at the root, beside the patients:
// palettes, hanging protocols, implants, inventories. Else 0, also for other names and null.
PGKIT_API int32_t pgxIsRootRecordType(const char* recordType);

// The keys of type 1 of a record type: the first count of them go to tags (group << 16 | element),
// which may be null for a count of 0. Returns how many there are; -1 for other names and null.
PGKIT_API int32_t pgxRecordTypeKeys(const char* recordType, uint32_t* tags, uint32_t count);

// The records at the root of an open DICOMDIR that are of a type which belongs to no patient, in
// their order. A browse takes every record at the root for that of a patient, and ends at the first
// one that leads to no study: patients behind it are not found, and an empty one is.
//
// When there is room for all of them, the items go to records, which may be null for a count of 0,
// and are taken out of the chain at the root: a browse after that goes past them. They stay where
// they are in the tree, and belong to it. A tree that is saved then does not lead to them any more.
// Without room for all nothing is changed, and records is left alone.
//
// Returns how many there are; 0 for a null directory, one that is not open, and without memory.
//
// Threads: a DICOMDIR belongs to one thread at a time. Nothing is printed.
PGKIT_API uint32_t pgxTakeRootRecords(PGX_DicomDir* directory, PGX_Node** records, uint32_t count);

PGKIT_END_C

#endif
