// DICOMDIRs with any byte changed, and what is written into a directory with links in it.
#include <filesystem>
#include <fstream>

#include "hostile/hostile_file.h"
#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/instance_file.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

DirectoryBuilder TwoImages() {
    DirectoryBuilder builder;
    const size_t study = builder.Study(builder.Patient("4711", "DOE^JOHN"), "1.2");
    const size_t series = builder.Series(study, "1.2.3", "CT");
    builder.Image(series, "1.2.3.4", 1, "IMG\\X1");
    builder.Image(series, "1.2.3.5", 2, "IMG\\X2");
    return builder;
}

// Browses a DICOMDIR and writes another one from what that gave; how many patients there were.
int32_t BrowseAndBuild(const std::string& path, const std::string& medium) {
    PGX_List* patients = pgGetPatientListFromFile(path.c_str());
    if (patients == nullptr) return 0;
    const int32_t count = patients->GetCount();
    pgBuildDicomdir(patients, medium.c_str());
    pgEmptyPatientList(patients);
    delete patients;
    return count;
}

TEST(HostileDirectories, MayHaveAnyByteChanged) {
    const TempDir directory;
    const Bytes whole = TwoImages().Build();
    const std::string path = directory.Write("CHANGED", whole);
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    const auto put = [&](size_t position, int byte) {
        file.seekp(static_cast<std::streamoff>(position)).put(static_cast<char>(byte));
        file.flush();
    };
    constexpr size_t kPreamble = 132;
    int32_t patients = 0;
    CapturePrinted([&] {
        for (size_t i = kPreamble; i < whole.size(); ++i) {
            put(i, whole[i] ^ (i % 2 == 0 ? 0x01 : 0xFF));
            patients += BrowseAndBuild(path, directory.Path(""));
            put(i, whole[i]);
        }
    });
    // Most bytes are those of keys.
    EXPECT_GT(patients, static_cast<int32_t>(whole.size() / 3));
}

// A link is the directory's owner's: whoever must not follow it looks for it first.
TEST(HostileDirectories, LinksInThePlaceOfWhatIsWrittenAreFollowed) {
    const TempDir directory;
    fs::create_directory(directory.Path("MEDIUM"));
    directory.Write("MEDIUM/IMAGE", InstanceFile().Data());
    const std::string target = directory.Write("target", "old");
    std::error_code error;
    fs::create_symlink(target, directory.Path("MEDIUM/DICOMDIR"), error);
    if (error) GTEST_SKIP() << "no links here";
    const std::string medium = directory.Path("MEDIUM");
    CapturePrinted([&] { EXPECT_EQ(pgCreateDicomdir(medium.c_str(), "", nullptr, nullptr), 0u); });
    EXPECT_TRUE(fs::is_symlink(directory.Path("MEDIUM/DICOMDIR")));
    EXPECT_EQ(pgIsDicomFile(target.c_str()), 1);
}

}  // namespace
