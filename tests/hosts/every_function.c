#include "every_function.h"

#include <pgkit/pgkit.h>
#include <string.h>

#define COUNT_OF(array) (sizeof(array) / sizeof *(array))
#define EXPECT(holds) Expect((holds), #holds, __LINE__)

static int wrongResults;

static void Expect(int holds, const char* condition, int line) {
    if (holds) return;
    ++wrongResults;
    fprintf(stderr, "line %d: %s\n", line, condition);
}

static int IsYesOrNo(int32_t result) { return result == 0 || result == 1; }

/* What the writing operations give: 7 is the last kind of failure. */
static int IsWriteResult(uint32_t result) { return result <= 7; }

/* ---- Tables ---------------------------------------------------------------------------------- */

static void CallVersion(void) {
    char version[18] = "";
    EXPECT(pgGetVersionString(version, sizeof version) == 17 && strlen(version) == 17);
    EXPECT(pgGetVersionFloat() > 2);
}

static void CallDictionary(const HostFiles* files) {
    uint16_t group = 0;
    uint16_t element = 0;
    uint8_t valueRep = 0;
    char name[128];
    EXPECT(pgFindElementIdInfo(3652, &group, &element) == 1 && group == 0x7FE0);
    EXPECT(pgFindElementIdInfoAndVR(3652, &group, &element, &valueRep) == 1);
    EXPECT(pgFindElementIdType(0x7FE0, 0x0010) == 3652);
    EXPECT(pgGetTagElementId("PixelData") == 3652);
    EXPECT(pgFindValueRepresentation(0x0010, 0x0010) == VR_PN);
    EXPECT(pgFindValueRepresentationVR("PN") == VR_PN);
    EXPECT(pgGetVRPrintableName(VR_PN, name) == 1 && strcmp(name, "PN") == 0);
    EXPECT(pgIsCharsetEncodedVR(VR_PN) == 1);
    EXPECT(pgIsCharsetEncodedVRValue("PN") == 1);
    EXPECT(pgGetTagPrintableName(0x7FE0, 0x0010, name) == 1 && strcmp(name, "PixelData") == 0);
    EXPECT(pgTryToDecodeUNSequences(1) == 1);
    /* The entry is there, or nothing is. */
    const int isLoaded = pgSetPrivateDictionaryFile(files->privateDictionary) == 1;
    EXPECT(isLoaded || pgFindValueRepresentation(0x0009, 0x0001) == VR_Unknown);
}

static bool (*const kCategories[])(const char*) = {
    pgIsImageSOPClass,        pgIsReportSOPClass, pgIsWaveformSOPClass, pgIsKeyObjectSOPClass,
    pgIsPresentationSOPClass, pgIsRTDoseSOPClass, pgIsRTPlanSOPClass,   pgIsRTStructureSetSOPClass,
    pgIsRadiotherapySOPClass, pgIsStorageSOPClass};

