// The C++ layer: changing elements, sequences and items, building and saving data sets.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "data_set/opened.h"
#include "support/current_edition.h"
#include "support/host_order.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::failure;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The kind of an error, none of success.
template <typename T>
failure KindOf(const pgkit::result<T>& result) {
    return result.error().kind;
}

std::string Content(const pgkit::item& item) { return Describe(item.node()); }

// ---- Values -------------------------------------------------------------------------------------

TEST(DataSetEditing, TextsReplaceValuesOrMakeElementsInTagOrder) {
    Opened file(Part10Stream().Element(0x0010, 0x0020, "LO", "OLD1"));
    EXPECT_TRUE(file->set_text("PatientID", "NEW"));
    EXPECT_TRUE(file->set_text("PatientName", "DOE^JANE"));
    EXPECT_EQ(file->find("PatientID").text(), "NEW");
    EXPECT_EQ(Tags(file->node()), "0002,0010 0010,0010 0010,0020");
    EXPECT_TRUE(file->find("PatientName").set_text(""));
    EXPECT_TRUE(file->find("PatientName").empty());
}

TEST(DataSetEditing, TextsAreStoredInTheCharacterSetOfTheirItem) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_text("SpecificCharacterSet", "ISO_IR 100"));
    ASSERT_TRUE(dataSet.set_text("PatientName", "Müller"));
    EXPECT_EQ(dataSet.find("PatientName").bytes().size(), 6u);
    EXPECT_EQ(dataSet.find("PatientName").text(), "Müller");
    // An item inherits it, one that is made on the way, too.
    ASSERT_TRUE(dataSet.set_text("RequestAttributesSequence[0].ScheduledProcedureStepDescription",
                                 "Schädel"));
    EXPECT_EQ(
        dataSet.find("RequestAttributesSequence[0].ScheduledProcedureStepDescription").bytes(),
        (std::vector<uint8_t>{'S', 'c', 'h', 0xE4, 'd', 'e', 'l', ' '}));
}

TEST(DataSetEditing, WhatTheCharacterSetLacksChangesNothing) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_text("PatientName", "DOE"));
    const auto refused = dataSet.set_text("PatientName", "Müller");
    EXPECT_EQ(KindOf(refused), failure::not_expressible);
    EXPECT_EQ(
        refused.error().message,
        "cannot set (0010,0010) PatientName: the character set lacks a character of the text");
    EXPECT_EQ(dataSet.find("PatientName").text(), "DOE");
    EXPECT_EQ(KindOf(dataSet.set_text("PatientName", "\xFF")), failure::invalid_utf8);
    // What was made on the way is gone again.
    const std::string before = Content(dataSet);
    EXPECT_EQ(KindOf(dataSet.set_text("RequestAttributesSequence[0].0040,0007", "Schädel")),
              failure::not_expressible);
    EXPECT_EQ(KindOf(dataSet.set_text("PatientComments", "ä")), failure::not_expressible);
    EXPECT_EQ(Content(dataSet), before);
}

TEST(DataSetEditing, SeveralTextsAreJoined) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    EXPECT_TRUE(dataSet.set_texts("ImageType", {"ORIGINAL", "PRIMARY", "AXIAL"}));
    EXPECT_EQ(dataSet.find("ImageType").text(), "ORIGINAL\\PRIMARY\\AXIAL");
    const std::vector<std::string_view> values = {"DERIVED"};
    EXPECT_TRUE(dataSet.set_texts("ImageType", values));
    EXPECT_THAT(dataSet.find("ImageType").texts(), ElementsAre("DERIVED"));
    EXPECT_EQ(KindOf(dataSet.set_texts("ImageType", {"A\\B"})), failure::bad_value);
    EXPECT_EQ(dataSet.find("ImageType").text(), "DERIVED");
    EXPECT_TRUE(dataSet.find("ImageType").set_texts({}));
    EXPECT_TRUE(dataSet.find("ImageType").empty());
}

