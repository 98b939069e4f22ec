// The overview of a medium for web browsers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "support/stream_builder.h"
#include "tools/disc_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kReportClass = "1.2.840.10008.5.1.4.1.1.88.11";
constexpr const char* kPdfClass = "1.2.840.10008.5.1.4.1.1.104.1";
constexpr const char* kMarkup = "<script>alert(1)</script>\"'&amp;";

class PgtoolDiscWeb : public DiscFixture {
  protected:
    // A page of the overview of the source.
    std::string Page(const std::string& name) const { return Text(Target() + "/" + name); }
    // All pages, one behind the other.
    std::string Pages() const {
        std::string pages;
        for (const std::string& file : Files())
            if (file.ends_with(".HTM")) pages += Page(file);
        return pages;
    }
    // Where the links and pictures of a page lead, relative to the root of the medium.
    std::vector<std::string> LinksOf(const std::string& name) const {
        const std::string page = Page(name);
        const std::regex link("(?:href|src)=\"([^\"]*)\"");
        std::vector<std::string> links;
        for (std::sregex_iterator found(page.begin(), page.end(), link), end; found != end;
             ++found) {
            const fs::path target = fs::path(name).parent_path() / (*found)[1].str();
            links.push_back(target.lexically_normal().generic_string());
        }
        return links;
    }
};

InstanceFile ImageNumber(int number) {
    return Complete(number)
        .SetUS(0x0028, 0x0002, 1)
        .SetUS(0x0028, 0x0100, 8)
        .SetUS(0x0028, 0x0101, 8)
        .SetUS(0x0028, 0x0102, 7)
        .SetUS(0x0028, 0x0103, 0)
        .Set(0x7FE0, 0x0010, "OB", "123456");
}

InstanceFile WithoutPixels(int series, const char* sopClass) {
    return InstanceOf(3, series, 1)
        .SopClass(sopClass)
        .Remove(0x0028, 0x0010)
        .Remove(0x0028, 0x0011)
        .Remove(0x0028, 0x0004);
}

// The item of a code sequence.
std::string Code(const std::string& meaning) {
    StreamBuilder code;
    code.Element(0x0008, 0x0100, "SH", "C1")
        .Element(0x0008, 0x0104, "LO", PaddedValue("LO", meaning));
    return OneItem(code);
}

StreamBuilder TextItem(const std::string& name, const std::string& text) {
    StreamBuilder item;
    item.Element(0x0040, 0xA040, "CS", "TEXT")
        .Element(0x0040, 0xA043, "SQ", Code(name))
        .Element(0x0040, 0xA160, "UT", PaddedValue("UT", text));
    return item;
}

InstanceFile Report(const StreamBuilder& content) {
    return WithoutPixels(9, kReportClass)
        .Set(0x0008, 0x0060, "CS", "SR")
        .Set(0x0040, 0xA040, "CS", "CONTAINER")
        .Set(0x0040, 0xA043, "SQ", Code("Radiology Report"))
        .Set(0x0040, 0xA491, "CS", "COMPLETE")
        .Set(0x0040, 0xA730, "SQ", OneItem(content));
}

TEST_F(PgtoolDiscWeb, ShowsPatientsStudiesAndSeriesWithPictures) {
    Write("A", ImageNumber(1).Set(0x0008, 0x103E, "LO", "axial"));
    Write("B", ImageNumber(2));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::string page = Page("INDEX.HTM");
    for (const char* text : {"<meta charset=\"utf-8\">", "<meta name=\"viewport\"", "DOE, JOHN",
                             "ID <bdi>ID1</bdi>", "2020-01-02", "10:11:12", "axial", "2 images"})
        EXPECT_THAT(page, HasSubstr(text));
    EXPECT_TRUE(fs::exists(Target() + "/IHE_PDI/SE000001/TH000002.PNG"));
    EXPECT_THAT(Page("IHE_PDI/SE000001.HTM"), HasSubstr("Image 2"));
}

TEST_F(PgtoolDiscWeb, AllLinksLeadToFilesOfTheMedium) {
    Write("A", ImageNumber(1));
    Write("B", Report(TextItem("Finding", "nothing")));
    Write("C", WithoutPixels(7, kPdfClass)
                   .Set(0x0042, 0x0012, "LO", "application/pdf")
                   .Set(0x0042, 0x0011, "OB", "%PDF-1.4 letter"));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    size_t links = 0;
    for (const std::string& file : Files()) {
        if (!file.ends_with(".HTM")) continue;
        for (const std::string& link : LinksOf(file)) {
            EXPECT_TRUE(fs::is_regular_file(Target() + "/" + link)) << file << ": " << link;
            EXPECT_TRUE(Files().contains(link)) << "in another case: " << link;
            ++links;
        }
    }
    EXPECT_GT(links, 10u);
}

