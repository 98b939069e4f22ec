// pgkit: accessors, one flat function for each operation and field of the classes, for hosts that
// cannot call members of C++ classes.
//
// Handles are the addresses of the objects: every handle that the library hands out, also those
// of lists, records and nodes inside other objects, can be passed here, and C++ hosts may mix
// accessors and members. C sees them as pointers to opaque structures.
//
// Null handles are allowed everywhere. Getters then give 0, null or an empty text, setters and
// procedures do nothing, operations with a result of 1 or 0 give 0, and pgKitSaveDataSetAsEx and
// pgKitWriteNodeEx give 0xFFFFFFFF. Nothing is printed. Apart from that a function does exactly
// what the member does that it is named after: node.h, list.h, directory.h and directory_records.h
// tell the details. Other arguments are passed on as they are.
//
// Texts of directory records are returned in a buffer of 520 bytes that belongs to the module and
// to the calling thread: the next such call of this thread overwrites it, and it is gone with the
// thread. Copy what is to be kept. At most 519 characters are given (only a series' institution
// address can be longer). With a null handle the result is a constant empty text, never null; so it
// is when memory runs out at a thread's first such call.
#ifndef PGKIT_ACCESSORS_H
#define PGKIT_ACCESSORS_H

#include <stdint.h>
#include <stdio.h>

#include "pgkit/dataset.h"
#include "pgkit/directory.h"
#include "pgkit/directory_records.h"
#include "pgkit/export.h"
#include "pgkit/list.h"

PGKIT_BEGIN_C

// ---- Fields of a node ---------------------------------------------------------------------------
//
// Setters store what they are given: nothing is validated and no other field changes.

// 0 for a data set or an item, 1 for an element.
PGKIT_API uint32_t pgKitGetNodeType(PGX_Node* node);
PGKIT_API void pgKitSetNodeType(PGX_Node* node, uint32_t nodeType);

// A value representation code (value_representation.h), 255 for unknown or none.
PGKIT_API uint32_t pgKitGetValueRep(PGX_Node* node);
PGKIT_API void pgKitSetValueRep(PGX_Node* node, uint32_t valueRep);

// The tag; 0 and 0 for a data set.
PGKIT_API uint16_t pgKitGetGroup(PGX_Node* node);
PGKIT_API void pgKitSetGroup(PGX_Node* node, uint16_t group);
PGKIT_API uint16_t pgKitGetElement(PGX_Node* node);
PGKIT_API void pgKitSetElement(PGX_Node* node, uint16_t element);

// The value's length in bytes, 0xFFFFFFFF when undefined. Setting it neither allocates nor frees:
// use pgKitSetValue to give a node another value.
PGKIT_API uint32_t pgKitGetLength(PGX_Node* node);
PGKIT_API void pgKitSetLength(PGX_Node* node, uint32_t length);

// The following sibling and the first child, null when there is none. Setting them frees nothing.
PGKIT_API PGX_Node* pgKitGetNext(PGX_Node* node);
PGKIT_API void pgKitSetNext(PGX_Node* node, PGX_Node* next);
PGKIT_API PGX_Node* pgKitGetFirst(PGX_Node* node);
PGKIT_API void pgKitSetFirst(PGX_Node* node, PGX_Node* first);

// ---- Data sets ----------------------------------------------------------------------------------

// pgOpenDataSetFile, pgCloseDataSet and pgAllocateDataSetNode.
PGKIT_API PGX_Node* pgKitOpenDataSetFile(const char* path, uint32_t maxLoadLength);
PGKIT_API void pgKitCloseDataSet(PGX_Node* root);
PGKIT_API PGX_Node* pgKitAllocateDataSetNode(void);

// The first direct child with this tag or element identifier, or null.
PGKIT_API PGX_Node* pgKitFindNodeWithGroupElement(PGX_Node* dataSet, uint16_t group,
                                                  uint16_t element);
PGKIT_API PGX_Node* pgKitFindNodeWithElementId(PGX_Node* dataSet, uint32_t elementId);

// A new node, linked to nothing: an empty data set, or a little-endian node of this type (0 data
// set, 1 element), tag, VR and value length, without a value. Null when memory runs out.
PGKIT_API PGX_Node* pgKitAllocEmptyNode(void);
PGKIT_API PGX_Node* pgKitAllocNode(uint32_t nodeType, uint16_t group, uint16_t element,
                                   uint8_t valueRep, uint32_t length);

// Destroys one node and what it owns, or the node with the siblings that follow it and all their
// descendants.
PGKIT_API void pgKitFreeNode(PGX_Node* node);
PGKIT_API void pgKitFreeNodeHierarchy(PGX_Node* node);

