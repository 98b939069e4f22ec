#include "base/diagnostics.h"

#include <gtest/gtest.h>

#include <string>

#include "support/captured.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::Printed;

TEST(Diagnostics, GoToTheirStreamAsFormatted) {
    const Printed printed = CapturePrinted([] {
        pgkit::PrintOut("pgInsertNode: %s\n", "can only insert in a NT_DataSet type");
        pgkit::PrintError("pgInsertNode () : Element Id unknown (%d)\n", 3782);
    });
    EXPECT_EQ(printed.out, "pgInsertNode: can only insert in a NT_DataSet type\n");
    EXPECT_EQ(printed.err, "pgInsertNode () : Element Id unknown (3782)\n");
}

TEST(Diagnostics, AreOfAnyLength) {
    const std::string path(100'000, 'x');
    const Printed printed = CapturePrinted(
        [&] { pgkit::PrintError("pgIsDicomFile : unable to open %s\n", path.c_str()); });
    EXPECT_EQ(printed.err, "pgIsDicomFile : unable to open " + path + "\n");
}

}  // namespace