TEST(DataSetEditing, NumbersTakeTheFormOfTheValueRepresentation) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const CurrentEdition current;
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_number("Rows", 512));
    ASSERT_TRUE(dataSet.set_number("InstanceNumber", -7));
    ASSERT_TRUE(dataSet.set_numbers("PixelSpacing", {0.1, 2.0}));
    ASSERT_TRUE(dataSet.set_number("AcquisitionDuration", 1.5));
    ASSERT_TRUE(dataSet.set_number("SelectorUVValue", UINT64_MAX));
    ASSERT_TRUE(dataSet.set_number("SelectorSVValue", INT64_MIN));
    ASSERT_TRUE(dataSet.set_number("SelectorFLValue", 0.5f));
    ASSERT_TRUE(dataSet.set_number("FrameIncrementPointer", 0x00181063));
    EXPECT_THAT(dataSet.find("Rows").bytes(), ElementsAre(0, 2));
    EXPECT_EQ(dataSet.find("InstanceNumber").text(), "-7");
    EXPECT_EQ(dataSet.find("PixelSpacing").text(), "0.1\\2");
    EXPECT_EQ(dataSet.find("AcquisitionDuration").number<double>(), 1.5);
    EXPECT_EQ(dataSet.find("SelectorUVValue").number<uint64_t>(), UINT64_MAX);
    EXPECT_EQ(dataSet.find("SelectorSVValue").number<int64_t>(), INT64_MIN);
    EXPECT_EQ(dataSet.find("SelectorFLValue").text(), "0.5");
    EXPECT_EQ(dataSet.find("FrameIncrementPointer").text(), "(0018,1063)");
}

TEST(DataSetEditing, DecimalStringsKeepToSixteenCharacters) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    const std::pair<double, const char*> cases[] = {{1.0 / 3, "0.33333333333333"},
                                                    {-1.0 / 3, "-0.3333333333333"},
                                                    {1e100, "1e+100"},
                                                    {-1.2345678901234567e-100, "-1.23456789e-100"},
                                                    {100000, "100000"},
                                                    {-123456789012345, "-123456789012345"},
                                                    {1e15, "1e+15"},
                                                    {123456789, "123456789"},
                                                    {0.1, "0.1"},
                                                    {0, "0"}};
    for (const auto& [number, text] : cases) {
        ASSERT_TRUE(dataSet.set_number("SliceThickness", number));
        EXPECT_EQ(dataSet.find("SliceThickness").text(), text) << number;
    }
}

TEST(DataSetEditing, NumbersThatDoNotFitChangeNothing) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_number("Rows", 1));
    EXPECT_EQ(KindOf(dataSet.set_number("Rows", 65536)), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_number("Rows", -1)), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_number("Rows", 0.5)), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_numbers("Rows", {2.0, 1e9})), failure::bad_value);
    EXPECT_EQ(dataSet.find("Rows").number<int>(), 1);
    EXPECT_EQ(KindOf(dataSet.set_number("InstanceNumber", 1e10)), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_number("SliceThickness", std::nan(""))), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_number("SliceThickness", HUGE_VAL)), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_number("PatientName", 1)), failure::wrong_type);
    EXPECT_EQ(Tags(dataSet.node()), "0028,0010");
}

TEST(DataSetEditing, TextsOfNumbersAreReadAsNumbers) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    pgkit::data_set dataSet = pgkit::data_set::create();
    EXPECT_TRUE(dataSet.set_text("Rows", " 512 "));
    EXPECT_THAT(dataSet.find("Rows").bytes(), ElementsAre(0, 2));
    EXPECT_TRUE(dataSet.set_text("FrameIncrementPointer", "FrameTime\\0018,1065"));
    EXPECT_EQ(dataSet.find("FrameIncrementPointer").text(), "(0018,1063)\\(0018,1065)");
    EXPECT_EQ(KindOf(dataSet.set_text("Rows", "many")), failure::bad_value);
    // It was stored as an infinity.
    EXPECT_EQ(KindOf(dataSet.set_text("RecommendedDisplayFrameRateInFloat", "1e400")),
              failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_text("SelectorFDValue", "1e400")), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_text("Rows", "1\\")), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_text("Rows", "65536")), failure::bad_value);
    EXPECT_EQ(KindOf(dataSet.set_text("FrameIncrementPointer", "NoName")), failure::bad_value);
    EXPECT_EQ(dataSet.find("Rows").number<int>(), 512);
    EXPECT_TRUE(dataSet.set_text("Rows", ""));
    EXPECT_TRUE(dataSet.find("Rows").empty());
}

TEST(DataSetEditing, BytesAreStoredInHostOrderAlsoWhereTheFileWasBigEndian) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Part10("1.2.840.10008.1.2.2").ElementUS(0x0028, 0x0010, 1);
    stream.Header(0x0009, 0x1001, "OW", 4).U16(0x0102).U16(0x0304);
    Opened file(stream);
    const std::vector<uint8_t> bytes = file->find({0x0009, 0x1001}).bytes();
    EXPECT_THAT(bytes, ElementsAre(2, 1, 4, 3));
    ASSERT_TRUE(file->set_bytes({0x0009, 0x1001}, bytes.data(), bytes.size()));
    EXPECT_EQ(file->find({0x0009, 0x1001}).bytes(), bytes);
    ASSERT_TRUE(file->set_number("Rows", 0x0102));
    EXPECT_EQ(file->find("Rows").number<int>(), 0x0102);
    const std::string saved = file.directory.Path("saved");
    ASSERT_TRUE(file->save(saved));
    const auto again = pgkit::data_set::open(saved);
    EXPECT_EQ(again->find({0x0009, 0x1001}).bytes(), bytes);
    EXPECT_EQ(again->find("Rows").number<int>(), 0x0102);
}

