// Every operation, with memory running out at any of its allocations.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>

#include "dicomdir/icon_bitmap.h"
#include "dictionary/private_dictionary.h"
#include "hostile/every_failure.h"
#include "hostile/failing_jobs.h"
#include "sopclass/sop_class_set.h"
#include "support/browsed_directory.h"
#include "support/deflated.h"
#include "support/open_report.h"
#include "support/save_modes.h"

namespace {

using namespace pgkit_test;

class OutOfMemory : public testing::Test {
  protected:
    template <typename Job>
    static size_t Sweep(Job job) {
        return SweepFailures<FailingNew>(job);
    }

    // Sweeps an operation on a tree that is opened anew each time. The check is made when there is
    // memory again.
    template <typename Operation, typename Check>
    size_t SweepOnTree(Operation operation, Check check, uint32_t maxLoadLength = 64) const {
        return Sweep([&](auto&& whileFailing) {
            const DataSet root = Open(maxLoadLength);
            ASSERT_NE(root, nullptr);
            whileFailing([&] { operation(*root); });
            check(*root);
        });
    }
    // One that leaves all elements as they are, and their lengths.
    template <typename Operation>
    size_t SweepOnSameTree(Operation operation, uint32_t maxLoadLength = 64) const {
        const auto check = [&](PGX_Node& root) { EXPECT_EQ(Describe(&root), whole_); };
        return SweepOnTree(operation, check, maxLoadLength);
    }

    DataSet Open(uint32_t maxLoadLength) const {
        return DataSet(pgOpenDataSetFile(path_.c_str(), maxLoadLength));
    }

    TempDir directory_;
    std::string path_ = directory_.Write("file", RichFile().Data());
    std::string whole_ = Describe(Open(64).get());
};

TEST_F(OutOfMemory, LeavesAnOpenWithoutATree) {
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        DataSet root;
        whileFailing([&] { root.reset(pgOpenDataSetFile(path_.c_str(), kLoadAll)); });
    });
    EXPECT_GE(allocations, 30u);
}

TEST_F(OutOfMemory, LeavesEveryOpenWithoutATreeAndSaysSo) {
    const Bytes plain = ReadFile(path_);
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", "DOE^JOHN").Element(0x0010, 0x0020, "LO", "4711");
    for (const Bytes& bytes : {plain, DeflatedFile(Deflated(content))}) {
        const size_t allocations = Sweep([&](auto&& whileFailing) {
            DataSet root;
            PgxOpenReport report = NewReport();
            whileFailing(
                [&] { root.reset(pgxOpenMemory(bytes.data(), bytes.size(), 0, &report)); });
            EXPECT_EQ(report.result, root != nullptr ? PGX_OPEN_COMPLETE : PGX_OPEN_NO_MEMORY);
        });
        EXPECT_GE(allocations, 5u);
    }
}

TEST_F(OutOfMemory, LeavesAReadFunctionWithoutATree) {
    struct Giver {
        Bytes bytes;
        size_t given = 0;
    };
    const auto give = [](void* context, void* out, size_t size) {
        auto& giver = *static_cast<Giver*>(context);
        const size_t count = std::min(size, giver.bytes.size() - giver.given);
        std::copy_n(giver.bytes.begin() + static_cast<std::ptrdiff_t>(giver.given), count,
                    static_cast<uint8_t*>(out));
        giver.given += count;
        return count;
    };
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        Giver giver{ReadFile(path_)};
        DataSet root;
        whileFailing([&] { root.reset(pgxOpenFrom(give, &giver, 0, nullptr)); });
    });
    EXPECT_GE(allocations, 5u);
}

TEST_F(OutOfMemory, FailsTheSearchForFrames) {
    int64_t pieces = 0;
    const auto find = [&](PGX_Node& root) {
        pieces = pgxFindFrames(&root, nullptr, 0, nullptr);
        EXPECT_TRUE(pieces == 3 || pieces == PGX_FRAMES_NO_MEMORY) << pieces;
    };
    EXPECT_GE(SweepOnSameTree(find), 1u);
    EXPECT_EQ(pieces, 3);
}

