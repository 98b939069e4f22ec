#include <gtest/gtest.h>

#include <string>

#include "sopclass/sop_class_set.h"
#include "support/captured.h"
#include "support/temp_dir.h"

namespace {

using pgkit::SOPClass;
using pgkit::SOPClassSet;
using pgkit_test::CapturePrinted;
using pgkit_test::Printed;
using pgkit_test::TempDir;

constexpr size_t kMaxFileSize = size_t{16} << 20;

std::string List(const std::string& content) {
    return "<properties><SOPClassList>" + content + "</SOPClassList></properties>";
}

std::string Entry(const std::string& uid) {
    return "<SOPClass name='n' service='STORE' object='IMAGE' mnemonic='M'>" + uid + "</SOPClass>";
}

struct WhatWasRead {
    SOPClassSet set;
    Printed printed;
};

WhatWasRead Read(std::string_view text, std::string_view rootName = "properties",
                 const TempDir& directory = TempDir()) {
    const std::string path = directory.Write("set.xml", text);
    WhatWasRead read;
    read.printed = CapturePrinted([&] { read.set.ReadFile(path.c_str(), rootName); });
    EXPECT_EQ(read.printed.err, "");
    return read;
}

// Reads a text that is no error, and returns the set.
SOPClassSet ReadWhole(std::string_view text, std::string_view rootName = "properties") {
    const WhatWasRead read = Read(text, rootName);
    EXPECT_EQ(read.printed.out, "");
    return read.set;
}

// What is printed for a text from which nothing is read.
std::string ReadBroken(std::string_view text) {
    const WhatWasRead read = Read(text);
    EXPECT_TRUE(read.set.GetEntries().empty());
    return read.printed.out;
}

std::string ParseError(const std::string& what) {
    return "SOPClassSet::load : xml parse error " + what + "\n";
}

TEST(SOPClassSetFile, ReadsTheFiveTexts) {
    const SOPClassSet set = ReadWhole(
        List("<SOPClass name='MyStore' service='STORE' object='IMAGE' mnemonic='MYx'>1.2.3.4"
             "</SOPClass>"));
    ASSERT_NE(set.Find("1.2.3.4"), nullptr);
    EXPECT_EQ(*set.Find("1.2.3.4"), (SOPClass{"1.2.3.4", "MyStore", "STORE", "IMAGE", "MYx"}));
    EXPECT_EQ(set.Find("1.2.3"), nullptr);
}

TEST(SOPClassSetFile, AbsentAttributesAreEmpty) {
    const SOPClassSet set = ReadWhole(List("<SOPClass service='QUERY'>1.2</SOPClass>"));
    ASSERT_NE(set.Find("1.2"), nullptr);
    EXPECT_EQ(*set.Find("1.2"), (SOPClass{"1.2", "", "QUERY", "", ""}));
}

TEST(SOPClassSetFile, ReplacesWhatTheSetHad) {
    SOPClassSet set = ReadWhole(List(Entry("1.2")));
    set.ReadFile(TempDir().Path("missing.xml").c_str(), "properties");
    EXPECT_TRUE(set.GetEntries().empty());
}

TEST(SOPClassSetFile, TakesWhiteSpaceOffTheUid) {
    const SOPClassSet set = ReadWhole(
        List(Entry(" \r\n\t1.2.3\r\n ") + Entry("&#32;1.2.4&#9;") + Entry("&#32;") + Entry("\n")));
    EXPECT_EQ(set.GetEntries().size(), 2u);
    EXPECT_NE(set.Find("1.2.3"), nullptr);
    EXPECT_NE(set.Find("1.2.4"), nullptr);
}

TEST(SOPClassSetFile, TranslatesEntities) {
    const SOPClassSet set = ReadWhole(
        List("<SOPClass name='&lt;a&gt; &amp; &#x42;&quot;' service='Q'>1&#46;2</SOPClass>"));
    ASSERT_NE(set.Find("1.2"), nullptr);
    EXPECT_EQ(set.Find("1.2")->name, "<a> & B\"");
}

TEST(SOPClassSetFile, LeavesTheBytesOfOtherCharactersAlone) {
    const SOPClassSet set =
        ReadWhole(List("<SOPClass name='\xC3\xA9\xFF' service='Q'>1.2</SOPClass>"));
    EXPECT_EQ(set.Find("1.2")->name, "\xC3\xA9\xFF");
}

TEST(SOPClassSetFile, TheFirstValidEntryOfAUidWins) {
    const SOPClassSet set =
        ReadWhole(List("<SOPClass name='0' service='STORE'>1.2</SOPClass>"
                       "<SOPClass name='1' service='Q'>1.2</SOPClass>"
                       "<SOPClass name='2' service='Q'> 1.2 </SOPClass>"));
    EXPECT_EQ(set.GetEntries().size(), 1u);
    EXPECT_EQ(set.Find("1.2")->name, "1");
}

TEST(SOPClassSetFile, TheFirstOfEqualAttributesCounts) {
    const SOPClassSet set =
        ReadWhole(List("<SOPClass service='Q' name='1' name='2'>1.2</SOPClass>"));
    EXPECT_EQ(set.Find("1.2")->name, "1");
}

TEST(SOPClassSetFile, OnlyStoreInCapitalsNeedsAMnemonic) {
    const SOPClassSet set =
        ReadWhole(List("<SOPClass service='store'>1.1</SOPClass>"
                       "<SOPClass service='STORE'>1.2</SOPClass>"
                       "<SOPClass service='STORE' mnemonic=''>1.3</SOPClass>"
                       "<SOPClass service='' mnemonic='M'>1.4</SOPClass>"
                       "<SOPClass service='STORE' mnemonic='M'/>"));
    EXPECT_EQ(set.GetEntries().size(), 1u);
    EXPECT_NE(set.Find("1.1"), nullptr);
}

TEST(SOPClassSetFile, IgnoresOtherElementsAndAttributes) {
    const SOPClassSet set = ReadWhole(
        "<?xml version='1.0'?><!DOCTYPE properties [<!ELEMENT x ANY>]><!-- c --><?properties x?>"
        "<properties a='b'><other/>text<SOPClassList x='y'><Other>1.1</Other><!-- SOPClass -->"
        "<SOPClass name='n' service='Q' more='x'><!-- c -->1.2<b>1.3</b></SOPClass><?SOPClass x?>"
        "</SOPClassList><SOPClass service='Q'>1.4</SOPClass></properties>");
    EXPECT_EQ(set.GetEntries().size(), 1u);
    EXPECT_NE(set.Find("1.2"), nullptr);
}

TEST(SOPClassSetFile, OnlyTheFirstListCounts) {
    const SOPClassSet set = ReadWhole("<properties><SOPClassList/><SOPClassList>" + Entry("1.2") +
                                      "</SOPClassList></properties>");
    EXPECT_TRUE(set.GetEntries().empty());
}

TEST(SOPClassSetFile, NamesOfElementsAreCaseSensitive) {
    EXPECT_TRUE(ReadWhole(List("<sopclass service='Q'>1.2</sopclass>")).GetEntries().empty());
    EXPECT_TRUE(
        ReadWhole("<Properties><SOPClassList>" + Entry("1.2") + "</SOPClassList></Properties>")
            .GetEntries()
            .empty());
    EXPECT_TRUE(
        ReadWhole("<properties><sopClassList>" + Entry("1.2") + "</sopClassList></properties>")
            .GetEntries()
            .empty());
}

TEST(SOPClassSetFile, TheRootNameMayBeAPath) {
    const std::string text = "<a><b><SOPClassList>" + Entry("1.2") + "</SOPClassList></b></a>";
    EXPECT_EQ(ReadWhole(text, "a.b").GetEntries().size(), 1u);
    EXPECT_EQ(ReadWhole(text, ".a..b.").GetEntries().size(), 1u);
    EXPECT_EQ(ReadWhole(text, "a").GetEntries().size(), 0u);
    EXPECT_EQ(
        ReadWhole("<SOPClassList>" + Entry("1.2") + "</SOPClassList>", "").GetEntries().size(), 1u);
}

TEST(SOPClassSetFile, AByteOrderMarkIsSkipped) {
    EXPECT_EQ(ReadWhole("\xEF\xBB\xBF" + List(Entry("1.2"))).GetEntries().size(), 1u);
}

TEST(SOPClassSetFile, AMissingOrEmptyFileIsNoError) {
    EXPECT_TRUE(ReadWhole("").GetEntries().empty());
    EXPECT_TRUE(ReadWhole(" \r\n").GetEntries().empty());
    EXPECT_TRUE(ReadWhole(std::string(100, '\0')).GetEntries().empty());
    SOPClassSet set;
    const TempDir directory;
    const Printed printed = CapturePrinted([&] {
        set.ReadFile(directory.Path("missing.xml").c_str(), "properties");
        set.ReadFile(directory.Path("").c_str(), "properties");
        set.ReadFile(nullptr, "properties");
    });
    EXPECT_EQ(printed.out + printed.err, "");
    EXPECT_TRUE(set.GetEntries().empty());
}

TEST(SOPClassSetFile, ReportsWhatTheParserSays) {
    EXPECT_EQ(ReadBroken("text"), ParseError("expected <"));
    EXPECT_EQ(ReadBroken("<properties><SOPClassList>" + Entry("1.2")),
              ParseError("unexpected end of data"));
    EXPECT_EQ(ReadBroken(List("<SOPClass service='Q'>1.2")),
              ParseError("invalid closing tag name"));
    EXPECT_EQ(ReadBroken(List(Entry("1.2") + "<SOPClass service=Q>1.3</SOPClass>")),
              ParseError("expected ' or \""));
    EXPECT_EQ(ReadBroken(List(Entry("1.2") + "<SOPClass service>1.3</SOPClass>")),
              ParseError("expected ="));
    EXPECT_EQ(ReadBroken(List(Entry("&#x110000;"))),
              ParseError("invalid numeric character entity"));
    EXPECT_EQ(ReadBroken(List(Entry("&#12 1.2"))), ParseError("expected ;"));
}

TEST(SOPClassSetFile, ANulByteEndsTheText) {
    std::string text = List(Entry("1.2"));
    text[text.find("</SOPClassList>")] = '\0';
    EXPECT_EQ(ReadBroken(text), ParseError("unexpected end of data"));
    EXPECT_EQ(ReadWhole(List(Entry("1.2")) + std::string(1, '\0') + "<<<").GetEntries().size(), 1u);
}

TEST(SOPClassSetFile, ANulReferenceEndsAValue) {
    const SOPClassSet set = ReadWhole(List(Entry("1.2&#0;.3")));
    EXPECT_EQ(set.GetEntries().size(), 1u);
    EXPECT_NE(set.Find("1.2"), nullptr);
}

TEST(SOPClassSetFile, AnErrorBehindTheRootElementLosesNothing) {
    const WhatWasRead read = Read(List(Entry("1.2")) + "trailing text");
    EXPECT_EQ(read.printed.out, ParseError("expected <"));
    EXPECT_EQ(read.set.GetEntries().size(), 1u);
}

TEST(SOPClassSetFile, EveryPrefixOfAFileIsSurvived) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a ANY>]>"
        "<!-- c --><?pi x?>" +
        List("<![CDATA[x]]>" + Entry("&#49;.2&lt;")) + "<!x><a b = \"c\" />";
    const size_t rootEnd = text.find("<!x>");
    const TempDir directory;
    for (size_t length = 0; length < text.size(); ++length) {
        const WhatWasRead read = Read(text.substr(0, length), "properties", directory);
        EXPECT_EQ(read.set.GetEntries().size(), length < rootEnd ? 0u : 1u) << length;
    }
}

