#include "dicomdir/create/acceptance_list.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/temp_dir.h"

namespace {

using pgkit::AcceptanceList;
using pgkit_test::TempDir;

// The file as text: line ends are those of the platform.
std::string ListIn(const TempDir& directory) {
    std::ifstream file(directory.Path("dcmdir.lst"));
    return std::string(std::istreambuf_iterator<char>(file), {});
}

constexpr char kHeader[] =
    ";*** DICOMDIR CODES SUMMARY ***\n"
    ";******************************\n"
    "; 0\tDicom file accepted\n"
    "; 1\tInvalid filename for file\n"
    "; 2\tFile is not DICOM Part 10 compliant\n"
    "; 3\tCannot open file for reading as a dataset\n"
    "; 4\tFile is a DICOMDIR\n"
    "; 5\tProfile restriction don't match file\n"
    "; 6\tSOPInstanceUID already found and registered\n"
    "; 7\tSOPInstanceUID attribute was not found\n"
    "; 8\tSeriesInstanceUID attribute was not found\n"
    "; 9\tStudyInstanceUID attribute was not found\n"
    "\n";

TEST(AcceptanceListFile, StartsWithTheMeaningOfTheCodes) {
    const TempDir directory;
    directory.Write("dcmdir.lst", "what an earlier creation left");
    AcceptanceList list(directory.Path("."));
    list.Start();
    EXPECT_EQ(ListIn(directory), kHeader);
    list.Keep();
}

// The list of the DICOMDIR that stays was gone.
TEST(AcceptanceListFile, BringsTheFormerOneBackUnlessItIsKept) {
    const TempDir directory;
    directory.Write("dcmdir.lst", "former");
    for (const bool isKept : {false, true}) {
        {
            AcceptanceList list(directory.Path("."));
            list.Start();
            list.Append(2, "README");
            if (isKept) list.Keep();
        }
        EXPECT_EQ(ListIn(directory), isKept ? kHeader + std::string("2\tREADME\n") : "former");
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.Path("")), {}), 1);
}

TEST(AcceptanceListFile, StaysWhereThereWasNone) {
    const TempDir directory;
    AcceptanceList(directory.Path(".")).Start();
    EXPECT_EQ(ListIn(directory), kHeader);
}

TEST(AcceptanceListFile, TakesSlashesForBackslashesInFrontOfWhatItLists) {
    const TempDir directory;
    AcceptanceList list(directory.Path(".") + "\\SUB");
    std::filesystem::create_directory(directory.Path("SUB"));
    list.Append(2, directory.Path(".") + "/SUB/README");
    std::ifstream file(directory.Path("SUB/dcmdir.lst"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "2\tREADME\n");
}

TEST(AcceptanceListFile, HasALineForEveryFile) {
    const TempDir directory;
    const std::string path = directory.Path("SUB");
    std::filesystem::create_directory(path);
    AcceptanceList list(path);
    list.Append(5, path + "\\A\\IMAGE1");
    list.Append(0, path + "\\IMAGE2");
    std::ifstream file(directory.Path("SUB/dcmdir.lst"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "5\tA\\IMAGE1\n0\tIMAGE2\n");
}

TEST(AcceptanceListFile, KeepsWhatItHolds) {
    const TempDir directory;
    directory.Write("dcmdir.lst", "2\tREADME\n");
    AcceptanceList(directory.Path(".")).Append(4, directory.Path(".") + "\\DICOMDIR");
    EXPECT_EQ(ListIn(directory), "2\tREADME\n4\tDICOMDIR\n");
}

TEST(AcceptanceListFile, NamesAFileElsewhereByItsWholePath) {
    const TempDir directory;
    AcceptanceList list(directory.Path("."));
    list.Append(0, "D:\\ELSEWHERE\\IMAGE");
    list.Append(0, directory.Path(".") + "AND\\MORE");
    EXPECT_EQ(ListIn(directory),
              "0\tD:\\ELSEWHERE\\IMAGE\n0\t" + directory.Path(".") + "AND\\MORE\n");
}

TEST(AcceptanceListFile, ShowsALineAtOnce) {
    const TempDir directory;
    AcceptanceList list(directory.Path("."));
    list.Append(2, "README");
    EXPECT_EQ(ListIn(directory), "2\tREADME\n");
}

TEST(AcceptanceListFile, ShowsALineAtOnceAlsoWhileItStaysOpen) {
    const TempDir directory;
    AcceptanceList list(directory.Path("."));
    list.StayOpen();
    list.Append(2, "README");
    EXPECT_EQ(ListIn(directory), "2\tREADME\n");
    list.Append(4, "DICOMDIR");
    EXPECT_EQ(ListIn(directory), "2\tREADME\n4\tDICOMDIR\n");
}

TEST(AcceptanceListFile, IsAnotherFileWhenItIsTakenAwayAfterItWasClosed) {
    const TempDir directory;
    AcceptanceList list(directory.Path("."));
    list.StayOpen();
    list.Append(2, "README");
    list.Close();
    std::filesystem::remove(directory.Path("dcmdir.lst"));
    list.Append(4, "DICOMDIR");
    EXPECT_EQ(ListIn(directory), "4\tDICOMDIR\n");
}

TEST(AcceptanceListFile, HasNoLineForTheCodeThatMeansNoFile) {
    const TempDir directory;
    AcceptanceList list(directory.Path("."));
    list.Append(0xFFFFFFFF, "X");
    EXPECT_FALSE(std::filesystem::exists(directory.Path("dcmdir.lst")));
}

TEST(AcceptanceListFile, IsSkippedWhereItCannotBeWritten) {
    const TempDir directory;
    AcceptanceList list(directory.Path("missing"));
    list.Start();
    list.Append(0, "X");
    EXPECT_TRUE(std::filesystem::is_empty(directory.Path("")));
}

}  // namespace
