#include "dicomdir/create/standard_kinds.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace pgkit {

namespace {

using enum KeyType;

// ---- Keys ---------------------------------------------------------------------------------------

constexpr StandardKey kContentDateKey = {tags::kContentDate, Type1};
constexpr StandardKey kContentTimeKey = {tags::kContentTime, Type1};
constexpr StandardKey kLabelKey = {tags::kContentLabel, Type1};
constexpr StandardKey kDescriptionKey = {tags::kContentDescription, Type2};
constexpr StandardKey kCreatorKey = {tags::kContentCreatorsName, Type2};
constexpr StandardKey kManufacturerKey = {tags::kManufacturer, Type1};

constexpr StandardKey kDatedKeys[] = {kContentDateKey, kContentTimeKey};
// The Content Identification Macro.
constexpr StandardKey kLabelledKeys[] = {kLabelKey, kDescriptionKey, kCreatorKey};
// What somebody has made of images: the same, and when.
constexpr StandardKey kIdentifiedKeys[] = {kContentDateKey, kContentTimeKey, kLabelKey,
                                           kDescriptionKey, kCreatorKey};

constexpr StandardKey kDoseKeys[] = {{{0x3004, 0x000A}, Type1}};  // Dose Summation Type
constexpr StandardKey kStructureSetKeys[] = {
    {{0x3006, 0x0002}, Type1},  // Structure Set Label, Date, Time
    {{0x3006, 0x0008}, Type2},
    {{0x3006, 0x0009}, Type2},
};
constexpr StandardKey kRtPlanKeys[] = {
    {{0x300A, 0x0002}, Type1},  // RT Plan Label, Date, Time
    {{0x300A, 0x0006}, Type2},
    {{0x300A, 0x0007}, Type2},
};
constexpr StandardKey kTreatRecordKeys[] = {
    {{0x3008, 0x0250}, Type2},  // Treatment Date, Time
    {{0x3008, 0x0251}, Type2},
};
constexpr StandardKey kRadiotherapyKeys[] = {
    {{0x3010, 0x0033}, Type1C},  // User Content Label, Long Label
    {{0x3010, 0x0034}, Type1C},
    kDescriptionKey,
    kCreatorKey,
};
constexpr StandardKey kPresentationKeys[] = {
    {tags::kPresentationCreationDate, Type1},
    {tags::kPresentationCreationTime, Type1},
    kLabelKey,
    kDescriptionKey,
    kCreatorKey,
    {tags::kReferencedSeriesSequence, Type1C},
    {{0x0070, 0x0402}, Type1C},  // Blending Sequence
};
constexpr StandardKey kReportKeys[] = {
    {tags::kCompletionFlag, Type1, "PARTIAL"},
    {tags::kVerificationFlag, Type1, "UNVERIFIED"},
    kContentDateKey,
    kContentTimeKey,
    {tags::kVerificationDateTime, Type1C},
    {tags::kConceptNameCodeSequence, Type1},
    {tags::kContentSequence, Type1C},
};
constexpr StandardKey kKeyObjectKeys[] = {
    kContentDateKey,
    kContentTimeKey,
    {tags::kConceptNameCodeSequence, Type1},
    {tags::kContentSequence, Type1C},
};
constexpr StandardKey kSpectroscopyKeys[] = {
    {tags::kImageType, Type1},           kContentDateKey,      kContentTimeKey,
    {{0x0008, 0x9092}, Type1C},  // Referenced Image Evidence Sequence
    {tags::kNumberOfFrames, Type1, "1"}, {tags::kRows, Type1}, {tags::kColumns, Type1},
    {{0x0028, 0x9001}, Type1},  // Data Point Rows, Columns
    {{0x0028, 0x9002}, Type1},
};
constexpr StandardKey kDocumentKeys[] = {
    {tags::kContentDate, Type2},
    {tags::kContentTime, Type2},
    {tags::kDocumentTitle, Type2},
    {{0x0040, 0xE001}, Type1C},  // HL7 Instance Identifier
    {tags::kConceptNameCodeSequence, Type2},
    {tags::kMimeType, Type1, "application/octet-stream"},
};
constexpr StandardKey kAssessmentKeys[] = {
    {{0x0008, 0x0012}, Type1},  // Instance Creation Date, Time
    {{0x0008, 0x0013}, Type2},
};
constexpr StandardKey kHangingProtocolKeys[] = {
    {{0x0072, 0x0002}, Type1},  // Hanging Protocol Name, Description, Level, Creator
    {{0x0072, 0x0004}, Type1}, {{0x0072, 0x0006}, Type1, "SITE"},
    {{0x0072, 0x0008}, Type1}, {{0x0072, 0x000A}, Type1},  // Hanging Protocol Creation DateTime
    {{0x0072, 0x000C}, Type1},                             // Hanging Protocol Definition Sequence
    {{0x0072, 0x000E}, Type2},  // Hanging Protocol User Identification Code Sequence
    {{0x0072, 0x0014}, Type1},  // Number of Priors Referenced
};
constexpr StandardKey kPaletteKeys[] = {kLabelKey, kDescriptionKey};
constexpr StandardKey kImplantKeys[] = {
    kManufacturerKey,
    {{0x0022, 0x1095}, Type1},   // Implant Name
    {{0x0022, 0x1097}, Type1},   // Implant Part Number
    {{0x0068, 0x6210}, Type1C},  // Implant Size
};
constexpr StandardKey kAssemblyKeys[] = {
    kManufacturerKey,
    {{0x0076, 0x0001}, Type1},   // Implant Assembly Template Name
    {{0x0076, 0x0003}, Type1C},  // Implant Assembly Template Issuer
    {{0x0076, 0x0020}, Type1},   // Procedure Type Code Sequence
};
constexpr StandardKey kImplantGroupKeys[] = {
    {{0x0078, 0x0001}, Type1},  // Implant Template Group Name
    {{0x0078, 0x0020}, Type1},  // Implant Template Group Issuer
};
constexpr StandardKey kInventoryKeys[] = {
    kContentDateKey, kContentTimeKey, {{0x0008, 0x0401}, Type2},  // Inventory Purpose
};

// ---- Kinds --------------------------------------------------------------------------------------

constexpr StandardKind RtDose = {.recordType = "RT DOSE", .isNumbered = true, .keys = kDoseKeys};
constexpr StandardKind RtStructureSet = {
    .recordType = "RT STRUCTURE SET", .isNumbered = true, .keys = kStructureSetKeys};
constexpr StandardKind RtPlan = {.recordType = "RT PLAN", .isNumbered = true, .keys = kRtPlanKeys};
constexpr StandardKind RtTreatRecord = {
    .recordType = "RT TREAT RECORD", .isNumbered = true, .keys = kTreatRecordKeys};
constexpr StandardKind Radiotherapy = {.recordType = "RADIOTHERAPY", .keys = kRadiotherapyKeys};
constexpr StandardKind Plan = {.recordType = "PLAN"};
constexpr StandardKind Presentation = {.recordType = "PRESENTATION",
                                       .leafType = PG_LEAF_PRESENTATION,
                                       .isNumbered = true,
                                       .keys = kPresentationKeys};
constexpr StandardKind Waveform = {
    .recordType = "WAVEFORM", .leafType = PG_LEAF_WAVEFORM, .isNumbered = true, .keys = kDatedKeys};
constexpr StandardKind SrDocument = {.recordType = "SR DOCUMENT",
                                     .leafType = PG_LEAF_REPORT,
                                     .isNumbered = true,
                                     .keys = kReportKeys};
constexpr StandardKind KeyObjectDoc = {.recordType = "KEY OBJECT DOC",
                                       .leafType = PG_LEAF_KEY_OBJECT,
                                       .isNumbered = true,
                                       .keys = kKeyObjectKeys};
constexpr StandardKind Spectroscopy = {
    .recordType = "SPECTROSCOPY", .isNumbered = true, .keys = kSpectroscopyKeys};
constexpr StandardKind RawData = {
    .recordType = "RAW DATA", .leafType = PG_LEAF_RAW_DATA, .keys = kDatedKeys};
constexpr StandardKind Registration = {
    .recordType = "REGISTRATION", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind Fiducial = {
    .recordType = "FIDUCIAL", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind EncapDoc = {.recordType = "ENCAP DOC",
                                   .leafType = PG_LEAF_ENCAPSULATED_DOC,
                                   .isNumbered = true,
                                   .keys = kDocumentKeys};
constexpr StandardKind ValueMap = {
    .recordType = "VALUE MAP", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind Stereometric = {.recordType = "STEREOMETRIC", .keys = kLabelledKeys};
constexpr StandardKind Measurement = {
    .recordType = "MEASUREMENT", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind Surface = {
    .recordType = "SURFACE", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind SurfaceScan = {.recordType = "SURFACE SCAN", .keys = kDatedKeys};
constexpr StandardKind Tract = {.recordType = "TRACT", .isNumbered = true, .keys = kIdentifiedKeys};
constexpr StandardKind Assessment = {.recordType = "ASSESSMENT", .keys = kAssessmentKeys};
constexpr StandardKind Annotation = {.recordType = "ANNOTATION", .keys = kIdentifiedKeys};
constexpr StandardKind HangingProtocol = {
    .recordType = "HANGING PROTOCOL", .isAtRoot = true, .keys = kHangingProtocolKeys};
constexpr StandardKind Palette = {.recordType = "PALETTE", .isAtRoot = true, .keys = kPaletteKeys};
constexpr StandardKind Implant = {.recordType = "IMPLANT", .isAtRoot = true, .keys = kImplantKeys};
constexpr StandardKind ImplantAssy = {
    .recordType = "IMPLANT ASSY", .isAtRoot = true, .keys = kAssemblyKeys};
constexpr StandardKind ImplantGroup = {
    .recordType = "IMPLANT GROUP", .isAtRoot = true, .keys = kImplantGroupKeys};
constexpr StandardKind Inventory = {
    .recordType = "INVENTORY", .isAtRoot = true, .keys = kInventoryKeys};

// ---- SOP classes --------------------------------------------------------------------------------

struct StandardClass {
    std::string_view sopClass;
    const StandardKind* kind;
};

constexpr StandardClass kUnsortedClasses[] = {
#define PGKIT_STANDARD_CLASS(kind, sopClass) {sopClass, &(kind)},
#include "dicomdir/create/standard_classes.inc"
#undef PGKIT_STANDARD_CLASS
};

constexpr auto kClasses = [] {
    auto sorted = std::to_array(kUnsortedClasses);
    std::ranges::sort(sorted, {}, &StandardClass::sopClass);
    return sorted;
}();
static_assert(std::ranges::adjacent_find(kClasses, {}, &StandardClass::sopClass) == kClasses.end());

}  // namespace

const StandardKind* StandardKindOf(std::string_view sopClass) {
    const auto found = std::ranges::lower_bound(kClasses, sopClass, {}, &StandardClass::sopClass);
    const bool isThere = found != kClasses.end() && found->sopClass == sopClass;
    return isThere ? found->kind : nullptr;
}

const StandardKind* StandardKindOfRecord(std::string_view recordType) {
    const auto isOfType = [&](const StandardClass& row) {
        return row.kind->recordType == recordType;
    };
    const auto found = std::ranges::find_if(kClasses, isOfType);
    return found == kClasses.end() ? nullptr : found->kind;
}

}  // namespace pgkit
