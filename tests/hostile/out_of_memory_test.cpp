// Every operation, with memory running out at any of its allocations.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>
#include <set>
#include <string>

#include "dicomdir/icon_bitmap.h"
#include "dictionary/private_dictionary.h"
#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "sopclass/sop_class_set.h"
#include "support/browsed_directory.h"

namespace {

using namespace pgkit_test;

class OutOfMemory : public testing::Test {
  protected:
    template <typename Job>
    static size_t Sweep(Job job) {
        return SweepFailures<FailingNew>(job);
    }

    // Sweeps an operation on a tree that is opened anew each time.
    template <typename Operation>
    size_t SweepOnTree(Operation operation, uint32_t maxLoadLength = 64) const {
        return Sweep([&](auto&& whileFailing) {
            const DataSet root(pgOpenDataSetFile(path_.c_str(), maxLoadLength));
            ASSERT_NE(root, nullptr);
            whileFailing([&] { operation(*root); });
            // Whatever has happened, the tree is whole.
            EXPECT_FALSE(Describe(root.get()).empty());
        });
    }

    TempDir directory_;
    std::string path_ = directory_.Write("file", RichFile().Data());
};

TEST_F(OutOfMemory, LeavesAnOpenWithoutATree) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        DataSet root;
        whileFailing([&] { root.reset(pgOpenDataSetFile(path_.c_str(), kLoadAll)); });
    });
    EXPECT_GE(allocations, 30u);
}

TEST_F(OutOfMemory, LeavesTheTreeWithoutTheElementThatDidNotFit) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        const size_t before = Tags(&root).size();
        PGX_Node* node = root.InsertNode(0x0010, 0x0020, "4711", 4);
        EXPECT_EQ(Tags(&root).size(), node == nullptr ? before : before + 10);
    });
    EXPECT_GE(allocations, 2u);
}

TEST_F(OutOfMemory, LeavesAReplacedElementThere) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        EXPECT_NE(root.AddOrReplaceNode(0x0010, 0x0010, "ROE^JANE", 8), nullptr);
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, FailsTheSettingOfAValue) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        PGX_Node* node = root.FindNode(0x0010, 0x0010);
        const int32_t isSet = node->SetValue("ROE^JANE^X", 10);
        EXPECT_EQ(isSet == 1, node->value != nullptr);
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, LeavesTheValueThatAContentFileDidNotReplace) {
    const std::string content = directory_.Write("content", "0123456789");
    const size_t allocations = SweepOnTree([&](PGX_Node& root) {
        root.FindNode(0x0010, 0x0010)->SetFileContentValue(content.c_str());
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, LeavesSequencesWhole) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        PGX_Node* sequence = root.InsertNode(0x0008, 0x1140, nullptr, 0);
        if (sequence == nullptr) return;
        PGX_Node* item = pgAllocateDataSetNode();
        sequence->SeqAddTail(item);
        if (item != nullptr) item->InsertNode(0x0008, 0x1150, "1.2.3", 5);
        sequence->SeqAddHead(pgAllocateDataSetNode());
    });
    EXPECT_GE(allocations, 5u);
}

TEST_F(OutOfMemory, IsReportedByGroupLengths) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        root.AddGroupLengths(PG_EXPLICIT_VR | PG_LITTLE_ENDIAN);
        root.UpdateGroupLengths(PG_EXPLICIT_VR | PG_LITTLE_ENDIAN);
    });
    EXPECT_GE(allocations, 10u);
}

TEST_F(OutOfMemory, LosesNoPartOfACopy) {
    for (const int32_t nodeOnly : {0, 1}) {
        const size_t allocations = Sweep([&](auto&& whileFailing) {
            const DataSet root(pgOpenDataSetFile(path_.c_str(), kLoadAll));
            PGX_Node* copy = nullptr;
            whileFailing([&] { copy = root->DuplicateNode(nodeOnly); });
            if (copy != nullptr) {
                EXPECT_EQ(Describe(copy), Describe(root.get()));
            }
            pgFreeNodeHierarchy(copy);
        });
        EXPECT_GE(allocations, 20u);
    }
}

