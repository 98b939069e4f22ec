// pgkit: making a DICOMDIR: files are judged, sorted into a hierarchy, and written as records.
//
// A medium is a directory. Its DICOMDIR refers to the files below it by their paths relative to the
// directory, and has a record for each of them under those of its series, study and patient.
#ifndef PGKIT_DICOMDIR_CREATION_H
#define PGKIT_DICOMDIR_CREATION_H

#include <stdint.h>

#if defined(__cplusplus)
#include <cstddef>
#endif

#include "pgkit/export.h"
#include "pgkit/list.h"

// What became of a file.
typedef enum PgAcceptanceCode {
    PG_ACCEPTED = 0,
    PG_INVALID_FILE_NAME = 1,      /* null, not in the directory, or no name for a File ID */
    PG_NOT_DICOM_PART_10 = 2,      /* no "DICM" at offset 128, or the file cannot be read */
    PG_NOT_A_DATA_SET = 3,         /* it cannot be decoded, or says nothing about its SOP class */
    PG_IS_A_DICOMDIR = 4,          /* by its name or by its SOP class */
    PG_PROFILE_REFUSES = 5,        /* the media application profile does not allow it */
    PG_INSTANCE_KNOWN = 6,         /* the series has a file of this SOP Instance UID already; blanks
                                      and NULs around UIDs do not count, whatever their VR */
    PG_NO_SOP_INSTANCE_UID = 7,    /* (0008,0018) is missing or empty */
    PG_NO_SERIES_INSTANCE_UID = 8, /* (0020,000E) is missing or empty */
    PG_NO_STUDY_INSTANCE_UID = 9   /* (0020,000D) is missing or empty; comes before 8 */
} PgAcceptanceCode;

// Bits of PgDicomdirOptions::flags.
typedef enum PgDicomdirFlags {
    PG_DICOMDIR_SKIP_CHECKS = 0x1, /* neither "DICM" nor the profile is asked for */
    PG_DICOMDIR_NO_RECURSION = 0x10,
    PG_DICOMDIR_NO_LIST = 0x20,           /* no acceptance list file */
    PG_DICOMDIR_STANDARD_RECORDS = 0x100, /* records of today's standard, see below */
    /* where nothing is accepted, no DICOMDIR is written, and one that is there stays */
    PG_DICOMDIR_NEVER_EMPTY = 0x200,
    /* files are refused, with code 1, whose File IDs are none of the standard: at most 8 components
       of at most 8 characters, capital letters, digits and underscores */
    PG_DICOMDIR_STRICT_NAMES = 0x400,
    /* where a file is refused, no DICOMDIR is written, and one that is there stays. The DICOMDIR
       and the acceptance list file of the directory do not count */
    PG_DICOMDIR_ALL_OR_NOTHING = 0x800
} PgDicomdirFlags;

// What a creation with PG_DICOMDIR_NEVER_EMPTY returns that accepted nothing. The acceptance list
// file says why.
#define PG_CREATION_NOTHING_ACCEPTED 8u

// What one with PG_DICOMDIR_ALL_OR_NOTHING returns that refused a file, likewise.
#define PG_CREATION_FILES_REFUSED 9u

