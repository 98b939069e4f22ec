#include <cstdio>
#include <string_view>

#include "hierarchy_output.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

// One line of the tree: an indentation, a title and the keys that are not empty.
class Line {
  public:
    Line(int level, const char* title, const char* characterSet)
        : text_(static_cast<size_t>(2 * level), ' '), characterSet_(characterSet) {
        text_ += title;
    }
    ~Line() { std::puts(text_.c_str()); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    Line& Key(std::string_view key) {
        key = key.substr(0, key.find_last_not_of(' ') + 1);
        if (!key.empty()) text_ += "  " + WithoutControls(ToUtf8(key, characterSet_));
        return *this;
    }
    Line& Uid(const char* uid) {
        return uid[0] == '\0' ? *this : Key("[" + std::string(uid) + "]");
    }
    Line& Remark(const char* remark) {
        text_ += std::string("  (") + remark + ")";
        return *this;
    }

  private:
    std::string text_;
    std::string characterSet_;
};

class TreePrinter {
  public:
    explicit TreePrinter(Medium& medium) : medium_(medium) {}

    void Print(PGX_DicomDirPatientNode& patient) {
        ++counts_.patients;
        Line(0, "Patient", patient.specificCharacterSet)
            .Key(patient.patientId)
            .Key(patient.patientsName)
            .Key(patient.birthDate)
            .Key(patient.sex);
        ForEach<PGX_DicomDirStudyNode>(patient.studies, [&](auto& study) { Print(study); });
    }

    const HierarchyCounts& Counts() const { return counts_; }

  private:
    void Print(PGX_DicomDirStudyNode& study) {
        ++counts_.studies;
        Line(1, "Study", study.specificCharacterSet)
            .Key(study.studyId)
            .Key(study.studyDate)
            .Key(study.studyTime)
            .Key(study.modality)
            .Key(study.studyDescription)
            .Uid(study.studyInstanceUid);
        ForEach<PGX_DicomDirSeriesNode>(study.series, [&](auto& series) { Print(series); });
    }

    void Print(PGX_DicomDirSeriesNode& series) {
        ++counts_.series;
        Line(2, "Series", series.specificCharacterSet)
            .Key(series.seriesNumber)
            .Key(series.modality)
            .Key(series.seriesDescription)
            .Uid(series.seriesInstanceUid);
        ForEach<PGX_DicomDirLeafNode>(series.leaves, [&](auto& leaf) { Print(leaf); });
    }

    void Print(PGX_DicomDirLeafNode& leaf) {
        ++counts_.instances;
        Line line(3, std::to_string(leaf.instanceNumber).c_str(), leaf.specificCharacterSet);
        line.Key(leaf.recordType).Key(leaf.referencedFileId).Uid(leaf.instanceUid);
        const LeafFile file = FileOf(leaf, medium_);
        counts_.Count(file);
        if (file == LeafFile::Missing) line.Remark("missing");
        if (file == LeafFile::Outside) line.Remark("outside");
    }

    Medium& medium_;
    HierarchyCounts counts_;
};

std::string Count(size_t count, const char* one, const char* several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

}  // namespace

void PrintTree(PGX_List& patients, Medium& medium) {
    TreePrinter printer(medium);
    ForEach<PGX_DicomDirPatientNode>(patients, [&](auto& patient) { printer.Print(patient); });
    const HierarchyCounts& counts = printer.Counts();
    std::string outside;
    if (counts.outsideFiles != 0) {
        outside = ", " + Count(counts.outsideFiles, "file", "files") + " outside";
    }
    std::printf(
        "%s, %s, %zu series, %s, %s%s\n", Count(counts.patients, "patient", "patients").c_str(),
        Count(counts.studies, "study", "studies").c_str(), counts.series,
        Count(counts.instances, "instance", "instances").c_str(),
        Count(counts.missingFiles, "missing file", "missing files").c_str(), outside.c_str());
}

}  // namespace pgtool
