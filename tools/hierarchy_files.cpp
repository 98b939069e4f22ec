#include <cstdio>

#include "hierarchy_output.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

template <typename Use>
void ForEachLeaf(PGX_List& patients, Use use) {
    ForEach<PGX_DicomDirPatientNode>(patients, [&](auto& patient) {
        ForEach<PGX_DicomDirStudyNode>(patient.studies, [&](auto& study) {
            ForEach<PGX_DicomDirSeriesNode>(study.series, [&](auto& series) {
                ForEach<PGX_DicomDirLeafNode>(series.leaves, use);
            });
        });
    });
}

}  // namespace

void PrintFiles(PGX_List& patients, Medium& medium, const TextOptions& texts,
                const std::function<void(const std::string&)>& complain) {
    ForEachLeaf(patients, [&](PGX_DicomDirLeafNode& leaf) {
        const FileOfLeaf file = FileOf(leaf, medium);
        const std::string fileId = AnyToUtf8(leaf.referencedFileId);
        if (file.state == LeafFile::Present) {
            std::printf("%s\n", Shown(file.path, texts).c_str());
        } else if (file.state == LeafFile::Missing) {
            complain("missing: " + fileId);
        } else if (file.state == LeafFile::Outside) {
            complain("outside of the medium: " + fileId);
        }
    });
}

}  // namespace pgtool
