// pgkit: PGX_DicomDir, the reader of DICOMDIR files (the class is for C++; C callers get it as an
// opaque handle).
//
//     PGX_DicomDir directory;
//     if (directory.OpenDicomDir("D:\\DICOMDIR", 0x20000) && directory.IsDicomDir()) {
//         PGX_List* patients = directory.Browse(nullptr, nullptr);
//         ...
//     }
//
// Who needs nothing but the hierarchy reads it with pgGetPatientListFromFile (patient_list.h).
#ifndef PGKIT_DIRECTORY_H
#define PGKIT_DIRECTORY_H

#include <stdint.h>

#include "pgkit/export.h"

// Why the callback of a browse is called, and for what.
typedef struct PGX_DicomDirCallbackReason {
    int32_t reason;   /* 0: a leaf was added; there is no other reason */
    const char* path; /* the leaf's full path, valid during the call */
} PGX_DicomDirCallbackReason;

// message is a text for the user, "1 image found" or "12 images found"; userData is what was given
// to Browse. The result is ignored. The hierarchy is still being built: the callback must neither
// change it nor call the directory object.
typedef int32_t (*PGX_DicomDirCallback)(PGX_DicomDirCallbackReason* reason, const char* message,
                                        void* userData);

#if defined(__cplusplus)

#include <cstddef>

#include "pgkit/directory_records.h"
#include "pgkit/list.h"
#include "pgkit/node.h"

namespace pgkit {
class DirectoryBrowser;
}

class PGX_DicomDir {
  public:
    // For reading; change them through the members.
    char folder[260];               // what the full paths of the leaves begin with
    PGX_Node* dataSet;              // the open DICOMDIR, null when none is; owned
    PGX_List* patientList;          // the result of the last browse, null before; owned
    PGX_DicomDirCallback callback;  // of the last browse, may be null
    void* userData;
    int32_t leafCount;  // leaves added by the last browse

    PGKIT_API PGX_DicomDir();
    // Destroys the hierarchy, unless it was given away, and closes the DICOMDIR.
    PGKIT_API ~PGX_DicomDir();
    PGX_DicomDir(const PGX_DicomDir&) = delete;
    PGX_DicomDir& operator=(const PGX_DicomDir&) = delete;

    // Opens a file, after closing the one that is open and destroying its hierarchy. Values shorter
    // than maxLoadLength bytes are loaded (pgOpenDataSetFile). The folder becomes the path up to
    // its last backslash or slash, as it is written, and "." for a bare name; at most 259
    // characters of it. What follows the folder in full paths is joined with backslashes. Returns
    // 1, or 0 for a null or empty path and when the file cannot be opened, which is reported as
    // "** PGX_DicomDir::OpenDicomDir file open failed... <%s>\n" on the standard output.
    PGKIT_API int32_t OpenDicomDir(const char* path, uint32_t maxLoadLength);

    // 1 when the open file says that it is a DICOMDIR: its Media Storage SOP Class UID (0002,0002)
    // is "1.2.840.10008.1.3.10".
    PGKIT_API int32_t IsDicomDir();

    // Builds the hierarchy anew and returns it; the object keeps owning it. The callback, which may
    // be null, is called once for every leaf that is added. Null when nothing is open ("**
    // PGX_DicomDir::Patient list is empty (no DICOMDIR file)\n" on the standard output).
    //
    // A damaged directory gives the part of the hierarchy that can be reached; what is wrong is
    // reported line by line on the standard output. Links that run in circles end where they close.
    // Records that several parents share belong to all of them, up to limits: one browse visits at
    // most 4 times as many records as the directory has (but 10,000 in any case), takes at most 64
    // MiB and 60 times the size of the file, its tree included, and visits large records again only
    // for 64 MiB and 4 times the size of the file, not counting 4,096 bytes of each. Where it would
    // exceed one of these, all chains end, and the line "DICOMDIR parsing error: too many shared
    // records\n" says so, once. Sequences with values that claim to be much longer than what the
    // file holds of them are not copied into the leaves.
    //
    // Patients of equal ID and name, studies of equal UID in one patient and series of equal UID in
    // one study are merged. Of the leaves with equal instance UID in one series the first counts.
    // Patients, studies and series without children are left out, unless the directory breaks off
    // just there. Leaves stand in ascending order of their instance numbers.
    PGKIT_API PGX_List* Browse(PGX_DicomDirCallback application, void* applicationData);

    // The hierarchy as it stands, null before the first browse.
    PGKIT_API PGX_List* GetPatientList();

    // The same; the hierarchy is the caller's from then on, to be freed with pgEmptyPatientList and
    // delete. Its records stay valid only while this object has the DICOMDIR open.
    PGKIT_API PGX_List* GiveAndForgetPatientList();

    // Names the place of the referenced files, for a DICOMDIR that is not kept with them: full
    // paths of later browses begin with the path when it is a directory, else with the path up to
    // its last backslash or slash (all of it when it has none). Returns 0 for null, else 1.
    PGKIT_API int32_t RelocateOffshoreDicomdir(const char* path);

  private:
    friend class pgkit::DirectoryBrowser;

    // The steps of a browse, which belong to the binary interface. A walk handles one chain of
    // records from record on and returns 0 when it is broken; firstItem is the first item of the
    // Directory Record Sequence.
    PGKIT_API void ResetPatientList();
    PGKIT_API int32_t BrowseDicomDir();
    PGKIT_API int32_t ResolveDicomdirLinks();
    PGKIT_API int32_t BrowsePatientList(PGX_Node* firstItem, PGX_Node* record, PGX_List* patients);
    PGKIT_API int32_t BrowseStudyList(PGX_Node* firstItem, PGX_Node* record,
                                      PGX_DicomDirPatientNode* patient);
    PGKIT_API int32_t BrowseSeriesList(PGX_Node* firstItem, PGX_Node* record,
                                       PGX_DicomDirStudyNode* study);
    PGKIT_API int32_t BrowseImageList(PGX_Node* firstItem, PGX_Node* record,
                                      PGX_DicomDirSeriesNode* series);
    PGKIT_API int32_t CallbackAppli(PGX_DicomDirCallbackReason* reason, const char* message);
};

// The layout is part of the interface: hosts make such objects themselves.
static_assert(offsetof(PGX_DicomDir, folder) == 0 && offsetof(PGX_DicomDir, dataSet) == 264 &&
              offsetof(PGX_DicomDir, patientList) == 272 &&
              offsetof(PGX_DicomDir, callback) == 280 && offsetof(PGX_DicomDir, userData) == 288 &&
              offsetof(PGX_DicomDir, leafCount) == 296 && sizeof(PGX_DicomDir) == 304);

#else
typedef struct PGX_DicomDir PGX_DicomDir;
#endif

#endif
