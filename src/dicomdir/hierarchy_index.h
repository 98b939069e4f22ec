// Finds the objects of a growing hierarchy by their keys, and where they stand in their lists, with
// the answers of walks through the lists. The indexes refer to the objects: whoever
// destroys one takes it out first.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory_resource>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/text.h"
#include "dicomdir/keys.h"
#include "pgkit/list.h"

namespace pgkit {

// ---- What objects are known by ------------------------------------------------------------------

// Patients by ID and name, which are compared as people read them.
struct PatientKey {
    const char* id;
    const char* name;
};
bool operator==(const PatientKey& a, const PatientKey& b);
bool operator<(const PatientKey& a, const PatientKey& b);

// The texts of a key are those in the object itself. Padding makes no other UID.
inline PatientKey KeyOf(const Patient& patient) {
    return {patient.patientId, patient.patientsName};
}
inline std::string_view KeyOf(const Study& study) { return TrimBlanks(study.studyInstanceUid); }
inline std::string_view KeyOf(const Series& series) { return TrimBlanks(series.seriesInstanceUid); }
inline std::string_view KeyOf(const Leaf& leaf) { return TrimBlanks(leaf.instanceUid); }

// A key among the siblings of one list.
struct UidAmong {
    const PGX_List* siblings;
    std::string_view uid;

    bool operator==(const UidAmong&) const = default;
};

struct UidAmongHash {
    size_t operator()(const UidAmong& key) const {
        return std::hash<std::string_view>()(key.uid) ^
               (std::hash<const void*>()(key.siblings) << 1);
    }
};

inline UidAmong Among(const PGX_List& siblings, std::string_view uid) { return {&siblings, uid}; }
// There is one list of patients.
inline PatientKey Among(const PGX_List&, PatientKey key) { return key; }

// ---- Indexes ------------------------------------------------------------------------------------

template <typename Object>
struct IndexOf {
    using Type = std::unordered_map<UidAmong, Object*, UidAmongHash>;
};
template <>
struct IndexOf<Patient> {
    using Type = std::map<PatientKey, Patient*>;
};

// All objects of a level, by their keys.
template <typename Object>
using LevelIndex = typename IndexOf<Object>::Type;

using UidSet = std::pmr::unordered_set<UidAmong, UidAmongHash>;

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
