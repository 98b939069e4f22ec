#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "sopclass/sop_class_set.h"
#include "support/captured.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

using pgkit::SOPClassSet;
using pgkit_test::CapturePrinted;
using pgkit_test::Printed;
using pgkit_test::ReadFile;
using pgkit_test::TempDir;

SOPClassSet TwoClasses() {
    SOPClassSet set;
    EXPECT_TRUE(set.Insert({"1.3", "Second", "QUERY", "", ""}));
    EXPECT_TRUE(set.Insert({"1.10", "First", "STORE", "IMAGE", "MYx"}));
    return set;
}

constexpr char kTwoClasses[] =
    "\t\t<SOPClass name=\"First\" service=\"STORE\" object=\"IMAGE\" mnemonic=\"MYx\">1.10"
    "</SOPClass>\n"
    "\t\t<SOPClass name=\"Second\" service=\"QUERY\" object=\"\" mnemonic=\"\">1.3</SOPClass>\n";

// The text of a file; line ends read as "\n" on every platform.
std::string ReadText(const std::string& path) {
    const auto bytes = ReadFile(path);
    std::string text(bytes.begin(), bytes.end());
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

// Saves the two classes over a file of this text, and returns what the file holds then.
std::string SaveOver(std::string_view text, std::string_view rootName = "properties") {
    const TempDir directory;
    const std::string path = directory.Write("set.xml", text);
    const Printed printed =
        CapturePrinted([&] { EXPECT_TRUE(TwoClasses().save(path.c_str(), rootName)); });
    EXPECT_EQ(printed.out + printed.err, "");
    return ReadText(path);
}

TEST(SOPClassSetSave, WritesANewFile) {
    const TempDir directory;
    const std::string path = directory.Path("new.xml");
    EXPECT_TRUE(TwoClasses().save(path.c_str(), "properties"));
    EXPECT_EQ(ReadText(path), std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                          "<properties>\n"
                                          "\t<SOPClassList>\n") +
                                  kTwoClasses +
                                  "\t</SOPClassList>\n"
                                  "</properties>\n\n");
}

TEST(SOPClassSetSave, RewritesTheEntriesOnly) {
    EXPECT_EQ(SaveOver("<?xml version='1.0'?>\r\n"
                       "<!-- our site -->\r\n"
                       "<properties version='7'>\r\n"
                       "  <Printer>laser &amp; ink</Printer>\r\n"
                       "  <SOPClassList owner=\"it's us\">\r\n"
                       "    <SOPClass name='Old' service='QUERY'>1.9</SOPClass>\r\n"
                       "    <Note><!-- kept --></Note>\r\n"
                       "    <SOPClass/>\r\n"
                       "    <sopclass>1.8</sopclass>\r\n"
                       "  </SOPClassList>\r\n"
                       "  <Last a='1' b='\"'/>\r\n"
                       "</properties>\r\n"),
              std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                          "<!-- our site -->\n"
                          "<properties version=\"7\">\n"
                          "\t<Printer>laser &amp; ink</Printer>\n"
                          "\t<SOPClassList owner=\"it's us\">\n"
                          "\t\t<Note>\n"
                          "\t\t\t<!-- kept -->\n"
                          "\t\t</Note>\n"
                          "\t\t<sopclass>1.8</sopclass>\n") +
                  kTwoClasses +
                  "\t</SOPClassList>\n"
                  "\t<Last a=\"1\" b='\"'/>\n"
                  "</properties>\n\n");
}

TEST(SOPClassSetSave, AppendsTheElementsThatAreMissing) {
    EXPECT_EQ(SaveOver("<?properties x?><properties><a/></properties>"),
              std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                          "<?properties x?>\n"
                          "<properties>\n"
                          "\t<a/>\n"
                          "\t<SOPClassList>\n") +
                  kTwoClasses + "\t</SOPClassList>\n</properties>\n\n");
}