static void CallUids(void) {
    const char* const ct = "1.2.840.10008.5.1.4.1.1.2";
    char text[70];
    EXPECT(pgCheckUID(ct) == 1);
    EXPECT(pgGetSOPClassUIDToModality(ct, text) == 0 && strcmp(text, "CT") == 0);
    EXPECT(pgGetModalityName("CT", text) == 0 && strcmp(text, "Computed Tomography") == 0);
    EXPECT(pgGetUIDName("1.2.840.10008.1.2", text) == 0);
    EXPECT(pgxGetSOPClassUIDToModality(ct, text, sizeof text) == 2);
    EXPECT(pgxGetModalityName("CT", text, sizeof text) == 19);
    EXPECT(pgxGetUIDName("1.2.840.10008.1.2", text, 4) > 4 && strlen(text) == 3);
    EXPECT(pgxGetTagPrintableName(0x7FE0, 0x0010, text, sizeof text) == 9);
    EXPECT(pgxMakeLongValuesUn(NULL) == 0);
    EXPECT(pgxGetTagName(NULL, text, sizeof text) == 0 && strcmp(text, "<Unknown Tag>") == 0);
    EXPECT(pgxGetVRPrintableName(VR_PN, text, sizeof text) == 2);
    EXPECT(pgxProfileCount() == 56);
    EXPECT(pgxProfileName(0, text, sizeof text) == strlen(text) && pgxIsProfile(text) == 1);
    EXPECT(pgxProfileRules(0, text, sizeof text) > 0 && strncmp(text, "image\t", 6) == 0);
    EXPECT(pgxRecordTypeOf("1.2.840.10008.5.1.4.39.1", text, sizeof text) == 7);
    EXPECT(pgxIsRootRecordType("PALETTE") == 1 && pgxIsRootRecordType("IMAGE") == 0);
    EXPECT(pgxRecordTypeKeys("PALETTE", NULL, 0) == 1 && pgxTakeRootRecords(NULL, NULL, 0) == 0);
    EXPECT(pgxIsFileId("DIR\\IM1") == 1 && pgxIsFileId("im1.dcm") == 0);
    EXPECT(pgxAcceptanceText(PG_IS_A_DICOMDIR, text, sizeof text) == 18);
    int yes = 0;
    for (size_t i = 0; i < COUNT_OF(kCategories); ++i)
        yes += kCategories[i](ct);
    EXPECT(yes == 2); /* an image, and for storage */
    const int32_t order = pgComparePatientNames("DOE^JOHN^OF^A^LONG^NAME", "ROE^JANE", 0);
    EXPECT(order == -1 || order == -2);
    EXPECT(pgDirAcceptDataset("1.2.840.10008.1.2.1", ct, "MONOCHROME2", "STD-GEN-CD") == 1);
    EXPECT(pgDirAcceptDataset2("1.2.840.10008.1.2.1", ct, "MONOCHROME2", "CT", "STD-GEN-CD") == 1);
}

/* ---- Data sets ------------------------------------------------------------------------------- */

static void CallNodeFields(void) {
    PGX_Node* const node = pgKitAllocNode(1, 0x0010, 0x0010, VR_PN, 0);
    PGX_Node* const other = pgKitAllocEmptyNode();
    pgKitSetNodeType(node, 1);
    pgKitSetValueRep(node, VR_LO);
    pgKitSetGroup(node, 0x0008);
    pgKitSetElement(node, 0x0080);
    pgKitSetLength(node, 0);
    pgKitSetNext(node, NULL);
    pgKitSetFirst(node, NULL);
    EXPECT(node == NULL || (pgKitGetNodeType(node) == 1 && pgKitGetValueRep(node) == VR_LO));
    EXPECT(node == NULL || (pgKitGetGroup(node) == 0x0008 && pgKitGetElement(node) == 0x0080));
    EXPECT(pgKitGetLength(node) == 0 && pgKitGetNext(node) == NULL && pgKitGetFirst(node) == NULL);
    const int isSet = pgKitSetValue(node, "A place", 7);
    EXPECT(isSet ? pgKitGetLength(node) == 8 : IsYesOrNo(isSet));
    pgKitFreeNode(node);
    pgFreeNode(other);
}

static void CallGetters(PGX_Node* root) {
    char text[400] = "";
    const uint32_t nameId = pgGetTagElementId("PatientsName");
    PGX_Node* const name = pgFindNodeWithElementId(root, nameId);
    EXPECT((root == NULL) == (name == NULL));
    EXPECT(name == pgKitFindNodeWithElementId(root, nameId));
    EXPECT(name == pgKitFindNodeWithGroupElement(root, 0x0010, 0x0010));
    EXPECT(pgFindNodeWithGroupElement(root, 0x0011, 0x0010) == NULL);
    EXPECT(IsYesOrNo(pgKitGetStringValue(name, text, sizeof text - 1)));
    EXPECT(name == NULL || strcmp(text, "DOE^JOHN") == 0);
    EXPECT(pgKitGetLength(name) >= sizeof text || IsYesOrNo(pgKitGetValue(name, text)));
    PGX_Node* const spacing = pgKitFindNodeWithGroupElement(root, 0x0028, 0x0030);
    const double number = pgKitGetDSDoubleValue(spacing);
    EXPECT(number == 0.25 || number == 0);
    EXPECT(pgKitGetDSIntValue(spacing) == 0);
    EXPECT(pgKitGetUSValue(NULL) == 0 && pgKitGetULValue(NULL) == 0 && pgKitGetSSValue(NULL) == 0);
    EXPECT(IsYesOrNo(pgKitGetFileData(root, text, 128, 4)));
}

