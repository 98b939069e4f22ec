// The lists of a hierarchy as what they hold: objects of one class.
#pragma once

#include <memory>

#include "dicomdir/leaf_destruction.h"
#include "pgkit/list.h"

namespace pgkit {

// Runs over the objects of a list: for (PGX_DicomDirStudyNode& study : Records<...>(list)). The
// current object may be removed from the list only when the run ends with it.
template <typename Record>
class Records {
  public:
    class Iterator {
      public:
        explicit Iterator(PGX_ListElement* cell) : cell_(cell) {}
        Record& operator*() const { return *static_cast<Record*>(cell_->data); }
        Iterator& operator++() {
            cell_ = cell_->next;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return cell_ != other.cell_; }

      private:
        PGX_ListElement* cell_;
    };

    explicit Records(PGX_List& list) : list_(list) {}
    Iterator begin() const { return Iterator(list_.head); }
    Iterator end() const { return Iterator(nullptr); }

  private:
    PGX_List& list_;
};

// Appends an object, which the list's owner owns from then on.
template <typename Record>
Record& Append(PGX_List& list, std::unique_ptr<Record> record) {
    list.AddTail(record.get());
    return *record.release();
}

template <typename Record>
void Destroy(Record* record) {
    delete record;
}

// Removes every object from the list and destroys it.
template <typename Record>
void DestroyRecords(PGX_List& list) {
    while (list.head != nullptr)
        Destroy(static_cast<Record*>(list.RemoveHead()));
}

}  // namespace pgkit
