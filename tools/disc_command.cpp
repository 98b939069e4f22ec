// pgtool disc: a medium of whatever files, folders and other media.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "commands.h"
#include "creation_limits.h"
#include "disc/disc_image.h"
#include "disc/interruption.h"
#include "disc/medium_making.h"
#include "disc/partition.h"
#include "disc/readme.h"
#include "disc/request.h"
#include "disc/size.h"
#include "disc/staging.h"
#include "disc/survey.h"
#include "library_path.h"
#include "profile_names.h"
#include "progress_line.h"
#include "system_path.h"
#include "text_options.h"
#include "words.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxMedia = 9999;

struct DiscRun {
    const DiscRequest& request;
    Survey survey;
    Partition partition;
    std::vector<MadeMedium> media;
    size_t failures = 0;
};

// "DISC0001" of several media.
std::string NameOf(size_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "DISC%04zu", number);
    return text;
}

// ---- What is said about it ----------------------------------------------------------------------

void PrintCounts(
    const char* heading,
    const std::vector<std::pair<size_t, std::pair<const char*, const char*>>>& counts) {
    Arguments parts;
    for (const auto& [count, names] : counts)
        if (count != 0) parts.push_back(Counted(count, names.first, names.second));
    if (!parts.empty()) std::printf("%s: %s\n", heading, Joined(parts, ", ").c_str());
}

void PrintLeftOut(const Survey& survey) {
    PrintCounts("left out", {{survey.noDicom, {"file that is no DICOM", "files that are no DICOM"}},
                             {survey.directories, {"DICOMDIR", "DICOMDIRs"}},
                             {survey.duplicates, {"duplicate", "duplicates"}}});
}

void PrintChanges(const DiscRun& run) {
    size_t recoded = 0;
    size_t givenMeta = 0;
    for (const MediumPlan& medium : run.partition.media) {
        for (const size_t index : medium.instances) {
            const Transfer transfer = run.survey.catalogue.Instances()[index].transfer;
            recoded += transfer == Transfer::Recoded;
            givenMeta += transfer == Transfer::GivenMeta;
        }
    }
    PrintCounts("re-encoded as explicit VR little endian", {{recoded, {"file", "files"}}});
    PrintCounts("given file meta information", {{givenMeta, {"file", "files"}}});
    const MissingKeys& missing = run.survey.missing;
    PrintCounts("made up in the DICOMDIR",
                {{missing.patientIds, {"Patient ID", "Patient IDs"}},
                 {missing.studyIds.size(), {"Study ID", "Study IDs"}},
                 {missing.studyDates.size(), {"Study Date", "Study Dates"}},
                 {missing.studyTimes.size(), {"Study Time", "Study Times"}},
                 {missing.seriesNumbers.size(), {"Series Number", "Series Numbers"}}});
}

void PrintSummary(const DiscRun& run) {
    for (size_t i = 0; i < run.media.size(); ++i) {
        const MadeMedium& medium = run.media[i];
        std::printf("%s: %s, %s\n", run.media.size() == 1 ? "stored" : NameOf(i + 1).c_str(),
                    Describe(medium.content).c_str(), DescribeSize(medium.bytes).c_str());
    }
    PrintLeftOut(run.survey);
    PrintChanges(run);
}

// ---- The work -----------------------------------------------------------------------------------

// Why there is no room for the media; empty where there is, or nobody knows.
std::string ComplaintAboutRoom(const DiscRun& run, const std::string& folder) {
    uint64_t needed = 0;
    for (const MediumPlan& medium : run.partition.media) {
        for (const size_t index : medium.instances)
            needed += run.survey.catalogue.Instances()[index].bytes;
    }
    std::error_code error;
    const fs::space_info space = fs::space(SystemPath(folder), error);
    if (error || space.available >= needed) return "";
    return run.request.output + ": " + DescribeSize(needed) + " are needed, " +
           DescribeSize(space.available) + " are free";
}

// The folder of a medium below that of all.
std::string PlaceOf(const DiscRun& run, const std::string& folder, size_t index) {
    return run.partition.media.size() == 1 ? folder : folder + "/" + NameOf(index + 1);
}

