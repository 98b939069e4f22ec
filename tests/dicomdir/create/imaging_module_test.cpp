// The imaging module at run time: there, missing, or broken. Each test runs a host of its own, from
// a directory of its own that has the modules of the test's choice.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "dicomdir/create/medium.h"
#include "support/host_directory.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

// The name of the imaging module.
const std::string kName = FileName(PGKIT_TEST_IMAGING_MODULE);

InstanceFile Image(int number) {
    return Instance(number)
        .SetUS(0x0028, 0x0010, 4)
        .SetUS(0x0028, 0x0011, 8)
        .SetUS(0x0028, 0x0100, 8)
        .Set(0x7FE0, 0x0010, "OB", std::string(32, '\x40'));
}

class ImagingModule : public testing::Test {
  protected:
    // Puts a file beside the host, or in a directory there, under the name that the module has.
    void Install(const std::string& module, const std::string& directory = ".") const {
        host_.Copy(module, directory + "/" + kName);
    }

    // Makes the DICOMDIR; nobody says anything.
    DataSet Create(const std::string& edge = "16") const {
        const Finished run = host_.Run({medium_.Directory(), edge});
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.out + run.err, "");
        return medium_.Open();
    }

    std::string SizeWith(const std::string& name) {
        medium_.Write(name, Image(++images_));
        return IconSize(ImageRecord(Create().get(), name));
    }

    Medium medium_;
    const HostDirectory host_{PGKIT_TEST_CREATION_PROBE};

  private:
    int images_ = 0;
};

TEST_F(ImagingModule, IsLookedForBesideTheHost) {
    Install(PGKIT_TEST_IMAGING_MODULE);
    EXPECT_EQ(SizeWith("IMAGE"), "16x8");
}

TEST_F(ImagingModule, IsNotNeeded) {
    medium_.Write("IMAGE", Image(1));
    const DataSet root = Create();
    ASSERT_EQ(RecordsOf(root.get()).size(), 4u);
    for (PGX_Node* record : RecordsOf(root.get()))
        EXPECT_EQ(record->FindNode(0x0088, 0x0200), nullptr);
}

TEST_F(ImagingModule, ChangesNothingElse) {
    medium_.Write("IMAGE", Image(1));
    const std::string without = Describe(Create().get());
    Install(PGKIT_TEST_IMAGING_MODULE);
    EXPECT_NE(Describe(Create().get()), without);
    EXPECT_EQ(Describe(Create("0").get()), without);
}

// It may be a disc of anyone's making.
TEST_F(ImagingModule, IsNotLookedForInTheCurrentDirectory) {
    Install(PGKIT_TEST_IMAGING_MODULE, "elsewhere");
    const fs::path before = fs::current_path();
    fs::current_path(host_.Path("elsewhere"));
    EXPECT_EQ(SizeWith("IMAGE"), "none");
    fs::current_path(before);
}

// A host that starts in the directory of the library, loads it from there by a relative path, and
// goes elsewhere before it makes the DICOMDIR.
class ImagingModuleOfALibraryLoadedByARelativePath : public testing::Test {
  protected:
    void SetUp() override {
        Copy(PGKIT_TEST_RELATIVE_CREATION_PROBE, FileName(PGKIT_TEST_RELATIVE_CREATION_PROBE));
        Copy(PGKIT_TEST_MODULE, "library/" + FileName(PGKIT_TEST_MODULE));
        fs::create_directory(directory_.Path("elsewhere"));
        medium_.Write("IMAGE", Image(1));
    }

    void Copy(const std::string& file, const std::string& name) const {
        const fs::path copy = directory_.Path(name);
        fs::create_directories(copy.parent_path());
        fs::copy_file(file, copy);
    }

    std::string SizeOfIcon() const {
        const fs::path before = fs::current_path();
        fs::current_path(directory_.Path("library"));
        const Finished run =
            RunProgram(directory_.Path(FileName(PGKIT_TEST_RELATIVE_CREATION_PROBE)),
                       {medium_.Directory(), "16", directory_.Path("elsewhere")});
        fs::current_path(before);
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.out + run.err, "");
        return IconSize(ImageRecord(medium_.Open().get(), "IMAGE"));
    }

    Medium medium_;
    TempDir directory_;
};

TEST_F(ImagingModuleOfALibraryLoadedByARelativePath, IsNotLookedForInTheDirectoryEnteredSince) {
    Copy(PGKIT_TEST_IMAGING_MODULE, "elsewhere/" + kName);
    EXPECT_EQ(SizeOfIcon(), "none");
}