TEST(DataSetEditing, WhatHasNoSuchValueRefusesIt) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.add("RequestAttributesSequence"));
    EXPECT_EQ(KindOf(dataSet.set_text("RequestAttributesSequence", "x")), failure::wrong_type);
    EXPECT_EQ(KindOf(dataSet.set_number("RequestAttributesSequence", 1)), failure::wrong_type);
    EXPECT_EQ(KindOf(dataSet.set_bytes("RequestAttributesSequence", "x", 1)), failure::wrong_type);
    EXPECT_EQ(KindOf(dataSet.set_bytes("PatientName", "", SIZE_MAX)), failure::too_long);
    EXPECT_EQ(KindOf(dataSet.set_text("EncapsulatedDocument", "x")), failure::wrong_type);
    EXPECT_EQ(Tags(dataSet.node()), "0040,0275");
    EXPECT_EQ(KindOf(pgkit::element().set_text("x")), failure::not_found);
    EXPECT_EQ(KindOf(pgkit::element().set_bytes("x", 1)), failure::not_found);
    EXPECT_EQ(KindOf(pgkit::item().set_text("PatientName", "x")), failure::no_data_set);
    EXPECT_EQ(KindOf(pgkit::item().add_item("RequestAttributesSequence")), failure::no_data_set);
}

// ---- Places -------------------------------------------------------------------------------------

TEST(DataSetEditing, PathsMakeWhatIsMissing) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    EXPECT_TRUE(dataSet.set_text("ReferencedSeriesSequence[0].SeriesInstanceUID", "1.2"));
    EXPECT_TRUE(dataSet.set_text("ReferencedSeriesSequence[1].SeriesInstanceUID", "1.3"));
    EXPECT_TRUE(dataSet.set_text(
        "ReferencedSeriesSequence[1].ReferencedInstanceSequence[0].ReferencedSOPInstanceUID",
        "1.4"));
    EXPECT_EQ(Content(dataSet),
              "[(0008,1115)SQ:0{[(0020,000E)UI:4][(0008,114A)SQ:0{[(0008,1155)UI:4]} "
              "(0020,000E)UI:4]}]");
}

TEST(DataSetEditing, PathsThatCannotBeFollowedChangeNothing) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_text("PatientName", "DOE"));
    const std::string before = Content(dataSet);
    const std::pair<const char*, failure> cases[] = {
        {"", failure::bad_path},
        {"NoSuchName", failure::bad_path},
        {"PatientName.", failure::bad_path},
        {"ReferencedSeriesSequence.SeriesInstanceUID", failure::bad_path},
        {"ReferencedSeriesSequence[0]", failure::bad_path},
        {"ReferencedSeriesSequence[0].NoSuchName", failure::bad_path},
        {"ReferencedSeriesSequence[0].ReferencedSeriesSequence[0]", failure::bad_path},
        {"ReferencedSeriesSequence[1].SeriesInstanceUID", failure::not_found},
        {"PatientName[0].PatientName", failure::not_a_sequence},
        {"PatientID[0].PatientName", failure::not_a_sequence},
        {"0009,1001", failure::wrong_type},
    };
    for (const auto& [path, kind] : cases) {
        const auto refused = dataSet.set_text(path, "x");
        EXPECT_EQ(KindOf(refused), kind) << path;
        EXPECT_THAT(refused.error().message, HasSubstr(path));
        EXPECT_EQ(Content(dataSet), before) << path;
    }
}

TEST(DataSetEditing, ItemsAndSequencesAreAdded) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    auto first = dataSet.add_item("RequestAttributesSequence");
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->set_text("ScheduledProcedureStepID", "S1"));
    auto second = dataSet.add_item("RequestAttributesSequence");
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->set_text("ScheduledProcedureStepID", "S2"));
    EXPECT_EQ(dataSet.find("RequestAttributesSequence[1].ScheduledProcedureStepID").text(), "S2");
    EXPECT_TRUE(dataSet.add_item("RequestAttributesSequence[0].0040,0008"));
    EXPECT_TRUE(dataSet.add("ReferencedSeriesSequence"));
    EXPECT_TRUE(dataSet.find("ReferencedSeriesSequence").is_sequence());
    EXPECT_EQ(KindOf(dataSet.add_item("PatientName")), failure::not_a_sequence);
    EXPECT_EQ(KindOf(dataSet.add_item("RequestAttributesSequence[0]")), failure::bad_path);
    EXPECT_FALSE(dataSet.contains("PatientName"));
}

