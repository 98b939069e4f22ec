// Finds the objects of a growing hierarchy by their keys, and where they stand in their lists, with
// the answers that walks through the lists would give. The indexes refer to the objects: whoever
// destroys one takes it out first.
#pragma once

#include <cstddef>
#include <functional>
#include <memory_resource>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "pgkit/directory_records.h"
#include "pgkit/list.h"

namespace pgkit {

// Patients by ID and name.
struct PatientOrder {
    bool operator()(const PGX_DicomDirPatientNode* a, const PGX_DicomDirPatientNode* b) const;
};
using PatientIndex = std::set<PGX_DicomDirPatientNode*, PatientOrder>;

// Children by their parent and their UID; the text is that in the child itself.
struct ChildKey {
    const void* parent;
    std::string_view uid;

    bool operator==(const ChildKey&) const = default;
};

struct ChildKeyHash {
    size_t operator()(const ChildKey& key) const {
        return std::hash<std::string_view>()(key.uid) ^ (std::hash<const void*>()(key.parent) << 1);
    }
};

template <typename Child>
using ChildIndex = std::unordered_map<ChildKey, Child*, ChildKeyHash>;
using ChildSet = std::pmr::unordered_set<ChildKey, ChildKeyHash>;

// Appends objects to lists and can take them out again without a walk.
class CellIndex {
  public:
    void Append(PGX_List& list, void* object);
    // The object must have been appended to this list.
    void Remove(PGX_List& list, void* object);

  private:
    // The cell in front of each object's own, null for the head.
    std::unordered_map<const void*, PGX_ListElement*> cellsBefore_;
};

}  // namespace pgkit
