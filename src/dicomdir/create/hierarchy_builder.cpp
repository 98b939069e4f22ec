#include "dicomdir/create/hierarchy_builder.h"

#include <cstring>
#include <new>
#include <utility>

#include "dataset/patient_names.h"
#include "dicomdir/create/icon_making.h"
#include "dicomdir/create/instance_objects.h"
#include "dicomdir/create/series_number.h"
#include "dicomdir/object_list.h"

namespace pgkit {

namespace {

int32_t SeriesNumberOf(const PGX_DicomDirSeriesNode& series) {
    return LeadingInteger(series.seriesNumber);
}

PGX_DicomDirImageNode* ImageOf(Leaf* leaf) {
    const bool isImage = leaf->leafType == PG_LEAF_IMAGE;
    return isImage ? static_cast<PGX_DicomDirImageNode*>(leaf) : nullptr;
}

int32_t InstanceNumberOf(const PGX_DicomDirLeafNode& leaf) { return leaf.instanceNumber; }

bool IsSamePatient(const PGX_DicomDirPatientNode& known, const PGX_DicomDirPatientNode& keys) {
    return std::strcmp(known.patientId, keys.patientId) == 0 &&
           ComparePatientNames(known.patientsName, keys.patientsName) == 0;
}

}  // namespace

HierarchyBuilder::HierarchyBuilder(PGX_List& patients, std::string profile,
                                   const PgDicomdirOptions& options, AcceptanceList* refusals)
    : patients_(patients),
      profile_(std::move(profile)),
      options_(options),
      refusals_(refusals),
      hasPatientIndex_(patients.count == 0) {}

AddedObjects HierarchyBuilder::Add(const FileToAdd& file) {
    try {
        AddedObjects added = Place(file);
        if (added.code != PG_ACCEPTED && refusals_ != nullptr) {
            refusals_->Append(added.code, file.fullPath);
        }
        return added;
    } catch (const std::bad_alloc&) {
        ForgetIndexes();
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

// They may know objects that were to be added and are gone.
void HierarchyBuilder::ForgetIndexes() {
    hasPatientIndex_ = false;
    patientIndex_.clear();
    studies_ = {};
    series_ = {};
    leaves_ = {};
    seriesOrders_.clear();
    leafOrders_.clear();
}

// Nothing is added before everything about the file is known.
AddedObjects HierarchyBuilder::Place(const FileToAdd& file) {
    Candidate candidate;
    const bool skipChecks = (options_.flags & PG_DICOMDIR_SKIP_CHECKS) != 0;
    const PgAcceptanceCode code = PassFileGate(file, profile_.c_str(), skipChecks, candidate);
    if (code != PG_ACCEPTED) return {code};

    PGX_Node& dataSet = *candidate.dataSet;
    auto patient = NewPatient(dataSet);
    AddedObjects added = FindParents(candidate, *patient);
    if (added.series != nullptr &&
        leaves_.Find(added.series->leaves, candidate.instanceUid) != nullptr) {
        return {PG_INSTANCE_KNOWN};
    }
    NewParents parents{dataSet, std::move(patient)};
    auto leaf = NewLeaf(candidate, file, options_);
    if (PGX_DicomDirImageNode* const image = ImageOf(leaf.get())) {
        image->icon = NewImageIcon(file.fullPath, options_.iconSize).release();
    }
    AddLeaf(std::move(leaf), parents, added);
    AddSeriesIcon(file, *added.series, *added.leaf);
    return added;
}

AddedObjects HierarchyBuilder::FindParents(const Candidate& candidate,
                                           PGX_DicomDirPatientNode& patient) {
    AddedObjects found;
    found.patient = FindPatient(patient);
    if (found.patient == nullptr) return found;
    found.study = studies_.Find(found.patient->studies, candidate.studyInstanceUid);
    if (found.study == nullptr) return found;
    found.series = series_.Find(found.study->series, candidate.seriesInstanceUid);
    return found;
}

// The first one in the list, which of several equal ones is the one that the index keeps.
PGX_DicomDirPatientNode* HierarchyBuilder::FindPatient(PGX_DicomDirPatientNode& keys) {
    if (!hasPatientIndex_ && !std::exchange(hasSearchedPatients_, true)) {
        for (PGX_DicomDirPatientNode& patient : Patients(patients_)) {
            if (IsSamePatient(patient, keys)) return &patient;
        }
        return nullptr;
    }
    if (!std::exchange(hasPatientIndex_, true)) {
        for (PGX_DicomDirPatientNode& patient : Patients(patients_))
            patientIndex_.insert(&patient);
    }
    const auto found = patientIndex_.find(&keys);
    return found == patientIndex_.end() ? nullptr : *found;
}

void HierarchyBuilder::AddLeaf(std::unique_ptr<PGX_DicomDirLeafNode> leaf, NewParents& parents,
                               AddedObjects& added) {
    added.leaf = leaf.get();
    if (added.series == nullptr) {
        auto series = NewSeries(parents.dataSet);
        Append(series->leaves, std::move(leaf));
        return AddSeries(std::move(series), parents, added);
    }
    PGX_List& siblings = added.series->leaves;
    leaves_.WillJoin(siblings, *leaf);
    leafOrders_.try_emplace(&siblings, siblings, InstanceNumberOf, Ties::InFront)
        .first->second.Insert(std::move(leaf));
}

void HierarchyBuilder::AddSeries(std::unique_ptr<PGX_DicomDirSeriesNode> series,
                                 NewParents& parents, AddedObjects& added) {
    added.series = series.get();
    if (added.study == nullptr) {
        auto study = NewStudy(parents.dataSet);
        Append(study->series, std::move(series));
        return AddStudy(std::move(study), parents, added);
    }
    PGX_List& siblings = added.study->series;
    series_.WillJoin(siblings, *series);
    seriesOrders_.try_emplace(&siblings, siblings, SeriesNumberOf, Ties::InFront)
        .first->second.Insert(std::move(series));
}

void HierarchyBuilder::AddStudy(std::unique_ptr<PGX_DicomDirStudyNode> study, NewParents& parents,
                                AddedObjects& added) {
    added.study = study.get();
    if (added.patient == nullptr) {
        Append(parents.patient->studies, std::move(study));
        return AddPatient(std::move(parents.patient), added);
    }
    PGX_List& siblings = added.patient->studies;
    studies_.WillJoin(siblings, *study);
    Append(siblings, std::move(study));
}

void HierarchyBuilder::AddPatient(std::unique_ptr<PGX_DicomDirPatientNode> patient,
                                  AddedObjects& added) {
    added.patient = patient.get();
    if (hasPatientIndex_) patientIndex_.insert(patient.get());
    Append(patients_, std::move(patient));
}

// A series looks like the first of its images that has an icon. It gets one of its own from the
// imaging module, which says what a bitmap is.
void HierarchyBuilder::AddSeriesIcon(const FileToAdd& file, PGX_DicomDirSeriesNode& series,
                                     PGX_DicomDirLeafNode& leaf) {
    const PGX_DicomDirImageNode* const image = ImageOf(&leaf);
    if (options_.seriesIcons == 0 || series.icon != nullptr) return;
    if (image == nullptr || image->icon == nullptr) return;
    series.icon = NewImageIcon(file.fullPath, options_.iconSize).release();
}

}  // namespace pgkit
