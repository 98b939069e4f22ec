// Saving to memory and through a function of the host.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "support/deflated.h"
#include "support/nodes.h"
#include "support/sample_files.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

// Takes bytes up to a limit.
struct Taker {
    Bytes bytes;
    size_t limit = static_cast<size_t>(-1);
    bool isFull = false;

    static size_t Take(void* context, const void* bytes, size_t size) {
        auto& self = *static_cast<Taker*>(context);
        EXPECT_FALSE(self.isFull);
        const size_t taken = std::min(size, self.limit - self.bytes.size());
        const auto* const from = static_cast<const uint8_t*>(bytes);
        self.bytes.insert(self.bytes.end(), from, from + taken);
        self.isFull = taken < size;
        return taken;
    }
};

Bytes SavedToFile(PGX_Node& root, int32_t mode) {
    const TempDir directory;
    const std::string path = directory.Path("saved");
    EXPECT_EQ(root.SaveDataSetAsEx(path.c_str(), mode), 0u);
    return ReadFile(path);
}

// In one go: a save may change the tree.
Bytes SavedToMemory(PGX_Node& root, int32_t mode) {
    Bytes bytes(size_t{1} << 20);
    const int64_t size = pgxSaveToMemory(&root, mode, bytes.data(), bytes.size());
    EXPECT_TRUE(size >= 0 && size <= static_cast<int64_t>(bytes.size())) << size;
    bytes.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return bytes;
}

Bytes SavedToFunction(PGX_Node& root, int32_t mode) {
    Taker taker;
    EXPECT_EQ(pgxSaveTo(&root, mode, Taker::Take, &taker), 0u);
    return taker.bytes;
}

TEST(SaveElsewhere, BundledFilesAreSavedAsToFiles) {
    const TempDir directory;
    const std::string path = directory.Path("saved");
    for (const std::string& name : SampleFiles()) {
        for (const int32_t mode : {0, int32_t{kPart10Explicit | PG_UNDEFINED_LENGTHS}}) {
            const auto open = [&] {
                return DataSet(pgOpenDataSetFile(TestData(name).c_str(), 64));
            };
            if (open() == nullptr) continue;
            const uint32_t result = open()->SaveDataSetAsEx(path.c_str(), mode);
            const DataSet toMemory = open();
            const DataSet toFunction = open();
            if (result == 0) {
                EXPECT_EQ(SavedToMemory(*toMemory, mode), ReadFile(path)) << name;
                EXPECT_EQ(SavedToFunction(*toFunction, mode), ReadFile(path)) << name;
            } else {
                Taker taker;
                EXPECT_EQ(pgxSaveToMemory(toMemory.get(), mode, nullptr, 0), -int64_t{result});
                EXPECT_EQ(pgxSaveTo(toFunction.get(), mode, Taker::Take, &taker), result);
            }
        }
    }
}