static void CallSwitches(void) {
    const int32_t verbosity = pgxSetVerbosity(0);
    EXPECT(pgxSetVerbosity(verbosity) == 0);
    const int32_t encoding = pgxGetPathEncoding();
    EXPECT(pgxSetPathEncoding(PGX_PATHS_UTF8) == encoding);
    EXPECT(pgxSetPathEncoding(encoding) == PGX_PATHS_UTF8);
    EXPECT(pgxListFirst(NULL) == NULL && pgxListNext(NULL) == NULL && pgxListData(NULL) == NULL);
    EXPECT(pgxLeafFile(NULL, NULL, NULL, 0) == 0);
}

static void CallEditions(void) {
    char text[80] = "";
    uint16_t group = 0;
    uint16_t element = 0;
    EXPECT(pgxUseEdition(PGX_EDITION_CURRENT) == PGX_EDITION_BUILT_IN);
    EXPECT(pgxUseEdition(PGX_EDITION_BUILT_IN) == PGX_EDITION_CURRENT);
    EXPECT(pgxTagKeyword(0x0010, 0x0010, text, sizeof text) == 11);
    EXPECT(pgxTagMultiplicity(0x0010, 0x0010, text, sizeof text) == 1);
    EXPECT(pgxFindTag("PatientName", &group, &element) == 1 && group == 0x0010);
    EXPECT(pgxCurrentTagAt(0, &group, &element) == 1 && group == 0x0000 && element == 0x0000);
    EXPECT(pgxUidName("1.2.840.10008.1.1", text, sizeof text) == 22);
    EXPECT(pgxUidKeyword("1.2.840.10008.1.1", text, sizeof text) == 12);
    EXPECT(pgxGetSVValue(NULL) == 0 && pgxGetUVValue(NULL) == 0);
}

/* A length, or one of the errors. */
static int IsTextResult(int64_t result) { return result >= PGX_TEXT_NO_MEMORY; }

static void CallTexts(PGX_Node* root) {
    char text[80] = "";
    PGX_Node* const name = pgFindNodeWithGroupElement(root, 0x0010, 0x0010);
    PGX_Node* const set = pgxFindCharacterSet(root, NULL);
    EXPECT(pgxTextToUtf8(NULL, VR_LO, "ascii", 5, text, sizeof text) == 5);
    EXPECT(IsTextResult(pgxTextToUtf8("ISO_IR 144", VR_LO, "\xB1", 1, text, sizeof text)));
    EXPECT(IsTextResult(pgxTextFromUtf8("ISO_IR 100", VR_LO, "\xC3\xA9", 2, text, sizeof text)));
    EXPECT(pgxFieldToUtf8(NULL, VR_PN, "DOE", text, sizeof text) == 3);
    EXPECT(IsTextResult(pgxGetUtf8Value(set, name, text, sizeof text)));
    EXPECT(IsTextResult(pgxSetUtf8Value(set, name, "DOE^JOHN", 8)));
}

/* A block that has room is whole, or memory has run out. */
static int IsBlock(size_t size, const void* block) {
    const PgxLevelHeader* const header = block;
    return size == 0 || header->size == size;
}

static void CallBulkValues(PGX_Node* root, const HostFiles* files) {
    static uint64_t block[8192];
    const uint32_t tags[2] = {0x00100010, 0x00280030};
    EXPECT(IsBlock(pgxReadLevel(root, NULL, 64, block, sizeof block), block));
    EXPECT(IsBlock(pgxReadValues(root, NULL, tags, 2, 64, block, sizeof block), block));
    const size_t size =
        pgxReadFileValues(files->dataSet, 0, tags, 2, 64, block, sizeof block, NULL);
    EXPECT(IsBlock(size, block));
}

