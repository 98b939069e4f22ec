// Which element fills which text of the objects, on every level, and how it is fitted in.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "dicomdir/object_classes.h"
#include "support/browsed_directory.h"
#include "support/directory_builder.h"

namespace {

using pgkit_test::BrowsedDirectory;
using pgkit_test::DirectoryBuilder;
using pgkit_test::DirectoryRecordSpec;
using namespace pgkit_test::object_classes;

enum class Blanks { Kept, Dropped };  // at both ends

struct TextKey {
    std::string recordType;
    uint16_t group;
    uint16_t element;
    std::string vr;
    std::function<std::string(BrowsedDirectory&)> read;
    size_t longest;
    Blanks blanks = Blanks::Kept;
    std::string missing = "";
};

// "STUDY_0008_0050"
std::string Name(const TextKey& key) {
    char tag[12];
    std::snprintf(tag, sizeof tag, "_%04X_%04X", key.group, key.element);
    std::string name = key.recordType + tag;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

void PrintTo(const TextKey& key, std::ostream* out) { *out << Name(key); }

template <typename Class>
Class& FirstOf(BrowsedDirectory& browsed) {
    if constexpr (std::is_same_v<Class, Patient>) {
        return browsed.Patient();
    } else if constexpr (std::is_same_v<Class, Study>) {
        return browsed.Study();
    } else if constexpr (std::is_same_v<Class, Series>) {
        return browsed.Series();
    } else {
        return dynamic_cast<Class&>(browsed.Leaf());
    }
}

template <typename Class, size_t Size>
std::function<std::string(BrowsedDirectory&)> Text(char (Class::*field)[Size]) {
    return [field](BrowsedDirectory& browsed) { return FirstOf<Class>(browsed).*field; };
}

const std::vector<TextKey>& TextKeys() {
    constexpr Blanks kept = Blanks::Kept;
    constexpr Blanks dropped = Blanks::Dropped;
    static const std::vector<TextKey> keys = {
        {"PATIENT", 0x0010, 0x0020, "LO", Text(&Patient::patientId), 64, dropped},
        {"PATIENT", 0x0010, 0x0010, "PN", Text(&Patient::patientsName), 194, dropped},
        {"PATIENT", 0x0010, 0x0030, "DA", Text(&Patient::birthDate), 8},
        {"PATIENT", 0x0010, 0x0040, "CS", Text(&Patient::sex), 16},
        {"PATIENT", 0x0008, 0x0005, "CS", Text(&Patient::specificCharacterSet), 50},

        {"STUDY", 0x0020, 0x000D, "UI", Text(&Study::studyInstanceUid), 64, dropped},
        {"STUDY", 0x0020, 0x0010, "SH", Text(&Study::studyId), 16, dropped},
        {"STUDY", 0x0008, 0x0020, "DA", Text(&Study::studyDate), 8, dropped},
        {"STUDY", 0x0008, 0x0030, "TM", Text(&Study::studyTime), 16, dropped},
        {"STUDY", 0x0008, 0x0050, "SH", Text(&Study::accessionNumber), 16, dropped},
        {"STUDY", 0x0008, 0x1030, "LO", Text(&Study::studyDescription), 64, dropped},
        {"STUDY", 0x0008, 0x0070, "LO", Text(&Study::manufacturer), 64, dropped},
        {"STUDY", 0x0008, 0x0090, "PN", Text(&Study::referringPhysiciansName), 194, dropped},
        {"STUDY", 0x0008, 0x0005, "CS", Text(&Study::specificCharacterSet), 50, dropped},

        {"SERIES", 0x0020, 0x000E, "UI", Text(&Series::seriesInstanceUid), 64, dropped},
        {"SERIES", 0x0008, 0x103E, "LO", Text(&Series::seriesDescription), 64, dropped},
        {"SERIES", 0x0020, 0x0011, "IS", Text(&Series::seriesNumber), 16, dropped},
        {"SERIES", 0x0008, 0x0060, "CS", Text(&Series::modality), 16, dropped},
        {"SERIES", 0x0008, 0x0080, "LO", Text(&Series::institutionName), 64, dropped},
        {"SERIES", 0x0008, 0x0081, "ST", Text(&Series::institutionAddress), 1024, dropped},
        {"SERIES", 0x0008, 0x1050, "PN", Text(&Series::performingPhysiciansName), 194, dropped},
        {"SERIES", 0x0008, 0x0005, "CS", Text(&Series::specificCharacterSet), 50, dropped},

        {"OTHER", 0x0004, 0x1430, "CS", Text(&Leaf::recordType), 16, dropped},
        {"OTHER", 0x0004, 0x1500, "CS", Text(&Leaf::referencedFileId), 259, kept,
         "No.ReferencedFileID"},
        {"OTHER", 0x0004, 0x1510, "UI", Text(&Leaf::sopClassUid), 64, dropped, "No.SOPClass.UID"},
        {"OTHER", 0x0004, 0x1511, "UI", Text(&Leaf::instanceUid), 64, dropped},
        {"OTHER", 0x0004, 0x1512, "UI", Text(&Leaf::transferSyntaxUid), 64, dropped,
         "No.TransferSyntax.UID"},
        {"OTHER", 0x0008, 0x0005, "CS", Text(&Leaf::specificCharacterSet), 50},

        {"IMAGE", 0x0028, 0x0004, "CS", Text(&Image::photometricInterpretation), 16, kept, "??"},
        {"IMAGE", 0x0008, 0x0008, "CS", Text(&Image::imageType), 271},
        {"IMAGE", 0x0050, 0x0004, "CS", Text(&Image::calibrationImage), 16},

        {"SR DOCUMENT", 0x0008, 0x0023, "DA", Text(&Report::contentDate), 8},
        {"SR DOCUMENT", 0x0008, 0x0033, "TM", Text(&Report::contentTime), 16},
        {"SR DOCUMENT", 0x0040, 0xA491, "CS", Text(&Report::completionFlag), 16},
        {"SR DOCUMENT", 0x0040, 0xA493, "CS", Text(&Report::verificationFlag), 16},
        {"SR DOCUMENT", 0x0040, 0xA030, "DT", Text(&Report::verificationDateTime), 26},

        {"KEY OBJECT DOC", 0x0008, 0x0023, "DA", Text(&KeyObject::contentDate), 8},
        {"KEY OBJECT DOC", 0x0008, 0x0033, "TM", Text(&KeyObject::contentTime), 16},

        {"PRESENTATION", 0x0070, 0x0080, "CS", Text(&Presentation::contentLabel), 16},
        {"PRESENTATION", 0x0070, 0x0081, "LO", Text(&Presentation::contentDescription), 64},
        {"PRESENTATION", 0x0070, 0x0082, "DA", Text(&Presentation::creationDate), 8},
        {"PRESENTATION", 0x0070, 0x0083, "TM", Text(&Presentation::creationTime), 16},
        {"PRESENTATION", 0x0070, 0x0084, "PN", Text(&Presentation::contentCreatorsName), 194},

        {"ENCAP DOC", 0x0008, 0x0023, "DA", Text(&Document::contentDate), 8},
        {"ENCAP DOC", 0x0008, 0x0033, "TM", Text(&Document::contentTime), 16},
        {"ENCAP DOC", 0x0042, 0x0010, "ST", Text(&Document::documentTitle), 1024},
        {"ENCAP DOC", 0x0042, 0x0012, "LO", Text(&Document::mimeType), 64},

        {"WAVEFORM", 0x0008, 0x0023, "DA", Text(&Waveform::contentDate), 8},
        {"WAVEFORM", 0x0008, 0x0033, "TM", Text(&Waveform::contentTime), 16},
        {"RAW DATA", 0x0008, 0x0023, "DA", Text(&RawData::contentDate), 8},
        {"RAW DATA", 0x0008, 0x0033, "TM", Text(&RawData::contentTime), 16},
    };
    return keys;
}

// The record of a type in a directory of one patient.
DirectoryRecordSpec& Record(DirectoryBuilder& directory, const std::string& type) {
    const size_t patient = directory.Patient("P", "DOE");
    const size_t study = directory.Study(patient, "S");
    const size_t series = directory.Series(study, "E", "OT");
    const size_t leaf = directory.Child(series, "OTHER");
    if (type == "PATIENT") return directory[patient];
    if (type == "STUDY") return directory[study];
    if (type == "SERIES") return directory[series];
    return directory[leaf].Set(0x0004, 0x1430, "CS", type);
}

// A record that has every key of its type, filled with another text.
class KeyText : public testing::TestWithParam<TextKey> {
  protected:
    KeyText() {
        for (const TextKey& key : TextKeys()) {
            if (key.recordType == GetParam().recordType)
                record_.Set(key.group, key.element, key.vr, "OTHER");
        }
    }

    // The text when the element has a value.
    std::string Of(const std::string& value) {
        record_.Set(GetParam().group, GetParam().element, GetParam().vr, value);
        return Read();
    }

    std::string Read() {
        BrowsedDirectory browsed(directory_);
        return GetParam().read(browsed);
    }

    DirectoryBuilder directory_;
    DirectoryRecordSpec& record_ = Record(directory_, GetParam().recordType);
};

TEST_P(KeyText, IsTheValueOfItsElement) { EXPECT_EQ(Of("A\\b 1.23"), "A\\b 1.23"); }

TEST_P(KeyText, KeepsOrDropsTheBlanksAtBothEnds) {
    EXPECT_EQ(Of(" A b  "), GetParam().blanks == Blanks::Kept ? " A b  " : "A b");
}

TEST_P(KeyText, IsADefaultWithoutItsElement) {
    record_.Remove(GetParam().group, GetParam().element);
    EXPECT_EQ(Read(), GetParam().missing);
}

TEST_P(KeyText, IsEmptyWhenItsElementIs) { EXPECT_EQ(Of(""), ""); }

TEST_P(KeyText, IsCutToFit) {
    EXPECT_EQ(Of(std::string(2000, 'x')), std::string(GetParam().longest, 'x'));
}

INSTANTIATE_TEST_SUITE_P(Every, KeyText, testing::ValuesIn(TextKeys()),
                         [](const auto& instance) { return Name(instance.param); });

}  // namespace
