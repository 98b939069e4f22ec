// pgkit: the objects of a browsed DICOMDIR (C++; C callers get them as opaque handles).
//
// A hierarchy has four levels. Every object of the upper three begins with the list of its
// children, so that a pointer to the object is a pointer to that list too:
//
//     PGX_List of PGX_DicomDirPatientNode
//         studies: PGX_List of PGX_DicomDirStudyNode
//             series: PGX_List of PGX_DicomDirSeriesNode
//                 leaves: PGX_List of PGX_DicomDirLeafNode or of its subclasses
//
// Ownership. An object owns the children in its list, its icon and its copies of sequences, and
// destroys them with itself. It does not own record, the directory record it was made from: that is
// an item in the data set of the PGX_DicomDir, valid while that is open, and null in a list that is
// detached from its DICOMDIR. The library sets clientData and clientFlags to 0 and leaves them
// alone from then on.
//
// Texts are zero-terminated and cut to fit their field. They are empty, numbers 0 and pointers null
// where the record has no such key, unless a field says otherwise. Character sets are those of the
// record: nothing is converted.
//
// Icons are handles of device-independent bitmaps: a BITMAPINFOHEADER, a table of 256 grays in
// 8-bit bitmaps, and the rows, bottom row first, each filled up to a multiple of 4 bytes. On
// Windows the handle is that of a movable global memory block (GlobalLock gives the bitmap's
// address); on POSIX systems it is the address itself.
//
// Copies of sequences are tied to no file, their values in memory and in the byte order of this
// machine. They have what a directory record can carry so that any reader finds the next record.
// Left out are elements below group 0008 and above group FFFD, group lengths, values that are
// encapsulated, not there in full, no whole count of numbers, without an end, too long for their VR
// or above 16 MiB, private values of VR UN or unknown, other such values of elements that are
// sequences, Pixel Data that reads as a sequence, and sequences that are nested deeper than 64
// levels; with them, items and sequences that have nothing left. A copy that would take more than
// 16 MiB is null.
//
// On Windows, hosts built with Microsoft's compilers and with GCC may make, derive from and delete
// leaves alike. Those of Microsoft's kind have no type information of the module's classes:
// leafType tells which class an object is, dynamic_cast and typeid do not.
//
// Copying an object copies every field as it stands, list cells, icon and sequence copies included.
// Copies are for reading: only one of the objects that share these may be destroyed.
#ifndef PGKIT_DIRECTORY_RECORDS_H
#define PGKIT_DIRECTORY_RECORDS_H

#include <stdint.h>

// What a leaf is: the values of PGX_DicomDirLeafNode::leafType.
typedef enum PgLeafType {
    PG_LEAF_OTHER = 0,            /* PGX_DicomDirLeafNode itself */
    PG_LEAF_IMAGE = 1,            /* PGX_DicomDirImageNode */
    PG_LEAF_REPORT = 2,           /* PGX_DicomDirReportNode */
    PG_LEAF_KEY_OBJECT = 3,       /* PGX_DicomDirKeyObjectNode */
    PG_LEAF_PRESENTATION = 4,     /* PGX_DicomDirPresentationNode */
    PG_LEAF_WAVEFORM = 5,         /* PGX_DicomDirWaveformNode */
    PG_LEAF_ENCAPSULATED_DOC = 6, /* PGX_DicomDirEncapsulatedDocNode */
    PG_LEAF_RAW_DATA = 7          /* PGX_DicomDirRawDataNode */
} PgLeafType;

// Bits of PGX_DicomDirSeriesNode::flags.
typedef enum PgSeriesFlags {
    PG_SERIES_KEY_IMAGES = 0x1 /* (00E1,1051) begins with "KEY_IMAGES" */
} PgSeriesFlags;

// Bits of PGX_DicomDirLeafNode::flags.
typedef enum PgLeafFlags {
    PG_LEAF_MARKED = 0x1, /* (07A1,102B) begins with "Y" */
    /* record is an item with keys that the object has no fields for, made from the file. The object
       owns it. Only creations with PG_DICOMDIR_STANDARD_RECORDS make such leaves. */
    PG_LEAF_OWNS_KEYS = 0x2
} PgLeafFlags;

