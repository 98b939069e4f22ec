// Every accessor that takes a handle, called with a null one and zeros for everything else.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <type_traits>

#include "pgkit/accessors.h"
#include "support/captured.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::Printed;

struct Accessor {
    std::string name;
    std::function<bool()> givesNothing;  // calls it, and looks at the result
};

bool IsNothing(const char* text) { return text != nullptr && *text == '\0'; }

template <typename Result>
bool IsNothing(Result result) {
    return result == Result{};
}

template <typename Result, typename... Arguments>
Accessor Row(const char* name, Result (*accessor)(Arguments...)) {
    return {name, [accessor] {
                if constexpr (std::is_void_v<Result>)
                    return accessor(Arguments{}...), true;
                else
                    return IsNothing(accessor(Arguments{}...));
            }};
}

const Accessor kAccessors[] = {
    Row("pgKitGetNodeType", pgKitGetNodeType),
    Row("pgKitSetNodeType", pgKitSetNodeType),
    Row("pgKitGetValueRep", pgKitGetValueRep),
    Row("pgKitSetValueRep", pgKitSetValueRep),
    Row("pgKitGetGroup", pgKitGetGroup),
    Row("pgKitSetGroup", pgKitSetGroup),
    Row("pgKitGetElement", pgKitGetElement),
    Row("pgKitSetElement", pgKitSetElement),
    Row("pgKitGetLength", pgKitGetLength),
    Row("pgKitSetLength", pgKitSetLength),
    Row("pgKitGetNext", pgKitGetNext),
    Row("pgKitSetNext", pgKitSetNext),
    Row("pgKitGetFirst", pgKitGetFirst),
    Row("pgKitSetFirst", pgKitSetFirst),
    Row("pgKitCloseDataSet", pgKitCloseDataSet),
    Row("pgKitFindNodeWithGroupElement", pgKitFindNodeWithGroupElement),
    Row("pgKitFindNodeWithElementId", pgKitFindNodeWithElementId),
    Row("pgKitFreeNode", pgKitFreeNode),
    Row("pgKitFreeNodeHierarchy", pgKitFreeNodeHierarchy),
    Row("pgKitGetValue", pgKitGetValue),
    Row("pgKitGetStringValue", pgKitGetStringValue),
    Row("pgKitGetUSValue", pgKitGetUSValue),
    Row("pgKitGetULValue", pgKitGetULValue),
    Row("pgKitGetSSValue", pgKitGetSSValue),
    Row("pgKitGetDSIntValue", pgKitGetDSIntValue),
    Row("pgKitGetDSDoubleValue", pgKitGetDSDoubleValue),
    Row("pgKitGetFileData", pgKitGetFileData),
    Row("pgKitSetValue", pgKitSetValue),
    Row("pgKitDumpToStream", pgKitDumpToStream),
    Row("pgKitDumpToFile", pgKitDumpToFile),
    Row("pgKitDump", pgKitDump),
    Row("pgKitSaveDataSetAs", pgKitSaveDataSetAs),
    Row("pgKitWriteNode", pgKitWriteNode),
    Row("pgKitAddGroupLengths", pgKitAddGroupLengths),
    Row("pgKitUpdateGroupLengths", pgKitUpdateGroupLengths),
    Row("pgKitAddPart10Elements", pgKitAddPart10Elements),
    Row("pgKitSeqAddTail", pgKitSeqAddTail),
    Row("pgKitSeqAddHead", pgKitSeqAddHead),
    Row("pgKitSeqGetHead", pgKitSeqGetHead),
    Row("pgKitRemoveNode", pgKitRemoveNode),
    Row("pgKitInsertNodeWithGroupElement", pgKitInsertNodeWithGroupElement),
    Row("pgKitInsertNodeWithElementId", pgKitInsertNodeWithElementId),
    Row("pgKitIsEncodedPixelData", pgKitIsEncodedPixelData),
    Row("pgKitGetPixelData", pgKitGetPixelData),
    Row("pgKitInsertEncodedPixelDataNode", pgKitInsertEncodedPixelDataNode),
    Row("pgKitSetEncodedPixelData", pgKitSetEncodedPixelData),
    Row("pgKitGetEncodedPixelInfo", pgKitGetEncodedPixelInfo),
    Row("pgKitListDelete", pgKitListDelete),
    Row("pgKitListGetCount", pgKitListGetCount),
    Row("pgKitListGetElementAt", pgKitListGetElementAt),
    Row("pgKitListGetHead", pgKitListGetHead),
    Row("pgKitListGetTail", pgKitListGetTail),
    Row("pgKitListAddHead", pgKitListAddHead),
    Row("pgKitListAddTail", pgKitListAddTail),
    Row("pgKitListInsertAt", pgKitListInsertAt),
    Row("pgKitListRemoveHead", pgKitListRemoveHead),
    Row("pgKitListRemoveTail", pgKitListRemoveTail),
    Row("pgKitListRemoveElement", pgKitListRemoveElement),
    Row("pgKitCloseDicomDir", pgKitCloseDicomDir),
    Row("pgKitIsDicomDir", pgKitIsDicomDir),
    Row("pgKitDirBrowse", pgKitDirBrowse),
    Row("pgKitDirGetPatientList", pgKitDirGetPatientList),
    Row("pgKitDirGetStudyList", pgKitDirGetStudyList),
    Row("pgKitDirGetPatientNode", pgKitDirGetPatientNode),
    Row("pgKitDirGetPatientClientData", pgKitDirGetPatientClientData),
    Row("pgKitDirSetPatientClientData", pgKitDirSetPatientClientData),
    Row("pgKitDirGetPatientID", pgKitDirGetPatientID),
    Row("pgKitDirGetPatientsName", pgKitDirGetPatientsName),
    Row("pgKitDirGetPatientBirthDate", pgKitDirGetPatientBirthDate),
    Row("pgKitDirGetPatientSex", pgKitDirGetPatientSex),
    Row("pgKitDirGetPatientFlags", pgKitDirGetPatientFlags),
    Row("pgKitDirGetPatientClientFlags", pgKitDirGetPatientClientFlags),
    Row("pgKitDirGetSeriesList", pgKitDirGetSeriesList),
    Row("pgKitDirGetStudyNode", pgKitDirGetStudyNode),
    Row("pgKitDirGetStudyClientData", pgKitDirGetStudyClientData),
    Row("pgKitDirSetStudyClientData", pgKitDirSetStudyClientData),
    Row("pgKitDirGetStudyUID", pgKitDirGetStudyUID),
    Row("pgKitDirGetStudyID", pgKitDirGetStudyID),
    Row("pgKitDirGetStudyDate", pgKitDirGetStudyDate),
    Row("pgKitDirGetStudyTime", pgKitDirGetStudyTime),
    Row("pgKitDirGetStudyAccessionNumber", pgKitDirGetStudyAccessionNumber),
    Row("pgKitDirGetStudyDesc", pgKitDirGetStudyDesc),
    Row("pgKitDirGetStudyManufacturer", pgKitDirGetStudyManufacturer),
    Row("pgKitDirGetStudyReferringPhysiciansName", pgKitDirGetStudyReferringPhysiciansName),
    Row("pgKitDirGetStudyModality", pgKitDirGetStudyModality),
    Row("pgKitDirGetStudyFlags", pgKitDirGetStudyFlags),
    Row("pgKitDirGetStudyClientFlags", pgKitDirGetStudyClientFlags),
    Row("pgKitDirGetLeafList", pgKitDirGetLeafList),
    Row("pgKitDirGetSeriesNode", pgKitDirGetSeriesNode),
    Row("pgKitDirGetSeriesClientData", pgKitDirGetSeriesClientData),
    Row("pgKitDirSetSeriesClientData", pgKitDirSetSeriesClientData),
    Row("pgKitDirGetSeriesUID", pgKitDirGetSeriesUID),
    Row("pgKitDirGetSeriesDesc", pgKitDirGetSeriesDesc),
    Row("pgKitDirGetSeriesNumber", pgKitDirGetSeriesNumber),
    Row("pgKitDirGetSeriesModality", pgKitDirGetSeriesModality),
    Row("pgKitDirGetSeriesInstitutionName", pgKitDirGetSeriesInstitutionName),
    Row("pgKitDirGetSeriesInstitutionAddress", pgKitDirGetSeriesInstitutionAddress),
    Row("pgKitDirGetSeriesPerformingPhysiciansName", pgKitDirGetSeriesPerformingPhysiciansName),
    Row("pgKitDirGetSeriesIconHDib", pgKitDirGetSeriesIconHDib),
    Row("pgKitDirGetSeriesFlags", pgKitDirGetSeriesFlags),
    Row("pgKitDirGetSeriesClientFlags", pgKitDirGetSeriesClientFlags),
    Row("pgKitDirGetLeafNode", pgKitDirGetLeafNode),
    Row("pgKitDirGetLeafClientData", pgKitDirGetLeafClientData),
    Row("pgKitDirSetLeafClientData", pgKitDirSetLeafClientData),
    Row("pgKitDirGetLeafType", pgKitDirGetLeafType),
    Row("pgKitDirGetLeafRecordType", pgKitDirGetLeafRecordType),
    Row("pgKitDirGetLeafInstanceUID", pgKitDirGetLeafInstanceUID),
    Row("pgKitDirGetLeafSOPClassUID", pgKitDirGetLeafSOPClassUID),
    Row("pgKitDirGetLeafFullPath", pgKitDirGetLeafFullPath),
    Row("pgKitDirGetLeafInstanceNumber", pgKitDirGetLeafInstanceNumber),
    Row("pgKitDirGetLeafSpecificCharacterSet", pgKitDirGetLeafSpecificCharacterSet),
    Row("pgKitDirGetLeafFlags", pgKitDirGetLeafFlags),
    Row("pgKitDirGetLeafClientFlags", pgKitDirGetLeafClientFlags),
    Row("pgKitDirGetImageRows", pgKitDirGetImageRows),
    Row("pgKitDirGetImageColumns", pgKitDirGetImageColumns),
    Row("pgKitDirGetImageNumberOfFrames", pgKitDirGetImageNumberOfFrames),
    Row("pgKitDirGetImagePhotoInterp", pgKitDirGetImagePhotoInterp),
    Row("pgKitDirGetImageType", pgKitDirGetImageType),
    Row("pgKitDirGetImageCalibrationObject", pgKitDirGetImageCalibrationObject),
    Row("pgKitDirGetImageIconHDib", pgKitDirGetImageIconHDib),
    Row("pgKitDirGetReportVerificationFlag", pgKitDirGetReportVerificationFlag),
    Row("pgKitDirGetReportCompletionFlag", pgKitDirGetReportCompletionFlag),
    Row("pgKitDirGetReportContentDate", pgKitDirGetReportContentDate),
    Row("pgKitDirGetReportContentTime", pgKitDirGetReportContentTime),
    Row("pgKitDirGetKeyObjectContentDate", pgKitDirGetKeyObjectContentDate),
    Row("pgKitDirGetKeyObjectContentTime", pgKitDirGetKeyObjectContentTime),
    Row("pgKitDirGetPresentationCreationDate", pgKitDirGetPresentationCreationDate),
    Row("pgKitDirGetPresentationCreationTime", pgKitDirGetPresentationCreationTime),
    Row("pgKitDirGetPresentationCreatorsName", pgKitDirGetPresentationCreatorsName),
    Row("pgKitDirGetPresentationLabel", pgKitDirGetPresentationLabel),
    Row("pgKitDirGetPresentationDescription", pgKitDirGetPresentationDescription),
    Row("pgKitDirGetWaveformContentDate", pgKitDirGetWaveformContentDate),
    Row("pgKitDirGetWaveformContentTime", pgKitDirGetWaveformContentTime),
    Row("pgKitDirGetRawDataContentDate", pgKitDirGetRawDataContentDate),
    Row("pgKitDirGetRawDataContentTime", pgKitDirGetRawDataContentTime),
};

