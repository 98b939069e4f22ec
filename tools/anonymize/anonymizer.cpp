#include "anonymize/anonymizer.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "anonymize/values.h"
#include "pgkit/dictionary.h"

namespace pgtool {

namespace {

constexpr uint16_t kMetaGroup = 0x0002;

// Creators of private blocks stand in (gggg,0010) to (gggg,00FF), the block of (gggg,0010) in
// (gggg,1000) to (gggg,10FF).
bool IsCreator(pgkit::tag tag) {
    return tag.is_private() && tag.element >= 0x10 && tag.element <= 0xFF;
}

pgkit::tag CreatorOf(pgkit::tag tag) {
    return {tag.group, static_cast<uint16_t>(tag.element >> 8)};
}

// The creators of an item whose blocks the data set itself calls safe: Private Data Element
// Characteristics Sequence (0008,0300) names a group and a creator, and the status of the block.
std::vector<pgkit::tag> SafeCreators(const pgkit::item& item) {
    std::vector<pgkit::tag> creators;
    for (const pgkit::item block : item.find({0x0008, 0x0300}).items()) {
        if (block.find({0x0008, 0x0303}).text() != "SAFE") continue;
        const auto group = block.find({0x0008, 0x0301}).number<uint16_t>();
        const std::string creator = block.find({0x0008, 0x0302}).text();
        for (const pgkit::element element : item) {
            if (group == element.tag().group && IsCreator(element.tag()) &&
                element.text() == creator) {
                creators.push_back(element.tag());
            }
        }
    }
    return creators;
}

bool IsSafe(pgkit::tag tag, const std::vector<pgkit::tag>& safe) {
    const pgkit::tag creator = IsCreator(tag) ? tag : CreatorOf(tag);
    return std::find(safe.begin(), safe.end(), creator) != safe.end();
}

bool IsKnown(pgkit::tag tag) {
    return pgFindValueRepresentation(tag.group, tag.element) != VR_Unknown ||
           pgxTagKeyword(tag.group, tag.element, nullptr, 0) != 0;
}

// An overlay without its data is none.
bool IsOverlay(pgkit::tag tag) { return (tag.group & 0xFF00) == 0x6000; }

// Codes of PS3.16, CID 7050, in the coding scheme DCM.
struct Method {
    const char* code;
    const char* meaning;
    bool ProfileOptions::*isChosen;  // null for the profile itself
};

constexpr Method kMethods[] = {
    {"113100", "Basic Application Confidentiality Profile", nullptr},
    {"113106", "Retain Longitudinal Temporal Information Full Dates Option",
     &ProfileOptions::retainDates},
    {"113107", "Retain Longitudinal Temporal Information Modified Dates Option",
     &ProfileOptions::modifyDates},
    {"113108", "Retain Patient Characteristics Option", &ProfileOptions::retainPatient},
    {"113109", "Retain Device Identity Option", &ProfileOptions::retainDevice},
    {"113110", "Retain UIDs Option", &ProfileOptions::retainUids},
    {"113111", "Retain Safe Private Option", &ProfileOptions::retainSafePrivate},
    {"113112", "Retain Institution Identity Option", &ProfileOptions::retainInstitution},
};

constexpr const char* kMethodCodes = "DeidentificationMethodCodeSequence";

}  // namespace

void Anonymizer::Apply(pgkit::data_set& root) const {
    std::vector<Pending> pending = {{root, false}};
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        ApplyToItem(next, pending);
    }
    Mark(root);
}

void Anonymizer::ApplyToItem(const Pending& pending, std::vector<Pending>& next) const {
    const auto safe =
        options_.retainSafePrivate ? SafeCreators(pending.item) : std::vector<pgkit::tag>();
    pgkit::walk(pending.item, [&](pgkit::element& element) {
        const pgkit::visit then = ApplyToElement(pending, element, safe);
        if (then == pgkit::visit::remove) return then;
        const bool isDummy =
            pending.isDummy ||
            (element.is_sequence() && ActionFor(element.tag(), options_) == Action::Dummy);
        for (const pgkit::item item : element.items())
            next.push_back({item, isDummy});
        return pgkit::visit::skip;
    });
}

