// A host in C calls every flat function: with all memory that there is, and on Linux with less and
// less. An exception that reaches such a host ends its process.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "hostile/failing_jobs.h"
#include "hosts/every_function.h"
#include "support/captured.h"
#include "support/process.h"

namespace {

using namespace pgkit_test;

class EveryFunction : public testing::Test {
  protected:
    EveryFunction() {
        std::filesystem::create_directory(files_.Path("MEDIUM"));
        fileOfMedium_ = files_.Write("MEDIUM/A", InstanceFile().Instance("1.2.3.4.1").Data());
        files_.Write("MEDIUM/B", InstanceFile().Instance("1.2.3.4.2").Study("1.9").Data());
    }

    TempDir files_;
    std::string dataSet_ = files_.Write("file", RichFile().Data());
    std::string dicomdir_ = files_.Write("DICOMDIR", RichDirectory().Build());
    std::string medium_ = files_.Path("MEDIUM");
    std::string fileOfMedium_;
    std::string dictionary_ = files_.Write("rows", "(0009,\"A MAKER\",01) LO AnElement 1\n");
    std::string output_ = files_.Path("output");
};

TEST_F(EveryFunction, GivesWhatItsHeaderStates) {
    const HostFiles files = {dataSet_.c_str(),      dicomdir_.c_str(),   medium_.c_str(),
                             fileOfMedium_.c_str(), dictionary_.c_str(), output_.c_str()};
    int wrong = -1;
    const Printed printed = CapturePrinted([&] { wrong = CallEveryFunction(&files); });
    EXPECT_EQ(wrong, 0) << printed.err;
    pgSetPrivateDictionaryFile(nullptr);
}

#if defined(PGKIT_TEST_STARVING_HOST)
// std::bad_alloc left the functions of lists, of the private dictionary, of browsing and of
// names.
TEST_F(EveryFunction, EndsByItselfWhenMemoryRunsOut) {
    const Finished host = RunProgram(
        PGKIT_TEST_STARVING_HOST,
        {"48", "4000000", dataSet_, dicomdir_, medium_, fileOfMedium_, dictionary_, output_});
    EXPECT_EQ(host.exitStatus, 0) << host.err;
    EXPECT_NE(host.out.find("48 steps, 0 failed"), std::string::npos) << host.err;
}
#endif

}  // namespace
