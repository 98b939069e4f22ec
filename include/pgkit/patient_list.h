// pgkit: flat functions over the patient hierarchies of DICOMDIR files.
#ifndef PGKIT_PATIENT_LIST_H
#define PGKIT_PATIENT_LIST_H

#include "pgkit/directory_records.h"
#include "pgkit/export.h"
#include "pgkit/list.h"

PGKIT_BEGIN_C

// Reads the hierarchy of a DICOMDIR file: a list of PGX_DicomDirPatientNode, for the caller to free
// with pgEmptyPatientList and pgKitListDelete (or delete). The file is closed again, so the record
// pointers of all objects are null. Null when memory runs out, and when the file cannot be opened,
// which is reported on the standard output; a file that is no DICOMDIR gives an empty list, a
// damaged one what PGX_DicomDir::Browse makes of it.
PGKIT_API PGX_List* pgGetPatientListFromFile(const char* path);

// The same for a DICOMDIR that is not kept with the files it refers to: location is their directory
// or any path in it (PGX_DicomDir::RelocateOffshoreDicomdir). Null stands for the DICOMDIR's own.
PGKIT_API PGX_List* pgGetPatientListFromOffshoreFile(const char* path, const char* location);

// Destroys every patient with everything below it. The list remains, empty. Null is allowed.
PGKIT_API void pgEmptyPatientList(PGX_List* patients);

// Each removes one object of the hierarchy and destroys it, together with the parents that it
// leaves without children. An object that is not in the hierarchy stays alive, but for a patient,
// which is destroyed all the same. A null list or object does nothing, unless a list of series or
// leaves holds a null, which is taken out then.
PGKIT_API void pgRemovePatient(PGX_List* patients, PGX_DicomDirPatientNode* patient);
PGKIT_API void pgRemoveStudy(PGX_List* patients, PGX_DicomDirStudyNode* study);
PGKIT_API void pgRemoveSeries(PGX_List* patients, PGX_DicomDirSeriesNode* series);
PGKIT_API void pgRemoveLeaf(PGX_List* patients, PGX_DicomDirLeafNode* leaf);

PGKIT_END_C

#endif