#if defined(__cplusplus)

#include <cstddef>

#include "pgkit/export.h"
#include "pgkit/list.h"
#include "pgkit/node.h"

class PGX_DicomDirPatientNode {
  public:
    PGX_List studies;
    PGX_Node* record = nullptr;           // the PATIENT record
    void* clientData = nullptr;           // free for the host
    char patientId[65] = {};              // (0010,0020), without blanks at both ends
    char patientsName[195] = {};          // (0010,0010), likewise
    char birthDate[9] = {};               // (0010,0030), YYYYMMDD
    char sex[17] = {};                    // (0010,0040)
    char specificCharacterSet[272] = {};  // (0008,0005), its first 50 characters
    uint32_t flags = 0;                   // none are defined
    uint32_t clientFlags = 0;             // free for the host

    PGKIT_API PGX_DicomDirPatientNode();
    // Destroys the studies too.
    PGKIT_API ~PGX_DicomDirPatientNode();
    PGKIT_API PGX_DicomDirPatientNode& operator=(const PGX_DicomDirPatientNode& other);
    PGX_DicomDirPatientNode(const PGX_DicomDirPatientNode&) = delete;
};

class PGX_DicomDirStudyNode {
  public:
    PGX_List series;
    PGX_Node* record = nullptr;  // the STUDY record
    void* clientData = nullptr;  // free for the host
    // Referenced SOP Instance UID in File (0004,1511) or, when that is missing or empty,
    // (0020,000D). This tells the studies of a patient apart.
    char studyInstanceUid[65] = {};
    char studyId[17] = {};                   // (0020,0010)
    char studyDate[9] = {};                  // (0008,0020), YYYYMMDD
    char studyTime[17] = {};                 // (0008,0030), HHMMSS.FFFFFF or a part of it
    char accessionNumber[17] = {};           // (0008,0050)
    char studyDescription[65] = {};          // (0008,1030)
    char manufacturer[65] = {};              // (0008,0070)
    char referringPhysiciansName[195] = {};  // (0008,0090)
    char modality[17] = {};                  // that of the series; "..." when they differ
    char specificCharacterSet[272] = {};     // (0008,0005), its first 50 characters
    uint32_t flags = 0;                      // none are defined
    uint32_t clientFlags = 0;                // free for the host

    PGKIT_API PGX_DicomDirStudyNode();
    // Destroys the series too.
    PGKIT_API ~PGX_DicomDirStudyNode();
    PGKIT_API PGX_DicomDirStudyNode& operator=(const PGX_DicomDirStudyNode& other);
    PGX_DicomDirStudyNode(const PGX_DicomDirStudyNode&) = delete;
};

class PGX_DicomDirSeriesNode {
  public:
    PGX_List leaves;
    PGX_Node* record = nullptr;       // the SERIES record
    void* clientData = nullptr;       // free for the host
    char seriesInstanceUid[65] = {};  // (0020,000E)
    char seriesDescription[65] = {};  // (0008,103E)
    char seriesNumber[17] = {};       // (0020,0011), as text
    // (0008,0060); "SR", "KO" or "PR" when an IMAGE record of the series refers to a report, a key
    // object selection or a grayscale presentation state.
    char modality[17] = {};
    char institutionName[65] = {};            // (0008,0080)
    char institutionAddress[1025] = {};       // (0008,0081)
    char performingPhysiciansName[195] = {};  // (0008,1050)
    char specificCharacterSet[272] = {};      // (0008,0005), its first 50 characters
    void* icon = nullptr;                     // from (0088,0200); owned
    uint32_t flags = 0;                       // PgSeriesFlags
    uint32_t clientFlags = 0;                 // free for the host

