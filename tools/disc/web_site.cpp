#include "disc/web_site.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "data_set.h"
#include "disc/html.h"
#include "disc/interruption.h"
#include "disc/report_page.h"
#include "disc/shown_values.h"
#include "disc/thumbnail.h"
#include "disc/web_limits.h"
#include "disc/whole_file.h"
#include "library_path.h"
#include "system_path.h"
#include "tags.h"
#include "words.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kPages = "IHE_PDI/";

// "SE000001".
std::string PageName(const char* beginning, size_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%06zu", beginning, number);
    return text;
}

std::string PathOf(const std::string& folder, const pgkit::leaf& leaf) {
    return folder + "/" + WithSlashes(leaf.pointer()->referencedFileId);
}

bool IsImage(const pgkit::leaf& leaf) { return leaf.rows() > 0; }

// What stands between facts that are not empty.
std::string Facts(const std::vector<std::pair<const char*, std::string>>& facts) {
    std::string html;
    for (const auto& [label, value] : facts) {
        if (value.empty()) continue;
        if (!html.empty()) html += " &middot; ";
        html += label + HtmlValue(value);
    }
    return html.empty() ? "" : "<p class=\"note\">" + html + "</p>\n";
}

std::string OrElse(const std::string& text, const char* otherwise) {
    return text.empty() ? otherwise : text;
}

std::string ShownPatient(const pgkit::patient& patient) {
    return OrElse(ShownName(patient.name()), "(no name)");
}

std::string ShownSeries(const pgkit::series& series) {
    return OrElse(series.description(), "(no description)");
}

std::string CountOf(const pgkit::series& series) {
    size_t images = 0;
    for (const pgkit::leaf leaf : series.leaves())
        images += IsImage(leaf);
    const size_t others = series.leaves().size() - images;
    if (images == 0) return Counted(others, "object", "objects");
    const std::string text = Counted(images, "image", "images");
    return others == 0 ? text : text + ", " + Counted(others, "other object", "other objects");
}

// A picture with something below it, and where it leads.
std::string CardHtml(const std::string& link, const std::string& picture, const std::string& mark,
                     const std::string& caption) {
    std::string html = "<li class=\"card\">";
    if (!link.empty()) html += "<a href=\"" + link + "\">";
    html += picture.empty() ? "<span class=\"none\">" + HtmlText(mark) + "</span>"
                            : "<img src=\"" + picture + "\" alt=\"\" loading=\"lazy\">";
    return html + caption + (link.empty() ? "" : "</a>") + "</li>\n";
}

// The images whose pictures are shown: all of them, or some, evenly spread.
std::vector<pgkit::leaf> ShownImages(const pgkit::series& series) {
    std::vector<pgkit::leaf> images;
    for (const pgkit::leaf leaf : series.leaves())
        if (IsImage(leaf)) images.push_back(leaf);
    if (images.size() <= kMaxThumbnails) return images;
    std::vector<pgkit::leaf> some;
    for (size_t i = 0; i < kMaxThumbnails; ++i)
        some.push_back(images[i * images.size() / kMaxThumbnails]);
    return some;
}

// What belongs to no patient, by kind and name.
std::string CommonPart(const std::vector<pgkit::item>& records) {
    if (records.empty()) return "";
    std::string html = "<h2>Of no patient</h2>\n<ul>\n";
    for (const pgkit::item& record : records) {
        const std::string name = OrElse(record.find(tags::kContentLabel).text(),
                                        record.find(tags::kHangingProtocolName).text().c_str());
        html += "<li>" + HtmlValue(record.find(tags::kRecordType).text()) +
                (name.empty() ? "" : ": " + HtmlValue(name)) + "</li>\n";
    }
    return html + "</ul>\n";
}

}  // namespace

WebSite::WebSite(std::string folder, const pgkit::directory& directory, const Survey& survey)
    : folder_(std::move(folder)), directory_(directory), survey_(survey) {}

std::string WebSite::ShownStudy(const pgkit::study& study) const {
    const std::string description = OrElse(study.description(), "Study");
    const std::string date = ShownDate(study.date());
    const bool isKnown = !survey_.missing.studyDates.contains(study.uid()) && !date.empty();
    return isKnown ? date + " " + description : description;
}

