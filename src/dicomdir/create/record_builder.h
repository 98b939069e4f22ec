// Adds files to a hierarchy: each passes the gate and becomes a leaf under the patient, study and
// series it belongs to, which are found or made. While a builder lives, nobody else may change the
// hierarchy.
#pragma once

#include <string>
#include <unordered_map>

#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/child_lookup.h"
#include "dicomdir/create/file_gate.h"
#include "dicomdir/create/insertion_order.h"
#include "dicomdir/hierarchy_index.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// What a file has become: the code and, when it is accepted, the four records.
struct AddedRecords {
    PgAcceptanceCode code = PG_ACCEPTED;
    PGX_DicomDirPatientNode* patient = nullptr;
    PGX_DicomDirStudyNode* study = nullptr;
    PGX_DicomDirSeriesNode* series = nullptr;
    PGX_DicomDirLeafNode* leaf = nullptr;
};

class RecordBuilder {
  public:
    // Refusals are appended to the list, if there is one.
    RecordBuilder(PGX_List& patients, std::string profile, const PgDicomdirOptions& options,
                  AcceptanceList* refusals);

    // Does not throw.
    AddedRecords Add(const FileToAdd& file);

  private:
    AddedRecords Place(const FileToAdd& file);
    AddedRecords FindParents(const Candidate& candidate, PGX_DicomDirPatientNode& patient);
    PGX_DicomDirPatientNode* FindPatient(PGX_DicomDirPatientNode& keys);
    void AddPatient(std::unique_ptr<PGX_DicomDirPatientNode> patient, AddedRecords& added);
    void AddStudy(PGX_Node& dataSet, AddedRecords& added);
    void AddSeries(PGX_Node& dataSet, AddedRecords& added);
    void AddSeriesIcon(const FileToAdd& file, PGX_DicomDirSeriesNode& series,
                       PGX_DicomDirLeafNode& leaf);
    void AddLeaf(std::unique_ptr<PGX_DicomDirLeafNode> leaf, AddedRecords& added);

    PGX_List& patients_;
    std::string profile_;
    PgDicomdirOptions options_;
    AcceptanceList* refusals_;

    bool hasPatientIndex_ = false;
    bool hasSearchedPatients_ = false;
    PatientIndex patientIndex_;
    ChildLookup<PGX_DicomDirStudyNode> studies_;
    ChildLookup<PGX_DicomDirSeriesNode> series_;
    ChildLookup<PGX_DicomDirLeafNode> leaves_;
    std::unordered_map<const PGX_List*, InsertionOrder> orders_;
};

}  // namespace pgkit
