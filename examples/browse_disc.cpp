// Lists what a DICOMDIR refers to, a level of the hierarchy deeper by two blanks.
//
//   browse_disc DICOMDIR
#include <pgkit/pgkit.h>

#include <cstdio>

namespace {

// Every object of a level, in order. An object begins with the list of its children, so it can be
// given here itself.
template <typename Object, typename Action>
void ForEach(PGX_List& list, Action action) {
    for (PGX_ListElement* cell = list.GetFirstPosition(); cell != nullptr; cell = cell->next)
        action(*static_cast<Object*>(cell->data));
}

void PrintLeaf(PGX_DicomDirLeafNode& leaf) {
    std::printf("      %s %d: %s", leaf.recordType, static_cast<int>(leaf.instanceNumber),
                leaf.referencedFileId);
    if (leaf.leafType == PG_LEAF_IMAGE) {
        const auto& image = static_cast<PGX_DicomDirImageNode&>(leaf);
        std::printf(", %d x %d", static_cast<int>(image.columns), static_cast<int>(image.rows));
    }
    char file[1024];
    if (pgxLeafFile(&leaf, nullptr, file, sizeof file) == 0) std::printf(", missing");
    std::printf("\n");
}

void PrintSeries(PGX_DicomDirSeriesNode& series) {
    std::printf("    series %s, %s: %s\n", series.seriesNumber, series.modality,
                series.seriesDescription);
    ForEach<PGX_DicomDirLeafNode>(series.leaves, PrintLeaf);
}

void PrintStudy(PGX_DicomDirStudyNode& study) {
    std::printf("  study of %s: %s\n", study.studyDate, study.studyDescription);
    ForEach<PGX_DicomDirSeriesNode>(study.series, PrintSeries);
}

void PrintPatient(PGX_DicomDirPatientNode& patient) {
    std::printf("%s (%s)\n", patient.patientsName, patient.patientId);
    ForEach<PGX_DicomDirStudyNode>(patient.studies, PrintStudy);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    PGX_DicomDir directory;  // owns the hierarchy, and the file, until its end
    if (!directory.OpenDicomDir(arguments[1], 0x20000) || !directory.IsDicomDir()) {
        std::fprintf(stderr, "No DICOMDIR: %s\n", arguments[1]);
        return 1;
    }
    ForEach<PGX_DicomDirPatientNode>(*directory.Browse(nullptr, nullptr), PrintPatient);
    return 0;
}