TEST_F(OutOfMemory, LeavesADeflatedSaveIncomplete) {
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", "DOE^JOHN").Element(0x0010, 0x0020, "LO", "4711");
    const std::string path = directory_.Write("deflated", DeflatedFile(Deflated(content)));
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        const DataSet root(pgOpenDataSetFile(path.c_str(), 0));
        ASSERT_NE(root, nullptr);
        int64_t size = 0;
        whileFailing([&] { size = pgxSaveToMemory(root.get(), 0, nullptr, 0); });
        EXPECT_TRUE(size > 132 || size == -5) << size;
    });
    EXPECT_GE(allocations, 4u);
}

TEST_F(OutOfMemory, LeavesTheTreeWithoutTheElementThatDidNotFit) {
    PGX_Node* node = nullptr;
    const auto insert = [&](PGX_Node& root) {
        node = nullptr;
        node = root.InsertNode(0x0010, 0x0020, "4711", 4);
    };
    const size_t allocations = SweepOnTree(insert, [&](PGX_Node& root) {
        EXPECT_EQ(root.FindNode(0x0010, 0x0020), node);
        if (node == nullptr) {
            EXPECT_EQ(Describe(&root), whole_);
        } else {
            EXPECT_EQ(TextOf(node), "4711");
        }
    });
    EXPECT_GE(allocations, 2u);
}