TEST(SOPClassSetFile, EveryBrokenByteOfAFileIsSurvived) {
    const std::string text = "<?xml version='1.0'?><!-- c -->" + List(Entry("1&#46;2"));
    const TempDir directory;
    for (size_t place = 0; place < text.size(); ++place) {
        for (const char c : {'<', '>', '/', '&', '\'', '\0', '!', '?', ' '}) {
            std::string broken = text;
            broken[place] = c;
            const WhatWasRead read = Read(broken, "properties", directory);
            EXPECT_LE(read.set.GetEntries().size(), 1u) << place << c;
        }
    }
}

TEST(SOPClassSetFile, NestingIsLimitedBeforeTheParserDescends) {
    std::string open;
    std::string close;
    for (int level = 2; level < 100; ++level) {
        open += "<a>";
        close += "</a>";
    }
    const std::string deep = "<properties><SOPClassList>" + Entry("1.2") + "</SOPClassList>";
    EXPECT_EQ(ReadWhole(deep + open + "<a/>" + close + "</properties>").GetEntries().size(), 1u);
    EXPECT_EQ(ReadBroken(deep + open + "<a><a/></a>" + close + "</properties>"),
              ParseError("elements nested too deeply"));
}

TEST(SOPClassSetFile, AMillionLevelsAreRefused) {
    std::string open;
    for (int level = 0; level < 1000000; ++level)
        open += "<a>";
    EXPECT_EQ(ReadBroken(open), ParseError("elements nested too deeply"));
    EXPECT_EQ(ReadBroken("<properties><!-- " + open + " -->" + open + "</properties>"),
              ParseError("elements nested too deeply"));
}