// ---- Values -------------------------------------------------------------------------------------

// The whole value and a NUL after it; buffer must hold length + 1 bytes. Returns 1, or 0 when there
// is no value.
PGKIT_API int32_t pgKitGetValue(PGX_Node* node, void* buffer);

// At most size characters of the value and a NUL after them; buffer must hold size + 1 bytes.
// Returns 1, or 0 when there is no value. With a null node the buffer is left alone.
PGKIT_API int32_t pgKitGetStringValue(PGX_Node* node, char* buffer, int32_t size);

// The first number of a binary value, in host byte order.
PGKIT_API uint16_t pgKitGetUSValue(PGX_Node* node);
PGKIT_API uint32_t pgKitGetULValue(PGX_Node* node);
PGKIT_API int16_t pgKitGetSSValue(PGX_Node* node);

// The number that a text value (IS, DS) begins with.
PGKIT_API int32_t pgKitGetDSIntValue(PGX_Node* node);
PGKIT_API double pgKitGetDSDoubleValue(PGX_Node* node);

// count bytes at an absolute position of the file that this data set was read from. Returns 1
// exactly when all of them were read.
PGKIT_API int32_t pgKitGetFileData(PGX_Node* dataSet, void* buffer, uint32_t offset,
                                   uint32_t count);

// Replaces the value with a copy of size bytes in host byte order, evened with a pad byte. Returns
// 1 or 0.
PGKIT_API int32_t pgKitSetValue(PGX_Node* node, const void* data, uint32_t size);

// ---- Text dump ----------------------------------------------------------------------------------

// Prints the node and everything below it to a stream, every line behind prefix, or into a new text
// file. Both forms that take a path are the same. Return 1 or 0.
PGKIT_API int32_t pgKitDumpToStream(PGX_Node* node, FILE* stream, const char* prefix);
PGKIT_API int32_t pgKitDumpToFile(PGX_Node* node, const char* path);
PGKIT_API int32_t pgKitDump(PGX_Node* node, const char* path);

// ---- Writing ------------------------------------------------------------------------------------
//
// mode is a set of bits: 0x01 undefined lengths, 0x02 meta group in implicit VR, 0x04 meta group in
// explicit VR (Part 10), 0x08 explicit VR, 0x10 implicit VR, 0x20 little endian, 0x40 big endian.
//
// The Ex forms return 0 for success, a code from 1 to 7 for a failure (node.h; 3 for a null stream,
// 5 when memory runs out) and 0xFFFFFFFF for a null node.

// Saves a root data set as a file. Mode 0 keeps the encoding the tree was read with.
PGKIT_API void pgKitSaveDataSetAs(PGX_Node* root, const char* path, int32_t mode);
PGKIT_API uint32_t pgKitSaveDataSetAsEx(PGX_Node* root, const char* path, int32_t mode);

// Writes a node and everything below it to a binary stream.
PGKIT_API void pgKitWriteNode(PGX_Node* node, FILE* stream, uint32_t mode);
PGKIT_API uint32_t pgKitWriteNodeEx(PGX_Node* node, FILE* stream, uint32_t mode);

// Adds group length elements to a data set, or sets those that are there. Return 1 or 0.
PGKIT_API int32_t pgKitAddGroupLengths(PGX_Node* dataSet, uint32_t mode);
PGKIT_API int32_t pgKitUpdateGroupLengths(PGX_Node* dataSet, uint32_t mode);

// Completes the File Meta Information of a data set. A null transfer syntax UID stands for the one
// it was read with, else for explicit VR little endian. Returns 1.
PGKIT_API int32_t pgKitAddPart10Elements(PGX_Node* dataSet, const char* transferSyntaxUid);

// ---- Editing of trees ---------------------------------------------------------------------------

// The items of a sequence. Items added belong to the tree.
PGKIT_API void pgKitSeqAddTail(PGX_Node* sequence, PGX_Node* item);
PGKIT_API void pgKitSeqAddHead(PGX_Node* sequence, PGX_Node* item);
PGKIT_API PGX_Node* pgKitSeqGetHead(PGX_Node* sequence);

// Unlinks a direct child and frees it with all its descendants.
PGKIT_API void pgKitRemoveNode(PGX_Node* parent, PGX_Node* child);

// Inserts a new element, with a copy of size bytes in host byte order, in tag order. Returns it, or
// null when parent is no data set, the identifier is above 3781 or memory runs out.
PGKIT_API PGX_Node* pgKitInsertNodeWithGroupElement(PGX_Node* parent, uint16_t group,
                                                    uint16_t element, const void* data,
                                                    uint32_t size);
