// pgtool json: data sets as DICOM JSON.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "data_set.h"
#include "json_output.h"
#include "output_file.h"
#include "private_elements.h"

namespace pgtool {

namespace {

struct JsonRequest {
    InputOptions inputs;
    TextOptions texts;
    std::string output = "-";
    std::string bulk;
};

int WriteJson(const JsonRequest& request, uint64_t bulkLimit) {
    if (request.output == "-")
        return PrintJsonOf(kJsonCommand, request.inputs, {stdout, bulkLimit, {}});
    OutputFile output(request.output);
    std::FILE* const stream =
        output.Path().empty() ? nullptr : std::fopen(output.Path().c_str(), "wb");
    if (stream == nullptr) {
        return Fail(kJsonCommand, request.output + ": " + DescribeSaveResult(1));
    }
    const int status = PrintJsonOf(kJsonCommand, request.inputs, {stream, bulkLimit, {}});
    const bool isWritten = std::ferror(stream) == 0;
    if (std::fclose(stream) != 0 || !isWritten || !output.PutInPlace()) {
        return Fail(kJsonCommand, request.output + ": writing failed");
    }
    return status;
}

int Json(const JsonRequest& request) {
    std::string complaint = ComplaintAbout(request.inputs);
    if (complaint.empty()) complaint = UseTextOptionsForJson(request.texts);
    uint64_t bulkLimit = 0;
    if (complaint.empty()) complaint = ReadBulkLimit(request.bulk, bulkLimit);
    if (!complaint.empty()) return Misuse(kJsonCommand, complaint);
    UsePrivateElements(request.texts);
    return WriteJson(request, bulkLimit);
}

Work DefineJson(OptionSet& options) {
    const auto request = std::make_shared<JsonRequest>();
    AddInputs(options, request->inputs);
    options.Text("-o,--output", "OUT", &request->output,
                 "the file to write (default: the standard output)");
    AddBulkLimit(options, request->bulk);
    AddTextOptions(options, request->texts);
    return [request] { return Json(*request); };
}

}  // namespace

const Command kJsonCommand = {
    "json", "json FILE... [-r] [-o OUT] [--bulk N]", "write data sets as DICOM JSON",
    "Writes the DICOM JSON Model (PS3.18, annex F) in UTF-8: an object for one file, an array for\n"
    "several or a directory. Encapsulated pixel data are a BulkDataURI, the file with their\n"
    "offset and length; other values are inline unless --bulk says otherwise.\n",
    DefineJson};

}  // namespace pgtool
