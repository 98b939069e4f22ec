// pgtool verify: a medium checked as a suspicious importer would.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "json_writer.h"
#include "profile_names.h"
#include "text_options.h"
#include "utf8_text.h"
#include "verify/verification.h"
#include "words.h"

namespace pgtool {

namespace {

struct VerifyRequest {
    Arguments operands;
    TextOptions texts;
    VerifyOptions options;
    bool json = false;
    bool repair = false;
};

// What a repair has done.
struct Repaired {
    bool wasTried = false;
    std::string failure;
    AcceptanceSummary summary;
    Verification after;
};

// What scripts do not want among the findings.
void SumUp(const Verification& result) {
    const size_t count = result.findings.Count();
    std::fflush(stdout);
    std::fprintf(stderr, "pgtool verify: %s, %s: %s\n",
                 Counted(result.records, "record", "records").c_str(),
                 Counted(result.files.used.size(), "file", "files").c_str(),
                 count == 0 ? "no findings" : Counted(count, "finding", "findings").c_str());
}

void PrintLines(const Findings& findings, const TextOptions& texts) {
    const std::vector<Finding> sorted = findings.Sorted();
    for (const Finding& finding : sorted)
        std::printf("%s\n", Shown(LineOf(finding), texts).c_str());
    if (sorted.size() < findings.Count()) {
        std::printf("and %zu more\n", findings.Count() - sorted.size());
    }
}

class JsonReport {
  public:
    JsonReport() : json_(stdout) {}

    void Print(const std::string& operand, const Verification& before, const Repaired& repaired) {
        json_.BeginObject();
        Text("path", operand);
        PrintResult(before);
        if (repaired.wasTried) PrintRepair(repaired);
        json_.EndObject();
    }

  private:
    void PrintRepair(const Repaired& repaired) {
        json_.Key("repair");
        json_.BeginObject();
        json_.Boolean("done", repaired.failure.empty());
        if (!repaired.failure.empty()) Text("reason", repaired.failure);
        json_.Key("acceptance");
        json_.BeginArray();
        for (const auto& [code, count] : repaired.summary.Counts()) {
            json_.BeginObject();
            Number("code", code);
            Text("meaning", TextOfAcceptance(code));
            Number("files", count);
            json_.EndObject();
        }
        json_.EndArray();
        PrintResult(repaired.after);
        json_.EndObject();
    }

    void PrintResult(const Verification& result) {
        json_.Key("findings");
        json_.BeginArray();
        for (const Finding& finding : result.findings.Sorted())
            Print(finding);
        json_.EndArray();
        json_.Key("counts");
        json_.BeginObject();
        Number("records", result.records);
        Number("files", result.files.used.size());
        Number("findings", result.findings.Count());
        json_.EndObject();
    }

    void Print(const Finding& finding) {
        json_.BeginObject();
        Text("kind", NameOf(finding.kind));
        if (finding.record != kNoRecord && finding.record != kWholeDirectory) {
            Number("record", finding.record);
            Text("recordType", finding.type);
            Number("offset", finding.offset);
        }
        if (!finding.file.empty()) Text("file", finding.file);
        Text("message", finding.message);
        json_.EndObject();
    }

    void Text(const char* key, const std::string& text) { json_.Text(key, WellFormedUtf8(text)); }
    void Number(const char* key, uint64_t number) {
        json_.Number(key, static_cast<int64_t>(number));
    }

    JsonWriter json_;
};

Repaired RepairMedium(const VerifyRequest& request, const Verification& before) {
    Repaired repaired;
    repaired.wasTried = true;
    if (before.directoryIsInside) {
        repaired.failure = Repair(before.all, before.files, before.former, repaired.summary);
    } else {
        // The creation would replace what the link leads to.
        repaired.failure = "not repaired: the DICOMDIR is a link that leads out of the medium";
    }
    if (repaired.failure.empty())
        repaired.failure = Verify(before.files.root, request.options, repaired.after);
    return repaired;
}

int RunVerify(VerifyRequest& request) {
    std::string complaint =
        request.json ? UseTextOptionsForJson(request.texts) : UseTextOptions(request.texts);
    if (complaint.empty()) complaint = ComplaintAboutProfile(request.options.profile);
    if (!complaint.empty()) return Misuse(kVerifyCommand, complaint);

    request.options.rawTexts = request.texts.raw;
    Verification before;
    const std::string reason = Verify(request.operands[0], request.options, before);
    if (!reason.empty()) return Fail(kVerifyCommand, reason);
    const bool isSound = before.findings.IsEmpty();
    if (!request.json) PrintLines(before.findings, request.texts);
    SumUp(before);
    Repaired repaired;
    if (request.repair && !isSound) repaired = RepairMedium(request, before);
    if (request.json) JsonReport().Print(request.operands[0], before, repaired);
    if (!repaired.wasTried) return isSound ? kDone : kFailed;

    if (!request.json) {
        repaired.summary.Print();
        if (repaired.failure.empty()) PrintLines(repaired.after.findings, request.texts);
    }
    if (!repaired.failure.empty()) return Fail(kVerifyCommand, repaired.failure);
    std::fputs("pgtool verify: a new DICOMDIR is in place\n", stderr);
    SumUp(repaired.after);
    return repaired.after.findings.IsEmpty() ? kDone : kFailed;
}

Work DefineVerify(OptionSet& options) {
    const auto request = std::make_shared<VerifyRequest>();
    options.Operands(&request->operands, 1, 1, "exactly one medium is expected");
    options.Text("--profile", "NAME", &request->options.profile,
                 "files must be such as this media application profile allows");
    options.Switch("--json", &request->json, "print the findings as JSON in UTF-8");
    options.Switch("--repair", &request->repair,
                   "when there are findings, make a new DICOMDIR of the files, in the place of the "
                   "former one");
    AddTextOptions(options, request->texts);
    return [request] { return RunVerify(*request); };
}

}  // namespace

const Command kVerifyCommand = {
    "verify", "verify DIRECTORY|DICOMDIR [--profile NAME] [--json] [--repair]",
    "check a medium: its DICOMDIR, and its files against it",
    "Prints a line for each finding: links of the DICOMDIR that lead to no record, back, or to\n"
    "one twice, records that no link leads to, missing keys of type 1, File IDs that do not\n"
    "conform, files that are missing, damaged, outside of the medium or others than their\n"
    "records say, two records of one thing, and DICOM files that no record refers to\n"
    "(README.TXT, INDEX.HTM, IHE_PDI and what AUTORUN.INF starts need none). Exit status 1\n"
    "means that there are findings. Nothing outside of the directory is read, also not through\n"
    "links. After --repair, the findings that remain are printed, too, and the exit status is\n"
    "theirs; the former DICOMDIR stays when no new one can be made.\n",
    DefineVerify};

}  // namespace pgtool
