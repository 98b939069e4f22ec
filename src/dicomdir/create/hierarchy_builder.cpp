#include "dicomdir/create/hierarchy_builder.h"

#include <new>
#include <utility>

#include "dicomdir/create/instance_objects.h"
#include "dicomdir/leaf_kinds.h"

namespace pgkit {

HierarchyBuilder::HierarchyBuilder(PGX_List& patients, std::string profile,
                                   const PgDicomdirOptions& options, AcceptanceList* refusals)
    : patients_(patients), profile_(std::move(profile)), options_(options), refusals_(refusals) {}

AddedObjects HierarchyBuilder::Add(const FileToAdd& file) {
    try {
        AddedObjects added = Place(file);
        if (added.code != PG_ACCEPTED && refusals_ != nullptr) {
            refusals_->Append(added.code, file.fullPath);
        }
        return added;
    } catch (const std::bad_alloc&) {
        // They may know objects that were to be added and are gone.
        levels_ = {};
        return {PG_NOT_A_DATA_SET};
    }
}

PgAcceptanceCode HierarchyBuilder::RefuseName(const char* fullPath) {
    if (refusals_ == nullptr) return PG_INVALID_FILE_NAME;
    try {
        refusals_->Append(PG_INVALID_FILE_NAME, fullPath);
    } catch (const std::bad_alloc&) {
        // There is no line then.
    }
    return PG_INVALID_FILE_NAME;
}

// The hierarchy changes at the end, when everything about the file is known and made.
AddedObjects HierarchyBuilder::Place(const FileToAdd& file) {
    Candidate candidate;
    const bool skipChecks = (options_.flags & PG_DICOMDIR_SKIP_CHECKS) != 0;
    const PgAcceptanceCode code = PassFileGate(file, profile_.c_str(), skipChecks, candidate);
    if (code != PG_ACCEPTED) return {code};

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
