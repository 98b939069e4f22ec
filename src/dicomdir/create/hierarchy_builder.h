// Adds files to a hierarchy: each passes the gate and becomes a leaf under the patient, study and
// series it belongs to, which are found or made. While a builder lives, nobody else may change the
// hierarchy.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/file_gate.h"
#include "dicomdir/create/growing_level.h"
#include "dicomdir/create/icon_making.h"
#include "pgkit/dicomdir_creation.h"

namespace pgkit {

// What a file has become: the code and, when it is accepted, the four objects, or the leaf alone
// that belongs to no patient.
struct AddedObjects {
    PgAcceptanceCode code = PG_ACCEPTED;
    Patient* patient = nullptr;
    Study* study = nullptr;
    Series* series = nullptr;
    Leaf* leaf = nullptr;
};

class HierarchyBuilder {
  public:
    // Refusals are appended to the list, if there is one. Leaves that belong to no patient, if the
    // options ask for such, go into a list of their own; without it their files are refused.
    HierarchyBuilder(PGX_List& patients, std::string profile, const PgDicomdirOptions& options,
                     AcceptanceList* refusals, PGX_List* rootLeaves = nullptr);

    // Does not throw. A file for which memory does not suffice is refused like one that is no data
    // set, and leaves the hierarchy as it was.
    AddedObjects Add(const FileToAdd& file);

    // A file that cannot be referred to: it is listed, and not looked at.
    PgAcceptanceCode RefuseName(const char* fullPath);

    // How many files were refused, without those that creations write themselves.
    size_t CountRefused() const { return refused_; }

  private:
    struct Levels {
        GrowingLevel<Patient> patients;
        GrowingLevel<Study> studies;
        GrowingLevel<Series> series;
        GrowingLevel<Leaf> leaves;
    };

    // The objects of a file that are not in the hierarchy yet.
    struct NewObjects {
        std::unique_ptr<Patient> patient;
        std::unique_ptr<Study> study;
        std::unique_ptr<Series> series;
        std::unique_ptr<Leaf> leaf;
    };

    GateRules Rules() const;
    AddedObjects Place(const FileToAdd& file);
    AddedObjects PlaceAtRoot(const FileToAdd& file, const Candidate& candidate);
    AddedObjects FindOrMakeParents(const Candidate& candidate, NewObjects& made);
    BitmapHandle MakeIcons(const FileToAdd& file, Leaf& leaf, const Series& series);
    void Join(NewObjects made, const AddedObjects& added);

    PGX_List& patients_;
    std::string profile_;
    PgDicomdirOptions options_;
    AcceptanceList* refusals_;
    PGX_List* rootLeaves_;
    size_t refused_ = 0;
    IconMaker icons_;
    Levels levels_;
};

}  // namespace pgkit
