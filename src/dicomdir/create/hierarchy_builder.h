// Adds files to a hierarchy: each passes the gate and becomes a leaf under the patient, study and
// series it belongs to, which are found or made. While a builder lives, nobody else may change the
// hierarchy.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/child_lookup.h"
#include "dicomdir/create/file_gate.h"
#include "dicomdir/hierarchy_index.h"
#include "dicomdir/insertion_order.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/directory_records.h"

namespace pgkit {

// What a file has become: the code and, when it is accepted, the four records.
struct AddedObjects {
    PgAcceptanceCode code = PG_ACCEPTED;
    PGX_DicomDirPatientNode* patient = nullptr;
    PGX_DicomDirStudyNode* study = nullptr;
    PGX_DicomDirSeriesNode* series = nullptr;
    PGX_DicomDirLeafNode* leaf = nullptr;
};

class HierarchyBuilder {
  public:
    // Refusals are appended to the list, if there is one.
    HierarchyBuilder(PGX_List& patients, std::string profile, const PgDicomdirOptions& options,
                     AcceptanceList* refusals);

    // Does not throw. A file for which memory does not suffice is refused like one that is no data
    // set, and leaves the hierarchy as it was.
    AddedObjects Add(const FileToAdd& file);

    // A file that cannot be referred to: it is listed, and not looked at.
    PgAcceptanceCode RefuseName(const char* fullPath);

  private:
    // What the parents of a leaf are made of.
    struct NewParents {
        PGX_Node& dataSet;
        std::unique_ptr<PGX_DicomDirPatientNode> patient;
    };

    AddedObjects Place(const FileToAdd& file);
    AddedObjects FindParents(const Candidate& candidate, PGX_DicomDirPatientNode& patient);
    PGX_DicomDirPatientNode* FindPatient(PGX_DicomDirPatientNode& keys);

    // Each of these adds an object to its parent or, where there is none yet, to one that it makes
    // and adds in turn. What is new joins the hierarchy at last, and as a whole.
    void AddLeaf(std::unique_ptr<PGX_DicomDirLeafNode> leaf, NewParents& parents,
                 AddedObjects& added);
    void AddSeries(std::unique_ptr<PGX_DicomDirSeriesNode> series, NewParents& parents,
                   AddedObjects& added);
    void AddStudy(std::unique_ptr<PGX_DicomDirStudyNode> study, NewParents& parents,
                  AddedObjects& added);
    void AddPatient(std::unique_ptr<PGX_DicomDirPatientNode> patient, AddedObjects& added);

    void AddSeriesIcon(const FileToAdd& file, PGX_DicomDirSeriesNode& series,
                       PGX_DicomDirLeafNode& leaf);
    void ForgetIndexes();

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
    std::unordered_map<const PGX_List*, InsertionOrder<PGX_DicomDirSeriesNode>> seriesOrders_;
    std::unordered_map<const PGX_List*, InsertionOrder<PGX_DicomDirLeafNode>> leafOrders_;
};

}  // namespace pgkit