pgkit::visit Anonymizer::ApplyToElement(const Pending& pending, pgkit::element& element,
                                        const std::vector<pgkit::tag>& safe) const {
    using pgkit::visit;
    const pgkit::tag tag = element.tag();
    if (tag.is_private()) return IsSafe(tag, safe) ? visit::go_on : visit::remove;
    if (tag.group == kMetaGroup || tag.element == 0 || IsOverlay(tag) || !IsKnown(tag)) {
        return visit::remove;
    }
    // What nobody has taken apart may hold anything.
    const bool isClosed = pgFindValueRepresentation(tag.group, tag.element) == VR_SQ &&
                          !element.is_sequence() && !element.empty();
    if (isClosed) return visit::remove;
    Action action = ActionFor(tag, options_);
    if (action == Action::MoveDate) {
        if (element.empty() || MoveDates(element, options_.days)) return visit::go_on;
        ProfileOptions without = options_;
        without.modifyDates = false;
        action = ActionFor(tag, without);
    }
    const bool isTextOfTheSet = tag == pgkit::tag{0x0008, 0x0005};
    if (pending.isDummy && action == Action::Keep && !isTextOfTheSet) action = Action::Dummy;
    switch (action) {
        case Action::Remove:
            return visit::remove;
        case Action::Empty:
            MakeEmpty(element);
            break;
        case Action::Dummy:
            if (!element.is_sequence() && !element.empty()) MakeDummy(element, uids_);
            break;
        case Action::NewUid:
            if (!element.is_sequence()) MakeNewUids(element, uids_);
            break;
        default:
            break;
    }
    return visit::go_on;
}

void Anonymizer::Mark(pgkit::data_set& root) const {
    root.remove(kMethodCodes);
    std::vector<std::string> texts = {std::string("PS3.15 ") + kProfileEdition};
    size_t count = 0;
    for (const Method& method : kMethods) {
        if (method.isChosen != nullptr && !(options_.*method.isChosen)) continue;
        texts.emplace_back(method.meaning);
        const std::string item = std::string(kMethodCodes) + "[" + std::to_string(count++) + "].";
        (void)root.set_text(item + "CodeValue", method.code);
        (void)root.set_text(item + "CodingSchemeDesignator", "DCM");
        (void)root.set_text(item + "CodeMeaning", method.meaning);
    }
    const std::vector<std::string_view> views(texts.begin(), texts.end());
    (void)root.set_text("PatientIdentityRemoved", "YES");
    (void)root.set_texts("DeidentificationMethod", views);
    const char* const dates = options_.retainDates   ? "UNMODIFIED"
                              : options_.modifyDates ? "MODIFIED"
                                                     : "REMOVED";
    (void)root.set_text("LongitudinalTemporalInformationModified", dates);
}

std::vector<std::string> Warnings(const pgkit::data_set& root) {
    std::vector<std::string> warnings;
    const std::string burnedIn = root.find("BurnedInAnnotation").text();
    const std::string modality = root.find("Modality").text();
    const std::string sopClass = root.find("SOPClassUID").text();
    const bool hasPixels = root.contains("PixelData");
    constexpr std::string_view kOftenWithTexts[] = {"US", "ES", "XC", "SC", "OT", "GM", "XA", "RF"};
    const bool isOftenWithTexts =
        std::find(std::begin(kOftenWithTexts), std::end(kOftenWithTexts), modality) !=
            std::end(kOftenWithTexts) ||
        sopClass.starts_with("1.2.840.10008.5.1.4.1.1.7");  // Secondary Capture
    if (burnedIn == "YES") {
        warnings.emplace_back("texts are burnt into its pixels, which are not changed");
    } else if (hasPixels && burnedIn != "NO" && isOftenWithTexts) {
        warnings.emplace_back("texts may be burnt into its pixels, which are not changed");
    }
    if (root.find("RecognizableVisualFeatures").text() == "YES") {
        warnings.emplace_back("its pixels show recognizable features, which are not changed");
    }
    return warnings;
}

}  // namespace pgtool
