#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "pgkit/accessors.h"
#include "support/host_order.h"
#include "support/nodes.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::kExplicitLittle;
using pgkit_test::NewDataSet;
using pgkit_test::NewElement;
using pgkit_test::OpenedStream;
using pgkit_test::RawText;
using pgkit_test::ReadFile;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::Tree;

std::string TextOf(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

// A data set whose bytes, in explicit VR little endian, are those of kEncodedName.
Tree DataSetWithName() {
    Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0010, 0x0010, "DOE", 3);
    return dataSet;
}
const std::string kEncodedName = RawText(
    "\x10\x00\x10\x00PN\x04\x00"
    "DOE ");

TEST(ValueAccessors, GetAndSetTexts) {
    const Tree node = NewElement(0x0010, 0x0010, VR_PN);
    EXPECT_EQ(pgKitSetValue(node.get(), "DOE", 3), 1);
    char buffer[8];
    EXPECT_EQ(pgKitGetValue(node.get(), buffer), 1);
    EXPECT_STREQ(buffer, "DOE ");
    EXPECT_EQ(pgKitGetStringValue(node.get(), buffer, 2), 1);
    EXPECT_STREQ(buffer, "DO");
}

TEST(ValueAccessors, GetNumbers) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(pgKitGetUSValue(NewElement(0x0028, 0x0010, VR_US, "\xFE\xFF").get()), 0xFFFE);
    EXPECT_EQ(pgKitGetSSValue(NewElement(0x0028, 0x0106, VR_SS, "\xFE\xFF").get()), -2);
    EXPECT_EQ(pgKitGetULValue(NewElement(0x0008, 0x0001, VR_UL, "\1\2\3\xF4").get()), 0xF4030201);
    EXPECT_EQ(pgKitGetDSIntValue(NewElement(0x0020, 0x0013, VR_IS, "-12 ").get()), -12);
    EXPECT_EQ(pgKitGetDSDoubleValue(NewElement(0x0018, 0x0050, VR_DS, "-2.5").get()), -2.5);
}

TEST(ValueAccessors, GetBytesOfTheFile) {
    StreamBuilder stream;
    stream.Element(0x0010, 0x0010, "PN", "DOE^");
    OpenedStream opened(stream, 0, kExplicitLittle);
    char bytes[5] = {};
    EXPECT_EQ(pgKitGetFileData(opened.Root(), bytes, 7, 3), 1);
    EXPECT_EQ(std::string(bytes, 4), RawText("\x00"
                                             "DO\x00"));
    EXPECT_EQ(pgKitGetFileData(opened.Root(), bytes, 10, 3), 0);
}