PGKIT_API PGX_Node* pgKitInsertNodeWithElementId(PGX_Node* parent, uint32_t elementId,
                                                 const void* data, uint32_t size);

// ---- Pixel data ---------------------------------------------------------------------------------

// 1 for Pixel Data in fragments.
PGKIT_API int32_t pgKitIsEncodedPixelData(PGX_Node* node);

// One frame of native Pixel Data: frameSize bytes from frameIndex * frameSize on. Returns 1 or 0.
PGKIT_API int32_t pgKitGetPixelData(PGX_Node* node, uint32_t frameIndex, uint32_t frameSize,
                                    void* buffer);

// Inserts encapsulated Pixel Data with count empty fragments, and sets one of them to a copy of
// size bytes. Return the new element or null; 1 or 0.
PGKIT_API PGX_Node* pgKitInsertEncodedPixelDataNode(PGX_Node* dataSet, uint32_t count);
PGKIT_API int32_t pgKitSetEncodedPixelData(PGX_Node* node, uint32_t index, uint32_t size,
                                           const void* data);

// Length and file position of one entry of the fragment table. Returns 1, or 0 when there is no
// such entry.
PGKIT_API int32_t pgKitGetEncodedPixelInfo(PGX_Node* node, uint32_t index, uint32_t* entryLength,
                                           uint32_t* entryOffset);

// ---- Lists --------------------------------------------------------------------------------------

// A new empty list, null when memory runs out; and its end. The objects that the list holds are not
// destroyed with it.
PGKIT_API PGX_List* pgKitListAllocate(void);
PGKIT_API void pgKitListDelete(PGX_List* list);

PGKIT_API int32_t pgKitListGetCount(PGX_List* list);
// The pointer at an index that counts from 0, the first and the last one; null when there is none.
// pgKitListGetElementAt walks from the head: who wants all pointers of a list, one after the other,
// walks by its cells (pgxListFirst).
PGKIT_API void* pgKitListGetElementAt(PGX_List* list, int32_t index);
PGKIT_API void* pgKitListGetHead(PGX_List* list);
PGKIT_API void* pgKitListGetTail(PGX_List* list);

// When memory runs out the list stays as it is: its count tells.
PGKIT_API void pgKitListAddHead(PGX_List* list, void* data);
PGKIT_API void pgKitListAddTail(PGX_List* list, void* data);
// Inserts so that the pointer comes to stand at the index, which is clamped to 0 and the count.
PGKIT_API void pgKitListInsertAt(PGX_List* list, int32_t index, void* data);

// Return the pointer removed, null when there is none.
PGKIT_API void* pgKitListRemoveHead(PGX_List* list);
PGKIT_API void* pgKitListRemoveTail(PGX_List* list);
PGKIT_API void* pgKitListRemoveElement(PGX_List* list, void* data);

// A walk over a list, which takes as many steps as the list has cells:
//
//     PGX_ListElement* cell;
//     for (cell = pgxListFirst(list); cell != NULL; cell = pgxListNext(cell))
//         use(pgxListData(cell));
//
// A cell lives until its pointer is taken out of the list: who removes pointers on the way asks for
// the next cell before. What is added behind the cell is still met. First: null for an empty list;
// next: null behind the last cell; a null list or cell gives null. A list is used by one thread at
// a time; reading it may be shared while nobody changes it.
PGKIT_API PGX_ListElement* pgxListFirst(PGX_List* list);
PGKIT_API PGX_ListElement* pgxListNext(PGX_ListElement* cell);
PGKIT_API void* pgxListData(PGX_ListElement* cell);

// ---- DICOMDIR files -----------------------------------------------------------------------------

// Opens a DICOMDIR; values shorter than maxLoadLength bytes are loaded. Null for a file that cannot
// be opened, which is reported on the standard output, a file that is no DICOMDIR, and when memory
// runs out.
PGKIT_API PGX_DicomDir* pgKitOpenDicomDir(const char* path, uint32_t maxLoadLength);

// Destroys the object, the hierarchy it made and the data set, and closes the file.
PGKIT_API void pgKitCloseDicomDir(PGX_DicomDir* directory);

PGKIT_API int32_t pgKitIsDicomDir(PGX_DicomDir* directory);

// Builds the hierarchy anew and returns its patients, in a list that the directory object owns. The
// callback, which may be null, is called once for every leaf that is added. Null when memory runs
// out; pgKitDirGetPatientList then has what was read before.
PGKIT_API PGX_List* pgKitDirBrowse(PGX_DicomDir* directory, PGX_DicomDirCallback callback,
                                   void* userData);