std::string WebSite::PatientFacts(const pgkit::patient& patient) const {
    const bool isKnown = survey_.catalogue.KnowsPatientId(pgKitDirGetPatientID(patient.pointer()));
    return Facts({{"ID ", isKnown ? patient.id() : ""},
                  {"born ", ShownDate(patient.birth_date())},
                  {"sex ", patient.sex()}});
}

void WebSite::WriteFile(const std::string& name, const std::string& bytes) {
    if (complaint_.empty()) complaint_ = WriteWholeFile(folder_ + "/" + name, bytes);
}

// Reports refer to instances of series that come later, too.
void WebSite::FindPages() {
    size_t number = 0;
    for (const pgkit::patient patient : directory_.patients()) {
        for (const pgkit::study study : patient.studies()) {
            for (const pgkit::series series : study.series()) {
                const std::string page = PageName("SE", ++number) + ".HTM";
                for (const pgkit::leaf leaf : series.leaves())
                    pages_.emplace(leaf.instance_uid(), page);
            }
        }
    }
}

WebSite::Document WebSite::WriteReport(const pgkit::patient& patient, const pgkit::item& root) {
    const std::string page = PageName("RE", ++reports_) + ".HTM";
    const auto linkTo = [this](const std::string& uid) {
        const auto found = pages_.find(uid);
        return found == pages_.end() ? "" : found->second;
    };
    const std::string title = ReportTitle(root);
    WriteFile(kPages + page, HtmlPage(title, "<p><a href=\"../INDEX.HTM\">Overview</a></p>\n<h1>" +
                                                 HtmlValue(title) + "</h1>\n<p>" +
                                                 HtmlValue(ShownPatient(patient)) + "</p>\n" +
                                                 PatientFacts(patient) + ReportBody(root, linkTo)));
    return {page, title};
}

// Browsers and the system show PDF. Documents of other kinds may have scripts in them.
WebSite::Document WebSite::WritePdf(const pgkit::item& root) {
    if (root.find({0x0042, 0x0012}).text() != "application/pdf") return {};
    const std::vector<uint8_t> bytes = root.find({0x0042, 0x0011}).bytes();
    std::string document(bytes.begin(), bytes.end());
    if (!document.starts_with("%PDF")) return {};
    // It has been padded to an even length.
    if (document.ends_with('\0')) document.pop_back();
    const std::string name = PageName("DO", ++documents_) + ".PDF";
    WriteFile(kPages + name, document);
    return {name, OrElse(root.find({0x0042, 0x0010}).text(), "Document") + " (PDF)"};
}

WebSite::Document WebSite::WriteDocument(const pgkit::patient& patient, const pgkit::leaf& leaf) {
    std::string damage;
    const auto root = Open(PathOf(folder_, leaf), {kLoadedForSaving, 0, false, &damage});
    if (!root) return {};
    if (root->contains({0x0040, 0xA730})) return WriteReport(patient, *root);
    return WritePdf(*root);
}

std::string WebSite::ListOf(const std::vector<Document>& documents, const std::string& folder) {
    if (documents.empty()) return "";
    std::string html = "<ul>\n";
    for (const auto& [file, title] : documents)
        html += "<li><a href=\"" + folder + file + "\">" + HtmlValue(title) + "</a></li>\n";
    return html + "</ul>\n";
}

std::string WebSite::WritePictures(const pgkit::series& series, const std::string& name,
                                   Card& card) {
    const std::vector<pgkit::leaf> images = ShownImages(series);
    if (images.empty()) return "";
    std::error_code error;
    std::string html = "<ul class=\"grid\">\n";
    for (size_t i = 0; i < images.size() && complaint_.empty() && !Interruption::Came(); ++i) {
        const std::string png = MakeThumbnail(PathOf(folder_, images[i]));
        std::string picture;
        if (!png.empty()) {
            fs::create_directory(SystemPath(folder_ + "/" + kPages + name), error);
            picture = name + "/" + PageName("TH", i + 1) + ".PNG";
            WriteFile(kPages + picture, png);
            // The one that is nearest to the middle.
            if (card.picture.empty() || i <= images.size() / 2) card.picture = picture;
        }
        std::string caption = "Image " + std::to_string(images[i].number());
        if (images[i].frames() > 1) {
            caption += ", " + std::to_string(images[i].frames()) + " frames";
        }
        html += CardHtml("", picture, "no picture", caption);
    }
    html += "</ul>\n";
    const auto count =
        static_cast<size_t>(std::count_if(series.leaves().begin(), series.leaves().end(),
                                          [](const auto& leaf) { return IsImage(leaf); }));
    if (count > images.size()) {
        html += "<p class=\"note\">" + std::to_string(images.size()) + " of " +
                std::to_string(count) + " images are shown.</p>\n";
    }
    return html;
}

