// Elements that commands look at, by names.
#pragma once

#include "pgkit/cpp/tag.hpp"

namespace pgtool::tags {

inline constexpr pgkit::tag kMediaStorageClass = {0x0002, 0x0002};
inline constexpr pgkit::tag kMediaStorageInstance = {0x0002, 0x0003};
inline constexpr pgkit::tag kTransferSyntax = {0x0002, 0x0010};

inline constexpr pgkit::tag kFileSetId = {0x0004, 0x1130};
inline constexpr pgkit::tag kFirstRecord = {0x0004, 0x1200};
inline constexpr pgkit::tag kLastRecord = {0x0004, 0x1202};
inline constexpr pgkit::tag kConsistencyFlag = {0x0004, 0x1212};
inline constexpr pgkit::tag kRecordSequence = {0x0004, 0x1220};
inline constexpr pgkit::tag kNextRecord = {0x0004, 0x1400};
inline constexpr pgkit::tag kInUseFlag = {0x0004, 0x1410};
inline constexpr pgkit::tag kLowerRecord = {0x0004, 0x1420};
inline constexpr pgkit::tag kRecordType = {0x0004, 0x1430};
inline constexpr pgkit::tag kFileId = {0x0004, 0x1500};
// Retired: leads to the record of a file that several refer to.
inline constexpr pgkit::tag kSharedRecord = {0x0004, 0x1504};
inline constexpr pgkit::tag kFileClass = {0x0004, 0x1510};
inline constexpr pgkit::tag kFileInstance = {0x0004, 0x1511};
inline constexpr pgkit::tag kFileSyntax = {0x0004, 0x1512};

inline constexpr pgkit::tag kCharacterSet = {0x0008, 0x0005};
inline constexpr pgkit::tag kSopClass = {0x0008, 0x0016};
inline constexpr pgkit::tag kSopInstance = {0x0008, 0x0018};
inline constexpr pgkit::tag kStudyDate = {0x0008, 0x0020};
inline constexpr pgkit::tag kContentDate = {0x0008, 0x0023};
inline constexpr pgkit::tag kStudyTime = {0x0008, 0x0030};
inline constexpr pgkit::tag kContentTime = {0x0008, 0x0033};
inline constexpr pgkit::tag kModality = {0x0008, 0x0060};
inline constexpr pgkit::tag kPatientName = {0x0010, 0x0010};
inline constexpr pgkit::tag kPatientId = {0x0010, 0x0020};
inline constexpr pgkit::tag kStudyUid = {0x0020, 0x000D};
inline constexpr pgkit::tag kSeriesUid = {0x0020, 0x000E};
inline constexpr pgkit::tag kStudyId = {0x0020, 0x0010};
inline constexpr pgkit::tag kSeriesNumber = {0x0020, 0x0011};
inline constexpr pgkit::tag kInstanceNumber = {0x0020, 0x0013};
inline constexpr pgkit::tag kPhotometric = {0x0028, 0x0004};
inline constexpr pgkit::tag kRows = {0x0028, 0x0010};
inline constexpr pgkit::tag kColumns = {0x0028, 0x0011};
inline constexpr pgkit::tag kConceptName = {0x0040, 0xA043};
inline constexpr pgkit::tag kContent = {0x0040, 0xA730};
inline constexpr pgkit::tag kContentLabel = {0x0070, 0x0080};
inline constexpr pgkit::tag kHangingProtocolName = {0x0072, 0x0002};
inline constexpr pgkit::tag kIcon = {0x0088, 0x0200};
inline constexpr pgkit::tag kPixelData = {0x7FE0, 0x0010};

}  // namespace pgtool::tags