TEST_F(OutOfMemory, LeavesAReplacedElementThere) {
    const size_t allocations = SweepOnSameTree([](PGX_Node& root) {
        EXPECT_NE(root.AddOrReplaceNode(0x0010, 0x0010, "ROE^JANE", 8), nullptr);
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, FailsTheSettingOfAValue) {
    int32_t isSet = 0;
    const auto set = [&](PGX_Node& root) {
        isSet = 0;
        isSet = root.FindNode(0x0010, 0x0010)->SetValue("ROE^JANE^X", 10);
    };
    const size_t allocations = SweepOnTree(set, [&](PGX_Node& root) {
        PGX_Node* const node = root.FindNode(0x0010, 0x0010);
        EXPECT_EQ(node->length, 10u);
        EXPECT_EQ(isSet == 1, node->value != nullptr);
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, LeavesTheValueThatAContentFileDidNotReplace) {
    const std::string content = directory_.Write("content", "0123456789");
    int32_t isTaken = 0;
    const auto take = [&](PGX_Node& root) {
        isTaken = 0;
        isTaken = root.FindNode(0x0010, 0x0010)->SetFileContentValue(content.c_str());
    };
    const size_t allocations = SweepOnTree(take, [&](PGX_Node& root) {
        PGX_Node* const node = root.FindNode(0x0010, 0x0010);
        if (isTaken == 1) {
            EXPECT_EQ(node->length, 10u);
            EXPECT_EQ(node->contentFile, content);
        } else {
            EXPECT_EQ(TextOf(node), "DOE^JOHN");
        }
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, LeavesSequencesWithTheItemsThatFit) {
    PGX_Node *sequence, *item, *element, *head;
    const auto build = [&](PGX_Node& root) {
        sequence = item = element = head = nullptr;
        sequence = root.InsertNode(0x0008, 0x1140, nullptr, 0);
        if (sequence == nullptr) return;
        item = pgAllocateDataSetNode();
        sequence->SeqAddTail(item);
        if (item != nullptr) element = item->InsertNode(0x0008, 0x1150, "1.2.3", 5);
        head = pgAllocateDataSetNode();
        sequence->SeqAddHead(head);
    };
    const size_t allocations = SweepOnTree(build, [&](PGX_Node& root) {
        EXPECT_EQ(root.FindNode(0x0008, 0x1140), sequence);
        if (sequence == nullptr) {
            EXPECT_EQ(Describe(&root), whole_);
            return;
        }
        const std::string content = element == nullptr ? "" : "(0008,1150)UI:6";
        const std::string items = item == nullptr ? "" : "[" + content + "]";
        EXPECT_EQ(Describe(sequence),
                  "(0008,1140)SQ:0{" + std::string(head == nullptr ? "" : "[]") + items + "}");
    });
    EXPECT_GE(allocations, 5u);
}

// The group lengths as texts, each behind its group.
std::set<std::string> GroupLengthsOf(PGX_Node& root) {
    std::set<std::string> lengths;
    for (PGX_Node* node = root.first; node != nullptr; node = node->next) {
        if (node->element != 0) continue;
        lengths.insert(std::to_string(node->group) + ":" + std::to_string(node->GetULValue()));
    }
    return lengths;
}

TEST_F(OutOfMemory, IsReportedByGroupLengths) {
    const DataSet complete = Open(64);
    ASSERT_EQ(complete->AddGroupLengths(kExplicitLittle), 1);
    const std::set<std::string> lengths = GroupLengthsOf(*complete);
    int32_t isAdded = 0;
    int32_t isUpdated = 0;
    const auto add = [&](PGX_Node& root) {
        isAdded = isUpdated = 0;
        isAdded = root.AddGroupLengths(kExplicitLittle);
        isUpdated = root.UpdateGroupLengths(kExplicitLittle);
    };
    const size_t allocations = SweepOnTree(add, [&](PGX_Node& root) {
        if (isAdded == 1) {
            EXPECT_EQ(Describe(&root), Describe(complete.get()));
        }
        if (isUpdated == 0) return;
        // Those that are there are right, and after both nothing is missing.
        const std::set<std::string> found = GroupLengthsOf(root);
        EXPECT_TRUE(std::ranges::includes(lengths, found));
        EXPECT_TRUE(isAdded == 0 || found == lengths);
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

uint32_t FragmentLength(PGX_Node& pixelData, uint32_t index) {
    uint32_t length = 0;
    uint32_t offset = 0;
    EXPECT_EQ(pixelData.GetEncodedPixelInfo(index, &length, &offset), 1);
    return length;
}

TEST_F(OutOfMemory, LeavesAFragmentThatCouldNotBeSet) {
    int32_t isSet = 0;
    const auto set = [&](PGX_Node& root) {
        isSet = 0;
        isSet = root.FindNode(0x7FE0, 0x0010)->SetEncodedPixelData(1, 6, "abcdef");
    };
    const size_t allocations = SweepOnTree(set, [&](PGX_Node& root) {
        EXPECT_EQ(Describe(&root), whole_);
        EXPECT_EQ(FragmentLength(*root.FindNode(0x7FE0, 0x0010), 1), isSet == 1 ? 6u : 4u);
    });
    EXPECT_GE(allocations, 1u);
}

TEST_F(OutOfMemory, LeavesNoPixelDataOrEmptyFragments) {
    PGX_Node* pixelData = nullptr;
    int32_t isSet = 0;
    const auto replace = [&](PGX_Node& root) {
        pixelData = nullptr;
        isSet = 0;
        root.RemoveNode(root.FindNode(0x7FE0, 0x0010));
        pixelData = root.InsertEncodedPixelDataNode(3);
        if (pixelData != nullptr) isSet = pixelData->SetEncodedPixelData(2, 4, "abcd");
    };
    const size_t allocations = SweepOnTree(replace, [&](PGX_Node& root) {
        EXPECT_EQ(root.FindNode(0x7FE0, 0x0010), pixelData);
        if (pixelData == nullptr) return;
        EXPECT_EQ(pixelData->fragmentCount, 3u);
        EXPECT_EQ(FragmentLength(*pixelData, 2), isSet == 1 ? 4u : 0u);
    });
    EXPECT_GE(allocations, 3u);
}

TEST_F(OutOfMemory, PassesThroughTheGetters) {
    const size_t allocations = SweepOnSameTree(
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
    const size_t allocations =
        SweepOnSameTree([&](PGX_Node& root) { root.Dump(output.c_str()); }, 0);
    EXPECT_GE(allocations, 10u);
}

TEST_F(OutOfMemory, LeavesThePrivateDictionaryUsable) {
    const std::string path =
        directory_.Write("privdict.dic",
                         "(0009,\"A MAKER\",01) LO AnElementOfALongName 1\n"
                         "(0009,\"A MAKER\",02) LO AnotherElementOfALongName 1\n");
    auto& dictionary = pgkit::PrivateDictionary::Instance();
    const auto nameOf = [&](uint8_t element) {
        const auto* entry = dictionary.FindByCreator(9, element, "A MAKER");
        return entry == nullptr ? std::string("none") : std::string(entry->name);
    };
    // What the dictionary keeps for good, it has after this.
    pgSetPrivateDictionaryFile(path.c_str());
    dictionary.Clear();
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        whileFailing([&] { pgSetPrivateDictionaryFile(path.c_str()); });
        const std::string first = nameOf(1);
        const std::string second = nameOf(2);
        EXPECT_TRUE(first == "none" || first == "AnElementOfALongName") << first;
        EXPECT_TRUE(second == "none" || second == "AnotherElementOfALongName") << second;
        pgSetPrivateDictionaryFile(path.c_str());
        EXPECT_EQ(nameOf(1), "AnElementOfALongName");
        EXPECT_EQ(nameOf(2), "AnotherElementOfALongName");
        dictionary.Clear();
    });
    EXPECT_GE(allocations, 4u);
}

TEST_F(OutOfMemory, LeavesASopClassSetThatCanBeReadAgain) {
    const std::string path = directory_.Write(
        "classes.xml",
        "<properties><SOPClassList><SOPClass name='A class of a long name' service='STORE' "
        "object='IMAGE' mnemonic='AMnemonicOfManyLetters'>1.2.3.4</SOPClass></SOPClassList>"
        "</properties>");
    const pgkit::SOPClass entry = {"1.2.3.4", "A class of a long name", "STORE", "IMAGE",
                                   "AMnemonicOfManyLetters"};
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        pgkit::SOPClassSet set;
        whileFailing([&] { set.ReadFile(path.c_str(), "properties"); });
        set.ReadFile(path.c_str(), "properties");
        ASSERT_EQ(set.GetEntries().size(), 1u);
        EXPECT_EQ(*set.Find("1.2.3.4"), entry);
    });
    EXPECT_GE(allocations, 6u);
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

    static std::set<std::string> RecordsOf(const DirectoryBuilder& directory) {
        const TempDir place;
        const DataSet root(
            pgOpenDataSetFile(place.Write("DICOMDIR", directory.Build()).c_str(), kLoadAll));
        std::set<std::string> records;
        for (PGX_Node* item = root->FindNode(0x0004, 0x1220)->first; item != nullptr;
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

// What was there stays whole, or everything that was accepted is there.
TEST_F(OutOfMemoryWithMedia, ChangesADicomdirAsAWholeOrNotAtAll) {
    medium_.WriteStandardKinds();
    const auto always = [](auto&& operation) { operation(); };
    ASSERT_EQ(medium_.Update(always), 0u);
    const std::set<std::string> complete = RecordsWritten();
    ASSERT_GE(complete.size(), 12u);
    // Those of the study that stays, and of what it is of.
    const std::set<std::string> former = RecordsOf(RichDirectory());
    const size_t allocations = Sweep([&](auto&& whileFailing) {
        const uint32_t result = medium_.Update(whileFailing);
        for (const std::string& keys : RecordsWritten()) {
            EXPECT_TRUE(former.contains(keys) || (result == 0 && complete.contains(keys))) << keys;
        }
        if (result != 0) {
            EXPECT_EQ(RecordsWritten(), former);
        }
    });
    EXPECT_GE(allocations, 300u);
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