TEST(DataSetEditing, PrivateElementsAreAddedWithTheirValueRepresentation) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    EXPECT_TRUE(dataSet.set_text({0x0009, 0x0010}, "ACME 1.1"));
    auto added = dataSet.add({0x0009, 0x1001}, VR_DS);
    ASSERT_TRUE(added);
    EXPECT_TRUE(added->set_number(2.5));
    EXPECT_EQ(dataSet.find({0x0009, 0x1001}).number<double>(), 2.5);
    // What is there stays as it is.
    EXPECT_EQ(dataSet.add({0x0009, 0x1001}, VR_LO)->vr(), uint32_t{VR_DS});
    // A step with an index makes a private sequence.
    EXPECT_TRUE(dataSet.set_text("0009,1002[0].PatientName", "DOE"));
    EXPECT_EQ(dataSet.find({0x0009, 0x1002}).vr(), uint32_t{VR_SQ});
}

TEST(DataSetEditing, AmbiguousNumbersFollowThePixelRepresentation) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_number("SmallestImagePixelValue", 1));
    EXPECT_EQ(dataSet.find("SmallestImagePixelValue").vr(), uint32_t{VR_US});
    ASSERT_TRUE(dataSet.set_number("PixelRepresentation", 1));
    ASSERT_TRUE(dataSet.set_number("LargestImagePixelValue", -5));
    EXPECT_EQ(dataSet.find("LargestImagePixelValue").vr(), uint32_t{VR_SS});
    EXPECT_EQ(dataSet.find("LargestImagePixelValue").number<int>(), -5);
}

TEST(DataSetEditing, NewPixelDataOfEightBitsAreBytes) {
    const uint8_t pixels[] = {1, 2, 3, 4};
    for (const int bits : {8, 16}) {
        pgkit::data_set dataSet = pgkit::data_set::create();
        ASSERT_TRUE(dataSet.set_number("BitsAllocated", bits));
        ASSERT_TRUE(dataSet.set_bytes("PixelData", pixels, sizeof pixels));
        EXPECT_EQ(dataSet.find("PixelData").vr(), uint32_t{bits == 8 ? VR_OB : VR_OWOB}) << bits;
        EXPECT_EQ(Tags(dataSet.node()), "0028,0100 7FE0,0010");
    }
}

TEST(DataSetEditing, RemovesElementsAndItems) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_text("PatientName", "DOE"));
    ASSERT_TRUE(dataSet.set_text("ReferencedSeriesSequence[0].SeriesInstanceUID", "1.2"));
    ASSERT_TRUE(dataSet.set_text("ReferencedSeriesSequence[1].SeriesInstanceUID", "1.3"));
    EXPECT_TRUE(dataSet.remove("ReferencedSeriesSequence[0]"));
    EXPECT_EQ(dataSet.find("ReferencedSeriesSequence[0].SeriesInstanceUID").text(), "1.3");
    EXPECT_TRUE(dataSet.remove("ReferencedSeriesSequence[0].SeriesInstanceUID"));
    EXPECT_TRUE(dataSet.find_item("ReferencedSeriesSequence[0]").empty());
    EXPECT_TRUE(dataSet.remove({0x0010, 0x0010}));
    EXPECT_TRUE(dataSet.remove(dataSet.find("ReferencedSeriesSequence")));
    EXPECT_TRUE(dataSet.empty());
    for (const char* const path : {"PatientName", "ReferencedSeriesSequence[0]", "", "No.Name"})
        EXPECT_FALSE(dataSet.remove(path)) << path;
    EXPECT_FALSE(dataSet.remove(pgkit::element()));
    // Only what is directly in it.
    ASSERT_TRUE(dataSet.set_text("ReferencedSeriesSequence[0].SeriesInstanceUID", "1.2"));
    EXPECT_FALSE(dataSet.remove(dataSet.find("ReferencedSeriesSequence[0].SeriesInstanceUID")));
    EXPECT_TRUE(dataSet.contains("ReferencedSeriesSequence[0].SeriesInstanceUID"));
}

TEST(DataSetEditing, SeveralChangesHaveTheFirstError) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    pgkit::result<void> done;
    done &= dataSet.set_text("PatientName", "DOE");
    EXPECT_TRUE(done);
    done &= dataSet.set_number("Rows", -1);
    done &= dataSet.add("NoSuchName");
    done &= dataSet.set_number("Columns", 1);
    EXPECT_EQ(KindOf(done), failure::bad_value);
    EXPECT_EQ(dataSet.find("Columns").number<int>(), 1);
}

}  // namespace
