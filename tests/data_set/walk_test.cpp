// The C++ layer: visiting every element at every depth.
#include "data_set/opened.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

StreamBuilder Nested() {
    StreamBuilder stream(VrMode::Explicit);
    stream.Element(0x0008, 0x0060, "CS", "CT")
        .Sequence(0x0008, 0x1115)
        .Item()
        .Element(0x0010, 0x0010, "PN", "A1")
        .Sequence(0x0008, 0x114A)
        .Item()
        .Element(0x0010, 0x0010, "PN", "B1")
        .EndItem()
        .EndSequence()
        .EndItem()
        .Item()
        .EndItem()
        .Item()
        .Element(0x0010, 0x0010, "PN", "A2")
        .EndItem()
        .EndSequence()
        .Element(0x0010, 0x0010, "PN", "OUTSIDE ");
    return stream;
}

// Tags as they are visited, with their depth: "0:0008,0060 ...".
std::string Visited(const pgkit::item& item, pgkit::visit atSequences) {
    std::string visited;
    pgkit::walk(item, [&](pgkit::element& element, size_t depth) {
        visited += std::to_string(depth) + ":" + element.tag().text().substr(1, 9) + " ";
        return element.is_sequence() ? atSequences : pgkit::visit::go_on;
    });
    return visited;
}

TEST(DataSetWalk, VisitsEverythingInTheOrderOfTheFile) {
    Opened file(Nested());
    EXPECT_EQ(Visited(*file, pgkit::visit::go_on),
              "0:0008,0060 0:0008,1115 1:0010,0010 1:0008,114A 2:0010,0010 1:0010,0010 "
              "0:0010,0010 ");
    EXPECT_EQ(Visited(file->find_item("ReferencedSeriesSequence[0]"), pgkit::visit::go_on),
              "0:0010,0010 0:0008,114A 1:0010,0010 ");
    EXPECT_EQ(Visited(pgkit::item(), pgkit::visit::go_on), "");
}

TEST(DataSetWalk, SkipsAndStopsWhereTheVisitorSays) {
    Opened file(Nested());
    EXPECT_EQ(Visited(*file, pgkit::visit::skip), "0:0008,0060 0:0008,1115 0:0010,0010 ");
    EXPECT_EQ(Visited(*file, pgkit::visit::stop), "0:0008,0060 0:0008,1115 ");
    EXPECT_TRUE(pgkit::walk(*file, [](pgkit::element&) {}));
    EXPECT_FALSE(pgkit::walk(*file, [](pgkit::element&) { return pgkit::visit::stop; }));
}

TEST(DataSetWalk, RemovesWhatTheVisitorWantsGone) {
    Opened file(Nested());
    pgkit::walk(*file, [](pgkit::element& element) {
        return element.tag() == pgkit::tag{0x0010, 0x0010} ? pgkit::visit::remove
                                                           : pgkit::visit::go_on;
    });
    EXPECT_EQ(Describe(file->node()),
              "[(0008,0060)CS:2 (0008,1115)SQ:-1{[(0008,114A)SQ:-1{[]}][][]}]");
    pgkit::walk(*file, [](pgkit::element&) { return pgkit::visit::remove; });
    EXPECT_TRUE(file->empty());
    // Elements can be added again behind those that stayed.
    EXPECT_TRUE(file->set_text("PatientName", "DOE"));
    EXPECT_EQ(Tags(file->node()), "0010,0010");
}

TEST(DataSetWalk, ChangesValuesInTheCharacterSetOfEachItem) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 100")
        .Sequence(0x0008, 0x1115)
        .Item()
        .Element(0x0008, 0x0005, "CS", "ISO_IR 192")
        .Element(0x0010, 0x0010, "PN", "x ")
        .EndItem()
        .Item()
        .Element(0x0010, 0x0010, "PN", "x ")
        .EndItem()
        .EndSequence();
    Opened file(stream);
    pgkit::walk(*file, [](pgkit::element& element) {
        if (element.vr() != VR_PN) return;
        EXPECT_TRUE(element.set_text("Müll"));
    });
    EXPECT_EQ(file->find("ReferencedSeriesSequence[0].PatientName").bytes().size(), 6u);
    EXPECT_EQ(file->find("ReferencedSeriesSequence[1].PatientName").bytes().size(), 4u);
    EXPECT_EQ(file->find("ReferencedSeriesSequence[1].PatientName").text(), "Müll");
}

// The elements behind it once went on referring to the one that was gone.
TEST(DataSetWalk, GoesOnAfterTheCharacterSetWasRemoved) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 192").Element(0x0010, 0x0010, "PN", "\xC3\xA4");
    Opened file(stream);
    std::string text;
    pgkit::walk(*file, [&](pgkit::element& element) {
        if (element.tag() == pgkit::tag{0x0008, 0x0005}) return pgkit::visit::remove;
        text += element.text();
        return pgkit::visit::go_on;
    });
    EXPECT_EQ(text, "ä");  // what is UTF-8 without a character set is taken for that
}

TEST(DataSetWalk, TakesNoStackForDepth) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    pgkit::item deepest = dataSet;
    constexpr size_t depth = 50'000;
    for (size_t i = 0; i < depth; ++i)
        deepest = *deepest.add_item({0x0040, 0xA730});
    ASSERT_TRUE(deepest.set_text("PatientName", "DEEP"));
    size_t deepestVisited = 0;
    pgkit::walk(dataSet, [&](pgkit::element&, size_t at) { deepestVisited = at; });
    EXPECT_EQ(deepestVisited, depth);
}

TEST(DataSetWalk, RemovesManyElementsOfALongDataSet) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    for (uint16_t i = 0; i < 40'000; ++i)
        pgKitInsertNodeWithGroupElement(dataSet.node(), 0x0009, i, "x", 1);
    pgkit::walk(dataSet, [](pgkit::element& element) {
        return element.tag().element % 2 == 0 ? pgkit::visit::go_on : pgkit::visit::remove;
    });
    size_t left = 0;
    for (const pgkit::element element : dataSet)
        left += element.tag().element % 2 == 0 ? 1u : 100'000u;
    EXPECT_EQ(left, 20'000u);
    EXPECT_TRUE(dataSet.set_text({0x0009, 0x0011}, "y"));
    EXPECT_EQ(dataSet.find({0x0009, 0x0011}).text(), "y");
}

}  // namespace
