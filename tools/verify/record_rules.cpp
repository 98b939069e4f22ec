#include "verify/record_rules.h"

#include <algorithm>
#include <array>

#include "pgkit/standard_records.h"
#include "tags.h"

namespace pgtool {

namespace {

// The keys of type 1 that the library gives its records of a type.
std::vector<pgkit::tag> KeysOf(const char* type) {
    std::array<uint32_t, 16> numbers;
    const int32_t count = pgxRecordTypeKeys(type, numbers.data(), numbers.size());
    std::vector<pgkit::tag> keys;
    for (int32_t i = 0; i < std::min<int32_t>(count, numbers.size()); ++i) {
        keys.push_back(
            {static_cast<uint16_t>(numbers[i] >> 16), static_cast<uint16_t>(numbers[i])});
    }
    return keys;
}

// Of instances that are no images.
RecordRule Instances(const char* type) {
    const bool isAtRoot = pgxIsRootRecordType(type) == 1;
    return {type, isAtRoot ? RecordPlace::Root : RecordPlace::BelowSeries, true, KeysOf(type)};
}

// Retired types are known, their keys are not looked at.
const std::vector<RecordRule>& Rules() {
    using enum RecordPlace;
    using namespace tags;
    static const std::vector<RecordRule> rules = {
        {"PATIENT", Root, false, {kPatientId}},
        {"STUDY", BelowPatient, false, {kStudyDate, kStudyTime, kStudyId}},
        {"SERIES", BelowStudy, false, {kModality, kSeriesUid, kSeriesNumber}},

        {"IMAGE", BelowSeries, true, {kInstanceNumber}},
        Instances("RT DOSE"),
        Instances("RT STRUCTURE SET"),
        Instances("RT PLAN"),
        Instances("RT TREAT RECORD"),
        Instances("PRESENTATION"),
        Instances("WAVEFORM"),
        Instances("SR DOCUMENT"),
        Instances("KEY OBJECT DOC"),
        Instances("SPECTROSCOPY"),
        Instances("RAW DATA"),
        Instances("REGISTRATION"),
        Instances("FIDUCIAL"),
        Instances("ENCAP DOC"),
        Instances("VALUE MAP"),
        Instances("STEREOMETRIC"),
        Instances("PLAN"),
        Instances("MEASUREMENT"),
        Instances("SURFACE"),
        Instances("SURFACE SCAN"),
        Instances("TRACT"),
        Instances("ASSESSMENT"),
        Instances("RADIOTHERAPY"),
        Instances("ANNOTATION"),
        Instances("INVENTORY"),
        Instances("HANGING PROTOCOL"),
        Instances("PALETTE"),
        Instances("IMPLANT"),
        Instances("IMPLANT GROUP"),
        Instances("IMPLANT ASSY"),
        {"PRIVATE", Anywhere, false, {{0x0004, 0x1432}}},

        {"MRDR", Anywhere, true, {}},
        {"TOPIC", Root, false, {}},
        {"VISIT", Anywhere, false, {}},
        {"RESULTS", Anywhere, false, {}},
        {"INTERPRETATION", Anywhere, false, {}},
        {"STUDY COMPONENT", Anywhere, false, {}},
        {"OVERLAY", BelowSeries, true, {}},
        {"MODALITY LUT", BelowSeries, true, {}},
        {"VOI LUT", BelowSeries, true, {}},
        {"CURVE", BelowSeries, true, {}},
        {"STORED PRINT", Anywhere, true, {}},
        {"PRINT QUEUE", Anywhere, false, {}},
        {"FILM SESSION", Anywhere, false, {}},
        {"FILM BOX", Anywhere, false, {}},
        {"IMAGE BOX", Anywhere, false, {}},
        {"HL7 STRUC DOC", BelowPatient, true, {{0x0040, 0xE001}}},
    };
    return rules;
}

}  // namespace

const RecordRule* RuleOf(std::string_view type) {
    const auto found = std::find_if(Rules().begin(), Rules().end(),
                                    [&](const RecordRule& rule) { return type == rule.type; });
    return found == Rules().end() ? nullptr : &*found;
}

}  // namespace pgtool
