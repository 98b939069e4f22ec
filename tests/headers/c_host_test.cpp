#include "headers/c_host.h"

#include <gtest/gtest.h>

#include "support/stream_builder.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

TEST(CHost, OpensAndSearchesAFile) {
    const TempDir directory;
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "CT");
    const HostFindings findings = LookIntoFile(directory.Write("file", stream.Data()).c_str());
    EXPECT_EQ(findings.isDicomFile, 1);
    EXPECT_EQ(findings.hasModality, 1);
    EXPECT_EQ(findings.hasPatientsName, 0);
}

TEST(CHost, AsksTheDictionary) {
    const HostAnswers answers = AskForPixelData();
    EXPECT_EQ(answers.elementId, 3652u);
    EXPECT_EQ(answers.valueRep, uint32_t{VR_OWOB});
    EXPECT_STREQ(answers.valueRepName, "OWOB");
    EXPECT_STREQ(answers.name, "PixelData");
}

TEST(CHost, ReadsAnElementThroughAccessors) {
    const TempDir directory;
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Element(0x0010, 0x0010, "PN", "DOE^");
    HostElement found;
    DescribeFirstElement(directory.Write("file", stream.Data()).c_str(), &found);
    EXPECT_EQ(found.group, 0x0008);
    EXPECT_EQ(found.element, 0x0060);
    EXPECT_STREQ(found.text, "CT");
    DescribeFirstElement(directory.Path("missing").c_str(), &found);
    EXPECT_EQ(found.group, 0);
    EXPECT_STREQ(found.text, "");
}

}  // namespace