TEST(SOPClassSetFile, SizeIsLimited) {
    std::string text = List(Entry("1.2"));
    text.resize(kMaxFileSize, ' ');
    EXPECT_EQ(ReadWhole(text).GetEntries().size(), 1u);
    EXPECT_EQ(ReadBroken(text + " "), ParseError("file too large"));
}

TEST(SOPClassSetFile, TheLargestFileOfTheSmallestElementsIsRead) {
    std::string text = List(Entry("1.2"));
    while (text.size() + 4 <= kMaxFileSize)
        text += "<a/>";
    EXPECT_EQ(ReadWhole(text).GetEntries().size(), 1u);
}

TEST(SOPClassSetInsert, TakesValidClassesOnly) {
    SOPClassSet set;
    EXPECT_FALSE(set.Insert({"", "n", "Q", "", ""}));
    EXPECT_FALSE(set.Insert({"1.2", "n", "", "", "M"}));
    EXPECT_FALSE(set.Insert({"1.2", "n", "STORE", "IMAGE", ""}));
    EXPECT_TRUE(set.GetEntries().empty());
    EXPECT_TRUE(set.Insert({"1.2", "", "STORE", "", "M"}));
    EXPECT_FALSE(set.Insert({"1.2", "n", "Q", "", ""}));
    EXPECT_EQ(set.Find("1.2")->service, "STORE");
}

}  // namespace