// Returns the reason why there is no disc, or an empty text.
std::string MakeMedia(DiscRun& run, const std::string& folder) {
    ProgressLine progress;
    size_t copied = 0;
    size_t all = 0;
    for (const MediumPlan& medium : run.partition.media)
        all += medium.instances.size();
    const auto advance = [&] {
        progress.Show(std::to_string(++copied) + " of " + std::to_string(all) + " files copied");
    };
    const size_t count = run.partition.media.size();
    for (size_t i = 0; i < count && !Interruption::Came(); ++i) {
        const std::string place = PlaceOf(run, folder, i);
        std::error_code error;
        fs::create_directory(SystemPath(place), error);
        run.media.push_back(MakeMedium(run.request, run.survey, run.partition.media[i],
                                       {i + 1, count}, place, advance));
        run.failures += run.media.back().failures;
        if (!run.media.back().complaint.empty()) return run.media.back().complaint;
    }
    return "";
}

// The same. All media are there, or none.
std::string FinishMedia(const DiscRun& run, const std::string& folder) {
    std::string complaint;
    for (size_t i = 0; i < run.media.size() && complaint.empty(); ++i)
        complaint = FinishMedium(PlaceOf(run, folder, i));
    return complaint;
}

int MakeImages(const DiscRun& run, const DiscImage& image) {
    const size_t count = run.media.size();
    for (size_t i = 0; i < count && !Interruption::Came(); ++i) {
        const MediumNumber number{i + 1, count};
        const std::string name = DiscImage::NameOf(run.request.image, number);
        const std::string complaint = image.Make(PlaceOf(run, run.request.output, i),
                                                 FileSetIdOf(run.request.fileSetId, number), name);
        if (!complaint.empty()) return Fail(kDiscCommand, complaint);
    }
    return kDone;
}

// Returns the reason why there is no disc, or an empty text.
std::string Build(DiscRun& run) {
    Staging staging(run.request.output);
    std::string complaint = staging.Begin();
    if (complaint.empty()) complaint = ComplaintAboutRoom(run, staging.Path());
    if (complaint.empty()) complaint = MakeMedia(run, staging.Path());
    if (!complaint.empty() || Interruption::Came()) return complaint;
    complaint = FinishMedia(run, staging.Path());
    return complaint.empty() ? staging.PutInPlace() : complaint;
}

int MakeDisc(const DiscRequest& request) {
    const DiscImage image;
    if (!request.image.empty() && !image.Complaint().empty()) {
        return Fail(kDiscCommand, image.Complaint());
    }
    const std::string occupied = Staging(request.output).Complaint();
    if (!occupied.empty()) return Fail(kDiscCommand, occupied);

    DiscRun run{request, TakeSurvey(request), {}, {}, 0};
    if (Interruption::Came()) return kFailed;
    const std::string tooMuch = run.survey.catalogue.ComplaintAboutNumbers();
    if (!tooMuch.empty()) return Fail(kDiscCommand, tooMuch);
    run.partition = Divide(run.survey.catalogue, request);
    run.failures = run.survey.failures + run.partition.tooLarge.size();
    for (const size_t index : run.partition.tooLarge) {
        Fail(kDiscCommand, run.survey.catalogue.Instances()[index].path +
                               ": not stored: it is larger than a medium");
    }
    if (run.partition.media.empty()) {
        PrintLeftOut(run.survey);
        return Fail(kDiscCommand, "there is nothing to store: no disc is made");
    }
    if (run.partition.media.size() > kMaxMedia) {
        return Fail(kDiscCommand, "more than 9999 media would be needed");
    }
    const std::string complaint = Build(run);
    if (Interruption::Came()) return kFailed;
    if (!complaint.empty()) return Fail(kDiscCommand, complaint);
    PrintSummary(run);
    const int imaged = request.image.empty() ? kDone : MakeImages(run, image);
    return run.failures == 0 ? imaged : kFailed;
}

// ---- The command line ---------------------------------------------------------------------------

struct DiscOptions {
    DiscRequest request;
    std::string size;
    std::string transferSyntax = "as-is";
};

bool IsFileSetId(const std::string& text) {
    return text.size() <= kLongestFileSetId &&
           text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ ") == text.npos &&
           text.find_first_not_of(' ') != text.npos;
}