TEST_F(ImagingModuleOfALibraryLoadedByARelativePath, IsStillFoundBesideTheLibrary) {
    Copy(PGKIT_TEST_IMAGING_MODULE, "library/" + kName);
    Copy(PGKIT_TEST_BROKEN_IMAGING, "elsewhere/" + kName);
    EXPECT_EQ(SizeOfIcon(), "16x8");
}

TEST_F(ImagingModule, MayBeNoModuleAtAll) {
    host_.Write(kName, "not a module");
    EXPECT_EQ(SizeWith("IMAGE"), "none");
}

TEST_F(ImagingModule, MayBeADirectory) {
    fs::create_directory(host_.Path(kName));
    EXPECT_EQ(SizeWith("IMAGE"), "none");
}

TEST_F(ImagingModule, MayLackTheFunctions) {
    Install(PGKIT_TEST_MODULE);
    EXPECT_EQ(SizeWith("IMAGE"), "none");
}

TEST_F(ImagingModule, MayGiveNoBitmap) {
    Install(PGKIT_TEST_BROKEN_IMAGING);
    EXPECT_EQ(SizeWith("GOOD"), "8x1");
    EXPECT_EQ(SizeWith("NOLOAD"), "none");
    EXPECT_EQ(SizeWith("COLOUR"), "none");
    EXPECT_EQ(SizeWith("FRAME-NULL"), "none");
    EXPECT_EQ(SizeWith("ZOOM-NULL"), "none");
}

TEST_F(ImagingModule, MayGiveBrokenBitmaps) {
    Install(PGKIT_TEST_BROKEN_IMAGING);
    const char* const faults[] = {"SHORT",    "EMPTY",     "HEADER",   "HUGE",
                                  "GIGANTIC", "NOWIDTH",   "NOHEIGHT", "NEGATIVE",
                                  "BIGTABLE", "BIGHEADER", "DEPTH"};
    int number = 0;
    for (const std::string fault : faults) {
        medium_.Write("FRAME-" + fault, Image(++number));
        medium_.Write("ZOOM-" + fault, Image(++number));
    }
    const DataSet root = Create();
    for (const std::string fault : faults) {
        EXPECT_EQ(IconSize(ImageRecord(root.get(), "FRAME-" + fault)), "none") << fault;
        EXPECT_EQ(IconSize(ImageRecord(root.get(), "ZOOM-" + fault)), "none") << fault;
    }
}

TEST_F(ImagingModule, IsAskedForAThirdOfTheLow16BitsOfTheFrames) {
    Install(PGKIT_TEST_BROKEN_IMAGING);
    medium_.Write("FRAMES", Image(1));
    EXPECT_EQ(IconPixels(ImageRecord(Create().get(), "FRAMES")), Bytes(8, 2));
}

// Used to be loaded, and the image opened, for each icon.
TEST_F(ImagingModule, OpensAnImageOnceForItsIconAndThatOfItsSeries) {
    Install(PGKIT_TEST_BROKEN_IMAGING);
    medium_.Write("LOADS1", Image(1));
    medium_.Write("LOADS2", Image(2));
    const DataSet root = Create();
    PGX_Node* const series = RecordsOf(root.get()).at(2);
    ASSERT_EQ(TextOf(Child(series, 0x0004, 0x1430)), "SERIES");
    EXPECT_EQ(IconPixels(ImageRecord(root.get(), "LOADS1")), Bytes(8, 1));
    EXPECT_EQ(IconPixels(series), Bytes(8, 1));
    EXPECT_EQ(IconPixels(ImageRecord(root.get(), "LOADS2")), Bytes(8, 2));
}

// Used to be the ratio of the heights, of which the icon's was rounded down.
TEST_F(ImagingModule, IsGivenTheRatioOfTheEdgeAndTheLongerSide) {
    Install(PGKIT_TEST_BROKEN_IMAGING);
    medium_.Write("ZOOM", Image(1));
    const Bytes pixels = IconPixels(ImageRecord(Create("20").get(), "ZOOM"));
    double zoom = 0;
    ASSERT_EQ(pixels.size(), sizeof zoom);
    std::memcpy(&zoom, pixels.data(), sizeof zoom);
    EXPECT_EQ(zoom, 2.5);  // 8 by 1 becomes 20 by 2.5, which the module rounds
}

}  // namespace
