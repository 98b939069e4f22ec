#include "verify/record_rules.h"

#include <algorithm>

#include "tags.h"

namespace pgtool {

namespace {

// Retired types are known, their keys are not looked at.
const std::vector<RecordRule>& Rules() {
    using enum RecordPlace;
    using namespace tags;
    const std::vector<pgkit::tag> content = {kContentDate, kContentTime};
    const std::vector<pgkit::tag> identified = {kContentDate, kContentTime, kInstanceNumber,
                                                kContentLabel};
    static const std::vector<RecordRule> rules = {
        {"PATIENT", Root, false, {{0x0010, 0x0020}}},
        {"STUDY", BelowPatient, false, {{0x0008, 0x0020}, {0x0008, 0x0030}, {0x0020, 0x0010}}},
        {"SERIES", BelowStudy, false, {{0x0008, 0x0060}, {0x0020, 0x000E}, {0x0020, 0x0011}}},

        {"IMAGE", BelowSeries, true, {kInstanceNumber}},
        {"RT DOSE", BelowSeries, true, {kInstanceNumber, {0x3004, 0x000A}}},
        {"RT STRUCTURE SET", BelowSeries, true, {kInstanceNumber, {0x3006, 0x0002}}},
        {"RT PLAN", BelowSeries, true, {kInstanceNumber, {0x300A, 0x0002}}},
        {"RT TREAT RECORD", BelowSeries, true, {kInstanceNumber}},
        {"PRESENTATION",
         BelowSeries,
         true,
         {{0x0070, 0x0082}, {0x0070, 0x0083}, kInstanceNumber, kContentLabel}},
        {"WAVEFORM", BelowSeries, true, {kInstanceNumber, kContentDate, kContentTime}},
        {"SR DOCUMENT",
         BelowSeries,
         true,
         {kInstanceNumber,
          {0x0040, 0xA491},
          {0x0040, 0xA493},
          kContentDate,
          kContentTime,
          kConceptName}},
        {"KEY OBJECT DOC",
         BelowSeries,
         true,
         {kInstanceNumber, kContentDate, kContentTime, kConceptName}},
        {"SPECTROSCOPY",
         BelowSeries,
         true,
         {{0x0008, 0x0008},
          kContentDate,
          kContentTime,
          kInstanceNumber,
          {0x0028, 0x0008},
          {0x0028, 0x0010},
          {0x0028, 0x0011},
          {0x0028, 0x9001},
          {0x0028, 0x9002}}},
        {"RAW DATA", BelowSeries, true, content},
        {"REGISTRATION", BelowSeries, true, identified},
        {"FIDUCIAL", BelowSeries, true, identified},
        {"ENCAP DOC", BelowSeries, true, {kInstanceNumber, {0x0042, 0x0012}}},
        {"VALUE MAP", BelowSeries, true, identified},
        {"STEREOMETRIC", BelowSeries, true, {}},
        {"PLAN", BelowSeries, true, {}},
        {"MEASUREMENT", BelowSeries, true, {kInstanceNumber, kContentDate, kContentTime}},
        {"SURFACE", BelowSeries, true, identified},
        {"SURFACE SCAN", BelowSeries, true, content},
        {"TRACT", BelowSeries, true, identified},
        {"ASSESSMENT", BelowSeries, true, {}},
        {"RADIOTHERAPY", BelowSeries, true, {}},
        {"ANNOTATION", BelowSeries, true, {}},
        {"INVENTORY", Root, true, {}},

        {"HANGING PROTOCOL",
         Root,
         true,
         {{0x0072, 0x0002},
          {0x0072, 0x0004},
          {0x0072, 0x0006},
          {0x0072, 0x0008},
          {0x0072, 0x000A},
          {0x0072, 0x000C},
          {0x0072, 0x0014}}},
        {"PALETTE", Root, true, {kContentLabel}},
        {"IMPLANT", Root, true, {}},
        {"IMPLANT GROUP", Root, true, {}},
        {"IMPLANT ASSY", Root, true, {}},
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
