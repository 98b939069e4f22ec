// The keys of each level, one row per key.
#pragma once

#include "dicomdir/keys.h"

namespace pgkit {

// An instance without a character set is taken for western. Of that of a record 50 characters
// count.
constexpr const char* kNoCharacterSet = "ISO_IR 100";
constexpr size_t kLongestCharacterSet = 50;

inline constexpr TextKey<Patient> kPatientKeys[] = {
    {.tag = tags::kSpecificCharacterSet,
     .field = TextOf<&Patient::specificCharacterSet>,
     .absentInInstance = kNoCharacterSet,
     .longestInRecord = kLongestCharacterSet},
    {tags::kPatientsName, TextOf<&Patient::patientsName>, Trimmed::InRecords},
    {tags::kPatientId, TextOf<&Patient::patientId>, Trimmed::Always},
    {tags::kPatientsBirthDate, TextOf<&Patient::birthDate>},
    {tags::kPatientsSex, TextOf<&Patient::sex>},
};

inline constexpr TextKey<Study> kStudyKeys[] = {
    {.tag = tags::kSpecificCharacterSet,
     .field = TextOf<&Study::specificCharacterSet>,
     .trimmed = Trimmed::InRecords,
     .absentInInstance = kNoCharacterSet,
     .longestInRecord = kLongestCharacterSet},
    {tags::kStudyDate, TextOf<&Study::studyDate>, Trimmed::InRecords},
    {tags::kStudyTime, TextOf<&Study::studyTime>, Trimmed::InRecords},
    {tags::kAccessionNumber, TextOf<&Study::accessionNumber>, Trimmed::InRecords},
    {tags::kManufacturer, TextOf<&Study::manufacturer>, Trimmed::InRecords, kFromBoth},
    {tags::kReferringPhysiciansName, TextOf<&Study::referringPhysiciansName>, Trimmed::InRecords},
    {tags::kStudyDescription, TextOf<&Study::studyDescription>, Trimmed::InRecords},
    {tags::kStudyInstanceUid, TextOf<&Study::studyInstanceUid>, Trimmed::Always},
    {tags::kStudyId, TextOf<&Study::studyId>, Trimmed::InRecords},
};

inline constexpr TextKey<Series> kSeriesKeys[] = {
    {.tag = tags::kSpecificCharacterSet,
     .field = TextOf<&Series::specificCharacterSet>,
     .trimmed = Trimmed::InRecords,
     .absentInInstance = kNoCharacterSet,
     .longestInRecord = kLongestCharacterSet},
    {tags::kModality, TextOf<&Series::modality>, Trimmed::InRecords},
    {tags::kInstitutionName, TextOf<&Series::institutionName>, Trimmed::InRecords},
    {tags::kInstitutionAddress, TextOf<&Series::institutionAddress>, Trimmed::InRecords},
    {tags::kSeriesDescription, TextOf<&Series::seriesDescription>, Trimmed::InRecords},
    {tags::kPerformingPhysiciansName, TextOf<&Series::performingPhysiciansName>,
     Trimmed::InRecords},
    {tags::kSeriesInstanceUid, TextOf<&Series::seriesInstanceUid>, Trimmed::Always},
    {.tag = tags::kSeriesNumber,
     .field = TextOf<&Series::seriesNumber>,
     .trimmed = Trimmed::InRecords,
     .absentInInstance = "0"},
};

// Those of every leaf; leaf_kinds.h has those of each kind. What the gate has read of an instance
// and what a browse does more with than reading it is not read by this table.
inline constexpr TextKey<Leaf> kLeafKeys[] = {
    {.tag = tags::kReferencedFileId, .field = TextOf<&Leaf::referencedFileId>, .ways = kIntoRecord},
    {.tag = tags::kReferencedSopClassUid,
     .field = TextOf<&Leaf::sopClassUid>,
     .ways = KeyWays(kFromRecord | kIntoRecord),
     .absentInRecord = "No.SOPClass.UID"},
    {.tag = tags::kReferencedSopInstanceUid,
     .field = TextOf<&Leaf::instanceUid>,
     .ways = kIntoRecord},
    {.tag = tags::kReferencedTransferSyntaxUid,
     .field = TextOf<&Leaf::transferSyntaxUid>,
     .ways = KeyWays(kFromRecord | kIntoRecord),
     .absentInRecord = "No.TransferSyntax.UID"},
    {.tag = tags::kSpecificCharacterSet,
     .field = TextOf<&Leaf::specificCharacterSet>,
     .absentInInstance = kNoCharacterSet,
     .longestInRecord = kLongestCharacterSet},
};

inline constexpr NumberKey kLeafNumbers[] = {
    {tags::kInstanceNumber, FieldOf<&Leaf::instanceNumber>, NumberKey::Form::Text},
};

}  // namespace pgkit
