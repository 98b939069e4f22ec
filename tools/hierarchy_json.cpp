#include <array>
#include <cstdio>

#include "hierarchy_output.h"
#include "json_writer.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

// By LeafFile.
constexpr std::array<const char*, 4> kFileStates = {"present", "missing", "outside", "none"};

class HierarchyPrinter {
  public:
    explicit HierarchyPrinter(Medium& medium) : medium_(medium), json_(stdout) {}

    void Print(const Hierarchy& hierarchy) {
        json_.BeginObject();
        PrintChildren<PGX_DicomDirPatientNode>("patients", hierarchy.patients);
        PrintCommon(hierarchy.common);
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
        Field("patientId", patient.patientId, VR_LO);
        Field("patientsName", patient.patientsName, VR_PN);
        Field("birthDate", patient.birthDate, VR_DA);
        Field("sex", patient.sex, VR_CS);
        Field("specificCharacterSet", patient.specificCharacterSet, VR_CS);
        PrintChildren<PGX_DicomDirStudyNode>("studies", patient.studies);
    }

    void PrintMembers(PGX_DicomDirStudyNode& study) {
        ++counts_.studies;
        Field("studyInstanceUid", study.studyInstanceUid, VR_UI);
        Field("studyId", study.studyId, VR_SH);
        Field("studyDate", study.studyDate, VR_DA);
        Field("studyTime", study.studyTime, VR_TM);
        Field("accessionNumber", study.accessionNumber, VR_SH);
        Field("studyDescription", study.studyDescription, VR_LO);
        Field("manufacturer", study.manufacturer, VR_LO);
        Field("referringPhysiciansName", study.referringPhysiciansName, VR_PN);
        Field("modality", study.modality, VR_CS);
        Field("specificCharacterSet", study.specificCharacterSet, VR_CS);
        PrintChildren<PGX_DicomDirSeriesNode>("series", study.series);
    }

    void PrintMembers(PGX_DicomDirSeriesNode& series) {
        ++counts_.series;
        Field("seriesInstanceUid", series.seriesInstanceUid, VR_UI);
        Field("seriesDescription", series.seriesDescription, VR_LO);
        Field("seriesNumber", series.seriesNumber, VR_IS);
        Field("modality", series.modality, VR_CS);
        Field("institutionName", series.institutionName, VR_LO);
        Field("institutionAddress", series.institutionAddress, VR_ST);
        Field("performingPhysiciansName", series.performingPhysiciansName, VR_PN);
        Field("specificCharacterSet", series.specificCharacterSet, VR_CS);
        json_.Boolean("hasIcon", series.icon != nullptr);
        json_.Boolean("isKeyImages", (series.flags & PG_SERIES_KEY_IMAGES) != 0);
        PrintChildren<PGX_DicomDirLeafNode>("leaves", series.leaves);
    }

    void PrintMembers(PGX_DicomDirLeafNode& leaf) {
        ++counts_.instances;
        json_.Text("type", NameOfType(leaf));
        Field("recordType", leaf.recordType, VR_CS);
        const FileOfLeaf file = FileOf(leaf, medium_);
        counts_.Count(file.state);
        const bool isPresent = file.state == LeafFile::Present;
        json_.Text("fullPath", isPresent ? WellFormedUtf8(file.path) : AnyToUtf8(leaf.fullPath));
        json_.Text("referencedFileId", AnyToUtf8(leaf.referencedFileId));
        Field("instanceUid", leaf.instanceUid, VR_UI);
        Field("sopClassUid", leaf.sopClassUid, VR_UI);
        Field("transferSyntaxUid", leaf.transferSyntaxUid, VR_UI);
        json_.Number("instanceNumber", leaf.instanceNumber);
        Field("specificCharacterSet", leaf.specificCharacterSet, VR_CS);
        json_.Number("referencedDataSetSize", leaf.referencedDataSetSize);
        json_.Boolean("isMarked", (leaf.flags & PG_LEAF_MARKED) != 0);
        json_.Text("file", kFileStates[static_cast<size_t>(file.state)]);
        if (leaf.leafType == PG_LEAF_IMAGE) PrintImage(static_cast<PGX_DicomDirImageNode&>(leaf));
    }

    // Left out where there are none.
    void PrintCommon(const std::vector<pgkit::item>& records) {
        if (records.empty()) return;
        json_.Key("common");
        json_.BeginArray();
        for (const pgkit::item& record : records) {
            const CommonInstance instance = ReadCommon(record, medium_);
            ++counts_.instances;
            json_.BeginObject();
            json_.Text("recordType", AnyToUtf8(instance.type));
            json_.Text("name", instance.name);
            PrintFile(instance.file, AnyToUtf8(instance.fileId));
            json_.Text("instanceUid", AnyToUtf8(instance.instanceUid));
            json_.Text("sopClassUid", AnyToUtf8(instance.sopClassUid));
            json_.Text("transferSyntaxUid", AnyToUtf8(instance.transferSyntaxUid));
            json_.EndObject();
        }
        json_.EndArray();
    }

    void PrintFile(const FileOfLeaf& file, const std::string& fileId) {
        counts_.Count(file.state);
        json_.Text("fullPath", WellFormedUtf8(file.path));
        json_.Text("referencedFileId", fileId);
        json_.Text("file", kFileStates[static_cast<size_t>(file.state)]);
    }

    void PrintImage(PGX_DicomDirImageNode& image) {
        json_.Number("rows", image.rows);
        json_.Number("columns", image.columns);
        json_.Number("numberOfFrames", image.numberOfFrames);
        Field("photometricInterpretation", image.photometricInterpretation, VR_CS);
        Field("imageType", image.imageType, VR_CS);
        json_.Boolean("hasIcon", image.icon != nullptr);
    }

    void PrintCounts() {
        json_.Key("counts");
        json_.BeginObject();
        json_.Number("patients", static_cast<int64_t>(counts_.patients));
        json_.Number("studies", static_cast<int64_t>(counts_.studies));
        json_.Number("series", static_cast<int64_t>(counts_.series));
        json_.Number("instances", static_cast<int64_t>(counts_.instances));
        json_.Number("missingFiles", static_cast<int64_t>(counts_.missingFiles));
        if (counts_.outsideFiles != 0) {
            json_.Number("outsideFiles", static_cast<int64_t>(counts_.outsideFiles));
        }
        json_.EndObject();
    }

    void Field(const char* key, const char* field, uint32_t valueRep) {
        json_.Text(key, FieldToUtf8(field, valueRep, characterSet_.c_str()));
    }

    Medium& medium_;
    JsonWriter json_;
    std::string characterSet_;  // of the object whose members are printed
    HierarchyCounts counts_;
};

}  // namespace

void PrintJson(const Hierarchy& hierarchy, Medium& medium) {
    HierarchyPrinter(medium).Print(hierarchy);
}

}  // namespace pgtool