    PGKIT_API PGX_DicomDirSeriesNode();
    // Frees the icon and destroys the leaves, each by its own class.
    PGKIT_API ~PGX_DicomDirSeriesNode();
    PGKIT_API PGX_DicomDirSeriesNode& operator=(const PGX_DicomDirSeriesNode& other);
    PGX_DicomDirSeriesNode(const PGX_DicomDirSeriesNode&) = delete;
};

// What all leaves have in common, and the class of those that have nothing else. leafType tells
// which subclass an object is. The destructor is the only virtual operation.
class PGKIT_API PGX_DicomDirLeafNode {
  public:
    PGX_Node* record = nullptr;        // the directory record
    void* clientData = nullptr;        // free for the host
    int32_t leafType = PG_LEAF_OTHER;  // PgLeafType
    char recordType[17] = {};          // (0004,1430)
    // The folder of the DICOMDIR, a backslash and the file ID; a to z in upper case. Whether there
    // is such a file, and how its name is written, pgxLeafFile tells.
    char fullPath[260] = {};
    // (0004,1500): the components joined by backslashes, without a leading one.
    char referencedFileId[260] = {};
    char instanceUid[65] = {};            // (0004,1511)
    char sopClassUid[65] = {};            // (0004,1510), "No.SOPClass.UID" when missing
    char transferSyntaxUid[65] = {};      // (0004,1512), "No.TransferSyntax.UID" when missing
    int32_t instanceNumber = 0;           // (0020,0013)
    char specificCharacterSet[272] = {};  // (0008,0005), its first 50 characters
    int32_t referencedDataSetSize = 0;    // (0859,1040), in bytes
    uint32_t flags = 0;                   // PgLeafFlags
    uint32_t clientFlags = 0;             // free for the host

    PGKIT_SLOT_0(virtual void* DeletingDestructor(uint32_t mode);)
    PGX_DicomDirLeafNode();
    PGX_DicomDirLeafNode(const PGX_DicomDirLeafNode& other);
    PGX_DicomDirLeafNode& operator=(const PGX_DicomDirLeafNode& other);

    virtual ~PGX_DicomDirLeafNode();
};

class PGKIT_API PGX_DicomDirImageNode : public PGX_DicomDirLeafNode {
  public:
    int32_t rows = 0;                         // (0028,0010)
    int32_t columns = 0;                      // (0028,0011)
    int32_t numberOfFrames = 0;               // (0028,0008); 1 when the record has none
    char photometricInterpretation[17] = {};  // (0028,0004); "??" when the record has none
    char imageType[272] = {};                 // (0008,0008), values joined by backslashes
    char calibrationImage[17] = {};           // (0050,0004)
    void* icon = nullptr;                     // from (0088,0200); owned

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirImageNode();
    PGX_DicomDirImageNode(const PGX_DicomDirImageNode& other);
    PGX_DicomDirImageNode& operator=(const PGX_DicomDirImageNode& other);
    ~PGX_DicomDirImageNode() override;
};

class PGKIT_API PGX_DicomDirReportNode : public PGX_DicomDirLeafNode {
  public:
    char completionFlag[17] = {};                 // (0040,A491)
    char verificationFlag[17] = {};               // (0040,A493)
    char contentDate[9] = {};                     // (0008,0023), YYYYMMDD
    char contentTime[17] = {};                    // (0008,0033)
    char verificationDateTime[27] = {};           // (0040,A030)
    PGX_Node* conceptNameCodeSequence = nullptr;  // copy of (0040,A043); owned
    PGX_Node* contentSequence = nullptr;          // copy of (0040,A730); owned

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirReportNode();
    PGX_DicomDirReportNode(const PGX_DicomDirReportNode& other);
    PGX_DicomDirReportNode& operator=(const PGX_DicomDirReportNode& other);
    ~PGX_DicomDirReportNode() override;
};

