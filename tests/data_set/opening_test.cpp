// The C++ layer: opening and saving files, and who owns what.
#include <gmock/gmock.h>

#include <ranges>
#include <span>
#include <type_traits>

#include "data_set/opened.h"
#include "support/instance_file.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::encoding;
using pgkit::failure;
using testing::ElementsAre;
using testing::StartsWith;

constexpr uint32_t kUnloaded = 0;

pgkit::data_set SmallImage() {
    pgkit::data_set image = pgkit::data_set::create();
    EXPECT_TRUE(image.set_text("SOPClassUID", "1.2.840.10008.5.1.4.1.1.7"));
    EXPECT_TRUE(image.set_text("SOPInstanceUID", "1.2.3"));
    EXPECT_TRUE(image.set_text("PatientName", "DOE^JANE"));
    EXPECT_TRUE(image.set_number("Rows", 2));
    return image;
}

TEST(DataSetFiles, ErrorsNameTheFileAndTheReason) {
    const TempDir directory;
    const std::string missing = directory.Path("missing");
    const auto none = pgkit::data_set::open(missing);
    ASSERT_FALSE(none);
    EXPECT_EQ(none.error().kind, failure::no_such_file);
    EXPECT_EQ(none.error().message, "cannot read " + missing + ": no such file");
    // The value of a failed result is an empty data set, and can be asked for everything.
    EXPECT_FALSE(*none);
    EXPECT_EQ(none->find("PatientName").text(), "");

    const std::string folder = directory.Path("");
    EXPECT_EQ(pgkit::data_set::open(folder).error().kind, failure::cannot_open);
    EXPECT_EQ(pgkit::data_set::open("").error().kind, failure::no_such_file);
    const std::string note = directory.Write("note", "note");
    EXPECT_EQ(pgkit::data_set::open(note).error().message,
              "cannot read " + note + ": it is no DICOM data set");
    EXPECT_EQ(pgkit::data_set::open(LibraryPath(note)).error().kind, failure::not_a_data_set);
}

TEST(DataSetFiles, ReportWhereTheyEnd) {
    const TempDir directory;
    const Bytes whole = InstanceFile().Data();
    PgxOpenReport report{};
    EXPECT_TRUE(pgkit::data_set::open(directory.Write("whole", whole), {}, &report));
    EXPECT_EQ(report.result, PGX_OPEN_COMPLETE);
    EXPECT_EQ(report.offset, whole.size());

    const auto half = std::span(whole).first(whole.size() - 1);
    const auto opened = pgkit::data_set::open(directory.Write("half", half), {}, &report);
    EXPECT_EQ(opened->find("PatientID").text(), "ID1");
    EXPECT_EQ(report.result, PGX_OPEN_CUT_SHORT);
    EXPECT_EQ(report.group, 0x0028);
}

TEST(DataSetFiles, AreNoneWithoutABeginningLikeOne) {
    const TempDir directory;
    const std::string letter = directory.Write("letter", "Dear colleague, this is no image.");
    EXPECT_EQ(pgkit::data_set::open(letter).error().kind, failure::not_a_data_set);
}

TEST(DataSetFiles, CanBeInMemory) {
    Bytes bytes = InstanceFile().Data();
    PgxOpenReport report{};
    const auto image = pgkit::data_set::open_memory(bytes.data(), bytes.size(), 0, &report);
    EXPECT_EQ(report.result, PGX_OPEN_COMPLETE);
    bytes.clear();
    EXPECT_EQ(image->find("PatientID").text(), "ID1");
    EXPECT_EQ(pgkit::data_set::open_memory("letter", 6).error().message,
              "cannot read the bytes: it is no DICOM data set");
    EXPECT_EQ(pgkit::data_set::open_memory(nullptr, 6).error().message,
              "cannot read the bytes: it cannot be opened");
}

