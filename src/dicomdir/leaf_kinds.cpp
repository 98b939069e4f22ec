#include "dicomdir/leaf_kinds.h"

#include <iterator>

#include "dicomdir/level_keys.h"

namespace pgkit {

namespace {

using Image = PGX_DicomDirImageNode;
using Report = PGX_DicomDirReportNode;
using KeyObject = PGX_DicomDirKeyObjectNode;
using Presentation = PGX_DicomDirPresentationNode;
using Document = PGX_DicomDirEncapsulatedDocNode;
using Waveform = PGX_DicomDirWaveformNode;
using RawData = PGX_DicomDirRawDataNode;

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
     .category = SopCategory::Report,
     .isToldAmongImages = true,
     .modalityAmongImages = "SR",
     .size = sizeof(Report),
     .make = Make<Report>,
     .texts = kReportTexts,
     .sequences = kReportSequences},
    {.type = PG_LEAF_KEY_OBJECT,
     .recordType = "KEY OBJECT DOC",
     .category = SopCategory::KeyObject,
     .isToldAmongImages = true,
     .modalityAmongImages = "KO",
     .size = sizeof(KeyObject),
     .make = Make<KeyObject>,
     .texts = kKeyObjectTexts,
     .sequences = kKeyObjectSequences},
    {.type = PG_LEAF_PRESENTATION,
     .recordType = "PRESENTATION",
     .category = SopCategory::Presentation,
     .isToldAmongImages = true,
     .modalityAmongImages = "PR",
     .size = sizeof(Presentation),
     .make = Make<Presentation>,
     .texts = kPresentationTexts,
     .sequences = kPresentationSequences},
    {.type = PG_LEAF_WAVEFORM,
     .recordType = "WAVEFORM",
     .category = SopCategory::Waveform,
     .size = sizeof(Waveform),
     .make = Make<Waveform>,
     .texts = kWaveformTexts},
    {.type = PG_LEAF_ENCAPSULATED_DOC,
     .recordType = "ENCAP DOC",
     .sopClass = "1.2.840.10008.5.1.4.1.1.104.1",
     .size = sizeof(Document),
     .make = Make<Document>,
     .texts = kDocumentTexts,
     .sequences = kDocumentSequences},
    {.type = PG_LEAF_RAW_DATA,
     .recordType = "RAW DATA",
     .sopClass = "1.2.840.10008.5.1.4.1.1.66",
     .isToldAmongImages = true,
     .size = sizeof(RawData),
     .make = Make<RawData>,
     .texts = kRawDataTexts},
    {.type = PG_LEAF_IMAGE,
     .recordType = "IMAGE",
     .isToldAmongImages = true,
     .size = sizeof(Image),
     .make = Make<Image>,
     .texts = kImageTexts,
     .numbers = kImageNumbers,
     .icon = FieldOf<&Image::icon>},
};

// That of every SOP class that no other kind has.
constexpr const LeafKind& kImageKind = kKinds[std::size(kKinds) - 1];
static_assert(kImageKind.type == PG_LEAF_IMAGE);

// Records of types that are none of the above. When they are written again, their type is the text
// that was read.
constexpr LeafKind kPlainKind = {.type = PG_LEAF_OTHER, .size = sizeof(Leaf), .make = Make<Leaf>};

const LeafKind& FindKind(std::string_view sopClass, bool isAmongImages) {
    const uint16_t categories = CategoriesOf(sopClass);
    for (const LeafKind& kind : kKinds) {
        if (isAmongImages && !kind.isToldAmongImages) continue;
        if (IsIn(categories, kind.category)) return kind;
        if (!kind.sopClass.empty() && kind.sopClass == sopClass) return kind;
    }
    return kImageKind;
}

RecordKind KindAmongImages(PGX_Node& record) {
    char sopClass[65];
    ReadTrimmedText(record, tags::kReferencedSopClassUid, sopClass);
    if (sopClass == kMediaStorageDirectory) return {};
    const LeafKind& kind = FindKind(sopClass, true);
    return {&kind, kind.modalityAmongImages};
}

}  // namespace

const LeafKind& KindOfType(int32_t leafType) {
    for (const LeafKind& kind : kKinds) {
        if (kind.type == leafType) return kind;
    }
    return kPlainKind;
}

const LeafKind& KindOfClass(std::string_view sopClass) { return FindKind(sopClass, false); }

RecordKind KindOfRecord(PGX_Node& record, std::string_view recordType) {
    if (recordType.starts_with(kImageKind.recordType)) return KindAmongImages(record);
    for (const LeafKind& kind : kKinds) {
        if (recordType.starts_with(kind.recordType)) return {&kind};
    }
    if (recordType.starts_with("PRIVATE")) return {};
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