TEST(SOPClassSetSave, AnotherRootNameGetsAnElementOfItsOwn) {
    const std::string text = SaveOver("<properties/>", "settings.site");
    EXPECT_EQ(text.find("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<properties/>\n<settings>\n"
                        "\t<site>\n\t\t<SOPClassList>\n"),
              0u);
}

TEST(SOPClassSetSave, AnEmptySetLeavesAnEmptyList) {
    const TempDir directory;
    const std::string path = directory.Write(
        "set.xml",
        "<properties><SOPClassList><SOPClass service='Q'>1</SOPClass></SOPClassList></properties>");
    EXPECT_TRUE(SOPClassSet().save(path.c_str(), "properties"));
    EXPECT_EQ(ReadText(path),
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
              "<properties>\n\t<SOPClassList/>\n</properties>\n\n");
}

TEST(SOPClassSetSave, TheWrittenFileLoadsToTheSameSet) {
    SOPClassSet set = TwoClasses();
    set.Insert({"1.4", "<a> & \"b\" 'c' \xC3\xA9\tx", "STORE", "a'b", "\"M\""});
    const TempDir directory;
    const std::string path = directory.Path("set.xml");
    SOPClassSet loaded;
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(set.save(path.c_str(), "properties"));
        loaded.load(path.c_str(), "properties");
        EXPECT_EQ(loaded.GetEntries(), set.GetEntries());
    }
}

TEST(SOPClassSetSave, SavingAgainChangesNothing) {
    const std::string once = SaveOver("<properties><a>text</a><SOPClassList/></properties>");
    EXPECT_EQ(SaveOver(once), once);
}

TEST(SOPClassSetSave, ManyEntriesStandInByteOrder) {
    SOPClassSet set;
    for (int i = 9999; i >= 0; --i)
        set.Insert({"1." + std::to_string(i), "", "Q", "", ""});
    const TempDir directory;
    const std::string path = directory.Path("set.xml");
    EXPECT_TRUE(set.save(path.c_str(), "properties"));
    EXPECT_TRUE(set.save(path.c_str(), "properties"));
    const std::string text = ReadText(path);
    EXPECT_LT(text.find(">1.10<"), text.find(">1.9<"));
    SOPClassSet loaded;
    loaded.load(path.c_str(), "properties");
    EXPECT_EQ(loaded.GetEntries(), set.GetEntries());
}

TEST(SOPClassSetSave, ABrokenFileIsReportedAndReplaced) {
    const TempDir directory;
    const std::string path = directory.Write("set.xml", "<!-- kept --><properties><lost>");
    const Printed printed =
        CapturePrinted([&] { EXPECT_TRUE(TwoClasses().save(path.c_str(), "properties")); });
    EXPECT_EQ(printed.out, "SOPClassSet::load : xml parse error unexpected end of data\n");
    EXPECT_EQ(ReadText(path).find("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!-- kept -->\n"
                                  "<properties>\n\t<SOPClassList>\n"),
              0u);
}

TEST(SOPClassSetSave, AFileBeyondTheLimitsIsLeftAlone) {
    std::string deep;
    for (int level = 0; level < 101; ++level)
        deep += "<a>";
    const TempDir directory;
    const std::string path = directory.Write("set.xml", deep);
    const Printed printed =
        CapturePrinted([&] { EXPECT_FALSE(TwoClasses().save(path.c_str(), "properties")); });
    EXPECT_EQ(printed.out, "SOPClassSet::load : xml parse error elements nested too deeply\n");
    EXPECT_EQ(ReadText(path), deep);
}

TEST(SOPClassSetSave, FailsWhenTheFileCannotBeWritten) {
    const TempDir directory;
    EXPECT_FALSE(TwoClasses().save(directory.Path("missing/set.xml").c_str(), "properties"));
    fs::create_directory(directory.Path("set.xml"));
    EXPECT_FALSE(TwoClasses().save(directory.Path("set.xml").c_str(), "properties"));
    EXPECT_FALSE(TwoClasses().save(nullptr, "properties"));
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