class PGKIT_API PGX_DicomDirKeyObjectNode : public PGX_DicomDirLeafNode {
  public:
    char contentDate[9] = {};                     // (0008,0023), YYYYMMDD
    char contentTime[17] = {};                    // (0008,0033)
    PGX_Node* conceptNameCodeSequence = nullptr;  // copy of (0040,A043); owned
    PGX_Node* contentSequence = nullptr;          // copy of (0040,A730); owned

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirKeyObjectNode();
    PGX_DicomDirKeyObjectNode(const PGX_DicomDirKeyObjectNode& other);
    PGX_DicomDirKeyObjectNode& operator=(const PGX_DicomDirKeyObjectNode& other);
    ~PGX_DicomDirKeyObjectNode() override;
};

class PGKIT_API PGX_DicomDirPresentationNode : public PGX_DicomDirLeafNode {
  public:
    char creationDate[9] = {};                     // (0070,0082), YYYYMMDD
    char creationTime[17] = {};                    // (0070,0083)
    char contentCreatorsName[195] = {};            // (0070,0084)
    char contentLabel[17] = {};                    // (0070,0080)
    char contentDescription[65] = {};              // (0070,0081)
    PGX_Node* referencedSeriesSequence = nullptr;  // copy of (0008,1115); owned

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirPresentationNode();
    PGX_DicomDirPresentationNode(const PGX_DicomDirPresentationNode& other);
    PGX_DicomDirPresentationNode& operator=(const PGX_DicomDirPresentationNode& other);
    ~PGX_DicomDirPresentationNode() override;
};

class PGKIT_API PGX_DicomDirEncapsulatedDocNode : public PGX_DicomDirLeafNode {
  public:
    char contentDate[9] = {};                     // (0008,0023), YYYYMMDD
    char contentTime[17] = {};                    // (0008,0033)
    char documentTitle[1025] = {};                // (0042,0010)
    char mimeType[65] = {};                       // (0042,0012)
    PGX_Node* conceptNameCodeSequence = nullptr;  // copy of (0040,A043); owned

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirEncapsulatedDocNode();
    PGX_DicomDirEncapsulatedDocNode(const PGX_DicomDirEncapsulatedDocNode& other);
    PGX_DicomDirEncapsulatedDocNode& operator=(const PGX_DicomDirEncapsulatedDocNode& other);
    ~PGX_DicomDirEncapsulatedDocNode() override;
};

class PGKIT_API PGX_DicomDirWaveformNode : public PGX_DicomDirLeafNode {
  public:
    char contentDate[9] = {};   // (0008,0023), YYYYMMDD
    char contentTime[17] = {};  // (0008,0033)

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirWaveformNode();
    PGX_DicomDirWaveformNode(const PGX_DicomDirWaveformNode& other);
    PGX_DicomDirWaveformNode& operator=(const PGX_DicomDirWaveformNode& other);
    ~PGX_DicomDirWaveformNode() override;
};

class PGKIT_API PGX_DicomDirRawDataNode : public PGX_DicomDirLeafNode {
  public:
    char contentDate[9] = {};   // (0008,0023), YYYYMMDD
    char contentTime[17] = {};  // (0008,0033)

    PGKIT_SLOT_0(void* DeletingDestructor(uint32_t mode) override;)
    PGX_DicomDirRawDataNode();
    PGX_DicomDirRawDataNode(const PGX_DicomDirRawDataNode& other);
    PGX_DicomDirRawDataNode& operator=(const PGX_DicomDirRawDataNode& other);
    ~PGX_DicomDirRawDataNode() override;
};

// The layout is part of the interface: hosts read the fields, and use the object as its list.
static_assert(offsetof(PGX_DicomDirPatientNode, studies) == 0 &&
              offsetof(PGX_DicomDirPatientNode, record) == 24 &&
              offsetof(PGX_DicomDirPatientNode, clientData) == 32 &&
              offsetof(PGX_DicomDirPatientNode, patientId) == 40 &&
              offsetof(PGX_DicomDirPatientNode, patientsName) == 105 &&
              offsetof(PGX_DicomDirPatientNode, birthDate) == 300 &&
              offsetof(PGX_DicomDirPatientNode, sex) == 309 &&
              offsetof(PGX_DicomDirPatientNode, specificCharacterSet) == 326 &&
              offsetof(PGX_DicomDirPatientNode, flags) == 600 &&
              offsetof(PGX_DicomDirPatientNode, clientFlags) == 604);