// The patients as they stand, null before the first browse.
PGKIT_API PGX_List* pgKitDirGetPatientList(PGX_DicomDir* directory);

// ---- Records of a hierarchy ---------------------------------------------------------------------
//
// For each level: the list of the children (the object itself seen as a list), the directory
// record in the data set of the DICOMDIR (null in a detached hierarchy), the two values that are
// the host's own, the flags of the library, and the keys. directory_records.h gives the tag behind
// each key.

PGKIT_API PGX_List* pgKitDirGetStudyList(PGX_DicomDirPatientNode* patient);
PGKIT_API PGX_Node* pgKitDirGetPatientNode(PGX_DicomDirPatientNode* patient);
PGKIT_API void* pgKitDirGetPatientClientData(PGX_DicomDirPatientNode* patient);
PGKIT_API void pgKitDirSetPatientClientData(PGX_DicomDirPatientNode* patient, void* clientData);
PGKIT_API const char* pgKitDirGetPatientID(PGX_DicomDirPatientNode* patient);
PGKIT_API const char* pgKitDirGetPatientsName(PGX_DicomDirPatientNode* patient);
PGKIT_API const char* pgKitDirGetPatientBirthDate(PGX_DicomDirPatientNode* patient);
PGKIT_API const char* pgKitDirGetPatientSex(PGX_DicomDirPatientNode* patient);
PGKIT_API uint32_t pgKitDirGetPatientFlags(PGX_DicomDirPatientNode* patient);
PGKIT_API uint32_t pgKitDirGetPatientClientFlags(PGX_DicomDirPatientNode* patient);

