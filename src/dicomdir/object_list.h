// The lists of a hierarchy as what they hold: objects of one class.
#pragma once

#include <memory>

#include "dicomdir/leaf_destruction.h"
#include "pgkit/directory_records.h"
#include "pgkit/list.h"

namespace pgkit {

// Runs over the objects of a list: for (PGX_DicomDirStudyNode& study : Studies(patient.studies)).
// The current object may be removed from the list only when the run ends with it.
template <typename Object>
class Objects {
  public:
    class Iterator {
      public:
        explicit Iterator(PGX_ListElement* cell) : cell_(cell) {}
        Object& operator*() const { return *static_cast<Object*>(cell_->data); }
        Iterator& operator++() {
            cell_ = cell_->next;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return cell_ != other.cell_; }

      private:
        PGX_ListElement* cell_;
    };

    explicit Objects(PGX_List& list) : list_(list) {}
    Iterator begin() const { return Iterator(list_.head); }
    Iterator end() const { return Iterator(nullptr); }

  private:
    PGX_List& list_;
};

using Patients = Objects<PGX_DicomDirPatientNode>;
using Studies = Objects<PGX_DicomDirStudyNode>;
using AllSeries = Objects<PGX_DicomDirSeriesNode>;
using Leaves = Objects<PGX_DicomDirLeafNode>;

// Calls a function for every leaf of a hierarchy.
template <typename Use>
void ForEachLeaf(PGX_List& patients, Use use) {
    for (PGX_DicomDirPatientNode& patient : Patients(patients)) {
        for (PGX_DicomDirStudyNode& study : Studies(patient.studies)) {
            for (PGX_DicomDirSeriesNode& series : AllSeries(study.series)) {
                for (PGX_DicomDirLeafNode& leaf : Leaves(series.leaves))
                    use(leaf);
            }
        }
    }
}

// Also for the leaves that belong to no patient.
template <typename Use>
void ForEachLeaf(PGX_List& patients, PGX_List& rootLeaves, Use use) {
    ForEachLeaf(patients, use);
    for (PGX_DicomDirLeafNode& leaf : Leaves(rootLeaves))
        use(leaf);
}

// Appends an object, which the list's owner owns from then on. Throws std::bad_alloc.
template <typename Object>
Object& Append(PGX_List& list, std::unique_ptr<Object> object) {
    list.AddTail(object.get());
    return *object.release();
}

template <typename Object>
void Destroy(Object* object) {
    delete object;
}

// Removes every object from the list and destroys it.
template <typename Object>
void DestroyObjects(PGX_List& list) {
    while (list.head != nullptr)
        Destroy(static_cast<Object*>(list.RemoveHead()));
}

}  // namespace pgkit
