// The overview of a medium for web browsers: INDEX.HTM and the folder IHE_PDI, as the profile
// "Portable Data for Imaging" names them. All names have 8 characters and 3.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "disc/readme.h"
#include "disc/survey.h"
#include "pgkit/data_set.hpp"

namespace pgtool {

class WebSite {
  public:
    // The medium is in a folder. Its File IDs are those of the directory; keys that are made up
    // there are not shown.
    WebSite(std::string folder, const pgkit::directory& directory, const Survey& survey);

    // Returns the reason why not, or an empty text. An interruption ends it early.
    [[nodiscard]] std::string Write(const std::string& fileSetId, MediumNumber medium,
                                    const MediumContent& content);

  private:
    // A report, or another document to read.
    struct Document {
        std::string file;  // in the folder of the pages; empty for what cannot be read
        std::string title;
    };
    // What the overview shows of a series; names of files in the folder of the pages.
    struct Card {
        std::string page;
        std::string picture;  // empty for none
        std::vector<Document> documents;
    };

    void FindPages();
    Card WriteSeries(const pgkit::patient& patient, const pgkit::study& study,
                     const pgkit::series& series);
    std::string WritePictures(const pgkit::series& series, const std::string& name, Card& card);
    Document WriteDocument(const pgkit::patient& patient, const pgkit::leaf& leaf);
    Document WriteReport(const pgkit::patient& patient, const pgkit::item& root);
    Document WritePdf(const pgkit::item& root);
    static std::string ListOf(const std::vector<Document>& documents, const std::string& folder);
    std::string ShownStudy(const pgkit::study& study) const;
    std::string PatientFacts(const pgkit::patient& patient) const;
    std::string StudyPart(const pgkit::patient& patient, const pgkit::study& study);
    void WriteFile(const std::string& name, const std::string& bytes);

    std::string folder_;
    const pgkit::directory& directory_;
    const Survey& survey_;
    std::unordered_map<std::string, std::string> pages_;  // of the series, by instance
    size_t series_ = 0;
    size_t reports_ = 0;
    size_t documents_ = 0;
    std::string complaint_;
};

}  // namespace pgtool