TEST(NullHandle, GivesZeroNullOrAnEmptyText) {
    for (const Accessor& accessor : kAccessors) {
        SCOPED_TRACE(accessor.name);
        const Printed printed = CapturePrinted([&] { EXPECT_TRUE(accessor.givesNothing()); });
        EXPECT_EQ(printed.out + printed.err, "");
    }
}

// 143 accessors; two have a result of their own for null, and six take no handle.
TEST(NullHandle, IsTriedWithEveryAccessorOnce) {
    std::set<std::string> names;
    for (const Accessor& accessor : kAccessors)
        names.insert(accessor.name);
    EXPECT_EQ(names.size(), 143u - 2u - 6u);
    EXPECT_EQ(std::size(kAccessors), names.size());
}

TEST(NullHandle, IsAnErrorOfItsOwnWhereWritingTellsWhatWentWrong) {
    EXPECT_EQ(pgKitSaveDataSetAsEx(nullptr, "never-created", 0), 0xFFFFFFFFu);
    EXPECT_EQ(pgKitWriteNodeEx(nullptr, stdout, 0), 0xFFFFFFFFu);
}

TEST(NullHandle, LeavesBuffersAlone) {
    char buffer[8] = "as ever";
    uint32_t length = 1;
    uint32_t offset = 2;
    EXPECT_EQ(pgKitGetValue(nullptr, buffer), 0);
    EXPECT_EQ(pgKitGetStringValue(nullptr, buffer, 4), 0);
    EXPECT_EQ(pgKitGetFileData(nullptr, buffer, 0, 4), 0);
    EXPECT_EQ(pgKitGetPixelData(nullptr, 0, 4, buffer), 0);
    EXPECT_EQ(pgKitGetEncodedPixelInfo(nullptr, 0, &length, &offset), 0);
    EXPECT_STREQ(buffer, "as ever");
    EXPECT_EQ(length, 1u);
    EXPECT_EQ(offset, 2u);
}

