// Real media, where there are any: a DICOMDIR is made of their files and browsed.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/patient_list.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using pgkit_test::CapturePrinted;
using pgkit_test::LibraryPath;
using pgkit_test::Outline;
using pgkit_test::PatientList;
using pgkit_test::TempDir;

std::vector<fs::path> SampleMedia() {
    std::vector<fs::path> media;
    const char* const samples = std::getenv("PGKIT_SAMPLES");
    if (samples == nullptr) return media;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(samples) / "media"))
        media.push_back(entry.path());
    return media;
}

std::string WithoutPadding(std::string text) {
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

// The keys of a leaf that a DICOMDIR keeps.
std::string KeysOfLeaf(const PGX_DicomDirLeafNode& leaf) {
    return WithoutPadding(leaf.referencedFileId) + "|" + std::to_string(leaf.leafType) + "|" +
           leaf.sopClassUid + "|" + leaf.instanceUid + "|" + leaf.transferSyntaxUid + "|" +
           std::to_string(leaf.instanceNumber) + "\n";
}

template <typename Visit>
void ForEachLeaf(PGX_List& patients, Visit visit) {
    for (auto* p = patients.head; p != nullptr; p = p->next) {
        for (auto* t = static_cast<PGX_DicomDirPatientNode*>(p->data)->studies.head; t != nullptr;
             t = t->next) {
            for (auto* s = static_cast<PGX_DicomDirStudyNode*>(t->data)->series.head; s != nullptr;
                 s = s->next) {
                for (auto* l = static_cast<PGX_DicomDirSeriesNode*>(s->data)->leaves.head;
                     l != nullptr; l = l->next)
                    visit(*static_cast<PGX_DicomDirLeafNode*>(l->data));
            }
        }
    }
}

std::string LeavesOf(PGX_List& patients) {
    std::string leaves;
    ForEachLeaf(patients, [&](PGX_DicomDirLeafNode& leaf) { leaves += KeysOfLeaf(leaf); });
    return leaves;
}

void ExpectSameHierarchyInFileAndOnDisk(const fs::path& medium) {
    const TempDir directory;
    const std::string copy = directory.Path("MEDIUM");
    fs::copy(medium, copy, fs::copy_options::recursive);
    PgDicomdirOptions options = {};
    options.flags = PG_DICOMDIR_NO_LIST;
    PatientList onDisk;
    PatientList inFile;
    CapturePrinted([&] {
        onDisk.reset(pgBrowsePatientListEx(copy.c_str(), nullptr, &options, nullptr, nullptr));
        EXPECT_EQ(pgCreateDicomdirEx(copy.c_str(), nullptr, &options, nullptr, nullptr), 0u);
        inFile.reset(pgGetPatientListFromFile(LibraryPath(copy + "/DICOMDIR").c_str()));
    });
    ASSERT_NE(onDisk, nullptr);
    ASSERT_NE(inFile, nullptr);
    EXPECT_GT(onDisk->count, 0);
    EXPECT_EQ(Outline(inFile.get()), Outline(onDisk.get()));
    EXPECT_EQ(LeavesOf(*inFile), LeavesOf(*onDisk));
    ForEachLeaf(*inFile, [](PGX_DicomDirLeafNode& leaf) {
        EXPECT_EQ(pgIsDicomFile(leaf.fullPath), 1) << leaf.fullPath;
    });
}

TEST(SampleMedia, AreBrowsedAsTheyWereMade) {
    const std::vector<fs::path> media = SampleMedia();
    if (media.empty()) GTEST_SKIP() << "no samples here";
    for (const fs::path& medium : media) {
        SCOPED_TRACE(medium.string());
        ExpectSameHierarchyInFileAndOnDisk(medium);
    }
}

}  // namespace
