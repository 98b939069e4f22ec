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

void PrintFiles(const Hierarchy& hierarchy, Medium& medium, const TextOptions& texts,
                const std::function<void(const std::string&)>& complain) {
    const auto print = [&](const FileOfLeaf& file, const std::string& fileId) {
        if (file.state == LeafFile::Present) {
            std::printf("%s\n", Shown(file.path, texts).c_str());
        } else if (file.state == LeafFile::Missing) {
            complain("missing: " + AnyToUtf8(fileId));
        } else if (file.state == LeafFile::Outside) {
            complain("outside of the medium: " + AnyToUtf8(fileId));
        }
    };
    ForEachLeaf(hierarchy.patients, [&](PGX_DicomDirLeafNode& leaf) {
        print(FileOf(leaf, medium), leaf.referencedFileId);
    });
    for (const pgkit::item& record : hierarchy.common) {
        const CommonInstance instance = ReadCommon(record, medium);
        print(instance.file, instance.fileId);
    }
}

}  // namespace pgtool
