// Opening by name and by stream, and the quick test for Part 10 files.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "support/captured.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::Child;
using pgkit_test::DataSet;
using pgkit_test::Describe;
using pgkit_test::kExplicitLittle;
using pgkit_test::Printed;
using pgkit_test::SmallFile;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::TextOf;

TEST(Open, MissingFileGivesNullAndPrintsNothing) {
    TempDir directory;
    const std::string path = directory.Path("missing");
    PGX_Node* root = nullptr;
    const Printed printed = CapturePrinted([&] { root = pgOpenDataSetFile(path.c_str(), 64); });
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(Open, NullPathDirectoryAndNullStreamGiveNull) {
    TempDir directory;
    EXPECT_EQ(pgOpenDataSetFile(nullptr, 64), nullptr);
    EXPECT_EQ(pgOpenDataSetFileEx(directory.Path("").c_str(), 64, 0), nullptr);
    EXPECT_EQ(pgOpenDataSetFileHandle(nullptr, 64), nullptr);
    EXPECT_EQ(pgOpenDataSetFileHandleEx(nullptr, 64, 0), nullptr);
}

TEST(Open, NothingIsPrintedAboutAFileThatIsNotDicom) {
    TempDir directory;
    const std::string path = directory.Write("text", std::string_view("hello"));
    PGX_Node* root = nullptr;
    const Printed printed = CapturePrinted([&] { root = pgOpenDataSetFile(path.c_str(), 64); });
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(Open, ClosedDataSetLetsGoOfItsFile) {
    TempDir directory;
    const std::string path = directory.Write("file", SmallFile().Data());
    pgCloseDataSet(pgOpenDataSetFile(path.c_str(), 64));
    // Windows refuses to remove a file that is open.
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, RefusedFileIsNotKeptOpen) {
    TempDir directory;
    const std::string path = directory.Write("file", std::string_view("abc"));
    EXPECT_EQ(pgOpenDataSetFile(path.c_str(), 64), nullptr);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamBelongsToTheTree) {
    TempDir directory;
    const std::string path = directory.Write("file", SmallFile().Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);

    PGX_Node* root = pgOpenDataSetFileHandle(stream, 64);

    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->file, stream);
    EXPECT_EQ(Describe(root), "[(0002,0010)UI:20 (0008,0060)CS:2]");
    pgCloseDataSet(root);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamIsClosedWhenItIsRefused) {
    TempDir directory;
    const std::string path = directory.Write("file", std::string_view("abc"));
    EXPECT_EQ(pgOpenDataSetFileHandle(std::fopen(path.c_str(), "rb"), 64), nullptr);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamIsLeftWhereTheParseEnded) {
    TempDir directory;
    StreamBuilder content = SmallFile();
    const uint32_t end = content.Size();
    content.U16(0xFFFE).U16(0xE00D).U32(0).Text("something else");
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(std::ftell(stream), static_cast<long>(end + 8));
}

TEST(Open, PreambleIsLookedForFromTheStreamsPosition) {
    TempDir directory;
    StreamBuilder content;
    content.Text("0123").Append(SmallFile().Data());
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    std::fseek(stream, 4, SEEK_SET);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0002,0010)UI:20 (0008,0060)CS:2]");
}

TEST(Open, DataSetWithoutPreambleIsLookedForAtTheBeginning) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0008, 0x0060, "CS", "CT");
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    std::fseek(stream, 3, SEEK_SET);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0008,0060)CS:2]");
}

TEST(Open, StreamMayBeUnbufferedOrOpenForUpdate) {
    TempDir directory;
    const std::string path = directory.Write("file", SmallFile().Data());
    for (const char* mode : {"rb", "r+b"}) {
        for (int buffering : {_IONBF, _IOFBF}) {
            FILE* stream = std::fopen(path.c_str(), mode);
            ASSERT_NE(stream, nullptr);
            std::setvbuf(stream, nullptr, buffering, 4096);
            const DataSet root(pgOpenDataSetFileHandle(stream, 0));
            EXPECT_EQ(Describe(root.get()), "[(0002,0010)UI:20 (0008,0060)CS:2]");
            EXPECT_EQ(TextOf(Child(root.get(), 0x0008, 0x0060)), "CT");
        }
    }
}

