// pgtool from-json: DICOM JSON as files.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "commands.h"
#include "data_set.h"
#include "json_output.h"
#include "pgkit/json.h"
#include "standard_streams.h"
#include "system_path.h"
#include "uids.h"

namespace pgtool {

namespace {

namespace fs = std::filesystem;

struct FromJsonRequest {
    TextOptions texts;
    Arguments inputs;
    std::string output;
    std::string bulkDirectory;
};

size_t ReadFromStream(void* stream, void* bytes, size_t size) {
    std::FILE* const file = static_cast<std::FILE*>(stream);
    const size_t count = std::fread(bytes, 1, size, file);
    return count == 0 && std::ferror(file) != 0 ? PGX_READ_FAILED : count;
}

// Only files in the directory that was named are ever read: the last part of a URI is the name of
// one.
int32_t TakeBulk(void* context, PGX_Node* element, const char*, const char* uri) {
    const auto& directory = *static_cast<const std::string*>(context);
    std::string name = uri;
    name.resize(std::min(name.find_first_of("?#"), name.size()));
    const size_t separator = name.find_last_of("/\\:");
    if (separator != std::string::npos) name = name.substr(separator + 1);
    if (name.empty() || name == "." || name == "..") return 0;
    const std::string path = directory + "/" + name;
    std::error_code error;
    if (!fs::is_regular_file(SystemPath(path), error)) return 0;
    return element->SetFileContentValue(path.c_str());
}

// Data sets, one by one, become files: explicit VR little endian, with meta information of their
// own.
class FileWriter {
  public:
    explicit FileWriter(const FromJsonRequest& request) : output_(request.output) {}

    bool Take(pgkit::data_set root) {
        // The first one may be the only one: where it goes is known when there is another, or none.
        if (!waiting_) {
            waiting_ = std::move(root);
            return true;
        }
        isSeveral_ = true;
        if (!WriteNumbered(std::move(waiting_))) return false;
        waiting_ = std::move(root);
        return true;
    }

    // Gives the reason why a file could not be written, or an empty text.
    std::string End() {
        if (!waiting_ || !reason_.empty()) return reason_;
        std::error_code error;
        if (isSeveral_ || fs::is_directory(SystemPath(output_), error)) {
            WriteNumbered(std::move(waiting_));
        } else {
            Write(std::move(waiting_), output_);
        }
        return reason_;
    }

  private:
    bool WriteNumbered(pgkit::data_set root) {
        std::error_code error;
        fs::create_directories(SystemPath(output_), error);
        char name[32];
        std::snprintf(name, sizeof name, "/%06zu.dcm", ++count_);
        return Write(std::move(root), output_ + name);
    }

    bool Write(pgkit::data_set root, const std::string& path) {
        constexpr uint32_t kMode = PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
        root.node()->AddPart10Elements(uids::kExplicitLittle);
        reason_ = SaveWhole(std::move(root), path, kMode);
        return reason_.empty();
    }

    std::string output_;
    pgkit::data_set waiting_;
    bool isSeveral_ = false;
    size_t count_ = 0;
    std::string reason_;
};

int32_t TakeDataSet(void* writer, PGX_Node* dataSet) {
    return static_cast<FileWriter*>(writer)->Take(pgkit::data_set(dataSet)) ? 1 : 0;
}

std::string Describe(const PgxJsonPlace& place, int64_t result) {
    std::string text = "at byte " + std::to_string(place.offset);
    if (place.path[0] != '\0') text += std::string(", in ") + place.path;
    return text + ": " + JsonErrorText(result);
}

int FromJson(FromJsonRequest& request) {
    if (request.output.empty()) return Misuse(kFromJsonCommand, "-o OUT is expected");
    const std::string complaint = UseTextOptionsForJson(request.texts);
    if (!complaint.empty()) return Misuse(kFromJsonCommand, complaint);
    const std::string& path = request.inputs[0];
    const bool isStandardInput = path == "-";
    if (isStandardInput) MakeStandardInputBinary();
    std::FILE* const stream = isStandardInput ? stdin : std::fopen(path.c_str(), "rb");
    if (stream == nullptr) return Fail(kFromJsonCommand, CannotOpen(path));

    PgxJsonReadOptions options = PGX_JSON_READ_OPTIONS;
    options.bulk = request.bulkDirectory.empty() ? nullptr : TakeBulk;
    options.bulkContext = &request.bulkDirectory;
    PgxJsonPlace place = {};
    place.size = sizeof place;
    FileWriter writer(request);
    const int64_t result =
        pgxReadJsonDataSets(ReadFromStream, stream, &options, TakeDataSet, &writer, &place);
    if (!isStandardInput) std::fclose(stream);
    if (result < 0) return Fail(kFromJsonCommand, path + ": " + Describe(place, result));
    if (result == 0) return Fail(kFromJsonCommand, path + ": there is no data set in it");
    const std::string reason = writer.End();
    return reason.empty() ? kDone : Fail(kFromJsonCommand, reason);
}

Work DefineFromJson(OptionSet& options) {
    const auto request = std::make_shared<FromJsonRequest>();
    options.Operands(&request->inputs, 1, 1, "exactly one JSON file is expected");
    options.Text("-o,--output", "OUT", &request->output,
                 "the file to write; for several data sets the folder for 000001.dcm and so on");
    options.Text("--bulk-dir", "DIR", &request->bulkDirectory,
                 "where the data of a BulkDataURI are, in a file of the URI's last part; no other "
                 "file is ever read");
    AddTextOptions(options, request->texts);
    return [request] { return FromJson(*request); };
}

}  // namespace

const Command kFromJsonCommand = {
    "from-json", "from-json IN -o OUT [--bulk-dir DIR]", "make files of DICOM JSON",
    "Reads an object, or an array of objects, of the DICOM JSON Model (PS3.18, annex F), and "
    "writes\n"
    "explicit VR little endian with meta information of its own. What is wrong with the JSON is\n"
    "told with its place; of an array the data sets before it may have been written. IN may be -\n"
    "for the standard input.\n",
    DefineFromJson};

}  // namespace pgtool