TEST(NullOutput, GetsNothing) {
    PGX_Node* const dataSet = pgKitAllocateDataSetNode();
    PGX_Node* const node = pgKitInsertNodeWithGroupElement(dataSet, 0x0010, 0x0010, "DOE", 3);
    EXPECT_EQ(pgKitGetValue(node, nullptr), 0);
    EXPECT_EQ(pgKitGetStringValue(node, nullptr, 4), 0);
    EXPECT_EQ(pgKitGetFileData(dataSet, nullptr, 0, 4), 0);
    EXPECT_EQ(pgKitGetPixelData(node, 0, 4, nullptr), 0);
    EXPECT_EQ(pgKitDumpToStream(node, nullptr, ""), 0);
    EXPECT_EQ(pgKitDumpToFile(node, nullptr), 0);
    pgKitWriteNode(node, nullptr, 0);
    EXPECT_EQ(pgKitWriteNodeEx(node, nullptr, 0), 3u);
    EXPECT_EQ(node->GetTagName(nullptr), 0);
    uint32_t length = 1;
    PGX_Node* const pixels = pgKitInsertEncodedPixelDataNode(dataSet, 1);
    EXPECT_EQ(pgKitGetEncodedPixelInfo(pixels, 0, &length, nullptr), 0);
    EXPECT_EQ(pgKitGetEncodedPixelInfo(pixels, 0, nullptr, nullptr), 0);
    pgKitFreeNodeHierarchy(dataSet);
}

TEST(NullPath, OpensNothing) {
    EXPECT_EQ(pgKitOpenDataSetFile(nullptr, 64), nullptr);
    CapturePrinted([] { EXPECT_EQ(pgKitOpenDicomDir(nullptr, 64), nullptr); });
}

}  // namespace
