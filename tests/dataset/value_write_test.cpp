#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>

#include "support/host_order.h"
#include "support/nodes.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::NewElement;
using pgkit_test::OpenedFile;
using pgkit_test::RawText;
using pgkit_test::TempDir;
using pgkit_test::Tree;

// The bytes that the node keeps, in its own byte order.
std::string Kept(const PGX_Node& node) {
    return std::string(reinterpret_cast<const char*>(node.value), node.length);
}

std::string KeptAfterSetting(ValueRepresentation vr, std::string_view value,
                             EndianType endian = ET_LittleEndian) {
    const Tree node = NewElement(0x0009, 0x1001, vr, {}, endian);
    EXPECT_EQ(node->SetValue(value.data(), static_cast<uint32_t>(value.size())), 1);
    return Kept(*node);
}

TEST(SetValue, OddTextIsPaddedWithABlank) {
    EXPECT_EQ(KeptAfterSetting(VR_CS, "ABC"), "ABC ");
    EXPECT_EQ(KeptAfterSetting(VR_UN, "A"), "A ");
    EXPECT_EQ(KeptAfterSetting(VR_OW, "A"), "A ");
    EXPECT_EQ(KeptAfterSetting(VR_Unknown, "A"), "A ");
}

TEST(SetValue, OddUidsAndBytesArePaddedWithNul) {
    EXPECT_EQ(KeptAfterSetting(VR_UI, "1.2.3"), RawText("1.2.3\0"));
    EXPECT_EQ(KeptAfterSetting(VR_OB, "\7"), RawText("\7\0"));
}

TEST(SetValue, EvenValueIsKeptAsItIs) { EXPECT_EQ(KeptAfterSetting(VR_CS, "AB"), "AB"); }

TEST(SetValue, NodeNoLongerRefersToItsFile) {
    const OpenedFile file("abcd");
    const Tree node = file.Element(VR_LO, 2, 2);
    EXPECT_EQ(node->SetValue("xy", 2), 1);
    EXPECT_EQ(node->file, nullptr);
    EXPECT_EQ(node->fileOffset, 0u);
    EXPECT_EQ(Kept(*node), "xy");
}

TEST(SetValue, EmptyValueLeavesNothing) {
    const OpenedFile file("abcd");
    const Tree node = file.Element(VR_LO, 0, 4);
    node->SetValue("xy", 2);
    EXPECT_EQ(node->SetValue("xy", 0), 1);
    EXPECT_EQ(node->length, 0u);
    EXPECT_EQ(node->value, nullptr);
    EXPECT_EQ(node->file, nullptr);
}

TEST(SetValue, NullStoresPadBytes) {
    const Tree text = NewElement(0x0010, 0x0010, VR_PN, "ABCD");
    EXPECT_EQ(text->SetValue(nullptr, 3), 1);
    EXPECT_EQ(Kept(*text), "    ");
    const Tree uid = NewElement(0x0008, 0x0018, VR_UI, "1.2 ");
    EXPECT_EQ(uid->SetValue(nullptr, 3), 1);
    EXPECT_EQ(Kept(*uid), RawText("\0\0\0\0"));
    EXPECT_EQ(uid->SetValue(nullptr, 0), 1);
    EXPECT_EQ(uid->value, nullptr);
}

TEST(SetValue, UndefinedLengthIsRefusedAndNothingChanges) {
    const Tree node = NewElement(0x0010, 0x0010, VR_PN, "ABCD");
    EXPECT_EQ(node->SetValue("x", 0xFFFFFFFF), 0);
    EXPECT_EQ(Kept(*node), "ABCD");
}

TEST(SetValue, ArgumentMayBeTheNodesOwnValue) {
    const Tree node = NewElement(0x0010, 0x0010, VR_PN, "ABCDEF");
    EXPECT_EQ(node->SetValue(node->value, 6), 1);
    EXPECT_EQ(Kept(*node), "ABCDEF");
    EXPECT_EQ(node->SetValue(node->value + 2, 3), 1);
    EXPECT_EQ(Kept(*node), "CDE ");
}

TEST(SetValue, ContentFileAndFragmentTableStay) {
    const TempDir directory;
    const std::string path = directory.Write("content", "1234");
    const Tree node = NewElement(0x0009, 0x1001, VR_LO);
    node->SetFileContentValue(path.c_str());
    node->encapsulated = 1;
    EXPECT_EQ(node->SetValue("ab", 2), 1);
    EXPECT_EQ(node->contentFile, path);
    EXPECT_EQ(node->encapsulated, 1u);
}

