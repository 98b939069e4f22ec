// pgtool scan: a table of the data sets below directories.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <new>
#include <utility>

#include "commands.h"
#include "data_set.h"
#include "inputs.h"
#include "private_elements.h"
#include "progress_line.h"
#include "scan_rows.h"
#include "system_thread.h"
#include "text_options.h"
#include "threads.h"

namespace pgtool {

namespace {

constexpr const char* kDefaultTags =
    "PatientID,PatientName,StudyDate,Modality,StudyInstanceUID,SeriesInstanceUID,SOPInstanceUID";

// How many files are read before their rows are printed: all that a scan of any size keeps in
// memory. Enough that no thread is idle for long.
constexpr size_t kFilesAtOnce = 2048;

struct ScanRequest {
    InputOptions inputs;
    TextOptions texts;
    std::string tags = kDefaultTags;
    Arguments moreTags;
    std::string format = "csv";
    uint32_t jobs = 0;
};

// Files, in the order of the walk, become rows in the same order.
class Scan {
  public:
    Scan(std::vector<ScanColumn> columns, const ScanRequest& request)
        : columns_(std::move(columns)),
          raw_(request.texts.raw),
          threads_(request.jobs == 0 ? ProcessorCount() : request.jobs),
          printer_(MakeRowPrinter(request.format, columns_, request.texts)) {}

    bool Add(const std::string& path) {
        rows_.push_back({path, {}, {}, {}});
        return rows_.size() < kFilesAtOnce || Flush();
    }

    // False when there is no use in going on.
    bool Flush() {
        std::vector<pgkit::error> errors(rows_.size());
        std::atomic<size_t> next = 0;
        const auto work = [&](size_t) {
            for (size_t i = next++; i < rows_.size(); i = next++)
                errors[i] = Read(rows_[i]);
        };
        RunOnThreads(std::min(threads_, rows_.size()), work);
        std::vector<ScanRow> found;
        for (size_t i = 0; i < rows_.size(); ++i) {
            if (errors[i].kind == pgkit::failure::not_a_data_set) {
                ++others_;
            } else if (errors[i].kind != pgkit::failure::none) {
                Complain(errors[i].message);
            } else {
                if (!rows_[i].damage.empty()) Complain(rows_[i].damage);
                found.push_back(std::move(rows_[i]));
            }
        }
        dataSets_ += found.size();
        rows_.clear();
        printer_->Print(found);
        progress_.Show(std::to_string(dataSets_) + " data sets");
        return std::ferror(stdout) == 0;
    }

    void Complain(const std::string& reason) {
        ++failed_;
        Fail(kScanCommand, reason);
    }

    int SumUp() const {
        if (others_ != 0) {
            std::fprintf(stderr, "pgtool scan: %zu data sets, %zu other files\n", dataSets_,
                         others_);
        }
        return failed_ == 0 ? kDone : kFailed;
    }

  private:
    pgkit::error Read(ScanRow& row) const {
        try {
            return ReadRow(columns_, raw_, row);
        } catch (const std::bad_alloc&) {
            return {pgkit::failure::no_memory, row.path + ": memory has run out"};
        }
    }

    std::vector<ScanColumn> columns_;
    bool raw_;
    size_t threads_;
    std::unique_ptr<RowPrinter> printer_;
    std::vector<ScanRow> rows_;
    size_t dataSets_ = 0;
    size_t others_ = 0;
    size_t failed_ = 0;
    ProgressLine progress_;
};

int RunScan(ScanRequest& request) {
    constexpr uint32_t kMostThreads = 256;
    request.inputs.recursive = true;
    std::string complaint = request.format == "jsonl" ? UseTextOptionsForJson(request.texts)
                                                      : UseTextOptions(request.texts);
    if (complaint.empty()) complaint = ComplaintAbout(request.inputs);
    if (complaint.empty() && request.jobs > kMostThreads) complaint = "-j: at most 256";
    for (const std::string& tag : request.moreTags)
        request.tags += "," + tag;
    const std::vector<ScanColumn> columns =
        complaint.empty() ? ColumnsOf(request.tags, complaint) : std::vector<ScanColumn>();
    if (!complaint.empty()) return Misuse(kScanCommand, complaint);
    UsePrivateElements(request.texts);
    Scan scan(columns, request);
    WalkInputs(
        request.inputs, [&](const Input& input) { return scan.Add(input.path); },
        [&](const std::string& reason) { scan.Complain(reason); });
    scan.Flush();
    return scan.SumUp();
}

Work DefineScan(OptionSet& options) {
    const auto request = std::make_shared<ScanRequest>();
    AddInputs(options, request->inputs);
    options.Text(
        "--tags", "LIST", &request->tags,
        "the columns behind the path: names, tags and paths with commas between (default " +
            std::string(kDefaultTags) + ")");
    options.Texts("-t,--tag", "TAG", &request->moreTags, "one more column; may be repeated");
    options.Choice(
        "--format", {"csv", "jsonl", "table"}, &request->format,
        "comma-separated values with a line of names (the default), a JSON object on each "
        "line, or a table for people");
    options.Number("-j,--jobs", "N", &request->jobs,
                   "read N files at the same time (default: one for each processor)");
    AddTextOptions(options, request->texts);
    return [request] { return RunScan(*request); };
}

}  // namespace

const Command kScanCommand = {
    "scan", "scan DIR|FILE... [--tags LIST] [--format csv|jsonl|table] [-j N]",
    "list the data sets below directories, a row for each",
    "Prints a row for each data set among the files, and in the directories with all below\n"
    "them: its path and the values of some elements, several values of one with \"\\\" between. "
    "Of\n"
    "files only headers and these values are read. Rows stand in the byte order of the paths in\n"
    "each directory, however many files are read at the same time. Files that are no DICOM files\n"
    "are no failure: their number is told on the standard error stream. Of a sequence the row has\n"
    "the number of items, of binary values that of bytes. Control characters are escapes,\n"
    "but for --raw.\n",
    DefineScan};

}  // namespace pgtool
