// Tags, and what the encoding rules make of their numbers.
#pragma once

#include <cstdint>

namespace pgkit {

struct Tag {
    uint16_t group;
    uint16_t element;

    bool operator==(const Tag&) const = default;
};

// The elements that this library itself has to do with.
namespace tags {

// File Meta Information.
inline constexpr Tag kMetaInformationVersion = {0x0002, 0x0001};
inline constexpr Tag kMediaStorageSopClassUid = {0x0002, 0x0002};
inline constexpr Tag kMediaStorageSopInstanceUid = {0x0002, 0x0003};
inline constexpr Tag kTransferSyntaxUid = {0x0002, 0x0010};
inline constexpr Tag kImplementationClassUid = {0x0002, 0x0012};
inline constexpr Tag kImplementationVersionName = {0x0002, 0x0013};

// The directory file.
inline constexpr Tag kFileSetId = {0x0004, 0x1130};
inline constexpr Tag kFirstRootRecord = {0x0004,
                                         0x1200};  // the offsets of the first and last record
inline constexpr Tag kLastRootRecord = {0x0004, 0x1202};  // of the root level
inline constexpr Tag kFileSetConsistency = {0x0004, 0x1212};
inline constexpr Tag kRecordSequence = {0x0004, 0x1220};

// A directory record; the links are offsets of other records, set when the file is written.
inline constexpr Tag kNextRecordLink = {0x0004, 0x1400};
inline constexpr Tag kRecordInUse = {0x0004, 0x1410};
inline constexpr Tag kLowerLevelLink = {0x0004, 0x1420};
inline constexpr Tag kRecordType = {0x0004, 0x1430};
inline constexpr Tag kReferencedFileId = {0x0004, 0x1500};
// Retired: to a record that several others share.
inline constexpr Tag kSharedRecordLink = {0x0004, 0x1504};
inline constexpr Tag kReferencedSopClassUid = {0x0004, 0x1510};
inline constexpr Tag kReferencedSopInstanceUid = {0x0004, 0x1511};
inline constexpr Tag kReferencedTransferSyntaxUid = {0x0004, 0x1512};

// Patient, study and series.
inline constexpr Tag kSpecificCharacterSet = {0x0008, 0x0005};
inline constexpr Tag kStudyDate = {0x0008, 0x0020};
inline constexpr Tag kStudyTime = {0x0008, 0x0030};
inline constexpr Tag kAccessionNumber = {0x0008, 0x0050};
inline constexpr Tag kModality = {0x0008, 0x0060};
inline constexpr Tag kManufacturer = {0x0008, 0x0070};
inline constexpr Tag kInstitutionName = {0x0008, 0x0080};
inline constexpr Tag kInstitutionAddress = {0x0008, 0x0081};
inline constexpr Tag kReferringPhysiciansName = {0x0008, 0x0090};
inline constexpr Tag kStudyDescription = {0x0008, 0x1030};
inline constexpr Tag kSeriesDescription = {0x0008, 0x103E};
inline constexpr Tag kPerformingPhysiciansName = {0x0008, 0x1050};
inline constexpr Tag kPatientsName = {0x0010, 0x0010};
inline constexpr Tag kPatientId = {0x0010, 0x0020};
inline constexpr Tag kPatientsBirthDate = {0x0010, 0x0030};
inline constexpr Tag kPatientsSex = {0x0010, 0x0040};
inline constexpr Tag kStudyInstanceUid = {0x0020, 0x000D};
inline constexpr Tag kSeriesInstanceUid = {0x0020, 0x000E};
inline constexpr Tag kStudyId = {0x0020, 0x0010};
inline constexpr Tag kSeriesNumber = {0x0020, 0x0011};

// Instances.
inline constexpr Tag kImageType = {0x0008, 0x0008};
inline constexpr Tag kSopClassUid = {0x0008, 0x0016};
inline constexpr Tag kSopInstanceUid = {0x0008, 0x0018};
inline constexpr Tag kContentDate = {0x0008, 0x0023};
inline constexpr Tag kContentTime = {0x0008, 0x0033};
inline constexpr Tag kReferencedSeriesSequence = {0x0008, 0x1115};
inline constexpr Tag kInstanceNumber = {0x0020, 0x0013};
inline constexpr Tag kRelationshipType = {0x0040, 0xA010};
inline constexpr Tag kVerificationDateTime = {0x0040, 0xA030};
inline constexpr Tag kConceptNameCodeSequence = {0x0040, 0xA043};
inline constexpr Tag kVerifyingObserverSequence = {0x0040, 0xA073};
inline constexpr Tag kCompletionFlag = {0x0040, 0xA491};
inline constexpr Tag kVerificationFlag = {0x0040, 0xA493};
inline constexpr Tag kContentSequence = {0x0040, 0xA730};
inline constexpr Tag kDocumentTitle = {0x0042, 0x0010};
inline constexpr Tag kMimeType = {0x0042, 0x0012};
inline constexpr Tag kCalibrationImage = {0x0050, 0x0004};
inline constexpr Tag kContentLabel = {0x0070, 0x0080};
inline constexpr Tag kContentDescription = {0x0070, 0x0081};
inline constexpr Tag kPresentationCreationDate = {0x0070, 0x0082};
inline constexpr Tag kPresentationCreationTime = {0x0070, 0x0083};
inline constexpr Tag kContentCreatorsName = {0x0070, 0x0084};

// Pixels.
inline constexpr Tag kSamplesPerPixel = {0x0028, 0x0002};
inline constexpr Tag kPhotometricInterpretation = {0x0028, 0x0004};
inline constexpr Tag kPlanarConfiguration = {0x0028, 0x0006};
inline constexpr Tag kNumberOfFrames = {0x0028, 0x0008};
inline constexpr Tag kRows = {0x0028, 0x0010};
inline constexpr Tag kColumns = {0x0028, 0x0011};
inline constexpr Tag kBitsAllocated = {0x0028, 0x0100};
inline constexpr Tag kBitsStored = {0x0028, 0x0101};
inline constexpr Tag kHighBit = {0x0028, 0x0102};
inline constexpr Tag kPixelRepresentation = {0x0028, 0x0103};
inline constexpr Tag kIconImageSequence = {0x0088, 0x0200};
inline constexpr Tag kPixelData = {0x7FE0, 0x0010};

// Private ones, of several makers.
inline constexpr Tag kSeriesPurpose = {0x00E1, 0x1051};
inline constexpr Tag kLeafMark = {0x07A1, 0x102B};
inline constexpr Tag kReferencedDataSetSize = {0x0859, 0x1040};  // what a browse reads
inline constexpr Tag kDataSetSizeCreator = {0x2137, 0x0010};     // what a creation writes
inline constexpr Tag kWrittenDataSetSize = {0x2137, 0x1040};

}  // namespace tags

// A tag in one number, by which data sets are in order.
constexpr uint32_t TagKey(uint16_t group, uint16_t element) {
    return (uint32_t{group} << 16) | element;
}

// The group of the File Meta Information.
constexpr uint16_t kMetaGroup = 0x0002;

// Whether readers take this for the tag of an element. Group FFFE has the items and delimiters, and
// (FFFF,FFFF) ends a data set: an element of such a tag would take what follows it along.
constexpr bool IsElementTag(uint16_t group, uint16_t element) {
    return group != 0xFFFE && !(group == 0xFFFF && element == 0xFFFF);
}

constexpr bool IsBitsAllocated(uint16_t group, uint16_t element) {
    return group == 0x0028 && element == 0x0100;
}

constexpr bool IsPixelData(uint16_t group, uint16_t element) {
    return group == 0x7FE0 && element == 0x0010;
}

constexpr bool IsPrivateGroup(uint16_t group) { return (group & 1) != 0; }

// A private creator reserves a block of its (odd) group.
constexpr bool IsPrivateCreator(uint16_t group, uint16_t element) {
    return IsPrivateGroup(group) && element >= 0x0010 && element <= 0x00FF;
}

}  // namespace pgkit
