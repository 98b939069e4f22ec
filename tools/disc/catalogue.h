// The instances that a disc is to hold, under their series, studies and patients: of each no more
// than is needed to copy it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace pgtool {

// How the file of an instance comes to the medium.
enum class Transfer {
    Copied,     // byte for byte
    GivenMeta,  // as it is encoded, with the File Meta Information that it lacks
    Recoded     // as explicit VR little endian
};

// The place of a series for instances that belong to no patient.
inline constexpr size_t kNoSeries = SIZE_MAX;

struct DiscInstance {
    std::string path;
    uint64_t bytes = 0;  // of the file; 0 when the system does not tell
    size_t series = 0;
    uint32_t number = 0;  // within the series, or among those of no patient, from 1
    Transfer transfer = Transfer::Copied;
    bool isImage = false;
};

struct DiscSeries {
    size_t study = 0;
    uint32_t number = 0;  // within the study, from 1
    std::vector<size_t> instances;
};

struct DiscStudy {
    size_t patient = 0;
    uint32_t number = 0;  // within the patient, from 1
    std::vector<size_t> series;
};

struct DiscPatient {
    uint32_t studies = 0;
};

// What tells an instance apart, as it stands in its file.
struct InstanceKeys {
    std::string patientId;
    std::string patientName;
    std::string study;
    std::string series;
    std::string instance;
};

// Type 1 keys of records that the files have no values for: whose they are.
struct MissingKeys {
    size_t patientIds = 0;  // of so many patients
    std::set<std::string> studyIds;
    std::set<std::string> studyDates;
    std::set<std::string> studyTimes;
    std::set<std::string> seriesNumbers;
};

class Catalogue {
  public:
    // The instance of that UID, or none.
    const DiscInstance* Find(const std::string& instanceUid) const;

    // Whether the sources have a Patient ID that is this one, or begins like it.
    bool KnowsPatientId(const std::string& id) const;
    // Why there are not enough File IDs for all; empty when there are.
    std::string ComplaintAboutNumbers() const;

    struct Added {
        bool isNewPatient;
        bool isNewStudy;
        bool isNewSeries;
    };
    // No other of that UID may be there.
    Added Add(const InstanceKeys& keys, DiscInstance instance);
    // The same of what belongs to no patient: a palette, a hanging protocol.
    void AddCommon(const InstanceKeys& keys, DiscInstance instance);

    const std::vector<DiscInstance>& Instances() const { return instances_; }
    const std::vector<DiscSeries>& Series() const { return series_; }
    const std::vector<DiscStudy>& Studies() const { return studies_; }

    // Those that belong to no patient.
    const std::vector<size_t>& Common() const { return common_; }

    // "DICOM/PAT00001/STU00001/SER00001", and with "/IM000001" behind it; "DICOM/COMMON" with
    // "/OB000001" for what belongs to no patient. The numbers are those of the order in which
    // instances were added.
    std::string FolderOf(const DiscInstance& instance) const;
    std::string FileOf(const DiscInstance& instance) const;

  private:
    std::vector<DiscPatient> patients_;
    std::vector<DiscStudy> studies_;
    std::vector<DiscSeries> series_;
    std::vector<DiscInstance> instances_;
    std::vector<size_t> common_;
    std::map<std::pair<std::string, std::string>, size_t> patientsByKey_;
    std::map<std::pair<size_t, std::string>, size_t> studiesByUid_;  // of a patient
    std::map<std::pair<size_t, std::string>, size_t> seriesByUid_;   // of a study
    std::unordered_map<std::string, size_t> instancesByUid_;
};

}  // namespace pgtool
