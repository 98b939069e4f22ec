#include <cstdio>
#include <string_view>

#include "hierarchy_output.h"
#include "utf8_text.h"
#include "words.h"

namespace pgtool {

namespace {

// One line of the tree: an indentation, a title and the keys that are not empty.
class Line {
  public:
    Line(int level, const std::string& title, const char* characterSet, bool raw)
        : text_(static_cast<size_t>(2 * level), ' '), characterSet_(characterSet), raw_(raw) {
        text_ += title;
    }
    ~Line() { std::puts(text_.c_str()); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    Line& Key(const char* key, uint32_t valueRep) {
        return Add(raw_ ? key : FieldToUtf8(key, valueRep, characterSet_));
    }
    Line& Text(const std::string& utf8) { return Add(utf8); }
    Line& FileId(const char* fileId) { return Add(raw_ ? fileId : AnyToUtf8(fileId)); }
    Line& Uid(const char* uid) {
        return uid[0] == '\0' ? *this : Key(("[" + std::string(uid) + "]").c_str(), VR_UI);
    }
    Line& Remark(const char* remark) {
        text_ += std::string("  (") + remark + ")";
        return *this;
    }

  private:
    Line& Add(std::string_view key) {
        key = key.substr(0, key.find_last_not_of(' ') + 1);
        if (!key.empty()) text_ += "  " + (raw_ ? std::string(key) : WithEscapes(key));
        return *this;
    }

    std::string text_;
    const char* characterSet_;
    bool raw_;
};

class TreePrinter {
  public:
    TreePrinter(Medium& medium, bool raw) : medium_(medium), raw_(raw) {}

    void Print(PGX_DicomDirPatientNode& patient) {
        ++counts_.patients;
        Line(0, "Patient", patient.specificCharacterSet, raw_)
            .Key(patient.patientId, VR_LO)
            .Key(patient.patientsName, VR_PN)
            .Key(patient.birthDate, VR_DA)
            .Key(patient.sex, VR_CS);
        ForEach<PGX_DicomDirStudyNode>(patient.studies, [&](auto& study) { Print(study); });
    }

    void Print(const CommonInstance& instance) {
        ++counts_.instances;
        Line line(0, instance.type, "", raw_);
        line.Text(instance.name).FileId(instance.fileId.c_str()).Uid(instance.instanceUid.c_str());
        Remark(line, instance.file.state);
    }

    const HierarchyCounts& Counts() const { return counts_; }

  private:
    void Print(PGX_DicomDirStudyNode& study) {
        ++counts_.studies;
        Line(1, "Study", study.specificCharacterSet, raw_)
            .Key(study.studyId, VR_SH)
            .Key(study.studyDate, VR_DA)
            .Key(study.studyTime, VR_TM)
            .Key(study.modality, VR_CS)
            .Key(study.studyDescription, VR_LO)
            .Uid(study.studyInstanceUid);
        ForEach<PGX_DicomDirSeriesNode>(study.series, [&](auto& series) { Print(series); });
    }

    void Print(PGX_DicomDirSeriesNode& series) {
        ++counts_.series;
        Line(2, "Series", series.specificCharacterSet, raw_)
            .Key(series.seriesNumber, VR_IS)
            .Key(series.modality, VR_CS)
            .Key(series.seriesDescription, VR_LO)
            .Uid(series.seriesInstanceUid);
        ForEach<PGX_DicomDirLeafNode>(series.leaves, [&](auto& leaf) { Print(leaf); });
    }

    void Print(PGX_DicomDirLeafNode& leaf) {
        ++counts_.instances;
        Line line(3, std::to_string(leaf.instanceNumber), leaf.specificCharacterSet, raw_);
        line.Key(leaf.recordType, VR_CS).FileId(leaf.referencedFileId).Uid(leaf.instanceUid);
        Remark(line, FileOf(leaf, medium_).state);
    }

    void Remark(Line& line, LeafFile file) {
        counts_.Count(file);
        if (file == LeafFile::Missing) line.Remark("missing");
        if (file == LeafFile::Outside) line.Remark("outside");
    }

    Medium& medium_;
    bool raw_;
    HierarchyCounts counts_;
};

}  // namespace

void PrintTree(const Hierarchy& hierarchy, Medium& medium, bool raw) {
    TreePrinter printer(medium, raw);
    ForEach<PGX_DicomDirPatientNode>(hierarchy.patients,
                                     [&](auto& patient) { printer.Print(patient); });
    for (const pgkit::item& record : hierarchy.common)
        printer.Print(ReadCommon(record, medium));
    const HierarchyCounts& counts = printer.Counts();
    std::string outside;
    if (counts.outsideFiles != 0) {
        outside = ", " + Counted(counts.outsideFiles, "file", "files") + " outside";
    }
    std::printf(
        "%s, %s, %zu series, %s, %s%s\n", Counted(counts.patients, "patient", "patients").c_str(),
        Counted(counts.studies, "study", "studies").c_str(), counts.series,
        Counted(counts.instances, "instance", "instances").c_str(),
        Counted(counts.missingFiles, "missing file", "missing files").c_str(), outside.c_str());
}

}  // namespace pgtool