TEST(DataSetFiles, AreOpenedAsTheOptionsSay) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0010, 0x0010, "PN", "DOE^");
    const TempDir directory;
    const std::string path = directory.Write("file", stream.Data());
    pgkit::open_options options;
    options.flags = PG_OPEN_FORCE_IMPLICIT_VR;
    EXPECT_EQ(pgkit::data_set::open(path, options)->find("PatientName").text(), "DOE^");
    // Values below 64 bytes are loaded, unless the options say otherwise.
    EXPECT_NE(pgkit::data_set::open(path, options)->find("PatientName").node()->value, nullptr);
    options.load_below = 4;
    EXPECT_EQ(pgkit::data_set::open(path, options)->find("PatientName").node()->value, nullptr);
}

TEST(DataSetFiles, BuiltDataSetsAreSavedAsDicomFiles) {
    const TempDir directory;
    const std::pair<encoding, const char*> encodings[] = {
        {encoding::as_read, "1.2.840.10008.1.2.1"},
        {encoding::explicit_little, "1.2.840.10008.1.2.1"},
        {encoding::implicit_little, "1.2.840.10008.1.2"},
        {encoding::explicit_big, "1.2.840.10008.1.2.2"}};
    for (const auto& [how, transferSyntax] : encodings) {
        pgkit::data_set image = SmallImage();
        const std::string path = directory.Path("image");
        ASSERT_TRUE(image.save(path, how));
        EXPECT_EQ(pgIsDicomFile(path.c_str()), 1);
        const auto read = pgkit::data_set::open(path);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->find("TransferSyntaxUID").text(), transferSyntax);
        EXPECT_EQ(read->find("MediaStorageSOPInstanceUID").text(), "1.2.3");
        EXPECT_EQ(read->find("PatientName").text(), "DOE^JANE");
        EXPECT_EQ(read->find("Rows").number<int>(), 2);
    }
}

TEST(DataSetFiles, MetaInformationFollowsTheDataSet) {
    const TempDir directory;
    const std::string path = directory.Write("image", InstanceFile().Instance("1.2.3").Data());
    auto image = pgkit::data_set::open(path);
    ASSERT_TRUE(image->set_text("SOPInstanceUID", "1.2.4"));
    ASSERT_TRUE(image->save(path));
    image = pgkit::data_set::open(path);
    EXPECT_EQ(image->find("MediaStorageSOPInstanceUID").text(), "1.2.4");
    // It is there once, also after it was saved in another encoding.
    ASSERT_TRUE(image->save(path, encoding::implicit_little));
    ASSERT_TRUE(image->save(path, encoding::explicit_little));
    image = pgkit::data_set::open(path);
    int versions = 0;
    for (const pgkit::element element : *image)
        versions += element.tag() == pgkit::tag{0x0002, 0x0001} ? 1 : 0;
    EXPECT_LE(versions, 1);
    EXPECT_EQ(image->find("TransferSyntaxUID").text(), "1.2.840.10008.1.2.1");
}

TEST(DataSetFiles, WithoutMetaInformationStayWithoutIt) {
    const TempDir directory;
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0018, "UI", PaddedUid("1.2.3")).Element(0x0010, 0x0010, "PN", "DOE^");
    const std::string path = directory.Write("bare", stream.Data());
    auto bare = pgkit::data_set::open(path);
    ASSERT_TRUE(bare->save(directory.Path("copy")));
    EXPECT_EQ(ReadFile(directory.Path("copy")), stream.Data());
    ASSERT_TRUE(bare->save(path, encoding::implicit_little));
    EXPECT_EQ(pgIsDicomFile(path.c_str()), 1);
}

TEST(DataSetFiles, AreSavedOverThemselves) {
    Opened file(Part10Stream().Element(0x0010, 0x0010, "PN", std::string(100, 'x')), kUnloaded);
    ASSERT_TRUE(file->set_text("PatientID", "ID"));
    ASSERT_TRUE(file->save(file.path));
    EXPECT_EQ(file->find("PatientName").text(), std::string(100, 'x'));
    EXPECT_EQ(pgkit::data_set::open(file.path)->find("PatientID").text(), "ID");
}

