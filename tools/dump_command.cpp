// pgtool dump: data sets as text.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "commands.h"
#include "data_set.h"
#include "dump_lines.h"
#include "inputs.h"
#include "json_output.h"
#include "places.h"
#include "private_elements.h"
#include "standard_streams.h"
#include "text_options.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

// Values above it are read one by one when they are printed, which costs a seek each.
constexpr uint32_t kDefaultLoadLimit = 4096;

struct DumpRequest {
    InputOptions inputs;
    TextOptions texts;
    Arguments places;
    bool full = false;
    bool json = false;
    uint32_t loadLimit = kDefaultLoadLimit;
    uint32_t flags = 0;
    bool coloured = false;
};

// no-color.org: a variable of any content but none.
bool WantsColours() {
    const char* const refused = std::getenv("NO_COLOR");
    return StandardOutputTakesColours() && (refused == nullptr || refused[0] == '\0');
}

pgkit::error DumpOne(const DumpRequest& request, const Input& input) {
    std::string damage;
    const auto opened =
        Open(input.path, {request.loadLimit, request.flags, request.texts.raw, &damage});
    if (!opened) return opened.error();
    if (MayBeSeveral(request.inputs)) std::printf("%s:\n", WithEscapes(input.path).c_str());
    if (request.texts.raw) {
        opened->node()->Dump(stdout, "");
        return {};
    }
    const DumpStyle style = {IsCurrent(request.texts), request.full, request.coloured};
    if (request.places.empty()) {
        PrintDataSet(*opened, style);
    } else {
        PrintElements(*opened, request.places, style);
    }
    if (damage.empty()) return {};
    return {pgkit::failure::read_failed, damage};
}

int Dump(DumpRequest& request) {
    // What the library prints itself is compared with what it printed in former years.
    if (request.texts.raw && request.texts.edition.empty()) request.texts.edition = "built-in";
    std::string complaint = ComplaintAbout(request.inputs);
    if (complaint.empty()) complaint = UseTextOptions(request.texts);
    if (complaint.empty()) complaint = ComplaintAboutPlaces(request.places);
    if (complaint.empty() && request.texts.raw && !request.places.empty()) {
        complaint = "--raw prints whole data sets: no -t";
    }
    if (complaint.empty() && request.json && request.texts.raw)
        complaint = "--json is UTF-8: no --raw";
    if (!complaint.empty()) return Misuse(kDumpCommand, complaint);
    UsePrivateElements(request.texts);
    if (request.json) return PrintJsonOf(kDumpCommand, request.inputs, {.places = request.places});
    request.coloured = WantsColours();
    const InputCounts counts = ForEachInput(
        kDumpCommand, request.inputs, [&](const Input& input) { return DumpOne(request, input); });
    return counts.failed == 0 ? kDone : kFailed;
}

Work DefineDump(OptionSet& options) {
    const auto request = std::make_shared<DumpRequest>();
    AddInputs(options, request->inputs);
    options.Texts(
        "-t,--tag", "TAG", &request->places,
        "print only this element, wherever it is, or the one that a path leads to; may be "
        "repeated (in JSON with the sequences around it and the character set)");
    options.Switch("--json", &request->json, "print DICOM JSON, as the command json does");
    options.Switch("--full", &request->full, "print long values completely");
    AddTextOptions(options, request->texts);
    options.Number("--load-limit", "N", &request->loadLimit,
                   "load values shorter than N bytes while opening; the others are read when they "
                   "are printed, so the text is the same (default 4096)");
    options.Number("--flags", "N", &request->flags,
                   "open flags, a sum of 0x01 (leave the fragments of encapsulated pixel data "
                   "unindexed), 0x200 (items of UN sequences keep the surrounding encoding), 0x400 "
                   "(they are inspected for it), and for a file without meta information 0x08 "
                   "(explicit VR), 0x10 (implicit VR), 0x20 (little endian), 0x40 (big endian)");
    return [request] { return Dump(*request); };
}

}  // namespace

const Command kDumpCommand = {
    "dump", "dump FILE... [-r] [-t TAG]... [--full] [--raw]",
    "print data sets as text, a line per element",
    "Prints a line for each element: tag, value representation, length, name and value, the\n"
    "elements of sequences behind a line. Texts are shown in UTF-8, control characters as\n"
    "escapes, long values only in part with their length; there are colours on a terminal,\n"
    "unless NO_COLOR is set. TAG is a name (PatientName), a tag (0010,0010) or a path\n"
    "(ReferencedSeriesSequence[0].SeriesInstanceUID). FILE may be - for the standard input.\n"
    "Private elements that private.dic lists have their names and value representations.\n"
    "--raw prints what the library itself prints, byte for byte, by the built-in tables unless\n"
    "--edition says otherwise. Numbers are decimal, or hexadecimal behind 0x.\n",
    DefineDump};

}  // namespace pgtool
