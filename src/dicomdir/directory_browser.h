// Walks the records of a DICOMDIR and builds the hierarchy of its objects: one browser for one
// browse. Every walk handles one chain of sibling records and descends from each of them into the
// chain below it. What breaks a walk is reported on the standard output; the walk then returns 0,
// else 1.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <optional>
#include <unordered_map>

#include "dicomdir/browse_guard.h"
#include "dicomdir/hierarchy_index.h"
#include "dicomdir/insertion_order.h"
#include "dicomdir/record_table.h"
#include "pgkit/directory.h"

namespace pgkit {

class DirectoryBrowser {
  public:
    // For the records of a directory from an item on. Adds to the directory's leaf count and calls
    // its callback. The objects walked into must be empty or filled by this browser.
    DirectoryBrowser(PGX_DicomDir& directory, PGX_Node* firstItem);

    const RecordTable& Records() const { return records_; }

    int32_t BrowsePatients(RecordNumber first, PGX_List& patients);
    int32_t BrowseStudies(RecordNumber first, PGX_DicomDirPatientNode& patient);
    int32_t BrowseSeries(RecordNumber first, PGX_DicomDirStudyNode& study);
    int32_t BrowseLeaves(RecordNumber first, PGX_DicomDirSeriesNode& series);

  private:
    using LeafOrder = InsertionOrder<PGX_DicomDirLeafNode>;

    // What became of one record of a chain. Broken ends the walk, and so does Refused: the browse
    // may not cost more.
    enum class Outcome { Handled, Skipped, Broken, Refused };

    Outcome HandlePatient(RecordNumber number, PGX_List& patients);
    Outcome HandleStudy(RecordNumber number, PGX_DicomDirPatientNode& patient);
    Outcome HandleSeries(RecordNumber number, PGX_DicomDirStudyNode& study);
    Outcome HandleLeaf(RecordNumber number, PGX_DicomDirSeriesNode& series, LeafOrder& order);

    template <typename Handle>
    int32_t WalkChain(HierarchyLevel level, RecordNumber first, Handle handle);
    std::optional<RecordNumber> Descend(HierarchyLevel level, RecordNumber number);

    PatientIndex::iterator FindOrAddPatient(PGX_Node& record, PGX_List& patients);
    PGX_DicomDirStudyNode* FindOrAddStudy(PGX_Node& record, PGX_DicomDirPatientNode& patient);
    PGX_DicomDirSeriesNode* FindOrAddSeries(PGX_Node& record, PGX_DicomDirStudyNode& study);
    void ReportLeaf(PGX_DicomDirLeafNode& leaf);

    void RemovePatient(PatientIndex::iterator found, PGX_List& patients);
    void RemoveStudy(PGX_DicomDirStudyNode& study, PGX_DicomDirPatientNode& patient);
    void RemoveSeries(PGX_DicomDirSeriesNode& series, PGX_DicomDirStudyNode& study);

    PGX_DicomDir& directory_;
    RecordTable records_;
    BrowseLimits limits_;
    BrowseGuard guard_;
    CellIndex cells_;
    PatientIndex patients_;
    ChildIndex<PGX_DicomDirStudyNode> studies_;
    ChildIndex<PGX_DicomDirSeriesNode> series_;
    std::pmr::monotonic_buffer_resource leafMemory_;
    ChildSet leaves_{&leafMemory_};  // there are as many as records, and none goes again
    std::unordered_map<const PGX_DicomDirSeriesNode*, LeafOrder> leafOrders_;
};

}  // namespace pgkit
