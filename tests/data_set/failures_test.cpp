// The C++ layer when memory runs out, in a program that also knows the module's own names.
#include <gmock/gmock.h>
#include <pgkit/data_set.hpp>

#include "codec/data_set_parser.h"
#include "dataset/node_ptr.h"
#include "dataset/tree_walk.h"
#include "dicomdir/create/file_gate.h"
#include "dictionary/edition.h"
#include "dictionary/tags.h"
#include "hostile/every_failure.h"
#include "support/directory_builder.h"
#include "support/instance_file.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using namespace pgkit;
using testing::AnyOf;

constexpr const char* kDeepPath =
    "RequestAttributesSequence[0].ScheduledProtocolCodeSequence[0].CodeMeaning";

TEST(DataSetFailures, AChangeThatFailsLeavesNothingHalfMade) {
    const size_t calls = SweepFailures<FailingNew>([](auto&& whileFailing) {
        data_set dataSet = data_set::create();
        ASSERT_TRUE(dataSet.set_text("PatientName", "DOE^JANE"));
        const std::string before = Describe(dataSet.node());
        bool isDone = false;
        whileFailing([&] { isDone = static_cast<bool>(dataSet.set_text(kDeepPath, "Kopf")); });
        if (isDone) {
            EXPECT_EQ(dataSet.find(kDeepPath).text(), "Kopf");
        } else {
            EXPECT_EQ(Describe(dataSet.node()), before);
        }
    });
    EXPECT_GT(calls, 3u);
}

TEST(DataSetFailures, NumbersAndItemsAreMadeWholeOrNotAtAll) {
    const size_t calls = SweepFailures<FailingNew>([](auto&& whileFailing) {
        data_set dataSet = data_set::create();
        const std::string empty = Describe(dataSet.node());
        whileFailing([&] {
            static_cast<void>(dataSet.set_numbers("PixelSpacing", {0.25, 0.1234567890123456}));
        });
        EXPECT_THAT(dataSet.find("PixelSpacing").text(), AnyOf("", "0.25\\0.12345678901235"));
        static_cast<void>(dataSet.remove("PixelSpacing"));
        bool isAdded = false;
        whileFailing(
            [&] { isAdded = static_cast<bool>(dataSet.add_item("RequestAttributesSequence")); });
        EXPECT_EQ(Describe(dataSet.node()) == empty, !isAdded);
    });
    EXPECT_GT(calls, 3u);
}

TEST(DataSetFailures, ReadingAFileGivesItsTextsOrNothing) {
    const TempDir directory;
    const std::string path =
        directory.Write("image", InstanceFile().Patient("ID", std::string(600, 'x')).Data());
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        std::string name;
        std::vector<uint8_t> bytes;
        whileFailing([&] {
            const auto image = data_set::open(path);
            if (!image) return;
            name = image->find("PatientName").text();
            bytes = image->find("PatientName").bytes();
        });
        EXPECT_THAT(name, AnyOf("", std::string(600, 'x')));
        EXPECT_THAT(bytes.size(), AnyOf(0u, 600u));
    });
    EXPECT_GT(calls, 3u);
}

TEST(DataSetFailures, WalkingAndBrowsingLoseNothing) {
    const TempDir directory;
    DirectoryBuilder disc;
    disc.Image(disc.Series(disc.Study(disc.Patient("ID", "DOE^"), "1.2"), "1.3", "CT"), "1.4", 1);
    const std::string path = directory.Write("DICOMDIR", disc.Build());
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        whileFailing([&] {
            const auto opened = pgkit::directory::open(path);
            for (const patient patient : opened->patients())
                for (const study study : patient.studies())
                    walk(study.record(), [](element& element) {
                        return element.text().empty() ? visit::remove : visit::go_on;
                    });
        });
    });
    EXPECT_GT(calls, 3u);
}

}  // namespace
