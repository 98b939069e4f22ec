#include <array>
#include <cstdio>

#include "hierarchy_output.h"
#include "json_writer.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

class HierarchyPrinter {
  public:
    explicit HierarchyPrinter(Medium& medium) : medium_(medium), json_(stdout) {}

    void Print(PGX_List& patients) {
        json_.BeginObject();
        PrintChildren<PGX_DicomDirPatientNode>("patients", patients);
        PrintCounts();
        json_.EndObject();
    }

  private:
    template <typename Object>
    void PrintChildren(const char* key, PGX_List& list) {
        json_.Key(key);
        json_.BeginArray();
        ForEach<Object>(list, [&](Object& object) {
            json_.BeginObject();
            characterSet_ = object.specificCharacterSet;
            PrintMembers(object);
            json_.EndObject();
        });
        json_.EndArray();
    }

    void PrintMembers(PGX_DicomDirPatientNode& patient) {
        ++counts_.patients;
        Text("patientId", patient.patientId);
        Text("patientsName", patient.patientsName);
        Text("birthDate", patient.birthDate);
        Text("sex", patient.sex);
        Text("specificCharacterSet", patient.specificCharacterSet);
        PrintChildren<PGX_DicomDirStudyNode>("studies", patient.studies);
    }

    void PrintMembers(PGX_DicomDirStudyNode& study) {
        ++counts_.studies;
        Text("studyInstanceUid", study.studyInstanceUid);
        Text("studyId", study.studyId);
        Text("studyDate", study.studyDate);
        Text("studyTime", study.studyTime);
        Text("accessionNumber", study.accessionNumber);
        Text("studyDescription", study.studyDescription);
        Text("manufacturer", study.manufacturer);
        Text("referringPhysiciansName", study.referringPhysiciansName);
        Text("modality", study.modality);
        Text("specificCharacterSet", study.specificCharacterSet);
        PrintChildren<PGX_DicomDirSeriesNode>("series", study.series);
    }

    void PrintMembers(PGX_DicomDirSeriesNode& series) {
        ++counts_.series;
        Text("seriesInstanceUid", series.seriesInstanceUid);
        Text("seriesDescription", series.seriesDescription);
        Text("seriesNumber", series.seriesNumber);
        Text("modality", series.modality);
        Text("institutionName", series.institutionName);
        Text("institutionAddress", series.institutionAddress);
        Text("performingPhysiciansName", series.performingPhysiciansName);
        Text("specificCharacterSet", series.specificCharacterSet);
        Boolean("hasIcon", series.icon != nullptr);
        Boolean("isKeyImages", (series.flags & PG_SERIES_KEY_IMAGES) != 0);
        PrintChildren<PGX_DicomDirLeafNode>("leaves", series.leaves);
    }

    void PrintMembers(PGX_DicomDirLeafNode& leaf) {
        ++counts_.instances;
        Text("type", NameOfType(leaf));
        Text("recordType", leaf.recordType);
        Text("fullPath", leaf.fullPath);
        Text("referencedFileId", leaf.referencedFileId);
        Text("instanceUid", leaf.instanceUid);
        Text("sopClassUid", leaf.sopClassUid);
        Text("transferSyntaxUid", leaf.transferSyntaxUid);
        Number("instanceNumber", leaf.instanceNumber);
        Text("specificCharacterSet", leaf.specificCharacterSet);
        Number("referencedDataSetSize", leaf.referencedDataSetSize);
        Boolean("isMarked", (leaf.flags & PG_LEAF_MARKED) != 0);
        PrintFile(leaf);
        if (leaf.leafType == PG_LEAF_IMAGE) PrintImage(static_cast<PGX_DicomDirImageNode&>(leaf));
    }

    void PrintFile(PGX_DicomDirLeafNode& leaf) {
        const LeafFile file = FileOf(leaf, medium_);
        counts_.Count(file);
        constexpr std::array<const char*, 4> kNames = {"present", "missing", "outside", "none"};
        Text("file", kNames[static_cast<size_t>(file)]);
    }

    void PrintImage(PGX_DicomDirImageNode& image) {
        Number("rows", image.rows);
        Number("columns", image.columns);
        Number("numberOfFrames", image.numberOfFrames);
        Text("photometricInterpretation", image.photometricInterpretation);
        Text("imageType", image.imageType);
        Boolean("hasIcon", image.icon != nullptr);
    }

    void PrintCounts() {
        json_.Key("counts");
        json_.BeginObject();
        Number("patients", static_cast<int64_t>(counts_.patients));
        Number("studies", static_cast<int64_t>(counts_.studies));
        Number("series", static_cast<int64_t>(counts_.series));
        Number("instances", static_cast<int64_t>(counts_.instances));
        Number("missingFiles", static_cast<int64_t>(counts_.missingFiles));
        if (counts_.outsideFiles != 0) {
            Number("outsideFiles", static_cast<int64_t>(counts_.outsideFiles));
        }
        json_.EndObject();
    }

    void Text(const char* key, const char* text) {
        json_.Key(key);
        json_.Text(ToUtf8(text, characterSet_));
    }
    void Number(const char* key, int64_t number) {
        json_.Key(key);
        json_.Number(number);
    }
    void Boolean(const char* key, bool value) {
        json_.Key(key);
        json_.Boolean(value);
    }

    Medium& medium_;
    JsonWriter json_;
    std::string characterSet_;  // of the object whose members are printed
    HierarchyCounts counts_;
};

}  // namespace

void PrintJson(PGX_List& patients, Medium& medium) { HierarchyPrinter(medium).Print(patients); }

}  // namespace pgtool