// The kinds of records. Leaves become records of the types IMAGE, SR DOCUMENT, KEY OBJECT DOC,
// PRESENTATION (of grayscale states), WAVEFORM, ENCAP DOC (of PDF) and RAW DATA by their SOP
// classes; all others are IMAGE.
//
// With PG_DICOMDIR_STANDARD_RECORDS only images are: everything else has the record type and the
// keys that PS3.3 Annex F of today has for its SOP class: also RT DOSE, RT STRUCTURE SET, RT PLAN,
// RT TREAT RECORD, RADIOTHERAPY, PLAN, SPECTROSCOPY, REGISTRATION, FIDUCIAL, VALUE MAP,
// STEREOMETRIC, MEASUREMENT, SURFACE, SURFACE SCAN, TRACT, ASSESSMENT and ANNOTATION; PRESENTATION
// is for states of all kinds, ENCAP DOC for CDA, STL, OBJ and MTL, too. Segmentations, parametric
// maps and SOP classes that are not known are IMAGE. Keys of types 1 and 2 that a file lacks are
// written without a value; fillMissingKeys makes those of type 1 up, but for sequences: dates and
// times are the current ones, texts "UNKNOWN", numbers 0. A text of more than 1,024 bytes counts as
// missing.
//
// Types that have no object class of their own (directory_records.h) are plain leaves: recordType
// says which, record has the keys (PG_LEAF_OWNS_KEYS). A browse of the DICOMDIR gives plain leaves,
// too, whose keys are in their records.
//
// HANGING PROTOCOL, PALETTE, IMPLANT, IMPLANT ASSY, IMPLANT GROUP and INVENTORY belong to no
// patient. Their records stand at the root of the DICOMDIR, behind all patients; a browse, which
// takes everything at the root for a patient, shows the first of them as one without studies and
// ends there. They need no study and no series. A hierarchy has no place for them: pgBrowseDisk,
// pgBrowsePatientListEx and pgAddFile refuse them with code 9.

// Null in the place of options means all zero.
//
// Icons are small grayscale pictures in the records: of every image that the imaging module
// (pgkit/imaging.h) can make a bitmap of, and on demand of every series, which shows the first of
// its images that was given one. The module is loaded for the first icon that is wanted, and stays
// loaded until the creation, or the scan, ends. It is looked for beside the host program, beside
// this library, and where the system keeps its own, never in the current directory.
// Without it, and for images in colours or in compressions that it does not decode, there is no
// icon; nothing else changes and nothing is printed.
//
// An icon shows the frame one third into the image (index number of frames / 3) fitted into a
// square: its longer side is as long as the edge, the other as the proportion says, rounded to the
// nearest pixel, and at least 1.
typedef struct PgDicomdirOptions {
    uint32_t iconSize;        /* edge of the square in pixels; 0 or above 256: no icons */
    uint32_t seriesIcons;     /* not 0: series get icons too */
    uint32_t storeFileSize;   /* not 0: every file's record says its size */
    uint32_t fillMissingKeys; /* not 0: missing keys are made up after a scan */
    char fileSetId[20];       /* File-set ID; empty for the default */
    uint32_t flags;           /* PgDicomdirFlags */
} PgDicomdirOptions;

#if defined(__cplusplus)
// The layout is part of the interface.
static_assert(sizeof(PgDicomdirOptions) == 40 && offsetof(PgDicomdirOptions, seriesIcons) == 4 &&
              offsetof(PgDicomdirOptions, storeFileSize) == 8 &&
              offsetof(PgDicomdirOptions, fillMissingKeys) == 12 &&
              offsetof(PgDicomdirOptions, fileSetId) == 16 &&
              offsetof(PgDicomdirOptions, flags) == 36);
#endif

PGKIT_BEGIN_C

// Whether a media application profile, such as "STD-GEN-CD", allows a data set: 1 or 0. 56 profiles
// of the standard and of this library are built in. Without a profile (null or empty) everything is
// allowed; a profile that is unknown, or made for mail, allows nothing.
//
// Values are compared exactly, apart from blanks around them. Null counts as empty. For images a
// modality that is null or empty (as pgDirAcceptDataset has it) fits every rule; for other objects
// it fits those rules only that name no modality. The photometric interpretation matters for images
// alone.
PGKIT_API int32_t pgDirAcceptDataset(const char* transferSyntaxUid, const char* sopClassUid,
                                     const char* photometricInterpretation, const char* profile);
PGKIT_API int32_t pgDirAcceptDataset2(const char* transferSyntaxUid, const char* sopClassUid,
                                      const char* photometricInterpretation, const char* modality,
                                      const char* profile);

// ---- Writing a DICOMDIR -------------------------------------------------------------------------

