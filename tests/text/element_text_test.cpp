// Values of elements to and from UTF-8: whose character set holds, and where values come from.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>
#include <string_view>

#include "support/nodes.h"
#include "support/tree.h"
#include "text/converted.h"

namespace {

using namespace pgkit_test;

std::string Utf8Of(PGX_Node* characterSet, PGX_Node* element) {
    return Fetched([&](char* buffer, size_t size) {
        return pgxGetUtf8Value(characterSet, element, buffer, size);
    });
}

int64_t Set(PGX_Node* characterSet, PGX_Node* element, std::string_view utf8) {
    return pgxSetUtf8Value(characterSet, element, utf8.data(), utf8.size());
}

// The items of a sequence with a character set of their own, without one, and with an empty one.
StreamBuilder GreekWithItems() {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 126");
    stream.Sequence(0x0008, 0x1140);
    stream.Item()
        .Element(0x0008, 0x0005, "CS", "ISO_IR 144")
        .Element(0x0010, 0x0010, "PN", "\273\356")
        .EndItem();
    stream.Item().Element(0x0010, 0x0010, "PN", "\304\351").EndItem();
    stream.Item()
        .Element(0x0008, 0x0005, "CS", "")
        .Element(0x0010, 0x0010, "PN", "\311\351")
        .EndItem();
    stream.EndSequence();
    stream.Element(0x0010, 0x0010, "PN", "\304\351\357 ");
    return stream;
}

class ElementText : public testing::TestWithParam<uint32_t> {};

TEST_P(ElementText, FollowsTheCharacterSetOfItsDataSet) {
    const OpenedStream opened(GreekWithItems(), GetParam());
    PGX_Node* const name = Child(opened.Root(), 0x0010, 0x0010);
    EXPECT_EQ(Utf8Of(opened.Root(), name), "Διο");
    EXPECT_EQ(Utf8Of(Child(opened.Root(), 0x0008, 0x0005), name), "Διο");
    EXPECT_EQ(Utf8Of(nullptr, name), "Äéï");
}

TEST_P(ElementText, OfAnItemFollowsTheItemsOwnOrWhatEnclosesIt) {
    const OpenedStream opened(GreekWithItems(), GetParam());
    PGX_Node* const outer = pgxFindCharacterSet(opened.Root(), nullptr);
    EXPECT_EQ(outer, Child(opened.Root(), 0x0008, 0x0005));
    std::string texts;
    for (PGX_Node* item = Child(opened.Root(), 0x0008, 0x1140)->first; item != nullptr;
         item = item->next) {
        texts += Utf8Of(pgxFindCharacterSet(item, outer), Child(item, 0x0010, 0x0010)) + " ";
    }
    EXPECT_EQ(texts, "Лю Δι Éé ");
}

INSTANTIATE_TEST_SUITE_P(InMemoryAndInTheFile, ElementText, testing::Values(kLoadAll, 0u));

TEST(ElementCharacterSet, IsTheInheritedOneWithoutADataSet) {
    const Tree element = NewElement(0x0008, 0x0005, VR_CS, "GBK");
    const Tree dataSet = NewDataSet();
    EXPECT_EQ(pgxFindCharacterSet(nullptr, element.get()), element.get());
    EXPECT_EQ(pgxFindCharacterSet(dataSet.get(), element.get()), element.get());
    EXPECT_EQ(pgxFindCharacterSet(dataSet.get(), nullptr), nullptr);
}

TEST(ElementText, LongValuesAreReadFromTheFile) {
    std::string value;
    for (int i = 0; i < 5000; ++i)
        value += "\303\251";
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 192").Element(0x0040, 0xA160, "UT", value);
    const OpenedStream opened(stream, 0);
    EXPECT_EQ(Utf8Of(opened.Root(), Child(opened.Root(), 0x0040, 0xA160)), value);
}

TEST(ElementText, OfATruncatedFileIsWhatThereIs) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    stream.Header(0x0010, 0x0010, "PN", 0x100).Text("J\351r");
    const OpenedStream opened(stream, 0);
    EXPECT_EQ(Utf8Of(opened.Root(), Child(opened.Root(), 0x0010, 0x0010)), "Jér");
    const OpenedStream loaded(stream, kLoadAll);
    EXPECT_EQ(Utf8Of(loaded.Root(), Child(loaded.Root(), 0x0010, 0x0010)), "Jér");
}