static_assert(offsetof(PGX_DicomDirStudyNode, series) == 0 &&
              offsetof(PGX_DicomDirStudyNode, record) == 24 &&
              offsetof(PGX_DicomDirStudyNode, clientData) == 32 &&
              offsetof(PGX_DicomDirStudyNode, studyInstanceUid) == 40 &&
              offsetof(PGX_DicomDirStudyNode, studyId) == 105 &&
              offsetof(PGX_DicomDirStudyNode, studyDate) == 122 &&
              offsetof(PGX_DicomDirStudyNode, studyTime) == 131 &&
              offsetof(PGX_DicomDirStudyNode, accessionNumber) == 148 &&
              offsetof(PGX_DicomDirStudyNode, studyDescription) == 165 &&
              offsetof(PGX_DicomDirStudyNode, manufacturer) == 230 &&
              offsetof(PGX_DicomDirStudyNode, referringPhysiciansName) == 295 &&
              offsetof(PGX_DicomDirStudyNode, modality) == 490 &&
              offsetof(PGX_DicomDirStudyNode, specificCharacterSet) == 507 &&
              offsetof(PGX_DicomDirStudyNode, flags) == 780 &&
              offsetof(PGX_DicomDirStudyNode, clientFlags) == 784);
static_assert(offsetof(PGX_DicomDirSeriesNode, leaves) == 0 &&
              offsetof(PGX_DicomDirSeriesNode, record) == 24 &&
              offsetof(PGX_DicomDirSeriesNode, clientData) == 32 &&
              offsetof(PGX_DicomDirSeriesNode, seriesInstanceUid) == 40 &&
              offsetof(PGX_DicomDirSeriesNode, seriesDescription) == 105 &&
              offsetof(PGX_DicomDirSeriesNode, seriesNumber) == 170 &&
              offsetof(PGX_DicomDirSeriesNode, modality) == 187 &&
              offsetof(PGX_DicomDirSeriesNode, institutionName) == 204 &&
              offsetof(PGX_DicomDirSeriesNode, institutionAddress) == 269 &&
              offsetof(PGX_DicomDirSeriesNode, performingPhysiciansName) == 1294 &&
              offsetof(PGX_DicomDirSeriesNode, specificCharacterSet) == 1489 &&
              offsetof(PGX_DicomDirSeriesNode, icon) == 1768 &&
              offsetof(PGX_DicomDirSeriesNode, flags) == 1776 &&
              offsetof(PGX_DicomDirSeriesNode, clientFlags) == 1780);
// The leaves are polymorphic: their fields, in this order, follow the pointer to the virtual table.
static_assert(sizeof(PGX_DicomDirPatientNode) == 608 && sizeof(PGX_DicomDirStudyNode) == 792 &&
              sizeof(PGX_DicomDirSeriesNode) == 1784 && sizeof(PGX_DicomDirLeafNode) == 1048 &&
              sizeof(PGX_DicomDirImageNode) == 1376 && sizeof(PGX_DicomDirReportNode) == 1152 &&
              sizeof(PGX_DicomDirKeyObjectNode) == 1096 &&
              sizeof(PGX_DicomDirPresentationNode) == 1360 &&
              sizeof(PGX_DicomDirEncapsulatedDocNode) == 2176 &&
              sizeof(PGX_DicomDirWaveformNode) == 1080 && sizeof(PGX_DicomDirRawDataNode) == 1080);

#else
typedef struct PGX_DicomDirPatientNode PGX_DicomDirPatientNode;
typedef struct PGX_DicomDirStudyNode PGX_DicomDirStudyNode;
typedef struct PGX_DicomDirSeriesNode PGX_DicomDirSeriesNode;
typedef struct PGX_DicomDirLeafNode PGX_DicomDirLeafNode;
#endif

#endif