TEST(SetValue, BigEndianNodesKeepNumbersInTheirOwnOrder) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const auto big = [](ValueRepresentation vr) {
        return KeptAfterSetting(vr, "12345678", ET_BigEndian);
    };
    for (const auto vr : {VR_UL, VR_FL, VR_SL, VR_OF})
        EXPECT_EQ(big(vr), "43218765") << vr;
    for (const auto vr : {VR_US, VR_AT, VR_SS, VR_USSS, VR_OWOB})
        EXPECT_EQ(big(vr), "21436587") << vr;
    EXPECT_EQ(big(VR_FD), "87654321");
    for (const auto vr : {VR_OW, VR_OB, VR_UN, VR_LO, VR_UI, VR_Unknown}) {
        EXPECT_EQ(big(vr), "12345678") << vr;
    }
}

TEST(SetValue, BytesBehindTheLastWholeUnitAreNotSwapped) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(KeptAfterSetting(VR_UL, "123456", ET_BigEndian), "432156");
}

TEST(SetValue, PadByteIsPartOfTheLastUnit) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(KeptAfterSetting(VR_US, "123", ET_BigEndian), "21 3");
}

TEST(SetValue, EightBitPixelDataIsNeverSwapped) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Tree node = NewElement(0x7FE0, 0x0010, VR_OWOB, {}, ET_BigEndian);
    node->SetValue("1234", 4);
    EXPECT_EQ(Kept(*node), "2143");
    node->bitsAllocated = 8;
    node->SetValue("1234", 4);
    EXPECT_EQ(Kept(*node), "1234");

    const Tree other = NewElement(0x7FE1, 0x0010, VR_OWOB, {}, ET_BigEndian);
    other->bitsAllocated = 8;
    other->SetValue("1234", 4);
    EXPECT_EQ(Kept(*other), "2143");
}

TEST(SetFileContentValue, TakesPathAndEvenedSize) {
    const TempDir directory;
    const std::string path = directory.Write("content", "12345");
    const Tree node = NewElement(0x0009, 0x1001, VR_LO, "old ");
    EXPECT_EQ(node->SetFileContentValue(path.c_str()), 1);
    EXPECT_EQ(node->value, nullptr);
    EXPECT_EQ(node->length, 6u);
    EXPECT_EQ(node->contentFile, path);
    EXPECT_EQ(pgkit_test::ValueOf(*node), RawText("12345\0\0"));
}

TEST(SetFileContentValue, EmptyFileHasLengthZero) {
    const TempDir directory;
    const Tree node = NewElement(0x0009, 0x1001, VR_LO, "old ");
    EXPECT_EQ(node->SetFileContentValue(directory.Write("content", "").c_str()), 1);
    EXPECT_EQ(node->length, 0u);
    EXPECT_EQ(pgkit_test::ValueOf(*node), RawText("\0"));
}

TEST(SetFileContentValue, NewPathReplacesTheOldOne) {
    const TempDir directory;
    const Tree node = NewElement(0x0009, 0x1001, VR_LO);
    node->SetFileContentValue(directory.Write("old", "12").c_str());
    EXPECT_EQ(node->SetFileContentValue(directory.Write("new", "3456").c_str()), 1);
    EXPECT_STREQ(pgkit_test::ValueOf(*node).c_str(), "3456");
    EXPECT_EQ(node->SetFileContentValue(node->contentFile), 1);
    EXPECT_STREQ(pgkit_test::ValueOf(*node).c_str(), "3456");
}

TEST(SetFileContentValue, WhatIsNoFileIsRefusedAndNothingChanges) {
    const TempDir directory;
    const Tree node = NewElement(0x0009, 0x1001, VR_LO, "old ");
    EXPECT_EQ(node->SetFileContentValue(nullptr), 0);
    EXPECT_EQ(node->SetFileContentValue(directory.Path("missing").c_str()), 0);
    EXPECT_EQ(node->SetFileContentValue(directory.Path("").c_str()), 0);
    EXPECT_EQ(node->contentFile, nullptr);
    EXPECT_EQ(Kept(*node), "old ");
}

TEST(SetFileContentValue, FileOfFourGibibytesIsRefused) {
    const TempDir directory;
    const std::string path = directory.Write("huge", "");
    std::filesystem::resize_file(path, 0xFFFFFFFF);
    const Tree node = NewElement(0x0009, 0x1001, VR_LO, "old ");
    EXPECT_EQ(node->SetFileContentValue(path.c_str()), 0);
    EXPECT_EQ(Kept(*node), "old ");
}

TEST(SetFileContentValue, ParsedNodeKeepsReadingItsFile) {
    const TempDir directory;
    const OpenedFile file("abcdefgh");
    const Tree node = file.Element(VR_LO, 2, 2);
    EXPECT_EQ(node->SetFileContentValue(directory.Write("content", "1234").c_str()), 1);
    EXPECT_EQ(node->file, file.Stream());
    EXPECT_EQ(node->fileOffset, 2u);
    EXPECT_STREQ(pgkit_test::ValueOf(*node).c_str(), "cdef");
}

}  // namespace