TEST(ValueAccessors, DumpToStreamsAndFiles) {
    const TempDir directory;
    const Tree dataSet = DataSetWithName();
    const std::string lines[] = {directory.Path("stream"), directory.Path("file"),
                                 directory.Path("other")};
    FILE* stream = std::fopen(lines[0].c_str(), "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(pgKitDumpToStream(dataSet.get(), stream, "> "), 1);
    std::fclose(stream);
    EXPECT_EQ(pgKitDumpToFile(dataSet.get(), lines[1].c_str()), 1);
    EXPECT_EQ(pgKitDump(dataSet.get(), lines[2].c_str()), 1);
    EXPECT_EQ(pgKitDump(dataSet.get(), directory.Path("missing/file").c_str()), 0);
    EXPECT_EQ(TextOf(ReadFile(lines[0])).substr(0, 9), "> DATASET");
    EXPECT_EQ(TextOf(ReadFile(lines[1])).substr(0, 7), "DATASET");
    EXPECT_EQ(ReadFile(lines[1]), ReadFile(lines[2]));
}

TEST(ValueAccessors, WriteToStreams) {
    const TempDir directory;
    const Tree dataSet = DataSetWithName();
    const std::string path = directory.Path("stream");
    FILE* stream = std::fopen(path.c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    pgKitWriteNode(dataSet.get(), stream, kExplicitLittle);
    EXPECT_EQ(pgKitWriteNodeEx(dataSet.get(), stream, kExplicitLittle), 0u);
    std::fclose(stream);
    EXPECT_EQ(TextOf(ReadFile(path)), kEncodedName + kEncodedName);
}

TEST(ValueAccessors, SaveFiles) {
    const TempDir directory;
    const Tree dataSet = DataSetWithName();
    pgKitSaveDataSetAs(dataSet.get(), directory.Path("plain").c_str(), kExplicitLittle);
    EXPECT_EQ(pgKitSaveDataSetAsEx(dataSet.get(), directory.Path("ex").c_str(), kExplicitLittle),
              0u);
    EXPECT_EQ(TextOf(ReadFile(directory.Path("plain"))), kEncodedName);
    EXPECT_EQ(TextOf(ReadFile(directory.Path("ex"))), kEncodedName);
}

TEST(ValueAccessors, GiveTheResultOfASaveThatFails) {
    const TempDir directory;
    const Tree dataSet = DataSetWithName();
    testing::internal::CaptureStderr();
    const std::string path = directory.Path("missing/file");
    EXPECT_EQ(pgKitSaveDataSetAsEx(dataSet.get(), path.c_str(), kExplicitLittle), 1u);
    testing::internal::GetCapturedStderr();
}

TEST(ValueAccessors, AddAndUpdateGroupLengths) {
    const Tree dataSet = DataSetWithName();
    EXPECT_EQ(pgKitAddGroupLengths(dataSet.get(), kExplicitLittle), 1);
    PGX_Node* length = dataSet->FindNode(0x0010, 0x0000);
    ASSERT_NE(length, nullptr);
    EXPECT_EQ(length->GetULValue(), kEncodedName.size());
    dataSet->FindNode(0x0010, 0x0010)->SetValue("DOE^JO", 6);
    EXPECT_EQ(pgKitUpdateGroupLengths(dataSet.get(), kExplicitLittle), 1);
    EXPECT_EQ(length->GetULValue(), kEncodedName.size() + 2);
}

TEST(ValueAccessors, CompleteTheMetaInformation) {
    const Tree dataSet = NewDataSet();
    EXPECT_EQ(pgKitAddPart10Elements(dataSet.get(), "1.2.840.10008.1.2"), 1);
    PGX_Node* syntax = dataSet->FindNode(0x0002, 0x0010);
    ASSERT_NE(syntax, nullptr);
    char uid[65];
    syntax->GetStringValue(uid, 64);
    EXPECT_STREQ(uid, "1.2.840.10008.1.2");
}

TEST(PixelDataAccessors, ReadNativeFrames) {
    const Tree pixels = NewElement(0x7FE0, 0x0010, VR_OB, "abcdef");
    char frame[3] = {};
    EXPECT_EQ(pgKitIsEncodedPixelData(pixels.get()), 0);
    EXPECT_EQ(pgKitGetPixelData(pixels.get(), 2, 2, frame), 1);
    EXPECT_STREQ(frame, "ef");
}

TEST(PixelDataAccessors, BuildAndInspectFragments) {
    const Tree dataSet = NewDataSet();
    PGX_Node* pixels = pgKitInsertEncodedPixelDataNode(dataSet.get(), 2);
    ASSERT_NE(pixels, nullptr);
    EXPECT_EQ(pgKitIsEncodedPixelData(pixels), 1);
    EXPECT_EQ(pgKitSetEncodedPixelData(pixels, 1, 3, "abc"), 1);
    EXPECT_EQ(pgKitSetEncodedPixelData(pixels, 2, 3, "abc"), 0);
    uint32_t length = 9;
    uint32_t offset = 9;
    EXPECT_EQ(pgKitGetEncodedPixelInfo(pixels, 1, &length, &offset), 1);
    EXPECT_EQ(length, 4u);
    EXPECT_EQ(offset, 0u);
    EXPECT_EQ(pgKitGetEncodedPixelInfo(pixels, 2, &length, &offset), 0);
}

}  // namespace