static void CallRle(void) {
    static uint8_t frame[66] = {1, 0, 0, 0, 64};
    uint8_t pixels[2];
    frame[64] = 0xFF;
    frame[65] = 7;
    EXPECT(pgxDecodeRle(frame, sizeof frame, 1, 1, pixels, sizeof pixels) == 1 && pixels[1] == 7);
}

/* A length, or one of the errors. */
static int IsJsonResult(int64_t result) { return result >= PGX_JSON_SEVERAL_DATA_SETS; }

static size_t TakeBytes(void* context, const void* bytes, size_t size) {
    (void)context;
    (void)bytes;
    return size;
}

static size_t GiveOnce(void* context, void* bytes, size_t size) {
    const char** const json = context;
    const size_t length = strlen(*json) < size ? strlen(*json) : size;
    memcpy(bytes, *json, length);
    *json += length;
    return length;
}

static int32_t TakeDataSet(void* context, PGX_Node* dataSet) {
    (void)context;
    pgCloseDataSet(dataSet);
    return 1;
}

static void CallJson(PGX_Node* root) {
    static const char kJson[] =
        "{\"00100010\":{\"vr\":\"PN\",\"Value\":[{\"Alphabetic\":\"DOE\"}]}}";
    char text[200];
    const char* rest = kJson;
    PgxJsonPlace place = {.size = sizeof place};
    EXPECT(IsJsonResult(pgxWriteJson(root, NULL, TakeBytes, NULL)));
    EXPECT(IsJsonResult(pgxGetJson(root, NULL, text, sizeof text)) && strlen(text) < sizeof text);
    PGX_Node* const parsed = pgxParseJson(kJson, sizeof kJson - 1, NULL, &place);
    EXPECT((parsed == NULL) == (place.error == PGX_JSON_NO_MEMORY));
    pgCloseDataSet(parsed);
    pgCloseDataSet(pgxReadJson(GiveOnce, &rest, NULL, NULL));
    rest = kJson;
    EXPECT(pgxReadJsonDataSets(GiveOnce, &rest, NULL, TakeDataSet, NULL, &place) != 0);
    const int64_t count =
        pgxParseJsonDataSets(kJson, sizeof kJson - 1, NULL, TakeDataSet, NULL, NULL);
    EXPECT(count == 1 || count == PGX_JSON_NO_MEMORY);
    EXPECT(pgxJsonErrorText(PGX_JSON_TOO_DEEP, text, sizeof text) == strlen(text));
}

static void CallPixelData(PGX_Node* root) {
    char bytes[4];
    uint32_t length = 0;
    uint32_t offset = 0;
    PGX_Node* const pixels = pgKitFindNodeWithGroupElement(root, 0x7FE0, 0x0010);
    EXPECT(pixels == NULL || pgKitIsEncodedPixelData(pixels) == 1);
    EXPECT(IsYesOrNo(pgKitGetEncodedPixelInfo(pixels, 0, &length, &offset)));
    EXPECT(pgKitGetPixelData(pixels, 0, sizeof bytes, bytes) == 0);
    EXPECT(IsYesOrNo(pgKitSetEncodedPixelData(pixels, 0, 4, "abcd")));
    PGX_Node* const built = pgKitAllocateDataSetNode();
    PGX_Node* const empty = pgKitInsertEncodedPixelDataNode(built, 3);
    EXPECT(empty == pgKitFindNodeWithGroupElement(built, 0x7FE0, 0x0010));
    pgKitFreeNodeHierarchy(built);
}

