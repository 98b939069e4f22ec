// The records of a directory file that is going to be changed: items of its Directory Record
// Sequence that are linked with each other. Whatever they hold stays as it is. All throw
// std::bad_alloc; where they do, the tree is not to be written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dataset/node_ptr.h"
#include "dicomdir/create/directory_file.h"
#include "pgkit/dicomdir_update.h"
#include "pgkit/directory.h"

namespace pgkit {

class RecordTree {
  public:
    // Reads the directory file of a folder, all of it: the file is not open afterwards.
    [[nodiscard]] PgxUpdateProblem Open(const std::string& folder);

    // The hierarchy of the records; each object has its own as record. What stands at the root and
    // is no patient is not in it.
    PGX_List& Patients() { return *directory_.patientList; }

    bool IsEmpty();
    // The Referenced File IDs of all records, in upper case.
    std::unordered_set<std::string> FileIds() const;

    // Takes the records of a study, those below it, and those of patients without studies away.
    // Returns whether there were any. The hierarchy is the caller's to change; what is left of it
    // afterwards forgets records that are gone: a leaf then has one that is none, the others have
    // null.
    [[nodiscard]] bool RemoveStudies(std::string_view uid);
    void ForgetRemoved();

    // Each becomes the last of its level, but stands in front of those at its end that have nothing
    // below them: there a browse ends.
    PGX_Node& AddPatient(NodeTree record);
    PGX_Node& AddBelow(PGX_Node& parent, NodeTree record);
    // The last of its level.
    void AddLeaf(PGX_Node& parent, NodeTree record);
    void AddRootLeaf(NodeTree record);

    // The results of saving.
    [[nodiscard]] uint32_t Save(DirectoryFile& file);

  private:
    enum class Place { BehindParents, AtEnd };

    PgxUpdateProblem Link(PGX_Node& root);
    void BrowseHierarchy();
    PGX_Node& Add(PGX_Node& firstLink, NodeTree record, Place place);
    PGX_Node& FindPlace(PGX_Node& firstLink, Place place);
    void Unlink(PGX_Node& record, std::vector<PGX_Node*>& childless);
    std::unordered_set<const PGX_Node*> Reachable() const;
    void RemoveAllOf(const std::unordered_set<const PGX_Node*>& before);
    PGX_Node& Root() const { return *directory_.dataSet; }

    PGX_DicomDir directory_;
    PGX_Node* sequence_ = nullptr;
    PGX_Node* firstLink_ = nullptr;                    // of the root
    std::vector<PGX_Node*> records_;                   // in the order of the sequence
    std::unordered_map<PGX_Node*, PGX_Node*> places_;  // where the levels go on, by first links
};

}  // namespace pgkit
