#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "support/captured.h"
#include "support/directory_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::DirectoryBuilder;
using pgkit_test::LibraryPath;
using pgkit_test::TempDir;

class Verbosity : public testing::Test {
  protected:
    ~Verbosity() override { pgxSetVerbosity(1); }

    // A medium of one patient whose only image is linked to a record that is not there.
    std::string WriteDirectory() {
        DirectoryBuilder builder;
        const size_t study = builder.Study(builder.Patient("4711", "DOE^JOHN"), "1.2");
        const size_t series = builder.Series(study, "1.2.3", "CT");
        builder[builder.Image(series, "1.2.3.4", 1)].nextOffset = 5;
        return LibraryPath(files_.Write("DICOMDIR", builder.Build()));
    }

    std::string PrintedByAllRemarks() {
        PGX_DicomDir directory;
        return CapturePrinted([&] {
                   directory.Browse(nullptr, nullptr);
                   directory.OpenDicomDir("missing\\DICOMDIR", 64);
                   directory.OpenDicomDir(WriteDirectory().c_str(), 64);
                   directory.Browse(nullptr, nullptr);
               })
            .out;
    }

    TempDir files_;
};

TEST_F(Verbosity, IsOneAtFirstAndGivesTheFormerValue) {
    EXPECT_EQ(pgxSetVerbosity(0), 1);
    EXPECT_EQ(pgxSetVerbosity(-7), 0);
    EXPECT_EQ(pgxSetVerbosity(1), -7);
}

TEST_F(Verbosity, SilencesRemarksAndNothingElse) {
    const std::string errors =
        "DICOMDIR resolve error : Item not found \n"
        "DICOMDIR parsing error: Next Leaf item not found\n";
    const std::string all =
        "** PGX_DicomDir::Patient list is empty (no DICOMDIR file)\n"
        "** PGX_DicomDir::OpenDicomDir file open failed... <missing\\DICOMDIR>\n"
        "DICOMDIR resolve error : Item not found \n"
        "Patient created DOE^JOHN\n"
        "DICOMDIR parsing error: Next Leaf item not found\n";
    EXPECT_EQ(PrintedByAllRemarks(), all);
    pgxSetVerbosity(0);
    EXPECT_EQ(PrintedByAllRemarks(), errors);
    pgxSetVerbosity(2);
    EXPECT_EQ(PrintedByAllRemarks(), all);
}

}  // namespace
