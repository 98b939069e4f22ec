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
    int32_t BrowseStudies(RecordNumber first, Patient& patient);
    int32_t BrowseSeries(RecordNumber first, Study& study);
    int32_t BrowseLeaves(RecordNumber first, Series& series);

  private:
    using LeafOrder = InsertionOrder<Leaf>;

    // What became of one record of a chain. Broken ends the walk, and so does Refused: the browse
    // may not cost more.
    enum class Outcome { Handled, Skipped, Broken, Refused };

    Outcome HandlePatient(RecordNumber number, PGX_List& patients);
    Outcome HandleStudy(RecordNumber number, Patient& patient);
    Outcome HandleSeries(RecordNumber number, Study& study);
    Outcome HandleLeaf(RecordNumber number, Series& series, LeafOrder& order);

    template <typename Handle>
    int32_t WalkChain(HierarchyLevel level, RecordNumber first, Handle handle);
    std::optional<RecordNumber> Descend(HierarchyLevel level, RecordNumber number);

    // The object for a record among its siblings; null when the browse may not take the memory of
    // another one.
    template <typename Object>
    struct Found {
        Object* object = nullptr;
        bool isNew = false;
    };
    template <typename Object>
    Found<Object> FindOrAdd(PGX_Node& record, PGX_List& siblings,
                            void (*read)(PGX_Node& record, Object& object),
                            LevelIndex<Object>& index);
    template <typename Object>
    void Remove(Object& object, PGX_List& siblings, LevelIndex<Object>& index);
    void ReportLeaf(Leaf& leaf);

    PGX_DicomDir& directory_;
    RecordTable records_;
    BrowseLimits limits_;
    BrowseGuard guard_;
    CellIndex cells_;
    LevelIndex<Patient> patients_;
    LevelIndex<Study> studies_;
    LevelIndex<Series> series_;
    std::pmr::monotonic_buffer_resource leafMemory_;
    UidSet leaves_{&leafMemory_};  // there are as many as records, and none goes again
    std::unordered_map<const Series*, LeafOrder> leafOrders_;
};

}  // namespace pgkit
