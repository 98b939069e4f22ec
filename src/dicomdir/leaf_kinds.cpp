#include "dicomdir/leaf_kinds.h"

#include <algorithm>

#include "dicomdir/level_keys.h"
#include "pgkit/sopclass.h"

namespace pgkit {

namespace {

using Image = PGX_DicomDirImageNode;
using Report = PGX_DicomDirReportNode;
using KeyObject = PGX_DicomDirKeyObjectNode;
using Presentation = PGX_DicomDirPresentationNode;
using Document = PGX_DicomDirEncapsulatedDocNode;
using Waveform = PGX_DicomDirWaveformNode;
using RawData = PGX_DicomDirRawDataNode;

// ---- SOP classes --------------------------------------------------------------------------------

constexpr std::string_view kEncapsulatedPdf = "1.2.840.10008.5.1.4.1.1.104.1";
constexpr std::string_view kRawDataStorage = "1.2.840.10008.5.1.4.1.1.66";

bool IsPdf(const char* sopClass) { return sopClass == kEncapsulatedPdf; }
bool IsRawData(const char* sopClass) { return sopClass == kRawDataStorage; }
bool IsAny(const char*) { return true; }
bool IsNone(const char*) { return false; }

// ---- Keys ---------------------------------------------------------------------------------------

template <typename Object>
constexpr TextKey<Leaf> kContentDate = {tags::kContentDate, TextOf<&Object::contentDate>};
template <typename Object>
constexpr TextKey<Leaf> kContentTime = {tags::kContentTime, TextOf<&Object::contentTime>};
template <typename Object>
constexpr SequenceKey kConceptName = {tags::kConceptNameCodeSequence,
                                      FieldOf<&Object::conceptNameCodeSequence>};
template <typename Object>
constexpr SequenceKey kContent = {tags::kContentSequence, FieldOf<&Object::contentSequence>,
                                  ModifiesConcept};

constexpr TextKey<Leaf> kImageTexts[] = {
    {tags::kImageType, TextOf<&Image::imageType>},
    {.tag = tags::kPhotometricInterpretation,
     .field = TextOf<&Image::photometricInterpretation>,
     .ways = kFromRecord,
     .absentInRecord = "??"},
    {.tag = tags::kCalibrationImage, .field = TextOf<&Image::calibrationImage>, .ways = kFromBoth},
};
constexpr NumberKey kImageNumbers[] = {
    {tags::kNumberOfFrames, FieldOf<&Image::numberOfFrames>, NumberKey::Form::Text, 1},
    {tags::kRows, FieldOf<&Image::rows>, NumberKey::Form::UnsignedShort},
    {tags::kColumns, FieldOf<&Image::columns>, NumberKey::Form::UnsignedShort},
};

// When a report was verified its observers say in an instance, and only a verified one has it in
// its record: whoever makes either sees to that.
constexpr TextKey<Leaf> kReportTexts[] = {
    kContentDate<Report>,
    kContentTime<Report>,
    {.tag = tags::kVerificationDateTime,
     .field = TextOf<&Report::verificationDateTime>,
     .ways = kFromRecord},
    {tags::kCompletionFlag, TextOf<&Report::completionFlag>},
    {tags::kVerificationFlag, TextOf<&Report::verificationFlag>},
};
constexpr SequenceKey kReportSequences[] = {kConceptName<Report>, kContent<Report>};

constexpr TextKey<Leaf> kKeyObjectTexts[] = {kContentDate<KeyObject>, kContentTime<KeyObject>};
constexpr SequenceKey kKeyObjectSequences[] = {kConceptName<KeyObject>, kContent<KeyObject>};

constexpr TextKey<Leaf> kPresentationTexts[] = {
    {tags::kContentLabel, TextOf<&Presentation::contentLabel>},
    {tags::kContentDescription, TextOf<&Presentation::contentDescription>},
    {tags::kPresentationCreationDate, TextOf<&Presentation::creationDate>},
    {tags::kPresentationCreationTime, TextOf<&Presentation::creationTime>},
    {tags::kContentCreatorsName, TextOf<&Presentation::contentCreatorsName>},
};
constexpr SequenceKey kPresentationSequences[] = {
    {tags::kReferencedSeriesSequence, FieldOf<&Presentation::referencedSeriesSequence>}};

constexpr TextKey<Leaf> kDocumentTexts[] = {
    kContentDate<Document>,
    kContentTime<Document>,
    {tags::kDocumentTitle, TextOf<&Document::documentTitle>},
    {tags::kMimeType, TextOf<&Document::mimeType>},
};
constexpr SequenceKey kDocumentSequences[] = {kConceptName<Document>};

constexpr TextKey<Leaf> kWaveformTexts[] = {kContentDate<Waveform>, kContentTime<Waveform>};

constexpr TextKey<Leaf> kRawDataTexts[] = {kContentDate<RawData>, kContentTime<RawData>};

// ---- Kinds --------------------------------------------------------------------------------------

template <typename Object>
std::unique_ptr<Leaf> Make() {
    return std::make_unique<Object>();
}

constexpr LeafKind kKinds[] = {
    {.type = PG_LEAF_REPORT,
     .recordType = "SR DOCUMENT",
     .hasClass = pgIsReportSOPClass,
     .isToldAmongImages = true,
     .modalityAmongImages = "SR",
     .size = sizeof(Report),
     .make = Make<Report>,
     .texts = kReportTexts,
     .numbers = {},
     .sequences = kReportSequences},
    {.type = PG_LEAF_KEY_OBJECT,
     .recordType = "KEY OBJECT DOC",
     .hasClass = pgIsKeyObjectSOPClass,
     .isToldAmongImages = true,
     .modalityAmongImages = "KO",
     .size = sizeof(KeyObject),
     .make = Make<KeyObject>,
     .texts = kKeyObjectTexts,
     .numbers = {},
     .sequences = kKeyObjectSequences},
    {.type = PG_LEAF_PRESENTATION,
     .recordType = "PRESENTATION",
     .hasClass = pgIsPresentationSOPClass,
     .isToldAmongImages = true,
     .modalityAmongImages = "PR",
     .size = sizeof(Presentation),
     .make = Make<Presentation>,
     .texts = kPresentationTexts,
     .numbers = {},
     .sequences = kPresentationSequences},
    {.type = PG_LEAF_WAVEFORM,
     .recordType = "WAVEFORM",
     .hasClass = pgIsWaveformSOPClass,
     .size = sizeof(Waveform),
     .make = Make<Waveform>,
     .texts = kWaveformTexts,
     .numbers = {},
     .sequences = {}},
    {.type = PG_LEAF_ENCAPSULATED_DOC,
     .recordType = "ENCAP DOC",
     .hasClass = IsPdf,
     .size = sizeof(Document),
     .make = Make<Document>,
     .texts = kDocumentTexts,
     .numbers = {},
     .sequences = kDocumentSequences},
    {.type = PG_LEAF_RAW_DATA,
     .recordType = "RAW DATA",
     .hasClass = IsRawData,
     .isToldAmongImages = true,
     .size = sizeof(RawData),
     .make = Make<RawData>,
     .texts = kRawDataTexts,
     .numbers = {},
     .sequences = {}},
    // What is nothing else.
    {.type = PG_LEAF_IMAGE,
     .recordType = "IMAGE",
     .hasClass = IsAny,
     .isToldAmongImages = true,
     .size = sizeof(Image),
     .make = Make<Image>,
     .texts = kImageTexts,
     .numbers = kImageNumbers,
     .sequences = {},
     .icon = FieldOf<&Image::icon>},
};

// Records of types that are none of the above. When they are written again, their type is the text
// that was read.
constexpr LeafKind kPlainKind = {.type = PG_LEAF_OTHER,
                                 .recordType = {},
                                 .hasClass = IsNone,
                                 .size = sizeof(Leaf),
                                 .make = Make<Leaf>,
                                 .texts = {},
                                 .numbers = {},
                                 .sequences = {}};

RecordKind KindAmongImages(PGX_Node& record) {
    char sopClass[65];
    ReadTrimmedText(record, tags::kReferencedSopClassUid, sopClass);
    if (sopClass == kMediaStorageDirectory) return {};
    const auto kind = std::ranges::find_if(kKinds, [&](const LeafKind& candidate) {
        return candidate.isToldAmongImages && candidate.hasClass(sopClass);
    });
    return {kind, kind->modalityAmongImages};
}

}  // namespace

const LeafKind& KindOf(const Leaf& leaf) {
    for (const LeafKind& kind : kKinds) {
        if (kind.type == leaf.leafType) return kind;
    }
    return kPlainKind;
}

const LeafKind& KindOfClass(const char* sopClass) {
    return *std::ranges::find_if(kKinds, [=](const LeafKind& k) { return k.hasClass(sopClass); });
}

RecordKind KindOfRecord(PGX_Node& record, std::string_view recordType) {
    if (recordType.starts_with("PRIVATE")) return {};
    for (const LeafKind& kind : kKinds) {
        if (!recordType.starts_with(kind.recordType)) continue;
        return kind.type == PG_LEAF_IMAGE ? KindAmongImages(record) : RecordKind{&kind};
    }
    return {&kPlainKind};
}

bool IsVerified(const PGX_DicomDirReportNode& report) {
    return std::string_view(report.verificationFlag).starts_with("VERIFIED");
}

bool ModifiesConcept(PGX_Node& item) {
    char relationship[17];
    ReadText(item, tags::kRelationshipType, relationship);
    return std::string_view(relationship).starts_with("HAS CONCEPT MOD");
}

}  // namespace pgkit
