// A host program with a configuration file beside it: what the module reads when it is loaded.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/host_directory.h"

namespace {

namespace fs = std::filesystem;

using pgkit_test::Finished;
using pgkit_test::HostDirectory;

class ConfigurationFile : public testing::Test {
  protected:
    void WriteFile(std::string_view xml) { host_.Write("halvorix.xml", xml); }

    // A file with these entries in its list.
    void WriteEntries(const std::string& entries) {
        WriteFile("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<properties>\n  <SOPClassList>\n" +
                  entries + "\n  </SOPClassList>\n</properties>\n");
    }

    // What the program prints when it asks for these UIDs.
    Finished Run(const std::vector<std::string>& uids) {
        const Finished run = host_.Run(uids);
        EXPECT_EQ(run.exitStatus, 0);
        return run;
    }

    // The lines on the standard output when nothing else is run.
    std::string Answers(const std::vector<std::string>& uids) {
        const Finished run = Run(uids);
        EXPECT_EQ(run.err, "");
        return run.out;
    }
    std::string Answer(const std::string& uid) { return Answers({uid}); }

    const HostDirectory host_{PGKIT_TEST_SOPCLASS_PROBE};
};

TEST_F(ConfigurationFile, IsNotNeeded) {
    EXPECT_EQ(Answer("1.2.3.4"), "1.2.3.4: 1 \"XX\" 1 \"<NULL uid>\"\n");
}

TEST_F(ConfigurationFile, AddsMnemonicAndNameButNoCategory) {
    WriteEntries(
        "<SOPClass name=\"MyStore\" service=\"STORE\" object=\"IMAGE\" mnemonic=\"MYx\">1.2.3.4"
        "</SOPClass>");
    EXPECT_EQ(Answer("1.2.3.4"), "1.2.3.4: 0 \"MYx\" 0 \"MyStore\"\n");
}

TEST_F(ConfigurationFile, GivesNoCategoryWhateverTheObject) {
    std::string entries;
    std::vector<std::string> uids;
    std::string answers;
    for (const std::string object :
         {"REPORT", "WAVEFORM", "KEYOBJECT", "PSTATE", "RTDOSE", "RTSTRUCT", "RTPLAN"}) {
        const std::string uid = "1.2.3." + std::to_string(uids.size() + 1);
        entries += "<SOPClass service=\"STORE\" object=\"" + object + "\" name=\"n\" mnemonic=\"" +
                   object + "\">" + uid + "</SOPClass>";
        uids.push_back(uid);
        answers += uid + ": 0 \"" + object + "\" 0 \"n\"\n";
    }
    WriteEntries(entries);
    EXPECT_EQ(Answers(uids), answers);
}

TEST_F(ConfigurationFile, NeverOverridesBuiltInRows) {
    WriteEntries(
        "<SOPClass name=\"Mine\" service=\"STORE\" mnemonic=\"MINE\">1.2.840.10008.5.1.4.1.1.2"
        "</SOPClass>");
    EXPECT_EQ(Answer("1.2.840.10008.5.1.4.1.1.2"),
              "1.2.840.10008.5.1.4.1.1.2: 0 \"CT\" 0 \"CTImageStorage\" image storage\n");
}

TEST_F(ConfigurationFile, GivesAMnemonicToAUidThatHasOnlyABuiltInName) {
    WriteEntries("<SOPClass service=\"QUERY\" mnemonic=\"LE\">1.2.840.10008.1.2</SOPClass>");
    EXPECT_EQ(Answer("1.2.840.10008.1.2"),
              "1.2.840.10008.1.2: 0 \"LE\" 0 \"LittleEndianImplicit\"\n");
}

TEST_F(ConfigurationFile, TheFirstEntryOfAUidWins) {
    WriteEntries(
        "<SOPClass name=\"Invalid\" mnemonic=\"NO\">1.2.3</SOPClass>"
        "<SOPClass name=\"First\" service=\"STORE\" mnemonic=\"ONE\">1.2.3</SOPClass>"
        "<SOPClass name=\"Second\" service=\"STORE\" mnemonic=\"TWO\">1.2.3</SOPClass>");
    EXPECT_EQ(Answer("1.2.3"), "1.2.3: 0 \"ONE\" 0 \"First\"\n");
}

TEST_F(ConfigurationFile, DropsIncompleteEntries) {
    WriteEntries(
        "<SOPClass name=\"NoMnemonic\" service=\"STORE\" object=\"IMAGE\">1.2.1</SOPClass>"
        "<SOPClass name=\"NoService\" object=\"IMAGE\" mnemonic=\"M\">1.2.2</SOPClass>"
        "<SOPClass name=\"Query\" service=\"QUERY\">1.2.3</SOPClass>"
        "<SOPClass service=\"STORE\" mnemonic=\"M\">1.2.4</SOPClass>");
    EXPECT_EQ(Answers({"1.2.1", "1.2.2", "1.2.3", "1.2.4"}),
              "1.2.1: 1 \"XX\" 1 \"<NULL uid>\"\n"
              "1.2.2: 1 \"XX\" 1 \"<NULL uid>\"\n"
              "1.2.3: 0 \"\" 0 \"Query\"\n"
              "1.2.4: 0 \"M\" 0 \"\"\n");
}

TEST_F(ConfigurationFile, NamesAreCaseSensitive) {
    WriteEntries(
        "<sopclass name=\"n\" service=\"STORE\" mnemonic=\"M\">1.2.1</sopclass>"
        "<SOPClass name=\"n\" Service=\"STORE\" mnemonic=\"M\">1.2.2</SOPClass>");
    EXPECT_EQ(Answers({"1.2.1", "1.2.2"}),
              "1.2.1: 1 \"XX\" 1 \"<NULL uid>\"\n1.2.2: 1 \"XX\" 1 \"<NULL uid>\"\n");
}

TEST_F(ConfigurationFile, OtherRootElementsAreIgnored) {
    WriteFile(
        "<settings><SOPClassList><SOPClass name=\"n\" service=\"STORE\" mnemonic=\"M\">1.2.3"
        "</SOPClass></SOPClassList></settings>");
    EXPECT_EQ(Answer("1.2.3"), "1.2.3: 1 \"XX\" 1 \"<NULL uid>\"\n");
}

TEST_F(ConfigurationFile, AnErrorIsReportedOnTheStandardOutput) {
    WriteFile(
        "<properties><SOPClassList><SOPClass name=\"n\" service=\"STORE\" mnemonic=\"M\">1.2.3"
        "</SOPClass>");
    const Finished run = Run({"1.2.3"});
    EXPECT_EQ(run.out,
              "SOPClassSet::load : xml parse error unexpected end of data\n"
              "1.2.3: 1 \"XX\" 1 \"<NULL uid>\"\n");
    EXPECT_EQ(run.err, "");
}

TEST_F(ConfigurationFile, ALongEntryIsGivenWhole) {
    const std::string name(60000, 'n');
    WriteEntries("<SOPClass name=\"" + name + "\" service=\"QUERY\">1.2.3</SOPClass>");
    EXPECT_EQ(Answer("1.2.3"), "1.2.3: 0 \"\" 0 \"" + name + "\"\n");
}

TEST_F(ConfigurationFile, ADirectoryOfThatNameCountsAsMissing) {
    fs::create_directory(host_.Path("halvorix.xml"));
    EXPECT_EQ(Answer("1.2.3.4"), "1.2.3.4: 1 \"XX\" 1 \"<NULL uid>\"\n");
}

TEST_F(ConfigurationFile, AHugeOrDeepFileDoesNotStopTheModule) {
    std::string deep;
    for (int level = 0; level < 1000000; ++level)
        deep += "<a>";
    WriteFile(deep);
    EXPECT_EQ(Answer("1.2.3"),
              "SOPClassSet::load : xml parse error elements nested too deeply\n"
              "1.2.3: 1 \"XX\" 1 \"<NULL uid>\"\n");

    WriteFile("<properties>");
    fs::resize_file(host_.Path("halvorix.xml"), 100 << 20);
    EXPECT_EQ(Answer("1.2.3"),
              "SOPClassSet::load : xml parse error file too large\n"
              "1.2.3: 1 \"XX\" 1 \"<NULL uid>\"\n");
}

}  // namespace