TEST(ElementText, IsNoneOfWhatIsNoText) {
    const Tree dataSet = NewDataSet();
    const Tree bytes = NewElement(0x7FE0, 0x0010, VR_OB, "ab");
    EXPECT_EQ(Utf8Of(nullptr, nullptr), "error -2");
    EXPECT_EQ(Utf8Of(nullptr, dataSet.get()), "error -1");
    EXPECT_EQ(Utf8Of(nullptr, bytes.get()), "error -1");
    const Tree endless = NewElement(0x0010, 0x0010, VR_PN, "");
    endless->length = kUndefined;
    EXPECT_EQ(Utf8Of(nullptr, endless.get()), "error -2");
}

TEST(ElementText, OfAnEmptyElementIsEmpty) {
    const Tree element = NewElement(0x0010, 0x0010, VR_PN, "");
    EXPECT_EQ(Utf8Of(nullptr, element.get()), "");
}

TEST(ElementTextWriting, EncodesAndPadsTheValue) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0005, "ISO_IR 126", 10);
    PGX_Node* const name = dataSet->InsertNode(0x0010, 0x0010, nullptr, 0);
    EXPECT_EQ(Set(dataSet.get(), name, "Διο"), 3);
    EXPECT_EQ(TextOf(name), "\304\351\357 ");
    EXPECT_EQ(Utf8Of(dataSet.get(), name), "Διο");
    EXPECT_EQ(Set(dataSet.get(), name, ""), 0);
    EXPECT_EQ(name->length, 0u);
}

TEST(ElementTextWriting, ThatFailsChangesNothing) {
    const Tree dataSet = NewDataSet();
    dataSet->InsertNode(0x0008, 0x0005, "ISO_IR 126", 10);
    PGX_Node* const name = dataSet->InsertNode(0x0010, 0x0010, "A^B ", 4);
    const uint8_t* const value = name->value;
    EXPECT_EQ(Set(dataSet.get(), name, "Йо"), PGX_TEXT_NOT_EXPRESSIBLE);
    EXPECT_EQ(Set(dataSet.get(), name, "\377"), PGX_TEXT_INVALID_UTF8);
    EXPECT_EQ(Set(nullptr, name, "Διο"), PGX_TEXT_NOT_EXPRESSIBLE);
    EXPECT_EQ(name->value, value);
    EXPECT_EQ(TextOf(name), "A^B ");
    const Tree bytes = NewElement(0x7FE0, 0x0010, VR_OB, "ab");
    EXPECT_EQ(Set(dataSet.get(), bytes.get(), "x"), PGX_TEXT_NOT_A_TEXT);
    EXPECT_EQ(Set(dataSet.get(), dataSet.get(), "x"), PGX_TEXT_NOT_A_TEXT);
    EXPECT_EQ(Set(dataSet.get(), nullptr, "x"), PGX_TEXT_NO_VALUE);
    EXPECT_EQ(TextOf(bytes.get()), "ab");
}

TEST(ElementTextWriting, SurvivesSavingAndReading) {
    const TempDir directory;
    const Tree dataSet = NewDataSet();
    constexpr std::string_view kSets = "\\ISO 2022 IR 87 ";
    dataSet->InsertNode(0x0008, 0x0005, kSets.data(), kSets.size());
    PGX_Node* const name = dataSet->InsertNode(0x0010, 0x0010, nullptr, 0);
    ASSERT_GT(Set(dataSet.get(), name, "Yamada^Tarou=山田^太郎"), 0);
    const std::string path = directory.Path("file");
    ASSERT_EQ(dataSet->SaveDataSetAsEx(path.c_str(), PG_EXPLICIT_VR | PG_LITTLE_ENDIAN), 0u);
    const DataSet saved(pgOpenDataSetFile(path.c_str(), kLoadAll));
    EXPECT_EQ(Utf8Of(saved.get(), Child(saved.get(), 0x0010, 0x0010)), "Yamada^Tarou=山田^太郎");
}

}  // namespace