TEST(DataSetFiles, ThatCannotBeSavedSayWhy) {
    const TempDir directory;
    pgkit::data_set image = SmallImage();
    const std::string nowhere = directory.Path("no/such/folder/image");
    testing::internal::CaptureStderr();
    const auto refused = image.save(nowhere);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(refused.error().kind, failure::cannot_create);
    EXPECT_EQ(refused.error().message, "cannot save " + nowhere + ": the file cannot be created");
    ASSERT_TRUE(image.set_text("ImageComments", std::string(70'000, 'x')));
    EXPECT_EQ(image.save(directory.Path("long")).error().kind, failure::too_long);
    EXPECT_EQ(pgkit::data_set().save(directory.Path("none")).error().kind, failure::no_data_set);
}

// ---- Ownership ----------------------------------------------------------------------------------

static_assert(std::is_nothrow_move_constructible_v<pgkit::data_set>);
static_assert(!std::is_copy_constructible_v<pgkit::data_set>);
static_assert(std::is_trivially_copyable_v<pgkit::element>);
static_assert(std::is_trivially_copyable_v<pgkit::item>);
static_assert(sizeof(pgkit::element) == 2 * sizeof(void*));

static_assert(std::ranges::forward_range<const pgkit::item>);
static_assert(std::ranges::forward_range<const pgkit::item_range>);
static_assert(std::ranges::forward_range<const pgkit::frame_range>);
static_assert(std::ranges::forward_range<const pgkit::handle_range<pgkit::leaf>>);
static_assert(std::is_constructible_v<std::span<const int>, pgkit::span<const int>>);

TEST(DataSetOwnership, HandlesStayValidWhenTheirDataSetIsMoved) {
    pgkit::data_set first = SmallImage();
    const pgkit::element name = first.find("PatientName");
    pgkit::data_set second = std::move(first);
    EXPECT_EQ(name.text(), "DOE^JANE");
    EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): it is empty, and says so
    EXPECT_EQ(first.find("PatientName").text(), "");
    EXPECT_EQ(first.set_text("PatientName", "x").error().kind, failure::no_data_set);
    first = std::move(second);
    EXPECT_EQ(name.text(), "DOE^JANE");
    pgkit::data_set& same = first;
    first = std::move(same);
    EXPECT_EQ(name.text(), "DOE^JANE");
}

TEST(DataSetOwnership, AssigningClosesWhatWasThere) {
    Opened file(Part10Stream().Element(0x0010, 0x0010, "PN", "DOE^"), kUnloaded);
    file.dataSet = SmallImage();
    // On Windows a file that is open could not be removed.
    EXPECT_TRUE(std::filesystem::remove(file.path));
}

TEST(DataSetOwnership, ADataSetIsAnItem) {
    const auto nameOf = [](pgkit::item item) { return item.find("PatientName").text(); };
    pgkit::data_set image = SmallImage();
    EXPECT_EQ(nameOf(image), "DOE^JANE");
    EXPECT_EQ(nameOf(pgkit::item()), "");
}

TEST(DataSetOwnership, TreesComeFromAndGoToTheFlatFunctions) {
    PGX_Node* const root = pgAllocateDataSetNode();
    pgkit::data_set dataSet(root);
    ASSERT_TRUE(dataSet.set_text("PatientName", "DOE"));
    EXPECT_EQ(dataSet.node(), root);
    EXPECT_EQ(dataSet.release(), root);
    EXPECT_FALSE(dataSet);
    EXPECT_EQ(Describe(root), "[(0010,0010)PN:4]");
    pgCloseDataSet(root);
}

TEST(DataSetOwnership, SpansAreOverWhateverLiesInARow) {
    std::vector<uint8_t> vector = {1, 2};
    const pgkit::span<const uint8_t> ofVector = vector;
    EXPECT_THAT(ofVector, ElementsAre(1, 2));
    EXPECT_EQ(ofVector[1], 2);
    const int array[] = {3, 4, 5};
    EXPECT_THAT(pgkit::span<const int>(array), ElementsAre(3, 4, 5));
    EXPECT_TRUE(pgkit::span<int>().empty());
    static_assert(!std::is_constructible_v<pgkit::span<uint8_t>, const std::vector<uint8_t>&>);
}

}  // namespace
