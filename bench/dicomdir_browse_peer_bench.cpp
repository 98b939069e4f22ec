// The same directories through DCMTK's own class for them, which resolves the links when it opens
// the file; the walk reads the keys that a browsed hierarchy has.
#include <benchmark/benchmark.h>
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <array>
#include <span>
#include <string>

#include "directory_files.h"

namespace pgkit_bench {

namespace {

const std::array kPatientKeys = {DCM_PatientID, DCM_PatientName, DCM_PatientSex,
                                 DCM_PatientBirthDate, DCM_SpecificCharacterSet};
const std::array kStudyKeys = {
    DCM_StudyInstanceUID,    DCM_StudyID,          DCM_StudyDate,    DCM_StudyTime,
    DCM_AccessionNumber,     DCM_StudyDescription, DCM_Manufacturer, DCM_ReferringPhysicianName,
    DCM_SpecificCharacterSet};
const std::array kSeriesKeys = {DCM_SeriesInstanceUID,
                                DCM_SeriesDescription,
                                DCM_SeriesNumber,
                                DCM_Modality,
                                DCM_InstitutionName,
                                DCM_InstitutionAddress,
                                DCM_PerformingPhysicianName,
                                DCM_SpecificCharacterSet};
const std::array kImageKeys = {DCM_ReferencedFileID,
                               DCM_ReferencedSOPClassUIDInFile,
                               DCM_ReferencedSOPInstanceUIDInFile,
                               DCM_ReferencedTransferSyntaxUIDInFile,
                               DCM_InstanceNumber,
                               DCM_NumberOfFrames,
                               DCM_PhotometricInterpretation,
                               DCM_ImageType,
                               DCM_Rows,
                               DCM_Columns,
                               DCM_SpecificCharacterSet};

using Keys = std::span<const DcmTagKey>;
const std::array<Keys, 4> kKeys = {Keys(kPatientKeys), Keys(kStudyKeys), Keys(kSeriesKeys),
                                   Keys(kImageKeys)};

// Counts the images below a record.
uint32_t Walk(DcmDirectoryRecord& record, size_t level) {
    OFString text;
    uint32_t images = 0;
    for (DcmDirectoryRecord* child = record.nextSub(nullptr); child != nullptr;
         child = record.nextSub(child)) {
        for (const DcmTagKey& key : kKeys[level])
            benchmark::DoNotOptimize(child->findAndGetOFStringArray(key, text));
        images += level == kKeys.size() - 1 ? 1 : Walk(*child, level + 1);
    }
    return images;
}

void BrowsePeer(benchmark::State& state, uint32_t records, RecordOrder order) {
    const std::string& path = DirectoryFile(records, order);
    for (auto _ : state) {
        DcmDicomDir directory(path.c_str());
        if (Walk(directory.getRootRecord(), 0) < records / 10 * 9) {
            return state.SkipWithError("images are missing");
        }
    }
    CountRecords(state, records);
}
// 200,000 backwards would take minutes: the time grows with the square of the number.
constexpr uint32_t kMostBackwards = 10'000;
const bool kPeerIsRegistered = RegisterBrowse("DCMTK", BrowsePeer, kMostBackwards);

}  // namespace

}  // namespace pgkit_bench