static void CallEditing(PGX_Node* root) {
    PGX_Node* const study = pgKitInsertNodeWithGroupElement(root, 0x0008, 0x1030, "Skull", 5);
    EXPECT(study == pgKitFindNodeWithGroupElement(root, 0x0008, 0x1030));
    PGX_Node* const id = pgKitInsertNodeWithElementId(root, pgGetTagElementId("PatientID"), "1", 1);
    EXPECT(id == pgKitFindNodeWithGroupElement(root, 0x0010, 0x0020));
    if (id != NULL) pgKitRemoveNode(root, id);
    EXPECT(pgKitFindNodeWithGroupElement(root, 0x0010, 0x0020) == NULL);
    PGX_Node* const sequence = pgKitInsertNodeWithGroupElement(root, 0x0008, 0x1140, NULL, 0);
    PGX_Node* const first = sequence == NULL ? NULL : pgAllocateDataSetNode();
    PGX_Node* const last = sequence == NULL ? NULL : pgAllocateDataSetNode();
    if (last != NULL) pgKitSeqAddTail(sequence, last);
    if (first != NULL) pgKitSeqAddHead(sequence, first);
    EXPECT(pgKitSeqGetHead(sequence) == (first != NULL ? first : last));
    EXPECT(IsYesOrNo(pgKitAddPart10Elements(root, NULL)));
    EXPECT(IsYesOrNo(pgKitAddGroupLengths(root, 0)));
    EXPECT(IsYesOrNo(pgKitUpdateGroupLengths(root, 0)));
}

static void CallWriting(PGX_Node* root, const HostFiles* files) {
    FILE* const stream = fopen("/dev/null", "wb");
    EXPECT(IsYesOrNo(pgKitDumpToFile(root, files->output)));
    EXPECT(IsYesOrNo(pgKitDump(root, files->output)));
    if (stream != NULL) {
        EXPECT(IsYesOrNo(pgKitDumpToStream(root, stream, "> ")));
        pgKitWriteNode(root, stream, 0x28);
        EXPECT(root == NULL || IsWriteResult(pgKitWriteNodeEx(root, stream, 0x28)));
        fclose(stream);
    }
    pgKitSaveDataSetAs(root, files->output, 0);
    EXPECT(root == NULL || IsWriteResult(pgKitSaveDataSetAsEx(root, files->output, 0)));
    EXPECT(pgKitSaveDataSetAsEx(NULL, files->output, 0) == 0xFFFFFFFF);
}

static size_t GiveNothing(void* context, void* bytes, size_t size) {
    (void)context, (void)bytes, (void)size;
    return 0;
}

static size_t TakeAll(void* context, const void* bytes, size_t size) {
    (void)bytes;
    *(size_t*)context += size;
    return size;
}

static void CallElsewhere(const HostFiles* files) {
    PgxOpenReport report = {0};
    int32_t source = 0;
    report.size = sizeof report;
    PGX_Node* const root = pgxOpenFile(files->dataSet, 0, 0, &report);
    EXPECT(root == NULL ? report.result < 0 : report.result == PGX_OPEN_COMPLETE);
    const int64_t pieces = pgxFindFrames(root, NULL, 0, &source);
    EXPECT(pieces >= PGX_FRAMES_NO_MEMORY);
    size_t taken = 0;
    const uint32_t saved = pgxSaveTo(root, 0, TakeAll, &taken);
    EXPECT(saved == 0 ? taken > 132 : saved == 0xFFFFFFFF || IsWriteResult(saved));
    EXPECT(pgxSaveToMemory(root, 0, NULL, 0) >= -7);
    pgCloseDataSet(root);
    const char text[] = "no data set";
    EXPECT(pgxOpenMemory(text, sizeof text, 0, &report) == NULL && report.result < 0);
    EXPECT(pgxOpenFrom(GiveNothing, NULL, 0, &report) == NULL && report.result < 0);
}

