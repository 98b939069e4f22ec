// Every operation, with any of its calls for files failing: as on a scratched disc, a full one, or
// one that is taken out.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <set>
#include <string>

#include "dictionary/private_dictionary.h"
#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "sopclass/sop_class_set.h"
#include "support/deflated.h"
#include "support/open_report.h"
#include "support/save_modes.h"

namespace {

using namespace pgkit_test;
using pgkit::PrivateDictionary;

class FailingFile : public testing::Test {
  protected:
    template <typename Job>
    static size_t Sweep(Job job) {
        return SweepFailures<FailingFiles>(job);
    }

    DataSet Open(uint32_t maxLoadLength = 64) const {
        return DataSet(pgOpenDataSetFile(path_.c_str(), maxLoadLength));
    }

    // From the tree to an item of its own.
    static void AddPendingLink(PGX_Node& root) {
        const uint32_t none = 0;
        PGX_Node* const offset = root.InsertNode(0x0004, 0x1200, &none, 4);
        offset->offsetPending = 1;
        offset->offsetTarget = root.FindNode(0x0040, 0xA730)->first;
    }

    TempDir directory_;
    std::string path_ = directory_.Write("file", RichFile().Data());
    std::string whole_ = Describe(Open().get());
};

TEST_F(FailingFile, GivesNoTreeOrWhatCouldBeRead) {
    for (const uint32_t maxLoadLength : {0u, kLoadAll}) {
        const size_t calls = Sweep([&](auto&& whileFailing) {
            DataSet root;
            whileFailing([&] { root = Open(maxLoadLength); });
            if (root != nullptr) {
                EXPECT_FALSE(Tags(root.get()).empty());
            }
        });
        EXPECT_GE(calls, 2u);
    }
}

TEST_F(FailingFile, GivesNoInflatedTreeOrAllThatWasDeflated) {
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", "DOE^JOHN").Element(0x0010, 0x0020, "LO", "4711");
    const std::string path = directory_.Write("deflated", DeflatedFile(Deflated(content)));
    for (const uint32_t maxLoadLength : {0u, kLoadAll}) {
        const size_t calls = Sweep([&](auto&& whileFailing) {
            DataSet root;
            PgxOpenReport report = NewReport();
            whileFailing([&] { root.reset(pgxOpenFile(path.c_str(), maxLoadLength, 0, &report)); });
            EXPECT_EQ(root == nullptr, report.elements == 0);
            if (report.result != PGX_OPEN_COMPLETE) return;
            EXPECT_EQ(Tags(root.get()), "0002,0010 0010,0010 0010,0020");
        });
        EXPECT_GE(calls, 5u);
    }
}

TEST_F(FailingFile, ReadsAsZerosThroughTheGetters) {
    const size_t calls = Sweep([&](auto&& whileFailing) {
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        char name[9];
        uint8_t pixels[4] = {};
        whileFailing([&] {
            EXPECT_EQ(root->FindNode(0x0010, 0x0010)->GetStringValue(name, 8), 1);
            root->FindNode(0x0028, 0x0030)->GetDSDoubleValue();
            root->FindNode(0x7FE0, 0x0010)->GetPixelData(0, 4, pixels);
            root->GetFileData(pixels, 0, 4);
        });
        const std::string read = name;
        EXPECT_TRUE(read == "DOE^JOHN" || read.empty()) << read;
    });
    EXPECT_GE(calls, 4u);
}

TEST_F(FailingFile, LeavesADumpIncomplete) {
    const std::string output = directory_.Path("dump");
    const size_t calls = Sweep([&](auto&& whileFailing) {
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        whileFailing([&] { root->Dump(output.c_str()); });
    });
    EXPECT_GE(calls, 5u);
}

TEST_F(FailingFile, CopiesUnreadValuesAsZeros) {
    const size_t calls = Sweep([&](auto&& whileFailing) {
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        PGX_Node* copy = nullptr;
        whileFailing([&] { copy = root->DuplicateNode(0); });
        EXPECT_EQ(Describe(copy), whole_);
        pgFreeNodeHierarchy(copy);
    });
    EXPECT_GE(calls, 5u);
}

TEST_F(FailingFile, IsReportedBySaving) {
    const std::string output = directory_.Path("output");
    ASSERT_EQ(Open(0)->SaveDataSetAsEx(output.c_str(), kPart10Explicit), 0u);
    const Bytes expected = ReadFile(output);
    const size_t calls = Sweep([&](auto&& whileFailing) {
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        uint32_t result = 0;
        whileFailing([&] { result = root->SaveDataSetAsEx(output.c_str(), kPart10Explicit); });
        if (result == 0) {
            EXPECT_EQ(ReadFile(output), expected);
        }
    });
    EXPECT_GE(calls, 5u);
}

TEST_F(FailingFile, ThatWasSavedAndCannotBeOpenedAgainHasAResultAndAMessageOfItsOwn) {
    const std::string output = directory_.Path("output");
    const DataSet root = Open(kLoadAll);
    std::set<uint32_t> results;
    std::set<std::string> messages;
    for (size_t allowed = 0; allowed < 20; ++allowed) {
        const Printed printed = CapturePrinted([&] {
            {
                const FailingFiles failing(allowed, Failures::OneCall);
                results.insert(root->SaveDataSetAsEx(output.c_str(), kPart10Explicit));
            }
            const FailingFiles failing(allowed, Failures::OneCall);
            root->SaveDataSetAs(0, output.c_str());
        });
        messages.insert(printed.err);
    }
    const std::string prefix = "pgSaveDataSetAs : unable to ";
    EXPECT_EQ(results, (std::set<uint32_t>{0, 1, 3, 4, 7}));
    EXPECT_TRUE(messages.contains(prefix + "reopen " + output + "\n"));
    EXPECT_TRUE(messages.contains("pgSaveDataSetAsEx : unable to open " + output + "\n" + prefix +
                                  "open " + output + "\n"));
}

// Whatever happens, one of the two is there: the old content or the new.
TEST_F(FailingFile, IsNeverLostWhenATreeIsSavedOverItsSource) {
    const Bytes before = ReadFile(path_);
    const size_t calls = Sweep([&](auto&& whileFailing) {
        directory_.Write("file", before);
        DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        root->InsertNode(0x0010, 0x0020, "4711", 4);
        uint32_t result = 0;
        whileFailing([&] { result = root->SaveDataSetAsEx(path_.c_str(), kPart10Explicit); });
        root = nullptr;
        if (result != 0) {
            EXPECT_EQ(ReadFile(path_), before);
        } else {
            EXPECT_NE(ReadFile(path_), before);
        }
    });
    EXPECT_GE(calls, 5u);
}

// A link that could not be put right must not get into the file that is replaced.
TEST_F(FailingFile, IsNeverReplacedByHalfASaveInTheOlderForm) {
    const Bytes before = ReadFile(path_);
    std::set<Bytes> contents;
    std::set<std::string> messages;
    for (size_t allowed = 0; allowed < 40; ++allowed) {
        directory_.Write("file", before);
        DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        AddPendingLink(*root);
        const Printed printed = CapturePrinted([&] {
            const FailingFiles failing(allowed, Failures::OneCall);
            root->SaveDataSetAs(0, path_.c_str());
        });
        root = nullptr;
        contents.insert(ReadFile(path_));
        messages.insert(printed.err);
        if (!printed.err.empty()) {
            EXPECT_EQ(ReadFile(path_), before) << printed.err;
        }
    }
    EXPECT_EQ(contents.size(), 2u);
    EXPECT_TRUE(contents.contains(before));
    const std::string prefix = "pgSaveDataSetAs : unable to ";
    EXPECT_EQ(messages, (std::set<std::string>{"", prefix + "reopen " + path_ + "\n",
                                               prefix + "open " + path_ + "\n"}));
}

// After a loss of power one of the two is there as well. Other files are only written.
TEST_F(FailingFile, IsReplacedOnlyByAFileThatIsOnTheDisk) {
    const FailingFiles none(SIZE_MAX);
    const DataSet root = Open(0);
    EXPECT_EQ(root->SaveDataSetAsEx(directory_.Path("other").c_str(), kPart10Explicit), 0u);
    EXPECT_EQ(FilesFlushedToDisk(), 0u);
    EXPECT_EQ(root->SaveDataSetAsEx(path_.c_str(), kPart10Explicit), 0u);
    EXPECT_EQ(FilesFlushedToDisk(), 1u);
    Open(0)->SaveDataSetAs(0, path_.c_str());
    EXPECT_EQ(FilesFlushedToDisk(), 2u);
}

TEST_F(FailingFile, ThatDoesNotGetToTheDiskIsAFailedWrite) {
    constexpr uint32_t kWriteFailed = 3;
    const Bytes before = ReadFile(path_);
    const DataSet root = Open(0);
    uint32_t result = 0;
    size_t flushed = 0;
    for (size_t allowed = 0; allowed < 40 && flushed == 0; ++allowed) {
        CapturePrinted([&] {
            const FailingFiles failing(allowed);
            result = root->SaveDataSetAsEx(path_.c_str(), kPart10Explicit);
            flushed = FilesFlushedToDisk();
        });
    }
    EXPECT_EQ(flushed, 1u);
    EXPECT_EQ(result, kWriteFailed);
    EXPECT_EQ(ReadFile(path_), before);
}

TEST_F(FailingFile, LeavesNoFilesBehindWhenATreeIsSavedOverItsSource) {
    const Bytes before = ReadFile(path_);
    Sweep([&](auto&& whileFailing) {
        directory_.Write("file", before);
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        whileFailing([&] { root->SaveDataSetAsEx(path_.c_str(), kPart10Explicit); });
    });
    size_t files = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(path_).parent_path()))
        ++files;
    EXPECT_EQ(files, 1u);
}