TEST(Open, StreamMayHaveJustBeenWritten) {
    TempDir directory;
    const pgkit_test::Bytes content = SmallFile().Data();
    FILE* stream = std::fopen(directory.Path("file").c_str(), "w+b");
    ASSERT_NE(stream, nullptr);
    std::fwrite(content.data(), 1, content.size(), stream);
    std::rewind(stream);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0002,0010)UI:20 (0008,0060)CS:2]");
}

// Between writing and reading a stream demands a seek, which the host need not have made.
TEST(Open, StreamMayStandBehindWhatWasWritten) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0008, 0x0060, "CS", "CT");
    FILE* stream = std::fopen(directory.Path("file").c_str(), "w+b");
    ASSERT_NE(stream, nullptr);
    std::fwrite(content.Data().data(), 1, content.Size(), stream);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0008,0060)CS:2]");
}

TEST(Open, FileMayShrinkWhileItIsOpen) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0008, 0x0060, "CS", "CT").Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    const std::string path = directory.Write("file", content.Data());
    const DataSet root(pgOpenDataSetFile(path.c_str(), 0));
    std::filesystem::resize_file(path, content.Size() - 4);
    PGX_Node* name = Child(root.get(), 0x0010, 0x0010);
    std::array<char, 9> value;
    value.fill('?');
    ASSERT_EQ(name->GetValue(value.data()), 1);
    EXPECT_EQ(std::string(value.data(), value.size()), std::string("DOE^\0\0\0\0\0", 9));
}

TEST(Open, HandleFormsTakeFlags) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", "AB");
    const std::string path = directory.Write("file", content.Data());
    const DataSet root(pgOpenDataSetFileHandleEx(std::fopen(path.c_str(), "rb"), 64, 0x08));
    EXPECT_EQ(root->syntaxFlags, kExplicitLittle);
}

TEST(IsDicomFile, LooksForThePrefixOnly) {
    TempDir directory;
    EXPECT_EQ(pgIsDicomFile(directory.Write("a", SmallFile().Data()).c_str()), 1);
    EXPECT_EQ(pgIsDicomFile(directory.Write("b", StreamBuilder().Preamble().Data()).c_str()), 1);
    EXPECT_EQ(
        pgIsDicomFile(directory.Write("c", StreamBuilder().Zeros(128).Text("DICX").Data()).c_str()),
        0);
}

TEST(IsDicomFile, ShortFileIsNone) {
    TempDir directory;
    const Printed printed = CapturePrinted([&] {
        EXPECT_EQ(pgIsDicomFile(directory.Write("a", std::string_view("")).c_str()), 0);
        EXPECT_EQ(pgIsDicomFile(
                      directory.Write("b", StreamBuilder().Zeros(128).Text("DIC").Data()).c_str()),
                  0);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(IsDicomFile, MetaGroupWithoutPreambleIsNone) {
    TempDir directory;
    StreamBuilder stream;
    stream.ElementUL(0x0002, 0x0000, 0).Zeros(200);
    EXPECT_EQ(pgIsDicomFile(directory.Write("a", stream.Data()).c_str()), 0);
}

TEST(IsDicomFile, FileThatCannotBeOpenedIsReported) {
    TempDir directory;
    const std::string path = directory.Path("missing");
    int32_t result = 1;
    const Printed printed = CapturePrinted([&] { result = pgIsDicomFile(path.c_str()); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed.err, "pgIsDicomFile : unable to open " + path + "\n");
    EXPECT_EQ(printed.out, "");
}

}  // namespace
