#include "dicomdir/create/hierarchy_builder.h"

#include <new>
#include <utility>

#include "dicomdir/create/creation_flags.h"
#include "dicomdir/create/instance_objects.h"
#include "dicomdir/create/standard_kinds.h"
#include "dicomdir/leaf_kinds.h"

namespace pgkit {

HierarchyBuilder::HierarchyBuilder(PGX_List& patients, std::string profile,
                                   const PgDicomdirOptions& options, AcceptanceList* refusals,
                                   PGX_List* rootLeaves)
    : patients_(patients),
      profile_(std::move(profile)),
      options_(options),
      refusals_(refusals),
      rootLeaves_(rootLeaves) {}

AddedObjects HierarchyBuilder::Add(const FileToAdd& file) {
    try {
        AddedObjects added = Place(file);
        if (added.code != PG_ACCEPTED && !IsOwnFile(file.referencedName)) ++refused_;
        if (added.code != PG_ACCEPTED && refusals_ != nullptr) {
            refusals_->Append(added.code, file.fullPath);
        }
        return added;
    } catch (const std::bad_alloc&) {
        // They may know objects that were to be added and are gone.
        levels_ = {};
        ++refused_;
        return {PG_NOT_A_DATA_SET};
    }
}

PgAcceptanceCode HierarchyBuilder::RefuseName(const char* fullPath) {
    ++refused_;
    if (refusals_ == nullptr) return PG_INVALID_FILE_NAME;
    try {
        refusals_->Append(PG_INVALID_FILE_NAME, fullPath);
    } catch (const std::bad_alloc&) {
        // There is no line then.
    }
    return PG_INVALID_FILE_NAME;
}

GateRules HierarchyBuilder::Rules() const {
    return {
        .profile = profile_.c_str(),
        .skipChecks = Has(options_, PG_DICOMDIR_SKIP_CHECKS),
        .wantsStrictNames = Has(options_, PG_DICOMDIR_STRICT_NAMES),
        .admitsRootObjects = Has(options_, PG_DICOMDIR_STANDARD_RECORDS) && rootLeaves_ != nullptr};
}

// The hierarchy changes at the end, when everything about the file is known and made.
AddedObjects HierarchyBuilder::Place(const FileToAdd& file) {
    Candidate candidate;
    const GateRules rules = Rules();
    const PgAcceptanceCode code = PassFileGate(file, rules, candidate);
    if (code != PG_ACCEPTED) return {code};
    if (rules.admitsRootObjects && StandsAtRoot(candidate.sopClassUid)) {
        return PlaceAtRoot(file, candidate);
    }

    NewObjects made;
    AddedObjects added = FindOrMakeParents(candidate, made);
    if (made.series == nullptr &&
        levels_.leaves.Find(added.series->leaves, candidate.instanceUid) != nullptr) {
        return {PG_INSTANCE_KNOWN};
    }
    made.leaf = NewLeaf(candidate, file, options_);
    added.leaf = made.leaf.get();
    BitmapHandle seriesIcon = MakeIcons(file, *added.leaf, *added.series);
    Join(std::move(made), added);
    if (seriesIcon != nullptr) added.series->icon = seriesIcon.release();
    return added;
}

AddedObjects HierarchyBuilder::PlaceAtRoot(const FileToAdd& file, const Candidate& candidate) {
    if (levels_.leaves.Find(*rootLeaves_, candidate.instanceUid) != nullptr) {
        return {PG_INSTANCE_KNOWN};
    }
    std::unique_ptr<Leaf> leaf = NewLeaf(candidate, file, options_);
    AddedObjects added;
    added.leaf = leaf.get();
    levels_.leaves.Add(*rootLeaves_, std::move(leaf));
    return added;
}

// From the top: an object that is new has no children among which to look.
AddedObjects HierarchyBuilder::FindOrMakeParents(const Candidate& candidate, NewObjects& made) {
    PGX_Node& dataSet = *candidate.dataSet;
    AddedObjects parents;
    made.patient = NewPatient(dataSet);
    parents.patient = levels_.patients.Find(patients_, KeyOf(*made.patient));
    if (parents.patient != nullptr) {
        made.patient = nullptr;
        PGX_List& studies = parents.patient->studies;
        parents.study = levels_.studies.Find(studies, candidate.studyInstanceUid);
    } else {
        parents.patient = made.patient.get();
    }
    if (parents.study != nullptr) {
        PGX_List& series = parents.study->series;
        parents.series = levels_.series.Find(series, candidate.seriesInstanceUid);
    } else {
        made.study = NewStudy(dataSet);
        parents.study = made.study.get();
    }
    if (parents.series == nullptr) {
        made.series = NewSeries(dataSet);
        parents.series = made.series.get();
    }
    return parents;
}

// Makes the icon of an image, and returns one for its series, which looks like the first of its
// images that has an icon.
BitmapHandle HierarchyBuilder::MakeIcons(const FileToAdd& file, Leaf& leaf, const Series& series) {
    const LeafKind& kind = KindOf(leaf);
    if (kind.icon == nullptr) return nullptr;
    const bool wantsSeriesIcon = options_.seriesIcons != 0 && series.icon == nullptr;
    ImageIcons icons = icons_.Make(file.fullPath, options_.iconSize, wantsSeriesIcon);
    kind.icon(leaf) = icons.ofImage.release();
    return std::move(icons.ofSeries);
}

// What is new hangs together first and joins the hierarchy in one place: all of it, or none.
void HierarchyBuilder::Join(NewObjects made, const AddedObjects& added) {
    if (made.series == nullptr) {
        return levels_.leaves.Add(added.series->leaves, std::move(made.leaf));
    }
    Append(made.series->leaves, std::move(made.leaf));
    if (made.study == nullptr) {
        return levels_.series.Add(added.study->series, std::move(made.series));
    }
    Append(made.study->series, std::move(made.series));
    if (made.patient == nullptr) {
        return levels_.studies.Add(added.patient->studies, std::move(made.study));
    }
    Append(made.patient->studies, std::move(made.study));
    levels_.patients.Add(patients_, std::move(made.patient));
}

}  // namespace pgkit