PGKIT_API PGX_List* pgKitDirGetSeriesList(PGX_DicomDirStudyNode* study);
PGKIT_API PGX_Node* pgKitDirGetStudyNode(PGX_DicomDirStudyNode* study);
PGKIT_API void* pgKitDirGetStudyClientData(PGX_DicomDirStudyNode* study);
PGKIT_API void pgKitDirSetStudyClientData(PGX_DicomDirStudyNode* study, void* clientData);
PGKIT_API const char* pgKitDirGetStudyUID(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyID(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyDate(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyTime(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyAccessionNumber(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyDesc(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyManufacturer(PGX_DicomDirStudyNode* study);
PGKIT_API const char* pgKitDirGetStudyReferringPhysiciansName(PGX_DicomDirStudyNode* study);
// The modality of its series, "..." when they differ.
PGKIT_API const char* pgKitDirGetStudyModality(PGX_DicomDirStudyNode* study);
PGKIT_API uint32_t pgKitDirGetStudyFlags(PGX_DicomDirStudyNode* study);
PGKIT_API uint32_t pgKitDirGetStudyClientFlags(PGX_DicomDirStudyNode* study);

PGKIT_API PGX_List* pgKitDirGetLeafList(PGX_DicomDirSeriesNode* series);
PGKIT_API PGX_Node* pgKitDirGetSeriesNode(PGX_DicomDirSeriesNode* series);
PGKIT_API void* pgKitDirGetSeriesClientData(PGX_DicomDirSeriesNode* series);
PGKIT_API void pgKitDirSetSeriesClientData(PGX_DicomDirSeriesNode* series, void* clientData);
PGKIT_API const char* pgKitDirGetSeriesUID(PGX_DicomDirSeriesNode* series);
PGKIT_API const char* pgKitDirGetSeriesDesc(PGX_DicomDirSeriesNode* series);
PGKIT_API const char* pgKitDirGetSeriesNumber(PGX_DicomDirSeriesNode* series);
PGKIT_API const char* pgKitDirGetSeriesModality(PGX_DicomDirSeriesNode* series);
PGKIT_API const char* pgKitDirGetSeriesInstitutionName(PGX_DicomDirSeriesNode* series);
// Its first 519 characters.
PGKIT_API const char* pgKitDirGetSeriesInstitutionAddress(PGX_DicomDirSeriesNode* series);
PGKIT_API const char* pgKitDirGetSeriesPerformingPhysiciansName(PGX_DicomDirSeriesNode* series);
// A bitmap (directory_records.h), which the series keeps; null when there is none.
PGKIT_API void* pgKitDirGetSeriesIconHDib(PGX_DicomDirSeriesNode* series);
// PgSeriesFlags.
PGKIT_API uint32_t pgKitDirGetSeriesFlags(PGX_DicomDirSeriesNode* series);
PGKIT_API uint32_t pgKitDirGetSeriesClientFlags(PGX_DicomDirSeriesNode* series);

PGKIT_API PGX_Node* pgKitDirGetLeafNode(PGX_DicomDirLeafNode* leaf);
PGKIT_API void* pgKitDirGetLeafClientData(PGX_DicomDirLeafNode* leaf);
PGKIT_API void pgKitDirSetLeafClientData(PGX_DicomDirLeafNode* leaf, void* clientData);
// PgLeafType: which of the getters further below have something to give.
PGKIT_API int32_t pgKitDirGetLeafType(PGX_DicomDirLeafNode* leaf);
PGKIT_API const char* pgKitDirGetLeafRecordType(PGX_DicomDirLeafNode* leaf);
PGKIT_API const char* pgKitDirGetLeafInstanceUID(PGX_DicomDirLeafNode* leaf);
PGKIT_API const char* pgKitDirGetLeafSOPClassUID(PGX_DicomDirLeafNode* leaf);
PGKIT_API const char* pgKitDirGetLeafFullPath(PGX_DicomDirLeafNode* leaf);
PGKIT_API int32_t pgKitDirGetLeafInstanceNumber(PGX_DicomDirLeafNode* leaf);
PGKIT_API const char* pgKitDirGetLeafSpecificCharacterSet(PGX_DicomDirLeafNode* leaf);
// PgLeafFlags.
PGKIT_API uint32_t pgKitDirGetLeafFlags(PGX_DicomDirLeafNode* leaf);
PGKIT_API uint32_t pgKitDirGetLeafClientFlags(PGX_DicomDirLeafNode* leaf);

// ---- Keys of leaves of one type -----------------------------------------------------------------
//
// A leaf of another type has none of these: the result is then 0, null or the constant empty text,
// as for a null handle.

// PG_LEAF_IMAGE.
PGKIT_API int32_t pgKitDirGetImageRows(PGX_DicomDirLeafNode* image);
PGKIT_API int32_t pgKitDirGetImageColumns(PGX_DicomDirLeafNode* image);
PGKIT_API int32_t pgKitDirGetImageNumberOfFrames(PGX_DicomDirLeafNode* image);
PGKIT_API const char* pgKitDirGetImagePhotoInterp(PGX_DicomDirLeafNode* image);
PGKIT_API const char* pgKitDirGetImageType(PGX_DicomDirLeafNode* image);
PGKIT_API const char* pgKitDirGetImageCalibrationObject(PGX_DicomDirLeafNode* image);
// A bitmap (directory_records.h), which the leaf keeps; null when there is none.
PGKIT_API void* pgKitDirGetImageIconHDib(PGX_DicomDirLeafNode* image);

// PG_LEAF_REPORT.
PGKIT_API const char* pgKitDirGetReportVerificationFlag(PGX_DicomDirLeafNode* report);
PGKIT_API const char* pgKitDirGetReportCompletionFlag(PGX_DicomDirLeafNode* report);
PGKIT_API const char* pgKitDirGetReportContentDate(PGX_DicomDirLeafNode* report);
PGKIT_API const char* pgKitDirGetReportContentTime(PGX_DicomDirLeafNode* report);

// PG_LEAF_KEY_OBJECT.
PGKIT_API const char* pgKitDirGetKeyObjectContentDate(PGX_DicomDirLeafNode* keyObject);
PGKIT_API const char* pgKitDirGetKeyObjectContentTime(PGX_DicomDirLeafNode* keyObject);

// PG_LEAF_PRESENTATION.
PGKIT_API const char* pgKitDirGetPresentationCreationDate(PGX_DicomDirLeafNode* presentation);
PGKIT_API const char* pgKitDirGetPresentationCreationTime(PGX_DicomDirLeafNode* presentation);
PGKIT_API const char* pgKitDirGetPresentationCreatorsName(PGX_DicomDirLeafNode* presentation);
PGKIT_API const char* pgKitDirGetPresentationLabel(PGX_DicomDirLeafNode* presentation);
PGKIT_API const char* pgKitDirGetPresentationDescription(PGX_DicomDirLeafNode* presentation);

// PG_LEAF_WAVEFORM.
PGKIT_API const char* pgKitDirGetWaveformContentDate(PGX_DicomDirLeafNode* waveform);
PGKIT_API const char* pgKitDirGetWaveformContentTime(PGX_DicomDirLeafNode* waveform);

// PG_LEAF_RAW_DATA.
PGKIT_API const char* pgKitDirGetRawDataContentDate(PGX_DicomDirLeafNode* rawData);
PGKIT_API const char* pgKitDirGetRawDataContentTime(PGX_DicomDirLeafNode* rawData);

PGKIT_END_C

#endif
