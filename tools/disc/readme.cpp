#include "disc/readme.h"

#include "creation_limits.h"
#include "pgkit/version.h"
#include "words.h"

namespace pgtool {

namespace {

std::string WithLineEnds(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return result;
}

std::string Version() {
    char text[64];
    pgGetVersionString(text, sizeof text);
    return text;
}

}  // namespace

std::string FileSetIdOf(const std::string& beginning, MediumNumber medium) {
    if (medium.count == 1) return beginning;
    const std::string end =
        "_" + std::to_string(medium.number) + "_OF_" + std::to_string(medium.count);
    return beginning.substr(0, kLongestFileSetId - end.size()) + end;
}

std::string Describe(const MediumContent& content) {
    return Counted(content.patients, "patient", "patients") + ", " +
           Counted(content.studies, "study", "studies") + ", " + std::to_string(content.series) +
           " series, " + Counted(content.instances, "instance", "instances") +
           (content.common == 0 ? "" : ", " + std::to_string(content.common) + " of no patient");
}

std::string ReadmeText(const std::string& fileSetId, MediumNumber medium,
                       const MediumContent& content, bool hasWeb) {
    std::string text =
        "Medical images and documents in DICOM format\n"
        "============================================\n"
        "\n"
        "Medium:    " +
        std::to_string(medium.number) + " of " + std::to_string(medium.count) +
        "\n"
        "File-set:  " +
        fileSetId +
        "\n"
        "Holds:     " +
        Describe(content) + "\n";
    if (medium.count > 1) {
        text += "           The set is complete with all " + std::to_string(medium.count) +
                " media; each can be read alone.\n";
    }
    text +=
        "\n"
        "What is here\n"
        "\n"
        "  DICOMDIR    the directory of the medium: what programs open to show\n"
        "              or to import the images\n"
        "  DICOM       the images and documents, one file each, below a folder\n"
        "              for each patient, study and series\n";
    if (content.common != 0) {
        text +=
            "              (COMMON: what belongs to no patient, such as palettes and\n"
            "              hanging protocols)\n";
    }
    if (hasWeb) {
        text +=
            "  INDEX.HTM   an overview for every web browser: a double click\n"
            "              opens it\n"
            "  IHE_PDI     the pages and pictures of the overview\n";
    }
    text +=
        "  README.TXT  this text\n"
        "\n"
        "How to see the images\n"
        "\n"
        "  Any program for DICOM images can open the file DICOMDIR, or import\n"
        "  this medium as a whole.";
    if (hasWeb) {
        text +=
            " The pictures of the overview are small, and\n"
            "  not meant for diagnosis.";
    }
    text +=
        "\n"
        "\n"
        "This medium holds personal medical data: please keep it safe, and give\n"
        "it back if it is not yours.\n"
        "\n"
        "Made by pgtool of pgkit " +
        Version() + "\n";
    return WithLineEnds(text);
}

}  // namespace pgtool