// Only a file that cannot be created or opened makes the export fail.
TEST_F(FailingFile, CutsTheExportOfAValueShort) {
    const std::string output = directory_.Path("value");
    const size_t calls = Sweep([&](auto&& whileFailing) {
        const DataSet root = Open(0);
        ASSERT_NE(root, nullptr);
        int32_t isExported = 0;
        whileFailing([&] {
            isExported = root->FindNode(0x0010, 0x0010)->GetFileContentValue(output.c_str());
        });
        if (isExported == 1) {
            EXPECT_LE(ReadFile(output).size(), 8u);
        }
    });
    EXPECT_GE(calls, 3u);
}

TEST_F(FailingFile, LeavesTheConfigurationEmptyOrWhole) {
    const std::string path = directory_.Write("privdict.dic", "(0009,\"A MAKER\",01) LO Name 1\n");
    // What the dictionary keeps for good, it has after this.
    pgSetPrivateDictionaryFile(path.c_str());
    PrivateDictionary::Instance().Clear();
    const size_t calls = Sweep([&](auto&& whileFailing) {
        whileFailing([&] { pgSetPrivateDictionaryFile(path.c_str()); });
        const auto* entry = PrivateDictionary::Instance().FindByCreator(9, 1, "A MAKER");
        EXPECT_TRUE(entry == nullptr || entry->name == "Name");
        PrivateDictionary::Instance().Clear();
    });
    EXPECT_GE(calls, 1u);
}