// Takes over what has a form of its own. Returns the complaint, or an empty text.
std::string Complete(DiscOptions& given) {
    DiscRequest& request = given.request;
    const Arguments& operands = request.sources.operands;
    request.sources.recursive = true;
    request.output = WithSlashes(request.output);
    request.isRecoded = given.transferSyntax == "explicit";
    if (operands.empty() && request.sources.filesFrom.empty()) return "a source is expected";
    if (request.output.empty()) return "-o DIR is expected";
    if (request.output == "-" || std::find(operands.begin(), operands.end(), "-") != operands.end())
        return "-: a disc is no stream";
    if (request.iconSize > kLargestIcon) return "--icons: at most 256 pixels";
    if (!IsFileSetId(request.fileSetId)) {
        return "--file-set-id: at most 16 characters, of A to Z, 0 to 9, _ and blanks";
    }
    std::string aboutProfile = ComplaintAboutProfile(request.profile);
    if (!aboutProfile.empty()) return aboutProfile;
    if (given.size.empty()) return "";
    const auto size = ParseSize(given.size);
    if (!size) return "--size: a number with k, M or G is expected, such as 650M";
    request.size = *size;
    return "";
}

int Disc(DiscOptions& given) {
    std::string complaint = Complete(given);
    if (complaint.empty()) complaint = UseTextOptions({});
    if (!complaint.empty()) return Misuse(kDiscCommand, complaint);
    int status = kFailed;
    {
        const Interruption interruption;
        status = MakeDisc(given.request);
    }
    Interruption::Obey();
    return status;
}

Work DefineDisc(OptionSet& options) {
    const auto given = std::make_shared<DiscOptions>();
    DiscRequest& request = given->request;
    options.Operands(&request.sources.operands, 0, kAnyNumber, "");
    options.Text("-o,--output", "DIR", &request.output,
                 "the directory that becomes the medium: a new one, or an empty one");
    options.Text("--size", "N", &given->size,
                 "how much a medium holds, such as 650M or 4.7G: more is divided over the media "
                 "DIR/DISC0001 and so on, studies as wholes where they fit; k, M and G count by "
                 "thousands, Ki, Mi and Gi by 1024");
    options.Switch("--web", &request.hasWeb,
                   "add INDEX.HTM and IHE_PDI: an overview with small pictures and reports for "
                   "every web browser");
    options.Number("--icons", "N", &request.iconSize,
                   "images have icons of at most N pixels in square in the DICOMDIR, up to 256");
    options.Choice("--transfer-syntax", {"as-is", "explicit"}, &given->transferSyntax,
                   "explicit writes what is implicit, big endian or deflated as explicit little "
                   "endian; what is compressed stays so; as-is, the default, copies files");
    options.Text("--profile", "NAME", &request.profile,
                 "store only what this media application profile allows, such as STD-GEN-CD");
    options.Text("--file-set-id", "ID", &request.fileSetId,
                 "up to 16 characters (default: DISC); of several media it ends with _1_OF_3");
    options.Text("--image", "FILE", &request.image,
                 "make an image of the medium, to be burnt, by xorriso or genisoimage; of several "
                 "media FILE gets their numbers");
    options.Text("--files-from", "LIST", &request.sources.filesFrom,
                 "take the sources that a file names, one on each line; - is the standard input");
    return [given] { return Disc(*given); };
}

}  // namespace

const Command kDiscCommand = {
    "disc",
    "disc SOURCE... -o DIR [--size N] [--web] [--icons N]\n"
    "             [--transfer-syntax explicit] [--profile NAME] [--file-set-id ID]\n"
    "             [--image FILE] [--files-from LIST]",
    "make a medium of files, folders and other media",
    "Copies the instances of the sources, files and folders with all below them, to a medium:\n"
    "DIR/DICOM with a file for each, DIR/DICOMDIR and DIR/README.TXT. Files are copied byte for\n"
    "byte, but for data sets without file meta information, which get it. Duplicates are stored\n"
    "once; of files with the same SOP Instance UID and other content the first is stored, and\n"
    "the others are named. Keys that a DICOMDIR must have and the files lack are made up in it.\n"
    "Files that are no DICOM, and DICOMDIRs, are left out and counted. What cannot be stored is\n"
    "named, which is exit status 1; the rest is stored.\n"
    "\n"
    "DIR must not exist, or be empty. The medium gets its name, and an empty DIR its DICOMDIR,\n"
    "when everything else is complete: what is interrupted leaves no disc.\n",
    DefineDisc};

}  // namespace pgtool
