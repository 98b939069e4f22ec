#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "pgkit/sopclass.h"

namespace {

using Lookup = int32_t (*)(const char*, char*);

// The result of a lookup and the text that it leaves in the output.
std::pair<int32_t, std::string> Answer(Lookup lookup, const char* key) {
    char text[128] = "untouched";
    const int32_t result = lookup(key, text);
    return {result, text};
}

std::pair<int32_t, std::string> Is(int32_t result, const char* text) { return {result, text}; }

constexpr char kNoModality[] = "XX";
constexpr char kNoModalityName[] = "<NULL modality>";
constexpr char kNoUidName[] = "<NULL uid>";

// Keys and the texts they give.
using Answers = std::vector<std::pair<const char*, const char*>>;

void ExpectFound(Lookup lookup, const Answers& answers) {
    for (const auto& [key, text] : answers)
        EXPECT_EQ(Answer(lookup, key), Is(0, text)) << key;
}

void ExpectUnknown(Lookup lookup, const std::vector<std::string>& keys, const char* placeholder) {
    for (const std::string& key : keys)
        EXPECT_EQ(Answer(lookup, key.c_str()), Is(1, placeholder)) << key;
}

TEST(ModalityOfSopClass, IsTheMnemonicOfTheClass) {
    const Answers answers = {
        {"1.2.840.10008.5.1.4.1.1.2", "CT"},
        {"1.2.840.10008.5.1.4.1.1.11.1", "PSg"},
        {"1.2.840.10008.5.1.4.1.1.88.33", "SRc"},
    };
    ExpectFound(pgGetSOPClassUIDToModality, answers);
}

TEST(ModalityOfSopClass, ClassesMayShareAMnemonic) {
    const Answers answers = {
        {"1.2.840.10008.5.1.4.1.1.6.1", "US"},    {"1.2.840.10008.5.1.4.1.1.3.1", "US"},
        {"1.2.840.10008.5.1.4.1.1.6", "USr"},     {"1.2.840.10008.5.1.4.1.1.3", "USr"},
        {"1.2.840.10008.5.1.4.1.1.88.65", "SRx"}, {"1.2.840.10008.5.1.4.1.1.88.4", "SRx"},
    };
    ExpectFound(pgGetSOPClassUIDToModality, answers);
}

TEST(ModalityOfSopClass, PrivateStorageClassesHaveOne) {
    const Answers answers = {
        {"1.2.999.1.47.857.1.1", "vwLNr"},     {"1.2.999.1.47.857.1.2", "vwSBa"},
        {"1.2.999.1.47.857.1.3", "vwDIR"},     {"1.2.999.1.47.857.1.4", "vwXFn"},
        {"1.2.999.1.47.857.1.5", "vwBGx"},     {"1.2.999.1.47.857.1.6", "vwBGi"},
        {"1.2.999.1.47.857.1.7", "vwBGf"},     {"1.2.999.1.47.857.1.99", "vwBLB"},
        {"1.2.392.200036.9125.1.1.2", "fjCR"}, {"1.2.392.200036.9116.7.8.1.1.1", "thRAW"},
    };
    ExpectFound(pgGetSOPClassUIDToModality, answers);
}

TEST(ModalityOfSopClass, PrivateServicesHaveNone) {
    ExpectUnknown(pgGetSOPClassUIDToModality,
                  {"1.2.999.1.47.856.1", "1.2.999.1.47.856.2", "1.2.999.1.47.857.1.10"},
                  kNoModality);
}

TEST(ModalityOfSopClass, ComparesWholeUids) {
    ExpectUnknown(pgGetSOPClassUIDToModality,
                  {"1.2.3.4", "", "1.2.840.10008.5.1.4.1.1", "1.2.840.10008.5.1.4.1.1.2 "},
                  kNoModality);
}

TEST(ModalityName, IsTheDescriptionOfTheCode) {
    const Answers answers = {
        {"CT", "Computed Tomography"},
        {"_RLINK", "Report Link"},
    };
    ExpectFound(pgGetModalityName, answers);
}

TEST(ModalityName, KeepsItsSpelling) {
    const Answers answers = {
        {"OP", "Opthtalmology"},
        {"OCT", "Opthtalmic Coherence Tomography"},
        {"CP", "Culposcopy"},
    };
    ExpectFound(pgGetModalityName, answers);
}

TEST(ModalityName, IsCaseSensitive) {
    ExpectUnknown(pgGetModalityName, {"op", "Ct"}, kNoModalityName);
}

TEST(ModalityName, UnknownCodesHaveNone) {
    ExpectUnknown(pgGetModalityName, {"", "CTe"}, kNoModalityName);
}

TEST(UidName, IsTheRegisteredName) {
    const Answers answers = {
        {"1.2.840.10008.1.2.1", "LittleEndianExplicit"},
        {"1.2.840.10008.3.1.1.1", "StandardApplicationContext"},
        {"1.2.999.1.47.856.1", "ZorvaStringCommandChannelSOPClass"},
    };
    ExpectFound(pgGetUIDName, answers);
}

TEST(UidName, UnknownUidsHaveNone) {
    ExpectUnknown(pgGetUIDName, {"1.2.3.4", "", std::string(100000, '1')}, kNoUidName);
}

TEST(SopClassLookups, ANullKeyLeavesThePlaceholder) {
    EXPECT_EQ(Answer(pgGetSOPClassUIDToModality, nullptr), Is(-1, kNoModality));
    EXPECT_EQ(Answer(pgGetModalityName, nullptr), Is(-1, kNoModalityName));
    EXPECT_EQ(Answer(pgGetUIDName, nullptr), Is(-1, kNoUidName));
}

TEST(SopClassLookups, ANullOutputIsRefused) {
    for (const Lookup lookup : {pgGetSOPClassUIDToModality, pgGetModalityName, pgGetUIDName}) {
        EXPECT_EQ(lookup("1.2.840.10008.1.2", nullptr), -1);
        EXPECT_EQ(lookup(nullptr, nullptr), -1);
    }
}

TEST(SopClassLookups, WriteTheTextAndItsTerminatorOnly) {
    char text[8] = "abcdefg";
    EXPECT_EQ(pgGetSOPClassUIDToModality("1.2.840.10008.5.1.4.1.1.2", text), 0);
    EXPECT_EQ(std::string(text, 8), std::string("CT\0defg\0", 8));
}

}  // namespace
