// Threads that work on trees of their own need no lock between them.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/captured.h"
#include "support/instance_file.h"
#include "support/save_modes.h"
#include "support/threads.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

constexpr int kRounds = 20;

// Opens, changes, copies, dumps, writes and closes a data set; what it is in the end.
std::string Work(const std::string& path, const std::string& output) {
    const DataSet root(pgOpenDataSetFile(path.c_str(), 16));
    if (root == nullptr) return "null";
    root->AddOrReplaceNode(0x0010, 0x0010, "ROE^JANE", 8);
    root->AddGroupLengths(kExplicitLittle);
    const DataSet copy(root->DuplicateNode(0));
    copy->Dump((output + ".txt").c_str());
    if (copy->SaveDataSetAsEx(output.c_str(), kPart10Explicit) != 0) return "not saved";
    const DataSet saved(pgOpenDataSetFile(output.c_str(), kLoadAll));
    return Describe(saved.get()) + TextOf(Child(saved.get(), 0x0010, 0x0010));
}

TEST(TwoThreads, WorkOnTheirOwnTreesWithoutLocks) {
    const TempDir directory;
    const std::string path = directory.Write("file", InstanceFile().Data());
    const std::string expected = Work(path, directory.Path("expected"));
    std::vector<std::string> results(2);
    RunOnThreads(results.size(), [&](size_t i) {
        const std::string output = directory.Path("output" + std::to_string(i));
        for (int round = 0; round < kRounds; ++round) {
            results[i] = Work(path, output);
            if (results[i] != expected) return;
        }
    });
    for (const std::string& result : results)
        EXPECT_EQ(result, expected);
}

// Makes a directory a medium and browses it; how many patients that gives.
int32_t PatientsOf(const std::string& medium) {
    PgDicomdirOptions options = {};
    options.fillMissingKeys = 1;
    pgCreateDicomdirEx(medium.c_str(), "", &options, nullptr, nullptr);
    PGX_List* list = pgGetPatientListFromFile((medium + "\\DICOMDIR").c_str());
    const int32_t count = list == nullptr ? -1 : list->GetCount();
    pgEmptyPatientList(list);
    delete list;
    return count;
}

TEST(TwoThreads, CreateAndBrowseTheirOwnMedia) {
    const TempDir directory;
    std::vector<int32_t> patients(2);
    std::vector<std::string> media;
    for (size_t i = 0; i < patients.size(); ++i) {
        const std::string name = "medium" + std::to_string(i);
        std::filesystem::create_directory(directory.Path(name));
        InstanceFile withoutKeys;
        withoutKeys.Remove(0x0010, 0x0020).Remove(0x0020, 0x0010).Remove(0x0020, 0x0011);
        directory.Write(name + "/IMAGE", withoutKeys.Data());
        media.push_back(directory.Path(name));
    }
    CapturePrinted([&] {
        RunOnThreads(media.size(), [&](size_t i) {
            for (int round = 0; round < kRounds; ++round)
                patients[i] = PatientsOf(media[i]);
        });
    });
    EXPECT_EQ(patients, (std::vector<int32_t>{1, 1}));
}

// A text was that of the thread which had asked last.
TEST(TwoThreads, HaveTextsOfRecordsOfTheirOwn) {
    const auto readsItsOwn = [](char letter) {
        PGX_DicomDirPatientNode patient;
        const std::string name(100, letter);
        name.copy(patient.patientsName, name.size());
        for (int round = 0; round < 1000; ++round)
            if (pgKitDirGetPatientsName(&patient) != name) return false;
        return true;
    };
    bool results[2] = {};
    RunOnThreads(2, [&](size_t thread) { results[thread] = readsItsOwn(thread == 0 ? 'a' : 'b'); });
    EXPECT_TRUE(results[0]);
    EXPECT_TRUE(results[1]);
}

// A parse goes by the switch as it was when it began.
TEST(TwoThreads, MaySwitchTheDecodingOfUnElementsWhileFilesAreOpened) {
    const TempDir directory;
    const std::string path = directory.Write("file", InstanceFile().Data());
    const std::string expected = Describe(DataSet(pgOpenDataSetFile(path.c_str(), 0)).get());
    std::vector<std::string> trees(kRounds);
    RunOnThreads(2, [&](size_t thread) {
        if (thread == 0) {
            for (uint32_t round = 0; round < 1000; ++round)
                pgTryToDecodeUNSequences(round % 2);
        } else {
            for (std::string& tree : trees)
                tree = Describe(DataSet(pgOpenDataSetFile(path.c_str(), 0)).get());
        }
    });
    EXPECT_EQ(trees, std::vector<std::string>(kRounds, expected));
    pgTryToDecodeUNSequences(1);
}

}  // namespace