static void CallDataSets(const HostFiles* files) {
    EXPECT(IsYesOrNo(pgIsDicomFile(files->dataSet)));
    pgCloseDataSet(pgOpenDataSetFile(files->dataSet, 64));
    pgKitCloseDataSet(pgKitOpenDataSetFile(files->dataSet, 0));
    FILE* const stream = fopen(files->dataSet, "rb");
    PGX_Node* const ofStream = stream == NULL ? NULL : pgOpenDataSetFileHandle(stream, 0);
    pgCloseDataSet(ofStream);
    pgCloseDataSet(pgOpenDataSetFileHandleEx(NULL, 0, 0));
    PGX_Node* const root = pgOpenDataSetFileEx(files->dataSet, 0xFFFFFFFF, 0);
    CallGetters(root);
    CallTexts(root);
    CallBulkValues(root, files);
    CallJson(root);
    CallPixelData(root);
    CallRle();
    CallEditing(root);
    CallWriting(root, files);
    pgCloseDataSet(root);
    CallElsewhere(files);
    PGX_Node* const alone = pgAllocateDataSetNode();
    pgFreeNodeHierarchy(alone);
}

/* ---- Lists ----------------------------------------------------------------------------------- */

static void CallLists(void) {
    int values[3] = {0, 1, 2};
    PGX_List* const list = pgKitListAllocate();
    pgKitListAddTail(list, &values[2]);
    pgKitListAddHead(list, &values[0]);
    pgKitListInsertAt(list, 1, &values[1]);
    /* What did not fit is not in the list, which is whole without it. */
    const int32_t count = pgKitListGetCount(list);
    EXPECT(count >= 0 && count <= 3);
    EXPECT((count == 0) == (pgKitListGetHead(list) == NULL));
    EXPECT((count == 0) == (pgKitListGetTail(list) == NULL));
    EXPECT(count == 0 || pgKitListGetElementAt(list, count - 1) == pgKitListGetTail(list));
    void* const removed = pgKitListRemoveElement(list, &values[1]);
    EXPECT(removed == NULL || removed == &values[1]);
    while (pgKitListGetCount(list) > 1)
        pgKitListRemoveTail(list);
    pgKitListRemoveHead(list);
    EXPECT(pgKitListGetCount(list) == 0 && pgKitListRemoveHead(list) == NULL);
    pgKitListDelete(list);
}

/* ---- Hierarchies ----------------------------------------------------------------------------- */

static const char* (*const kPatientTexts[])(PGX_DicomDirPatientNode*) = {
    pgKitDirGetPatientID, pgKitDirGetPatientsName, pgKitDirGetPatientBirthDate,
    pgKitDirGetPatientSex};

static const char* (*const kStudyTexts[])(PGX_DicomDirStudyNode*) = {
    pgKitDirGetStudyUID,          pgKitDirGetStudyID,
    pgKitDirGetStudyDate,         pgKitDirGetStudyTime,
    pgKitDirGetStudyDesc,         pgKitDirGetStudyAccessionNumber,
    pgKitDirGetStudyManufacturer, pgKitDirGetStudyReferringPhysiciansName,
    pgKitDirGetStudyModality};

static const char* (*const kSeriesTexts[])(PGX_DicomDirSeriesNode*) = {
    pgKitDirGetSeriesUID,
    pgKitDirGetSeriesDesc,
    pgKitDirGetSeriesNumber,
    pgKitDirGetSeriesModality,
    pgKitDirGetSeriesInstitutionName,
    pgKitDirGetSeriesInstitutionAddress,
    pgKitDirGetSeriesPerformingPhysiciansName};

static const char* (*const kLeafTexts[])(PGX_DicomDirLeafNode*) = {
    pgKitDirGetLeafRecordType,
    pgKitDirGetLeafInstanceUID,
    pgKitDirGetLeafSOPClassUID,
    pgKitDirGetLeafFullPath,
    pgKitDirGetLeafSpecificCharacterSet,
    pgKitDirGetImagePhotoInterp,
    pgKitDirGetImageType,
    pgKitDirGetImageCalibrationObject,
    pgKitDirGetReportVerificationFlag,
    pgKitDirGetReportCompletionFlag,
    pgKitDirGetReportContentDate,
    pgKitDirGetReportContentTime,
    pgKitDirGetKeyObjectContentDate,
    pgKitDirGetKeyObjectContentTime,
    pgKitDirGetPresentationCreationDate,
    pgKitDirGetPresentationCreationTime,
    pgKitDirGetPresentationCreatorsName,
    pgKitDirGetPresentationLabel,
    pgKitDirGetPresentationDescription,
    pgKitDirGetWaveformContentDate,
    pgKitDirGetWaveformContentTime,
    pgKitDirGetRawDataContentDate,
    pgKitDirGetRawDataContentTime};

