#include "support/browsed_directory.h"

#include <sstream>
#include <stdexcept>
#include <string_view>

namespace pgkit_test {

namespace {

template <typename Object, typename Describe>
std::string Join(PGX_List& list, Describe describe) {
    std::string text;
    for (PGX_ListElement* cell = list.GetFirstPosition(); cell != nullptr; cell = cell->next) {
        if (!text.empty()) text += ' ';
        text += describe(*static_cast<Object*>(cell->data));
    }
    return text;
}

std::string OutlineOf(PGX_DicomDirLeafNode& leaf) { return leaf.instanceUid; }

std::string OutlineOf(PGX_DicomDirSeriesNode& series) {
    return series.seriesInstanceUid +
           ("(" +
            Join<PGX_DicomDirLeafNode>(series.leaves, [](auto& leaf) { return OutlineOf(leaf); })) +
           ")";
}

std::string OutlineOf(PGX_DicomDirStudyNode& study) {
    return study.studyInstanceUid +
           ("(" + Join<PGX_DicomDirSeriesNode>(study.series,
                                               [](auto& series) { return OutlineOf(series); })) +
           ")";
}

std::string OutlineOf(PGX_DicomDirPatientNode& patient) {
    return patient.patientId +
           ("(" + Join<PGX_DicomDirStudyNode>(patient.studies,
                                              [](auto& study) { return OutlineOf(study); })) +
           ")";
}

std::string WithoutNewPatients(const std::string& output) {
    std::istringstream lines(output);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("Patient created ")) kept += line + "\n";
    }
    return kept;
}

template <typename Object>
Object& At(PGX_List* list, int32_t index) {
    void* object = list == nullptr ? nullptr : list->GetAt(index);
    if (object == nullptr) throw std::out_of_range("no such object in the hierarchy");
    return *static_cast<Object*>(object);
}

}  // namespace

std::string Outline(PGX_List* patients) {
    if (patients == nullptr) return "null";
    return Join<PGX_DicomDirPatientNode>(*patients,
                                         [](auto& patient) { return OutlineOf(patient); });
}

std::string Upper(std::string path) {
    for (char& c : path)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return path;
}

BrowsedDirectory::BrowsedDirectory(const Bytes& file, uint32_t maxLoadLength) {
    const std::string path = LibraryPath(files_.Write("DICOMDIR", file));
    folder_ = path.substr(0, path.rfind('\\'));
    output_ = CapturePrinted([&] {
                  EXPECT_EQ(directory_.OpenDicomDir(path.c_str(), maxLoadLength), 1);
                  directory_.Browse(nullptr, nullptr);
              }).out;
    messages_ = WithoutNewPatients(output_);
}

PGX_DicomDirPatientNode& BrowsedDirectory::Patient(int32_t patient) {
    return At<PGX_DicomDirPatientNode>(directory_.GetPatientList(), patient);
}

PGX_DicomDirStudyNode& BrowsedDirectory::Study(int32_t patient, int32_t study) {
    return At<PGX_DicomDirStudyNode>(&Patient(patient).studies, study);
}

PGX_DicomDirSeriesNode& BrowsedDirectory::Series(int32_t patient, int32_t study, int32_t series) {
    return At<PGX_DicomDirSeriesNode>(&Study(patient, study).series, series);
}

PGX_DicomDirLeafNode& BrowsedDirectory::Leaf(int32_t leaf) {
    return At<PGX_DicomDirLeafNode>(&Series().leaves, leaf);
}

PGX_Node* BrowsedDirectory::Record(int index) {
    PGX_Node* item = directory_.dataSet->FindNode(0x0004, 0x1220)->first;
    while (index-- > 0)
        item = item->next;
    return item;
}

}  // namespace pgkit_test