TEST_F(OutOfMemory, LeavesPixelDataWithoutFragments) {
    const size_t allocations = SweepOnTree([](PGX_Node& root) {
        PGX_Node* pixelData = root.FindNode(0x7FE0, 0x0010);
        pixelData->SetEncodedPixelData(1, 6, "abcdef");
        root.RemoveNode(pixelData);
        pixelData = root.InsertEncodedPixelDataNode(3);
        if (pixelData != nullptr) pixelData->SetEncodedPixelData(2, 4, "abcd");
    });
    EXPECT_GE(allocations, 4u);
}

TEST_F(OutOfMemory, PassesThroughTheGetters) {
    const size_t allocations = SweepOnTree(
        [](PGX_Node& root) {
            char text[400];
            root.FindNode(0x0008, 0x0016)->GetStringValue(text, sizeof text - 1);
            root.FindNode(0x0028, 0x0030)->GetDSDoubleValue();
            PGX_Node* const code = root.FindNode(0x0040, 0xA730)->first->first->first;
            code->FindNode(0x0008, 0x0104)->GetDSDoubleValue();
            root.FindNode(0x0009, 0x1001)->GetTagName(text);
            root.FindNode(0x7FE0, 0x0010)->GetPixelData(0, 4, text);
        },
        0);
    EXPECT_GE(allocations, 1u);
}

// A UID that reads as empty is taken for that of another file.
TEST_F(OutOfMemory, LeavesUidsReadable) {
    for (const uint32_t maxLoadLength : {0u, kLoadAll}) {
        const DataSet root(pgOpenDataSetFile(path_.c_str(), maxLoadLength));
        PGX_Node* const uid = Child(root.get(), 0x0008, 0x0016);
        char text[65] = {};
        const FailingNew failing(0);
        EXPECT_EQ(uid->GetStringValue(text, 64), 1);
        EXPECT_STREQ(text, "1.2.840.10008.5.1.4.1.1.2");
    }
}

TEST_F(OutOfMemory, LeavesADumpIncomplete) {
    const std::string output = directory_.Path("dump");
    const size_t allocations = SweepOnTree([&](PGX_Node& root) { root.Dump(output.c_str()); }, 0);
    EXPECT_GE(allocations, 10u);
}

TEST_F(OutOfMemory, IsReportedBySavingInEveryMode) {
    const std::string output = directory_.Path("output");
    for (const int32_t mode : {0x2C, 0x2D, 0x2A, 0x34, 0x00}) {
        const size_t allocations =
            SweepOnTree([&](PGX_Node& root) { root.SaveDataSetAsEx(output.c_str(), mode); });
        EXPECT_GE(allocations, 5u) << mode;
    }
}

TEST_F(OutOfMemory, LeavesThePrivateDictionaryUsable) {
    const std::string path =
        directory_.Write("privdict.dic",
                         "(0009,\"A MAKER\",01) LO AnElementOfALongName 1\n"
                         "(0009,\"A MAKER\",02) LO AnotherElementOfALongName 1\n");
    // What the dictionary keeps for good, it has after this.
    pgSetPrivateDictionaryFile(path.c_str());
    pgkit::PrivateDictionary::Instance().Clear();
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        whileFailing([&] { pgSetPrivateDictionaryFile(path.c_str()); });
        pgkit::PrivateDictionary::Instance().Clear();
    });
    EXPECT_GE(allocations, 4u);
}

TEST_F(OutOfMemory, LeavesASopClassSetUsable) {
    const std::string path = directory_.Write(
        "classes.xml",
        "<properties><SOPClassList>"
        "<SOPClass uid=\"1.2.3.4\" name=\"A class of a long name\" service=\"STORE\""
        " object=\"IMAGE\" mnemonic=\"CT\"/></SOPClassList></properties>");
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        pgkit::SOPClassSet set;
        whileFailing([&] {
            set.load(path.c_str(), "properties");
            set.save(path.c_str(), "properties");
        });
    });
    EXPECT_GE(allocations, 4u);
}

// ---- DICOMDIRs ----------------------------------------------------------------------------------

class OutOfMemoryWithMedia : public OutOfMemory {
  protected:
    // The keys of each record of the written DICOMDIR and their lengths, in any order.
    std::set<std::string> RecordsWritten() const {
        std::set<std::string> records;
        const DataSet written = medium_.Written();
        PGX_Node* sequence = written == nullptr ? nullptr : written->FindNode(0x0004, 0x1220);
        for (PGX_Node* item = sequence == nullptr ? nullptr : sequence->first; item != nullptr;
             item = item->next)
            records.insert(Describe(item));
        return records;
    }