static void CallLeaf(PGX_DicomDirLeafNode* leaf) {
    for (size_t i = 0; i < COUNT_OF(kLeafTexts); ++i)
        EXPECT(kLeafTexts[i](leaf) != NULL);
    pgKitDirSetLeafClientData(leaf, NULL);
    EXPECT(pgKitDirGetLeafClientData(leaf) == NULL);
    EXPECT(pgKitDirGetLeafNode(leaf) == NULL || pgKitDirGetLeafInstanceNumber(leaf) >= 0);
    EXPECT(pgKitDirGetLeafClientFlags(leaf) == 0 && pgKitDirGetLeafFlags(leaf) == 0);
    const int isImage = pgKitDirGetLeafType(leaf) == 1;
    EXPECT(isImage || pgKitDirGetImageIconHDib(leaf) == NULL);
    EXPECT(isImage || pgKitDirGetImageNumberOfFrames(leaf) == 0);
    EXPECT(isImage || pgKitDirGetImageRows(leaf) + pgKitDirGetImageColumns(leaf) == 0);
}

static void CallSeries(PGX_DicomDirSeriesNode* series) {
    for (size_t i = 0; i < COUNT_OF(kSeriesTexts); ++i)
        EXPECT(kSeriesTexts[i](series) != NULL);
    pgKitDirSetSeriesClientData(series, NULL);
    EXPECT(pgKitDirGetSeriesClientData(series) == NULL);
    EXPECT(pgKitDirGetSeriesClientFlags(series) == 0);
    (void)pgKitDirGetSeriesFlags(series);
    (void)pgKitDirGetSeriesIconHDib(series);
    (void)pgKitDirGetSeriesNode(series);
    CallLeaf(pgKitListGetHead(pgKitDirGetLeafList(series)));
}

static void CallStudy(PGX_DicomDirStudyNode* study) {
    for (size_t i = 0; i < COUNT_OF(kStudyTexts); ++i)
        EXPECT(kStudyTexts[i](study) != NULL);
    pgKitDirSetStudyClientData(study, NULL);
    EXPECT(pgKitDirGetStudyClientData(study) == NULL);
    EXPECT(pgKitDirGetStudyClientFlags(study) == 0);
    (void)pgKitDirGetStudyFlags(study);
    (void)pgKitDirGetStudyNode(study);
    CallSeries(pgKitListGetHead(pgKitDirGetSeriesList(study)));
}

static void CallPatient(PGX_DicomDirPatientNode* patient) {
    for (size_t i = 0; i < COUNT_OF(kPatientTexts); ++i)
        EXPECT(kPatientTexts[i](patient) != NULL);
    pgKitDirSetPatientClientData(patient, NULL);
    EXPECT(pgKitDirGetPatientClientData(patient) == NULL);
    EXPECT(pgKitDirGetPatientClientFlags(patient) == 0);
    (void)pgKitDirGetPatientFlags(patient);
    (void)pgKitDirGetPatientNode(patient);
    CallStudy(pgKitListGetHead(pgKitDirGetStudyList(patient)));
}

static void CallBrowsing(const HostFiles* files) {
    PGX_DicomDir* const directory = pgKitOpenDicomDir(files->dicomdir, 0x20000);
    EXPECT(directory == NULL || pgKitIsDicomDir(directory) == 1);
    PGX_List* const patients = directory == NULL ? NULL : pgKitDirBrowse(directory, NULL, NULL);
    EXPECT(patients == NULL || patients == pgKitDirGetPatientList(directory));
    CallPatient(pgKitListGetHead(patients));
    pgKitCloseDicomDir(directory);
    pgEmptyPatientList(NULL);
}