// Readers of ISO 9660 level 1 see no other names.
TEST_F(PgtoolDiscWeb, AllNamesHaveEightCharactersAndThree) {
    Write("A", ImageNumber(1));
    Write("B", Report(TextItem("Finding", "nothing")));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::regex name("[A-Z0-9_]{1,8}(\\.[A-Z0-9_]{1,3})?");
    for (const auto& entry : fs::recursive_directory_iterator(Target())) {
        const std::string file = entry.path().filename().string();
        EXPECT_TRUE(std::regex_match(file, name)) << file;
    }
}

TEST_F(PgtoolDiscWeb, ShowsMarkupOfDataSetsAsText) {
    Write("A", ImageNumber(1)
                   .Patient("<i>ID", kMarkup)
                   .Set(0x0008, 0x0060, "CS", "<B>")
                   .Set(0x0008, 0x103E, "LO", kMarkup)
                   .Set(0x0008, 0x1030, "LO", "<img src=x onerror=alert(1)>")
                   .Set(0x0008, 0x0050, "SH", "\"><a>")
                   .Set(0x0008, 0x0080, "LO", "</bdi><b>"));
    Write("B", Report(TextItem("<h1>name", std::string("<svg onload=alert(1)>\x01") + kMarkup)));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::string pages = Pages();
    for (const char* tag :
         {"<script", "<i>", "<B>", "<img src=x", "\"><a>", "<svg", "<h1>name", "</bdi><b>", "\x01"})
        EXPECT_THAT(pages, Not(HasSubstr(tag)));
    EXPECT_THAT(pages, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;&quot;&#39;&amp;amp;"));
    EXPECT_THAT(pages, HasSubstr("&lt;svg onload=alert(1)&gt;\xEF\xBF\xBD&lt;script"));
    EXPECT_THAT(pages, HasSubstr("script-src 'none'"));
}

TEST_F(PgtoolDiscWeb, ShowsTextsInUtf8) {
    Write(
        "A",
        ImageNumber(1).Set(0x0008, 0x0005, "CS", "ISO_IR 100").Patient("ID1", "M\xFCller^J\xF6rg"));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    EXPECT_THAT(Page("INDEX.HTM"), HasSubstr("M\xC3\xBCller, J\xC3\xB6rg"));
}

// A date that nobody ever wrote would be taken for that of the examination.
TEST_F(PgtoolDiscWeb, ShowsNoKeysThatAreMadeUp) {
    Write("B", InstanceOf(7, 1, 1).Patient("KNOWN", "ROE"));
    Write("A", ImageNumber(1)
                   .Patient("", "DOE^JOHN")
                   .Remove(0x0008, 0x0020)
                   .Remove(0x0008, 0x0030)
                   .Remove(0x0020, 0x0010));
    const Finished run = Disc({"--web"});
    EXPECT_THAT(run.out, HasSubstr("made up in the DICOMDIR: 1 Patient ID, 1 Study ID, 1 Study "
                                   "Date, 1 Study Time\n"));
    EXPECT_THAT(Page("INDEX.HTM"), HasSubstr("ID <bdi>KNOWN</bdi>"));
    EXPECT_THAT(Pages(), Not(HasSubstr("ZORVA")));
    const std::string pages = Page("IHE_PDI/SE000001.HTM");
    EXPECT_THAT(pages, HasSubstr("DOE"));
    EXPECT_FALSE(std::regex_search(pages, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}")));
    EXPECT_FALSE(std::regex_search(pages, std::regex("[0-9]{2}:[0-9]{2}")));
}

TEST_F(PgtoolDiscWeb, ShowsReportsAsText) {
    Write("A", ImageNumber(1));
    StreamBuilder image;
    image.Element(0x0008, 0x1150, "UI", PaddedUid("1.2.840.10008.5.1.4.1.1.2"))
        .Element(0x0008, 0x1155, "UI", PaddedUid("1.2.3.4.1"));
    StreamBuilder reference;
    reference.Element(0x0008, 0x1199, "SQ", OneItem(image))
        .Element(0x0040, 0xA040, "CS", PaddedValue("CS", "IMAGE"));
    StreamBuilder unit;
    unit.Element(0x0008, 0x0100, "SH", "mm");
    StreamBuilder number;
    number.Element(0x0040, 0x08EA, "SQ", OneItem(unit)).Element(0x0040, 0xA30A, "DS", "12");
    StreamBuilder measured;
    measured.Element(0x0040, 0xA040, "CS", PaddedValue("CS", "NUM"))
        .Element(0x0040, 0xA043, "SQ", Code("Diameter"))
        .Element(0x0040, 0xA300, "SQ", OneItem(number))
        .Element(0x0040, 0xA730, "SQ", OneItem(reference));
    StreamBuilder section = TextItem("Finding", "a nodule\r\nin the left lung");
    section.Element(0x0040, 0xA730, "SQ", OneItem(measured));
    Write("B", Report(section));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    EXPECT_THAT(Page("INDEX.HTM"),
                HasSubstr("<a href=\"IHE_PDI/RE000001.HTM\"><bdi>Radiology Report</bdi></a>"));
    const std::string page = Page("IHE_PDI/RE000001.HTM");
    for (const char* text :
         {"<h1><bdi>Radiology Report</bdi></h1>", "Completion: <bdi>COMPLETE</bdi>",
          "<b><bdi>Finding</bdi>:</b>", "a nodule\nin the left lung",
          "<b><bdi>Diameter</bdi>:</b> <bdi>12 mm</bdi>", "<a href=\"SE000001.HTM\">"})
        EXPECT_THAT(page, HasSubstr(text));
}

TEST_F(PgtoolDiscWeb, ShowsReportsOfAnyDepth) {
    StreamBuilder innermost = TextItem("Finding", "the innermost");
    for (int depth = 0; depth < 500; ++depth) {
        StreamBuilder outer;
        outer.Element(0x0040, 0xA040, "CS", PaddedValue("CS", "CONTAINER"))
            .Sequence(0x0040, 0xA730)
            .Item()
            .Append(innermost.Data())
            .EndItem()
            .EndSequence();
        innermost = outer;
    }
    Write("A", Report(innermost));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    const std::string page = Page("IHE_PDI/RE000001.HTM");
    EXPECT_THAT(page, HasSubstr("the innermost"));
    const auto count = [&](const std::string& text) {
        size_t found = 0;
        for (size_t at = 0; (at = page.find(text, at)) != std::string::npos; ++at)
            ++found;
        return found;
    };
    EXPECT_EQ(count("<div"), count("</div>"));
    EXPECT_LT(count("<div"), 100u);
}

TEST_F(PgtoolDiscWeb, LinksPdfDocumentsAndNoOtherKind) {
    Write("A", WithoutPixels(7, kPdfClass)
                   .Set(0x0042, 0x0010, "ST", "Letter")
                   .Set(0x0042, 0x0012, "LO", "application/pdf")
                   .Set(0x0042, 0x0011, "OB", "%PDF-1.4 letter"));
    Write("B", WithoutPixels(8, kPdfClass)
                   .Set(0x0042, 0x0012, "LO", "application/pdf")
                   .Set(0x0042, 0x0011, "OB", "<html><script>alert(1)</script></html>"));
    Write("C", WithoutPixels(6, "1.2.840.10008.5.1.4.1.1.104.2")
                   .Set(0x0042, 0x0012, "LO", "text/XML")
                   .Set(0x0042, 0x0011, "OB", "<?xml version=\"1.0\"?>"));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    EXPECT_EQ(Page("IHE_PDI/DO000001.PDF"), "%PDF-1.4 letter");
    EXPECT_THAT(Page("INDEX.HTM"), HasSubstr("<bdi>Letter (PDF)</bdi>"));
    EXPECT_FALSE(fs::exists(Target() + "/IHE_PDI/DO000002.PDF"));
}

TEST_F(PgtoolDiscWeb, ShowsSomeOfManyPictures) {
    for (int number = 1; number <= 70; ++number)
        Write("I" + std::to_string(number), ImageNumber(number));
    EXPECT_EQ(Disc({"--web"}).exitStatus, 0);
    EXPECT_TRUE(fs::exists(Target() + "/IHE_PDI/SE000001/TH000060.PNG"));
    EXPECT_FALSE(fs::exists(Target() + "/IHE_PDI/SE000001/TH000061.PNG"));
    EXPECT_THAT(Page("IHE_PDI/SE000001.HTM"), HasSubstr("60 of 70 images are shown."));
}

TEST_F(PgtoolDiscWeb, EachMediumOfASetHasItsOwn) {
    Write("A", Large(InstanceOf(1, 1, 1), 300000));
    Write("B", Large(InstanceOf(2, 1, 1), 300000));
    EXPECT_EQ(Disc({"--web", "--size", "600k"}).exitStatus, 0);
    EXPECT_THAT(Page("DISC0002/INDEX.HTM"), HasSubstr("Medium 2 of 2."));
    EXPECT_TRUE(fs::exists(Target() + "/DISC0002/IHE_PDI/SE000001.HTM"));
}

TEST_F(PgtoolDiscWeb, WithoutTheOptionThereIsNone) {
    Write("A", ImageNumber(1));
    const Finished run = Disc();
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_FALSE(fs::exists(Target() + "/INDEX.HTM"));
    EXPECT_THAT(Page("README.TXT"), Not(HasSubstr("INDEX.HTM")));
}

}  // namespace