// Told of every file of a scan, once it is judged, and of directories that are refused by their
// names.
typedef struct PgDicomdirScanReason {
    const char* fileName;     /* without its directory */
    const char* subdirectory; /* below the scanned one, with backslashes; empty for that itself */
    uint32_t acceptanceCode;  /* PgAcceptanceCode */
    void* userData;
} PgDicomdirScanReason;

// Anything but 0 ends the scan; what it has found so far counts. While a scan runs, the hierarchy
// must not be changed.
typedef int32_t (*PgDicomdirScanCallback)(const PgDicomdirScanReason* reason);

// A DICOMDIR is written as a whole: beside the one that is there, under the name "DICOMDIR.new" and
// a number, then, when it is on the disc, moved into its place, of which it takes over the
// permissions on POSIX. What fails, or is killed, leaves the former DICOMDIR. The creation removes
// regular files of such names that an earlier one left behind, and nothing else; one that another
// process is writing stays. A DICOMDIR that is a link stays one, and what it leads to is replaced;
// a device is written where it is. The acceptance list file, dcmdir.lst, has the lines of refused
// files while a scan runs; a creation that fails brings the former list back, and no line is ever
// there in part.
//
// Files are referred to by File IDs: their paths below the directory. A name of which none can be
// made is refused, with code 1 and a line in the list, before anything is read: one that is empty
// or longer than 259 characters, one with a component "..", and, on POSIX, a file or a directory
// whose name has a backslash.

// Writes the DICOMDIR of a hierarchy, the list of its PGX_DicomDirPatientNode, to the file DICOMDIR
// of a directory, and appends a line with code 0 and the referencedFileId for every leaf to the
// acceptance list file there. Records have the keys of their objects, also the empty ones, and
// refer to files by referencedFileId; leaves of referencedDataSetSize 0 say no size. A trailing
// backslash or slash of the directory is dropped. Without a File-set ID (null or empty) it is
// "KIT_ZORVA_2865". The hierarchy is left as it is. Patients, studies and series without children
// are linked as the last of their level: a browse ends there.
//
// Of the sequences of leaves that is written which any reader reads again without losing the next
// record (see directory_records.h).
//
// Icons of images and series are written as Icon Image Sequence (0088,0200), in MONOCHROME2, when
// they are uncompressed bitmaps of grays with 1, 4 or 8 bits for each pixel and the bottom row
// first, of at most 16,777,216 pixels. Others are left out.
//
// Returns what PGX_Node::SaveDataSetAsEx returns: 0 when the DICOMDIR is written, 1 when it cannot
// be created, also for a null list or directory, 5 when memory runs out.
PGKIT_API uint32_t pgBuildDicomdir(PGX_List* patients, const char* directory);
PGKIT_API uint32_t pgBuildDicomdirEx(PGX_List* patients, const char* directory,
                                     const char* fileSetId);

// Makes the DICOMDIR of a directory: creates the acceptance list file, adds every file that the
// profile (null or empty: none) allows, and writes the DICOMDIR. Files come in the byte order of
// their names, those of a directory before those of its subdirectories. What links lead to comes
// last: a directory is visited once, by its own path where that is below the directory.
//
// The plain form has no options. Patient ID, Study ID, Study Date and Time and Series Number are
// made up, on demand, where they are empty. A trailing backslash or slash of the directory is
// dropped. Results are those of pgBuildDicomdir: files that are refused do not matter, unless the
// options ask for PG_DICOMDIR_NEVER_EMPTY.
PGKIT_API uint32_t pgCreateDicomdir(const char* directory, const char* profile,
                                    PgDicomdirScanCallback callback, void* userData);
PGKIT_API uint32_t pgCreateDicomdirEx(const char* directory, const char* profile,
                                      const PgDicomdirOptions* options,
                                      PgDicomdirScanCallback callback, void* userData);

// ---- Writing a DICOMDIR file by file ------------------------------------------------------------