/* Takes the hierarchy apart: the first leaf, the first series, study and patient that remain. */
static void CallRemoval(PGX_List* patients) {
    PGX_DicomDirPatientNode* patient = pgKitListGetHead(patients);
    PGX_DicomDirStudyNode* study = pgKitListGetHead(pgKitDirGetStudyList(patient));
    PGX_DicomDirSeriesNode* series = pgKitListGetHead(pgKitDirGetSeriesList(study));
    pgRemoveLeaf(patients, pgKitListGetHead(pgKitDirGetLeafList(series)));
    patient = pgKitListGetHead(patients);
    study = pgKitListGetHead(pgKitDirGetStudyList(patient));
    pgRemoveSeries(patients, pgKitListGetHead(pgKitDirGetSeriesList(study)));
    patient = pgKitListGetHead(patients);
    pgRemoveStudy(patients, pgKitListGetHead(pgKitDirGetStudyList(patient)));
    pgRemovePatient(patients, pgKitListGetHead(patients));
    pgEmptyPatientList(patients);
    EXPECT(pgKitListGetCount(patients) == 0);
    pgKitListDelete(patients);
}

/* ---- Creation -------------------------------------------------------------------------------- */

static int IsAcceptanceCode(uint32_t code) { return code <= 9; }

static void CallOffshoreCreation(const HostFiles* files) {
    void* const creation = pgStartCreateOffshoreDicomdir(files->medium, NULL, NULL);
    const uint32_t code = pgAddFileToOffshoreDicomdir(creation, "A", files->fileOfMedium);
    const uint32_t result = pgEndCreateOffshoreDicomdir(creation);
    EXPECT(creation == NULL ? code == 0xFFFFFFFF : IsAcceptanceCode(code));
    EXPECT(creation == NULL ? result == 0xFFFFFFFF : IsWriteResult(result));
}

static void CallUpdate(const HostFiles* files) {
    int32_t problem = -1;
    void* const update = pgxStartDicomdirUpdate(files->medium, NULL, NULL, &problem);
    EXPECT((update != NULL) == (problem == PGX_UPDATE_STARTED));
    const uint32_t code = pgxUpdateAddFile(update, "NEW", files->fileOfMedium);
    EXPECT(update == NULL ? code == 0xFFFFFFFF : IsAcceptanceCode(code));
    EXPECT(IsYesOrNo(pgxUpdateRemoveStudy(update, "1.2.3")));
    const uint32_t result = pgxEndDicomdirUpdate(update);
    EXPECT(update == NULL ? result == 0xFFFFFFFF : IsWriteResult(result));
    pgxCancelDicomdirUpdate(pgxStartDicomdirUpdate(files->medium, NULL, NULL, NULL));
}

static void CallCreation(const HostFiles* files) {
    EXPECT(IsWriteResult(pgCreateDicomdir(files->medium, NULL, NULL, NULL)));
    EXPECT(IsWriteResult(pgCreateDicomdirEx(files->medium, NULL, NULL, NULL, NULL)));
    CallOffshoreCreation(files);
    CallUpdate(files);
    PGX_List* const patients = pgGetPatientListFromFile(files->dicomdir);
    EXPECT(IsAcceptanceCode(pgAddFile(patients, files->medium, files->fileOfMedium, NULL, NULL)));
    const int32_t before = pgKitListGetCount(patients);
    EXPECT(pgBrowseDisk(files->medium, NULL, NULL, patients, NULL, NULL) >= before);
    EXPECT(IsWriteResult(pgBuildDicomdir(patients, files->medium)));
    EXPECT(IsWriteResult(pgBuildDicomdirEx(patients, files->medium, "SET")));
    CallRemoval(patients);
    CallRemoval(pgGetPatientListFromOffshoreFile(files->dicomdir, files->medium));
    CallRemoval(pgBrowsePatientListEx(files->medium, NULL, NULL, NULL, NULL));
}

int CallEveryFunction(const HostFiles* files) {
    wrongResults = 0;
    CallVersion();
    CallDictionary(files);
    CallUids();
    CallEditions();
    CallSwitches();
    CallNodeFields();
    CallDataSets(files);
    CallLists();
    CallBrowsing(files);
    CallCreation(files);
    return wrongResults;
}