TEST(SaveElsewhere, DeflatedIsAsInAFile) {
    const Bytes file =
        DeflatedFile(Deflated(StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE ")));
    const OpenedStream opened(file);
    EXPECT_EQ(SavedToMemory(*opened.Root(), 0), SavedToFile(*opened.Root(), 0));
}

// They cannot be put right afterwards, as in a file.
TEST(SaveElsewhere, LinksAreRight) {
    for (const uint32_t mode : {kPart10Explicit, kPart10Implicit}) {
        Bytes saved[3];
        for (int i = 0; i < 3; ++i) {
            const OpenedStream opened(DeflatedFile({0x03, 0x00}), 0);
            opened->AddOrReplaceNode(0x0002, 0x0010, "1.2.840.10008.1.2.1", 19);
            PGX_Node* const records = opened->InsertNode(0x0004, 0x1220, nullptr, 0);
            records->SeqAddTail(pgAllocateDataSetNode());
            const uint32_t none = 0;
            PGX_Node* const link = opened->InsertNode(0x0004, 0x1200, &none, 4);
            link->offsetPending = 1;
            link->offsetTarget = records->first;
            const auto flags = static_cast<int32_t>(mode);
            saved[i] = i == 0   ? SavedToFile(*opened.Root(), flags)
                       : i == 1 ? SavedToMemory(*opened.Root(), flags)
                                : SavedToFunction(*opened.Root(), flags);
            EXPECT_EQ(link->offsetPending, 0u);
        }
        EXPECT_EQ(saved[1], saved[0]);
        EXPECT_EQ(saved[2], saved[0]);
        EXPECT_EQ(saved[0][saved[0].size() - 8], 0xFE);
    }
}

TEST(SaveElsewhere, BrowsedDirectoryIsSavedAsToAFile) {
    const auto pass = [](PGX_DicomDirCallbackReason*, const char*, void*) { return 0; };
    Bytes saved[2];
    for (int i = 0; i < 2; ++i) {
        PGX_DicomDir directory;
        ASSERT_NE(directory.OpenDicomDir(TestData("dicomdir/DICOMDIR_implicit").c_str(), 64), 0);
        directory.Browse(pass, nullptr);
        saved[i] = i == 0 ? SavedToFile(*directory.dataSet, kPart10Explicit)
                          : SavedToMemory(*directory.dataSet, kPart10Explicit);
    }
    EXPECT_EQ(saved[1], saved[0]);
}

TEST(SaveElsewhere, SmallBufferGetsTheBeginning) {
    const Tree root = NewDataSet();
    root->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(pgxSaveToMemory(root.get(), kExplicitLittle, nullptr, 0), 16);
    EXPECT_EQ(pgxSaveToMemory(root.get(), kExplicitLittle, nullptr, 100), 16);
    Bytes bytes(12, 0x7E);
    EXPECT_EQ(pgxSaveToMemory(root.get(), kExplicitLittle, bytes.data(), 10), 16);
    EXPECT_EQ(bytes, (Bytes{0x10, 0, 0x10, 0, 'P', 'N', 8, 0, 'D', 'O', 0x7E, 0x7E}));
}

TEST(SaveElsewhere, FunctionThatTakesTooLittleIsNotCalledAgain) {
    const Tree root = NewDataSet();
    root->InsertNode(0x7FE0, 0x0010, std::string(1000000, 'p').data(), 1000000);
    for (const size_t limit : {size_t{0}, size_t{132}, size_t{200000}}) {
        Taker taker{{}, limit};
        EXPECT_EQ(pgxSaveTo(root.get(), kPart10Explicit, Taker::Take, &taker), 3u);
        EXPECT_EQ(taker.bytes.size(), limit);
        EXPECT_TRUE(taker.isFull);
    }
    EXPECT_EQ(pgxSaveTo(root.get(), kPart10Explicit, nullptr, nullptr), 3u);
}

TEST(SaveElsewhere, FailuresAreThoseOfASave) {
    EXPECT_EQ(pgxSaveTo(nullptr, 0, Taker::Take, nullptr), 0xFFFFFFFFu);
    EXPECT_EQ(pgxSaveToMemory(nullptr, 0, nullptr, 0), -1);
    const Tree root = NewDataSet();
    PGX_Node* const name = root->InsertNode(0x0010, 0x0010, std::string(70000, 'n').data(), 70000);
    ASSERT_EQ(name->length, 70000u);
    EXPECT_EQ(pgxSaveToMemory(root.get(), kPart10Explicit, nullptr, 0), -6);
}

TEST(SaveElsewhere, TreeOfMemoryIsSavedWhole) {
    StreamBuilder file = StreamBuilder().Part10("1.2.840.10008.1.2.4.50");
    file.Sequence(0x0040, 0xA730).Item().Element(0x0008, 0x0104, "LO", "ab").EndItem();
    file.EndSequence().Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0);
    file.Item(2).Text("ab").Item(2).Text("cd").EndSequence();
    const Bytes bytes = file.Data();
    const DataSet root(pgxOpenMemory(bytes.data(), bytes.size(), 0, nullptr));
    const OpenedStream ofFile(file);
    EXPECT_EQ(SavedToMemory(*root, 0), SavedToFile(*ofFile.Root(), 0));
}

}  // namespace
