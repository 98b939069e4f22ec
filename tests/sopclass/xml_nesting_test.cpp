#include "sopclass/xml_nesting.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using pgkit::IsNestedAtMost;

// The number of elements that the text opens inside each other.
size_t Depth(const std::string& text) {
    size_t depth = 0;
    while (!IsNestedAtMost(text.c_str(), depth))
        ++depth;
    return depth;
}

TEST(XmlNesting, CountsOpenElements) {
    EXPECT_EQ(Depth(""), 0u);
    EXPECT_EQ(Depth("text"), 0u);
    EXPECT_EQ(Depth("<a/>"), 1u);
    EXPECT_EQ(Depth("<a></a>"), 1u);
    EXPECT_EQ(Depth("<a><b/><b/></a>"), 2u);
    EXPECT_EQ(Depth("<a><b>text</b><b><c x='1'/></b></a>"), 3u);
}

TEST(XmlNesting, CountsElementsThatAreNeverClosed) {
    EXPECT_EQ(Depth("<a><b><c"), 3u);
    std::string deep;
    for (int level = 0; level < 1000000; ++level)
        deep += "<a>";
    EXPECT_TRUE(IsNestedAtMost(deep.c_str(), 1000000));
    EXPECT_FALSE(IsNestedAtMost(deep.c_str(), 999999));
}

TEST(XmlNesting, SiblingsDoNotNest) {
    std::string flat = "<list>";
    for (int i = 0; i < 100000; ++i)
        flat += "<a/><b></b >";
    EXPECT_EQ(Depth(flat), 2u);
}

TEST(XmlNesting, MarkupInsideACommentDoesNotCount) {
    EXPECT_EQ(Depth("<a><!-- <b><c> --></a>"), 1u);
    EXPECT_EQ(Depth("<a><!--</a>--><b><!--</b>--><c/>"), 3u);
    EXPECT_EQ(Depth("<a><!--></a>--><b/>"), 2u);
}

TEST(XmlNesting, MarkupInsideCharacterDataDoesNotCount) {
    EXPECT_EQ(Depth("<a><![CDATA[<b><c>]]></a>"), 1u);
    EXPECT_EQ(Depth("<a><![CDATA[</a>]]><b/>"), 2u);
}

TEST(XmlNesting, MarkupInsideAnInstructionDoesNotCount) {
    EXPECT_EQ(Depth("<?xml version='1.0'?><a><?x <b></a> ?><b/></a>"), 2u);
}

TEST(XmlNesting, MarkupInsideADocumentTypeDoesNotCount) {
    EXPECT_EQ(Depth("<!DOCTYPE a [<!ELEMENT a (b)> [<x>] ]><a/>"), 1u);
    EXPECT_EQ(Depth("<!ELEMENT a><a/>"), 1u);
}

TEST(XmlNesting, MarkupInsideAQuotedValueDoesNotCount) {
    EXPECT_EQ(Depth("<a x='</a>'><b y = \"/>\"><c/></b></a>"), 3u);
    EXPECT_EQ(Depth("<a x='<b>'></a>"), 1u);
}

TEST(XmlNesting, QuotesInNamesOpenNoValue) {
    // The parser takes the first quote for a character of the name.
    EXPECT_EQ(Depth("<a b'='1'><c d'='1'><e/>"), 3u);
    EXPECT_EQ(Depth("<a'><b\"><c/>"), 3u);
}

TEST(XmlNesting, BrokenMarkupEndsTheCount) {
    EXPECT_EQ(Depth("<a><b x></a><c><d>"), 2u);
    EXPECT_EQ(Depth("<a></a <b><c>"), 1u);
    EXPECT_EQ(Depth("</a><b><c>"), 0u);
    EXPECT_EQ(Depth("<a><!-- <b>"), 1u);
    EXPECT_EQ(Depth("<a x='<b>"), 1u);
    EXPECT_EQ(Depth("<!DOCTYPE a [<b>"), 0u);
    EXPECT_EQ(Depth("<a>< b><c>"), 2u);
}

}  // namespace
