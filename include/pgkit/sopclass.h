// pgkit: names of UIDs, modalities and categories of SOP classes.
//
// The built-in tables hold 350 UIDs with their names (those registered by DICOM and some private
// ones), 139 storage SOP classes with their modality mnemonics and categories, and 57 modality
// codes with their descriptions.
//
// The mnemonics are this library's own: a modality of two letters, often followed by a lower-case
// letter that tells the classes of one modality apart ("CT", "CTe" for enhanced CT, "PSg" for a
// grayscale presentation state). They are not values of DICOM's Modality (0008,0060).
//
// A site can add SOP classes. When the module is loaded it reads the file "halvorix.xml" that lies
// beside the host program's executable:
//
//   <?xml version="1.0" encoding="utf-8"?>
//   <properties>
//     <SOPClassList>
//       <SOPClass name="MyStorage" service="STORE" object="IMAGE" mnemonic="MYx">1.2.3.4</SOPClass>
//     </SOPClassList>
//   </properties>
//
// - The text is the UID, without white space around it. An absent attribute is an empty text.
// - An entry without UID, without service, or of the service STORE without mnemonic is dropped.
// - Of several entries with one UID the first counts. Built-in rows come before entries.
// - object is one of IMAGE, REPORT, WAVEFORM, KEYOBJECT, PSTATE, RTDOSE, RTSTRUCT, RTPLAN.
// - Names of elements and attributes are case-sensitive. Other elements and attributes are ignored.
//
// A missing file, or something else of that name than a regular file, is no error. When the file
// is not well formed, has more than 16 MiB or elements more than 100 levels deep, the module prints
// "SOPClassSet::load : xml parse error ", followed by the reason and a line end, on the standard
// output, and goes on with what precedes the outermost element with the error: in general no entry.
// Nothing in the file stops the module from loading.
//
// UIDs and codes are compared exactly, including case. Operations print nothing, allocate nothing
// and may be called from several threads at once.
#ifndef PGKIT_SOPCLASS_H
#define PGKIT_SOPCLASS_H

#include <stdbool.h>
#include <stdint.h>

#include "pgkit/export.h"

PGKIT_BEGIN_C

// The three lookups below share their results:
//
//    0  found, the text is in the output
//    1  not found, the placeholder is in the output
//   -1  an argument is null; the placeholder is in the output unless that is the null argument
//
// The copy is unbounded; lookup.h has the same with a bound. A built-in text needs the number of
// bytes given with each lookup, its terminating zero included; an entry of the site's file may be
// longer. The output must not overlap the input: the placeholder is written first.

// The mnemonic of a storage SOP class ("CT"), from the built-in table, else from the site's entries
// (empty for an entry of another service that gives none). Placeholder "XX"; 6 bytes.
PGKIT_API int32_t pgGetSOPClassUIDToModality(const char* sopClassUid, char* modalityOut);

// The description of a modality code, a defined term of Modality (0008,0060): "CT" gives "Computed
// Tomography". Built-in table only. Placeholder "<NULL modality>"; 51 bytes.
PGKIT_API int32_t pgGetModalityName(const char* modality, char* nameOut);

// The name of a UID ("LittleEndianExplicit"), from the built-in table, else from the site's entries
// (empty for an entry that gives none). Placeholder "<NULL uid>"; 67 bytes.
PGKIT_API int32_t pgGetUIDName(const char* uid, char* nameOut);

// Whether a SOP class belongs to a category. The answer comes from the built-in tables alone: an
// entry of the site's file never makes it true, whatever its object. False for null.
//
// Images include hard copies, RT images and the retired image classes. Key object selections are no
// reports, X-ray radiation dose reports are. Presentation is the grayscale softcopy presentation
// state only.
PGKIT_API bool pgIsImageSOPClass(const char* uid);
PGKIT_API bool pgIsReportSOPClass(const char* uid);
PGKIT_API bool pgIsWaveformSOPClass(const char* uid);
PGKIT_API bool pgIsKeyObjectSOPClass(const char* uid);
PGKIT_API bool pgIsPresentationSOPClass(const char* uid);
PGKIT_API bool pgIsRTDoseSOPClass(const char* uid);
PGKIT_API bool pgIsRTStructureSetSOPClass(const char* uid);
PGKIT_API bool pgIsRTPlanSOPClass(const char* uid);

// RT image, dose, structure set, plan and the treatment records.
PGKIT_API bool pgIsRadiotherapySOPClass(const char* uid);

// The 139 classes of the modality table, the private ones included.
PGKIT_API bool pgIsStorageSOPClass(const char* uid);

PGKIT_END_C

#endif
