#include "disc/catalogue.h"

#include <cstdio>
#include <utility>

namespace pgtool {

namespace {

// "PAT00001": at most 8 characters as long as there are no more than the digits can count.
std::string Numbered(const char* format, size_t number) {
    char text[32];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

}  // namespace

const DiscInstance* Catalogue::Find(const std::string& instanceUid) const {
    const auto found = instancesByUid_.find(instanceUid);
    return found == instancesByUid_.end() ? nullptr : &instances_[found->second];
}

bool Catalogue::KnowsPatientId(const std::string& id) const {
    const auto found = patientsByKey_.lower_bound({id, ""});
    return found != patientsByKey_.end() && found->first.first.starts_with(id);
}

std::string Catalogue::ComplaintAboutNumbers() const {
    constexpr size_t kMostFolders = 99999;
    constexpr size_t kMostFiles = 999999;
    bool isTooMuch = patients_.size() > kMostFolders || common_.size() > kMostFiles;
    for (const DiscPatient& patient : patients_)
        isTooMuch = isTooMuch || patient.studies > kMostFolders;
    for (const DiscStudy& study : studies_)
        isTooMuch = isTooMuch || study.series.size() > kMostFolders;
    for (const DiscSeries& series : series_)
        isTooMuch = isTooMuch || series.instances.size() > kMostFiles;
    if (!isTooMuch) return "";
    return "a disc has File IDs for 99,999 patients, studies of one and series of one, and for "
           "999,999 instances of a series or of no patient";
}

Catalogue::Added Catalogue::Add(const InstanceKeys& keys, DiscInstance instance) {
    const auto [patient, isNewPatient] =
        patientsByKey_.try_emplace({keys.patientId, keys.patientName}, patients_.size());
    if (isNewPatient) patients_.emplace_back();
    const auto [study, isNewStudy] =
        studiesByUid_.try_emplace({patient->second, keys.study}, studies_.size());
    if (isNewStudy) {
        studies_.push_back({patient->second, ++patients_[patient->second].studies, {}});
    }
    const auto [series, isNewSeries] =
        seriesByUid_.try_emplace({study->second, keys.series}, series_.size());
    if (isNewSeries) {
        std::vector<size_t>& siblings = studies_[study->second].series;
        siblings.push_back(series_.size());
        series_.push_back({study->second, static_cast<uint32_t>(siblings.size()), {}});
    }
    std::vector<size_t>& siblings = series_[series->second].instances;
    siblings.push_back(instances_.size());
    instance.series = series->second;
    instance.number = static_cast<uint32_t>(siblings.size());
    instancesByUid_.emplace(keys.instance, instances_.size());
    instances_.push_back(std::move(instance));
    return {isNewPatient, isNewStudy, isNewSeries};
}

void Catalogue::AddCommon(const InstanceKeys& keys, DiscInstance instance) {
    common_.push_back(instances_.size());
    instance.series = kNoSeries;
    instance.number = static_cast<uint32_t>(common_.size());
    instancesByUid_.emplace(keys.instance, instances_.size());
    instances_.push_back(std::move(instance));
}

std::string Catalogue::FolderOf(const DiscInstance& instance) const {
    if (instance.series == kNoSeries) return "DICOM/COMMON";
    const DiscSeries& series = series_[instance.series];
    const DiscStudy& study = studies_[series.study];
    return Numbered("DICOM/PAT%05zu", study.patient + 1) + Numbered("/STU%05zu", study.number) +
           Numbered("/SER%05zu", series.number);
}

std::string Catalogue::FileOf(const DiscInstance& instance) const {
    const char* const format = instance.series == kNoSeries ? "/OB%06zu" : "/IM%06zu";
    return FolderOf(instance) + Numbered(format, instance.number);
}

}  // namespace pgtool