    // Whether no patient, study or series is without children.
    static bool IsComplete(PGX_List& patients) {
        const std::string outline = Outline(&patients);
        return outline.find("()") == std::string::npos;
    }

    JobMedium medium_;
};

TEST_F(OutOfMemoryWithMedia, LosesNothingInABrowse) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        PGX_DicomDir dicomDir;
        whileFailing([&] {
            if (dicomDir.OpenDicomDir(medium_.OtherDicomdir().c_str(), 0x20000) == 0) return;
            dicomDir.Browse(nullptr, nullptr);
        });
        PGX_List* patients = dicomDir.GiveAndForgetPatientList();
        if (patients != nullptr) pgEmptyPatientList(patients);
        delete patients;
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, GivesNoHandleOfADicomdir) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        PGX_DicomDir* dicomDir = nullptr;
        whileFailing([&] {
            EXPECT_NO_THROW(dicomDir = pgKitOpenDicomDir(medium_.OtherDicomdir().c_str(), 0x20000));
        });
        pgKitCloseDicomDir(dicomDir);
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, GivesNoBitmapOfAnIcon) {
    const DataSet dicomdir(pgOpenDataSetFile(medium_.OtherDicomdir().c_str(), 0));
    PGX_Node* const records = dicomdir->FindNode(0x0004, 0x1220);
    PGX_Node* icon = nullptr;
    for (PGX_Node* item = records->first; item != nullptr && icon == nullptr; item = item->next)
        icon = item->FindNode(0x0088, 0x0200);
    ASSERT_NE(icon, nullptr);
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        whileFailing([&] { EXPECT_NO_THROW(pgkit::NewIconBitmap(*icon->first)); });
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemoryWithMedia, LosesNothingInAPatientListFile) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        PGX_List* patients = nullptr;
        whileFailing([&] { patients = pgGetPatientListFromFile(medium_.OtherDicomdir().c_str()); });
        if (patients != nullptr) pgEmptyPatientList(patients);
        delete patients;
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, LosesNothingInARebuild) {
    const size_t allocations = Sweep([&](auto&& whileFailing) { medium_.Rebuild(whileFailing); });
    EXPECT_GE(allocations, 100u);
}

// A file for which memory did not suffice is refused; one that is not has all its keys.
TEST_F(OutOfMemoryWithMedia, WritesNoRecordWithoutItsKeys) {
    const auto always = [](auto&& operation) { operation(); };
    ASSERT_EQ(medium_.Create(always), 0u);
    const std::set<std::string> expected = RecordsWritten();
    const std::string expectedHead = Tags(medium_.Written().get());
    EXPECT_GE(expected.size(), 4u);
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        if (medium_.Create(whileFailing) != 0) return;
        EXPECT_EQ(Tags(medium_.Written().get()), expectedHead);
        for (const std::string& keys : RecordsWritten())
            EXPECT_EQ(expected.count(keys), 1u) << keys;
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, AddsFilesWithAllTheirRecordsInADiskBrowse) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        PGX_List patients;
        whileFailing([&] {
            pgBrowseDisk(medium_.Directory().c_str(), "", &medium_.Options(), &patients, nullptr,
                         nullptr);
        });
        EXPECT_TRUE(IsComplete(patients));
        pgEmptyPatientList(&patients);
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, LosesNothingInAPatientListOfADirectory) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        PGX_List* patients = nullptr;
        whileFailing([&] {
            patients = pgBrowsePatientListEx(medium_.Directory().c_str(), "", &medium_.Options(),
                                             nullptr, nullptr);
        });
        if (patients != nullptr) pgEmptyPatientList(patients);
        delete patients;
    });
    EXPECT_GE(allocations, 100u);
}

TEST_F(OutOfMemoryWithMedia, LosesNothingInAnOffshoreCreation) {
    const size_t allocations =
        Sweep([&](auto&& whileFailing) { medium_.CreateOffshore(whileFailing); });
    EXPECT_GE(allocations, 30u);
}

}  // namespace