TEST_F(FailingFile, LeavesASopClassSetWithoutClasses) {
    const std::string path =
        directory_.Write("classes.xml",
                         "<properties><SOPClassList><SOPClass "
                         "service='Q'>1.2</SOPClass></SOPClassList></properties>");
    for (size_t allowed = 0; allowed < 2; ++allowed) {
        const FailingFiles failing(allowed, Failures::OneCall);
        pgkit::SOPClassSet set;
        set.ReadFile(path.c_str(), "properties");
        EXPECT_TRUE(failing.HasFailed());
        EXPECT_TRUE(set.GetEntries().empty()) << allowed;
    }
}

// ---- DICOMDIRs ----------------------------------------------------------------------------------

class FailingMedium : public FailingFile {
  protected:
    JobMedium medium_;
};

TEST_F(FailingMedium, GivesAListOrNoneInABrowse) {
    for (const uint32_t maxLoadLength : {0u, 0x20000u}) {
        const size_t calls = Sweep([&](auto&& whileFailing) {
            PGX_DicomDir dicomDir;
            whileFailing([&] {
                if (dicomDir.OpenDicomDir(medium_.OtherDicomdir().c_str(), maxLoadLength) != 0) {
                    dicomDir.Browse(nullptr, nullptr);
                }
            });
        });
        EXPECT_GE(calls, 2u);
    }
}

TEST_F(FailingMedium, FailsACreation) {
    const size_t calls = Sweep([&](auto&& whileFailing) {
        if (medium_.Create(whileFailing) == 0) {
            EXPECT_NE(medium_.Written(), nullptr);
        }
    });
    EXPECT_GE(calls, 10u);
}

TEST_F(FailingMedium, FailsARebuild) {
    const size_t calls = Sweep([&](auto&& whileFailing) {
        if (medium_.Rebuild(whileFailing) == 0) {
            EXPECT_NE(medium_.Written(), nullptr);
        }
    });
    EXPECT_GE(calls, 10u);
}

TEST_F(FailingMedium, FailsAnOffshoreCreation) {
    const size_t calls = Sweep([&](auto&& whileFailing) { medium_.CreateOffshore(whileFailing); });
    EXPECT_GE(calls, 3u);
}

TEST_F(FailingMedium, FailsAnUpdate) {
    medium_.WriteStandardKinds();
    const size_t calls = Sweep([&](auto&& whileFailing) {
        medium_.Update(whileFailing);
        EXPECT_NE(medium_.Written(), nullptr);
    });
    EXPECT_GE(calls, 10u);
}

}  // namespace
