// Icons, with any call failing that making them takes: of the library, and of the imaging module.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "dicomdir/create/icon_making.h"
#include "dicomdir/create/medium.h"
#include "hostile/every_failure.h"
#include "support/failing_imaging.h"

namespace {

using namespace pgkit_test;

constexpr uint32_t kEdge = 8;
const char* const kRunLengthEncoded = "encapsulated/rtdose_rle_15frames_no_bot.dcm";

// Eight columns and four rows of 8-bit pixels, which a window leaves as they are.
InstanceFile Image() {
    std::string pixels;
    for (char gray = 1; gray <= 32; ++gray)
        pixels += gray;
    return InstanceFile()
        .SetUS(0x0028, 0x0002, 1)
        .SetUS(0x0028, 0x0010, 4)
        .SetUS(0x0028, 0x0011, 8)
        .SetUS(0x0028, 0x0100, 8)
        .Set(0x0028, 0x1050, "DS", "128")
        .Set(0x0028, 0x1051, "DS", "256")
        .Set(0x7FE0, 0x0010, "OB", pixels);
}

class FailingIcons : public testing::Test {
  protected:
    FailingIcons() {
        options_.iconSize = kEdge;
        options_.seriesIcons = 1;
        medium_.Write("NATIVE", Image());
        medium_.Write("RLE", ReadFile(TestData(kRunLengthEncoded)));
    }

    // 0 when a DICOMDIR was written.
    template <typename WhileFailing>
    uint32_t Create(WhileFailing&& whileFailing) const {
        std::filesystem::remove(medium_.Path("DICOMDIR"));
        uint32_t result = 5;
        whileFailing([&] {
            result =
                pgCreateDicomdirEx(medium_.Directory().c_str(), "", &options_, nullptr, nullptr);
        });
        return result;
    }
    uint32_t Create() const {
        return Create([](auto&& operation) { operation(); });
    }

    // Which icons the DICOMDIR has: their pixels, by the tags and UIDs of their records.
    std::map<std::string, Bytes> IconsWritten() const {
        std::map<std::string, Bytes> icons;
        const DataSet written = medium_.Open();
        for (PGX_Node* record : RecordsOf(written.get())) {
            if (IconOf(record) == nullptr) continue;
            const bool isSeries = TextOf(Child(record, 0x0004, 0x1430)) == "SERIES";
            PGX_Node* const uid =
                isSeries ? Child(record, 0x0020, 0x000E) : Child(record, 0x0004, 0x1511);
            icons[TextOf(uid)] = IconPixels(record);
        }
        return icons;
    }

    // All the icons there are; those of image and series for either file.
    std::map<std::string, Bytes> AllIcons() const {
        EXPECT_EQ(Create(), 0u);
        std::map<std::string, Bytes> icons = IconsWritten();
        EXPECT_EQ(icons.size(), 4u);
        return icons;
    }

    // What a creation leaves behind has only icons that are right, and the next one has them all.
    template <typename Failing, typename IsRight>
    size_t SweepCreation(IsRight isRight) const {
        const std::map<std::string, Bytes> allIcons = AllIcons();
        const size_t calls = SweepFailures<Failing>([&](auto&& whileFailing) {
            const uint32_t result = Create(whileFailing);
            EXPECT_LE(result, 7u);
            if (result != 0) return;
            for (const auto& [uid, pixels] : IconsWritten()) {
                ASSERT_TRUE(allIcons.contains(uid)) << uid;
                EXPECT_TRUE(isRight(pixels, allIcons.at(uid))) << uid;
            }
        });
        EXPECT_EQ(AllIcons(), allIcons);
        return calls;
    }

    Medium medium_;
    PgDicomdirOptions options_ = {};
};

TEST_F(FailingIcons, AreLeftOutOrRightWhenMemoryRunsOut) {
    const LinkedImaging linked;
    EXPECT_GE(SweepCreation<FailingNew>(std::equal_to<Bytes>()), 200u);
}

// Values that could not be read count as zeros, a window among them: an icon may be too dark or
// show another frame, but nothing is missing from it.
TEST_F(FailingIcons, AreLeftOutOrWholeWhenFilesFail) {
    const LinkedImaging linked;
    const auto isWhole = [](const Bytes& icon, const Bytes& right) {
        return icon.size() == right.size();
    };
    EXPECT_GE(SweepCreation<FailingFiles>(isWhole), 20u);
}

// What cannot be made is left out: that is no reason to refuse the image. A module that is loaded
// has its memory from this program where the system lets a program replace operator new.
TEST_F(FailingIcons, AreNoExceptionToTheirImages) {
    for (const char* name : {"NATIVE", "RLE"}) {
        const std::string path = medium_.Path(name);
        const auto make = [&](auto&& whileFailing) {
            whileFailing(
                [&] { EXPECT_NO_THROW(pgkit::IconMaker().Make(path.c_str(), kEdge, true)); });
        };
        SweepFailures<FailingNew>(make);
        const LinkedImaging linked;
        EXPECT_GE(SweepFailures<FailingNew>(make), 20u);
    }
}

TEST_F(FailingIcons, LoseNothingInAHierarchyOfFiles) {
    const LinkedImaging linked;
    const auto browse = [&](auto&& whileFailing) {
        PGX_List patients;
        whileFailing([&] {
            pgBrowseDisk(medium_.Directory().c_str(), "", &options_, &patients, nullptr, nullptr);
        });
        pgEmptyPatientList(&patients);
    };
    EXPECT_GE(SweepFailures<FailingNew>(browse), 100u);
    EXPECT_GE(SweepFailures<FailingFiles>(browse), 20u);
}

// Their bitmaps are made again from the records of a DICOMDIR, and written to another one.
TEST_F(FailingIcons, AreCopiedWholeFromADicomdir) {
    const std::map<std::string, Bytes> allIcons = AllIcons();
    const std::string original = medium_.Write("COPY/ORIGINAL", ReadFile(medium_.Path("DICOMDIR")));
    const size_t allocations = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        PGX_List* patients = nullptr;
        whileFailing([&] { patients = pgGetPatientListFromFile(original.c_str()); });
        if (patients == nullptr) return;
        uint32_t result = 5;
        whileFailing([&] { result = pgBuildDicomdir(patients, medium_.Directory().c_str()); });
        pgEmptyPatientList(patients);
        delete patients;
        if (result != 0) return;
        for (const auto& [uid, pixels] : IconsWritten()) {
            EXPECT_EQ(pixels, allIcons.at(uid)) << uid;
        }
    });
    EXPECT_GE(allocations, 100u);
}

}  // namespace