// Offshore creation: the files may lie anywhere, also apart from the DICOMDIR, and the caller says
// under which names it refers to them. Start, add files one by one, and end; an end without files
// writes an empty DICOMDIR. A handle belongs to the library and ends with its creation, which is
// the only way to free it.
//
//   void* creation = pgStartCreateOffshoreDicomdir("C:\\MEDIA", NULL, NULL);
//   pgAddFileToOffshoreDicomdir(creation, "ST1\\IM1", "D:\\archive\\4711.dcm");
//   uint32_t result = pgEndCreateOffshoreDicomdir(creation);

// Begins the DICOMDIR of a directory (at most 511 characters count, a trailing backslash or
// slash is dropped) and creates its acceptance list file, unless the options want none. The options
// are copied. The profile is not read: every readable DICOM file is accepted. Null for a null
// directory and when memory runs out.
PGKIT_API void* pgStartCreateOffshoreDicomdir(const char* directory, const char* profile,
                                              const PgDicomdirOptions* options);

// Adds the file fullPath; referencedName is what the DICOMDIR calls it: its path below the
// directory that the files will be in, components separated by backslashes. Returns a
// PgAcceptanceCode, 1 also when one of the names is null, which gives no line; other refused files
// are listed in the acceptance list file, by their full paths where they are outside the directory.
// A file for which memory runs out is refused with 3. 0xFFFFFFFF for a null handle.
PGKIT_API uint32_t pgAddFileToOffshoreDicomdir(void* handle, const char* referencedName,
                                               const char* fullPath);

// Writes the DICOMDIR as pgBuildDicomdirEx does, with the options' File-set ID, and frees the
// handle, whatever the result: that of pgBuildDicomdirEx, 0xFFFFFFFF for a null handle. Missing
// keys are not filled, and with PG_DICOMDIR_NO_LIST accepted files are not listed either.
PGKIT_API uint32_t pgEndCreateOffshoreDicomdir(void* handle);

// ---- Hierarchies of files, without a DICOMDIR ---------------------------------------------------

// Adds one file of a directory to a hierarchy of the caller's, which pgBuildDicomdirEx may write
// later. The full path begins with the directory; slashes count as backslashes, either may end the
// directory, and on Windows letters compare without case. The record refers to the file by what
// follows. Of the options the first three members and the flags count; a refused file gets a line
// in the acceptance list file of the directory, which is not started anew.
//
// Returns a PgAcceptanceCode, 1 for a null list, directory or path and for a path that does not
// lead into the directory, 3 also when memory runs out. Every call looks through the lists of the
// hierarchy; many files are added faster by one scan or one offshore creation.
PGKIT_API uint32_t pgAddFile(PGX_List* patients, const char* directory, const char* fullPath,
                             const char* profile, const PgDicomdirOptions* options);

// Scans a directory as pgCreateDicomdirEx does, with the same profile, options and callback, but
// writes no DICOMDIR: the files join the hierarchy of the caller's list. The acceptance list file
// is started anew unless the options want none. Missing keys are filled, on demand, in the whole
// list.
//
// Returns the number of patients in the list, also of those that were there before; a null
// directory adds none, a scan that runs out of memory what it has found by then, and a null list
// gives 0.
PGKIT_API int32_t pgBrowseDisk(const char* directory, const char* profile,
                               const PgDicomdirOptions* options, PGX_List* patients,
                               PgDicomdirScanCallback callback, void* userData);

// The same into a new list, for the caller to free with pgEmptyPatientList and pgKitListDelete (or
// delete). The record pointers of all objects are null, but those
// of leaves with PG_LEAF_OWNS_KEYS. Null for a null directory and when memory
// runs out; a directory that cannot be read gives an empty list.
PGKIT_API PGX_List* pgBrowsePatientListEx(const char* directory, const char* profile,
                                          const PgDicomdirOptions* options,
                                          PgDicomdirScanCallback callback, void* userData);

PGKIT_END_C

#endif
