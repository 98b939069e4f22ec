// PGX_DicomDir: opening, and the steps of a browse.
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/diagnostics.h"
#include "base/paths.h"
#include "base/text.h"
#include "dicomdir/directory_browser.h"
#include "dicomdir/elements.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/record_links.h"
#include "pgkit/dataset.h"
#include "pgkit/directory.h"
#include "pgkit/patient_list.h"
#include "platform/platform.h"

using pgkit::DirectoryBrowser;
using pgkit::FindElement;
using pgkit::kMediaStorageDirectory;
using pgkit::PrintOut;
using pgkit::PrintRemark;
namespace tags = pgkit::tags;

namespace {

PGX_Node* FindRecordSequence(PGX_Node& dataSet) {
    return FindElement(dataSet, tags::kRecordSequence);
}

uint32_t FirstRecordOffset(PGX_Node& dataSet) {
    PGX_Node* offset = FindElement(dataSet, tags::kFirstRootRecord);
    return offset == nullptr ? 0 : offset->GetULValue();
}

// Whether all records at the root were taken away (standard_records.h).
bool IsRootEmptied(PGX_Node& dataSet) {
    const PGX_Node* const link = FindElement(dataSet, tags::kFirstRootRecord);
    return link != nullptr && link->offsetPending != 0 && link->offsetTarget == nullptr;
}

bool ResolveLinks(const PGX_Node* sequence, const pgkit::RecordTable& records) {
    if (sequence != nullptr) return pgkit::ResolveLinks(records);
    PrintOut("ResolveDicomdirLinks DICOMDIR parsing error: DirectoryRecordSequence not found\n");
    return false;
}

}  // namespace

PGX_DicomDir::PGX_DicomDir()
    : folder{},
      dataSet(nullptr),
      patientList(nullptr),
      callback(nullptr),
      userData(nullptr),
      leafCount(0) {}

PGX_DicomDir::~PGX_DicomDir() {
    ResetPatientList();
    pgCloseDataSet(dataSet);
}

int32_t PGX_DicomDir::OpenDicomDir(const char* path, uint32_t maxLoadLength) {
    // The path may be a text of a record that goes now.
    const std::string copy(path != nullptr ? path : "");
    ResetPatientList();
    pgCloseDataSet(dataSet);
    dataSet = nullptr;
    if (copy.empty()) return 0;
    dataSet = pgOpenDataSetFile(copy.c_str(), maxLoadLength);
    if (dataSet == nullptr) {
        PrintRemark("** PGX_DicomDir::OpenDicomDir file open failed... <%s>\n", copy.c_str());
        return 0;
    }
    pgkit::CopyToField(folder, pgkit::FolderOfFile(copy));
    return 1;
}

int32_t PGX_DicomDir::IsDicomDir() {
    if (dataSet == nullptr) return 0;
    char sopClass[65];
    pgkit::ReadText(*dataSet, tags::kMediaStorageSopClassUid, sopClass);
    return sopClass == kMediaStorageDirectory ? 1 : 0;
}

PGX_List* PGX_DicomDir::Browse(PGX_DicomDirCallback application, void* applicationData) {
    if (dataSet == nullptr) {
        PrintRemark("** PGX_DicomDir::Patient list is empty (no DICOMDIR file)\n");
        return nullptr;
    }
    callback = application;
    userData = applicationData;
    BrowseDicomDir();
    return patientList;
}

PGX_List* PGX_DicomDir::GetPatientList() { return patientList; }

PGX_List* PGX_DicomDir::GiveAndForgetPatientList() {
    leafCount = 0;
    return std::exchange(patientList, nullptr);
}

int32_t PGX_DicomDir::RelocateOffshoreDicomdir(const char* path) {
    if (path == nullptr) return 0;
    const bool isFolder = pgkit::platform::IsDirectory(path);
    pgkit::CopyToField(folder, isFolder ? std::string_view(path) : pgkit::FolderOf(path));
    return 1;
}

void PGX_DicomDir::ResetPatientList() {
    leafCount = 0;
    pgEmptyPatientList(patientList);
    delete patientList;
    patientList = nullptr;
}

int32_t PGX_DicomDir::BrowseDicomDir() {
    ResetPatientList();
    patientList = new PGX_List;
    PGX_Node* sequence = FindRecordSequence(*dataSet);
    DirectoryBrowser browser(*this, sequence == nullptr ? nullptr : sequence->first);
    ResolveLinks(sequence, browser.Records());
    if (sequence == nullptr) {
        PrintOut("DICOMDIR parsing error: DirectoryRecordSequence not found\n");
        return 0;
    }
    if (IsRootEmptied(*dataSet)) return 1;
    const uint32_t offset = FirstRecordOffset(*dataSet);
    const std::optional<pgkit::RecordNumber> first = browser.Records().FindOffset(offset);
    if (!first) {
        PrintOut("DICOMDIR parsing error: First patient not found (firstPatientOffset + 8 = %u)\n",
                 offset + 8);
        return 0;
    }
    browser.BrowsePatients(*first, *patientList);
    return 1;
}

int32_t PGX_DicomDir::ResolveDicomdirLinks() {
    PGX_Node* sequence = FindRecordSequence(*dataSet);
    const pgkit::RecordTable records(sequence == nullptr ? nullptr : sequence->first);
    return ResolveLinks(sequence, records) ? 1 : 0;
}

int32_t PGX_DicomDir::BrowsePatientList(PGX_Node* firstItem, PGX_Node* record, PGX_List* patients) {
    DirectoryBrowser browser(*this, firstItem);
    const auto number = browser.Records().Find(*record);
    return number ? browser.BrowsePatients(*number, *patients) : 0;
}

int32_t PGX_DicomDir::BrowseStudyList(PGX_Node* firstItem, PGX_Node* record,
                                      PGX_DicomDirPatientNode* patient) {
    DirectoryBrowser browser(*this, firstItem);
    const auto number = browser.Records().Find(*record);
    return number ? browser.BrowseStudies(*number, *patient) : 0;
}

int32_t PGX_DicomDir::BrowseSeriesList(PGX_Node* firstItem, PGX_Node* record,
                                       PGX_DicomDirStudyNode* study) {
    DirectoryBrowser browser(*this, firstItem);
    const auto number = browser.Records().Find(*record);
    return number ? browser.BrowseSeries(*number, *study) : 0;
}

int32_t PGX_DicomDir::BrowseImageList(PGX_Node* firstItem, PGX_Node* record,
                                      PGX_DicomDirSeriesNode* series) {
    DirectoryBrowser browser(*this, firstItem);
    const auto number = browser.Records().Find(*record);
    return number ? browser.BrowseLeaves(*number, *series) : 0;
}

int32_t PGX_DicomDir::CallbackAppli(PGX_DicomDirCallbackReason* reason, const char* message) {
    return callback == nullptr ? 0 : callback(reason, message, userData);
}
