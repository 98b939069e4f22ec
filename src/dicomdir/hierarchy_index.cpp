#include "dicomdir/hierarchy_index.h"

#include <cstring>

#include "dataset/list_cells.h"
#include "dataset/patient_names.h"

namespace pgkit {

bool operator==(const PatientKey& a, const PatientKey& b) {
    return std::strcmp(a.id, b.id) == 0 && ComparePatientNames(a.name, b.name) == 0;
}

bool operator<(const PatientKey& a, const PatientKey& b) {
    const int ids = std::strcmp(a.id, b.id);
    if (ids != 0) return ids < 0;
    return ComparePatientNames(a.name, b.name) < 0;
}

void CellIndex::Append(PGX_List& list, void* object) {
    PGX_ListElement*& before = cellsBefore_[object];
    before = list.tail;
    list.AddTail(object);
}

void CellIndex::Remove(PGX_List& list, void* object) {
    const auto found = cellsBefore_.find(object);
    PGX_ListElement* before = found->second;
    cellsBefore_.erase(found);
    RemoveAfter(list, before);
    const PGX_ListElement* following = before == nullptr ? list.head : before->next;
    if (following != nullptr) cellsBefore_[following->data] = before;
}

}  // namespace pgkit