WebSite::Card WebSite::WriteSeries(const pgkit::patient& patient, const pgkit::study& study,
                                   const pgkit::series& series) {
    const std::string name = PageName("SE", ++series_);
    Card card{name + ".HTM", "", {}};
    for (const pgkit::leaf leaf : series.leaves()) {
        if (IsImage(leaf) || Interruption::Came()) continue;
        Document document = WriteDocument(patient, leaf);
        if (!document.file.empty()) card.documents.push_back(std::move(document));
    }
    std::string body = "<p><a href=\"../INDEX.HTM\">Overview</a></p>\n<h1>" +
                       HtmlValue(ShownSeries(series)) + "</h1>\n<p>" +
                       HtmlValue(ShownPatient(patient)) + ", " + HtmlValue(ShownStudy(study)) +
                       "</p>\n";
    body += Facts(
        {{"", series.modality()},
         {"Series ", survey_.missing.seriesNumbers.contains(series.uid()) ? "" : series.number()},
         {"", CountOf(series)}});
    body += ListOf(card.documents, "") + WritePictures(series, name, card);
    WriteFile(kPages + card.page, HtmlPage(ShownSeries(series), body));
    return card;
}

std::string WebSite::StudyPart(const pgkit::patient& patient, const pgkit::study& study) {
    std::string html = "<h3>" + HtmlValue(ShownStudy(study)) + "</h3>\n";
    std::string institution;
    std::string cards;
    std::vector<Document> documents;
    for (const pgkit::series series : study.series()) {
        if (!complaint_.empty() || Interruption::Came()) break;
        const Card card = WriteSeries(patient, study, series);
        if (institution.empty()) institution = series.institution();
        const std::string caption = "<b>" + HtmlValue(ShownSeries(series)) +
                                    "</b><br>\n<span class=\"note\">" +
                                    HtmlValue(OrElse(series.modality(), "?")) + ", " +
                                    HtmlText(CountOf(series)) + "</span>";
        const std::string picture = card.picture.empty() ? "" : kPages + card.picture;
        cards += CardHtml(kPages + card.page, picture, OrElse(series.modality(), "?"), caption);
        documents.insert(documents.end(), card.documents.begin(), card.documents.end());
    }
    const std::string uid = study.uid();
    html += Facts({{"", survey_.missing.studyTimes.contains(uid) ? "" : ShownTime(study.time())},
                   {"ID ", survey_.missing.studyIds.contains(uid) ? "" : study.id()},
                   {"accession ", study.accession_number()},
                   {"referred by ", ShownName(study.referring_physician())},
                   {"", institution}});
    return html + ListOf(documents, kPages) + "<ul class=\"grid\">\n" + cards + "</ul>\n";
}

std::string WebSite::Write(const std::string& fileSetId, MediumNumber medium,
                           const MediumContent& content) {
    std::error_code error;
    if (!fs::create_directory(SystemPath(folder_ + "/IHE_PDI"), error)) {
        return folder_ + "/IHE_PDI: " + error.message();
    }
    FindPages();
    std::string body = "<h1>Medical images</h1>\n<p>" + HtmlText(Describe(content)) + "</p>\n";
    if (medium.count > 1) {
        body += "<p>Medium " + std::to_string(medium.number) + " of " +
                std::to_string(medium.count) + ".</p>\n";
    }
    body +=
        "<p class=\"note\">The pictures are not meant for diagnosis. <a href=\"README.TXT\">About "
        "this medium</a></p>\n";
    for (const pgkit::patient patient : directory_.patients()) {
        body += "<h2>" + HtmlValue(ShownPatient(patient)) + "</h2>\n" + PatientFacts(patient);
        for (const pgkit::study study : patient.studies())
            body += StudyPart(patient, study);
    }
    body += CommonPart(directory_.common_records());
    WriteFile("INDEX.HTM", HtmlPage("Medical images: " + fileSetId, body));
    return complaint_;
}

}  // namespace pgtool
