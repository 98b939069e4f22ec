// Processes that are killed while they make a DICOMDIR, or save over the file that they read: at
// any moment there is the former file or the new one.
//
// PGKIT_KILLS is the number of moments, 12 without it.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <regex>
#include <string>

#include "dicomdir/create/scan_fixture.h"
#include "support/browsed_directory.h"
#include "support/captured.h"
#include "support/patient_list.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using Clock = std::chrono::steady_clock;

int Kills() {
    const char* const wanted = std::getenv("PGKIT_KILLS");
    return wanted == nullptr ? 12 : std::max(1, std::atoi(wanted));
}

class KilledWrites : public ScanTest {
  protected:
    // Runs a job again and again in a process that is killed at a moment of its duration, and
    // checks what it leaves.
    template <typename Job, typename Check>
    void KillAtRandomMoments(Job job, Check check) {
        const Clock::time_point start = Clock::now();
        job();
        const Clock::duration whole = Clock::now() - start;
        std::mt19937 random(4711);
        std::uniform_real_distribution<double> moment(0, 1.1);
        for (int i = 0; i < Kills() && !HasFailure(); ++i) {
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                job();
                _exit(0);
            }
            const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(whole);
            usleep(static_cast<useconds_t>(static_cast<double>(wait.count()) * moment(random)));
            kill(child, SIGKILL);
            int status;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            check();
        }
    }

    // Names of the medium's directory that begin with a text.
    int CountNames(const std::string& beginning) const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(Directory()))
            count += entry.path().filename().string().starts_with(beginning) ? 1 : 0;
        return count;
    }
};

TEST_F(KilledWrites, LeaveADicomdirAndAListThatAreWhole) {
    constexpr int kFiles = 120;
    for (int i = 1; i <= kFiles; ++i)
        Write("SUB/IM" + std::to_string(i), Instance(i));
    for (int i = 1; i <= 20; ++i)
        Write("TEXT" + std::to_string(i), Bytes{1, 2, 3});
    const auto create = [&](const char* id) {
        PgDicomdirOptions options = {};
        std::string(id).copy(options.fileSetId, sizeof options.fileSetId);
        CapturePrinted(
            [&] { pgCreateDicomdirEx(Directory().c_str(), "", &options, nullptr, nullptr); });
    };
    create("FORMER");
    const std::regex list("(;[^\n]*\n)+\n(\\d\t[^\n]+\n)*");
    int former = 0;
    KillAtRandomMoments(
        [&] { create("NEW"); },
        [&] {
            PatientList patients;
            CapturePrinted([&] {
                patients.reset(pgGetPatientListFromFile(medium_.Path("DICOMDIR").c_str()));
            });
            ASSERT_NE(patients, nullptr) << "no DICOMDIR";
            const std::string outline = Outline(patients.get());
            ASSERT_EQ(std::count(outline.begin(), outline.end(), '.'), 4 * kFiles + 2 + 3);
            const std::string id = TextOf(Child(Open().get(), 0x0004, 0x1130));
            ASSERT_TRUE(id == "FORMER" || id == "NEW ") << id;
            former += id == "FORMER" ? 1 : 0;
            ASSERT_TRUE(std::regex_match(ListFile(), list)) << ListFile();
            create("FORMER");
            ASSERT_EQ(CountNames("DICOMDIR"), 1) << "a stray";
            ASSERT_EQ(CountNames("dcmdir"), 1) << "a stray";
        });
    RecordProperty("former", former);
}

// What a limit cuts short looks like a full disc. The former DICOMDIR and list used to be gone.
TEST_F(KilledWrites, LeaveTheFormerDicomdirAndListOnAFullDisc) {
    Write("A", Instance(1));
    Write("TEXT", Bytes{1});
    PgDicomdirOptions options = {};
    ASSERT_EQ(pgCreateDicomdirEx(Directory().c_str(), "", &options, nullptr, nullptr), 0u);
    Write("B", Instance(2));
    const Bytes dicomdir = ReadFile(medium_.Path("DICOMDIR"));
    const std::string list = ListFile();
    for (const rlim_t limit : {0, 1, 300, 430, 470, 500, 1000}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            signal(SIGXFSZ, SIG_IGN);
            const rlimit size{limit, limit};
            setrlimit(RLIMIT_FSIZE, &size);
            const auto result =
                pgCreateDicomdirEx(Directory().c_str(), "", &options, nullptr, nullptr);
            _exit(static_cast<int>(result));
        }
        int status;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 3) << limit;
        EXPECT_EQ(ReadFile(medium_.Path("DICOMDIR")), dicomdir) << limit;
        EXPECT_EQ(ListFile(), list) << limit;
        EXPECT_EQ(CountNames("DICOMDIR"), 1) << limit;
        EXPECT_EQ(CountNames("dcmdir"), 1) << limit;
    }
}

TEST_F(KilledWrites, LeaveTheSourceOfASaveWhole) {
    constexpr size_t kPixels = 8 << 20;
    const std::string path = outside_.Path("source.dcm");
    {
        const DataSet root(pgAllocateDataSetNode());
        root->AddPart10Elements(nullptr);
        root->InsertNode(0x0010, 0x0010, "FORMER", 6);
        const std::string pixels(kPixels, 'x');
        root->InsertNode(0x7FE0, 0x0010, pixels.data(), kPixels);
        ASSERT_EQ(root->SaveDataSetAsEx(path.c_str(), kPart10Explicit), 0u);
    }
    int number = 0;
    KillAtRandomMoments(
        [&] {
            const DataSet root(pgOpenDataSetFile(path.c_str(), 64));
            const std::string name = "NEW" + std::to_string(++number);
            root->AddOrReplaceNode(0x0010, 0x0010, name.data(), static_cast<uint32_t>(name.size()));
            root->SaveDataSetAsEx(path.c_str(), 0);
        },
        [&] {
            const DataSet root(pgOpenDataSetFile(path.c_str(), kLoadAll));
            ASSERT_NE(root, nullptr);
            ASSERT_TRUE(TextOf(Child(root.get(), 0x0010, 0x0010)).starts_with("NEW"));
            const PGX_Node* const pixels = Child(root.get(), 0x7FE0, 0x0010);
            ASSERT_EQ(pixels->length, kPixels);
            ASSERT_EQ(TextOf(Child(root.get(), 0x7FE0, 0x0010)), std::string(kPixels, 'x'));
            // Only a DICOMDIR's are cleared away by the next run.
            for (int i = 0; std::filesystem::remove(path + ".new" + std::to_string(i)); ++i) {
            }
        });
}

}  // namespace
