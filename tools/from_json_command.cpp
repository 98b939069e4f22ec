// pgtool from-json: DICOM JSON as files.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "commands.h"
#include "data_set.h"
#include "digits.h"
#include "json_output.h"
#include "pgkit/json.h"
#include "standard_streams.h"
#include "system_path.h"
#include "tags.h"
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

// Where the data of a BulkDataURI come from, and why they do not.
struct BulkSource {
    std::string directory;
    std::string complaint;
};

// The number of "name=NUMBER" in the query of a URI; none when it is not there as one.
std::optional<uint64_t> QueryNumber(std::string_view query, std::string_view name) {
    for (size_t start = 0; start <= query.size();) {
        const size_t end = std::min(query.find_first_of("&#", start), query.size());
        const std::string_view part = query.substr(start, end - start);
        if (part.starts_with(name) && part.substr(name.size()).starts_with('=')) {
            const auto number =
                ParseDigits<uint64_t>(std::string(part.substr(name.size() + 1)), 10);
            if (number) return number;
        }
        start = end + 1;
    }
    return std::nullopt;
}

// Fragments can be told from native pixels by the item that they begin with.
bool AreFragments(const pgkit::element& element, const std::vector<uint8_t>& bytes) {
    constexpr uint8_t kItem[] = {0xFE, 0xFF, 0x00, 0xE0};
    return element.tag() == tags::kPixelData && bytes.size() >= sizeof kItem &&
           std::equal(std::begin(kItem), std::end(kItem), bytes.begin());
}

// A part of a file becomes a value. Returns why not, or an empty text.
std::string TakeRange(PGX_Node& element, const std::string& path, uint64_t offset,
                      uint64_t length) {
    std::error_code error;
    const uint64_t size = fs::file_size(SystemPath(path), error);
    if (error || length > UINT32_MAX - 1 || offset > size || length > size - offset)
        return path + " does not hold the bytes that its URI says";
    std::ifstream file(SystemPath(path), std::ios::binary);
    std::vector<uint8_t> bytes(length);
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(length));
    if (!file) return path + " cannot be read";
    if (AreFragments(pgkit::element(&element), bytes))
        return path + " holds compressed pixels, whose transfer syntax JSON does not have";
    const bool isSet = element.SetValue(bytes.data(), static_cast<uint32_t>(length)) == 1;
    return isSet ? "" : "memory has run out";
}

// Only files in the directory that was named are ever read: the last part of a URI is the name of
// one. Its query may say which part of it, as the URIs of json do.
std::string TakeBulkData(PGX_Node& element, const std::string& directory, std::string_view uri) {
    const std::string_view target = uri.substr(0, uri.find_first_of("?#"));
    const std::string name(target.substr(target.find_last_of("/\\:") + 1));
    if (name.empty() || name == "." || name == "..") return "the URI names no file";
    const std::string path = directory + "/" + name;
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(SystemPath(path), error)))
        return path + " is no file";
    const std::string_view query = uri.substr(std::min(target.size() + 1, uri.size()));
    const auto offset = QueryNumber(query, "offset");
    const auto length = QueryNumber(query, "length");
    if (offset && length) return TakeRange(element, path, *offset, *length);
    return element.SetFileContentValue(path.c_str()) == 1 ? "" : path + " cannot be read";
}

int32_t TakeBulk(void* context, PGX_Node* element, const char*, const char* uri) {
    auto& source = *static_cast<BulkSource*>(context);
    source.complaint = TakeBulkData(*element, source.directory, uri);
    return source.complaint.empty() ? 1 : 0;
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

    // Returns the reason why a file could not be written, or an empty text.
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

std::string Describe(const PgxJsonPlace& place, int64_t result, const BulkSource& bulk) {
    std::string text = "at byte " + std::to_string(place.offset);
    if (place.path[0] != '\0') text += std::string(", in ") + place.path;
    text += ": " + JsonErrorText(result);
    return bulk.complaint.empty() ? text : text + ": " + bulk.complaint;
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
    BulkSource bulk{request.bulkDirectory, ""};
    options.bulk = request.bulkDirectory.empty() ? nullptr : TakeBulk;
    options.bulkContext = &bulk;
    PgxJsonPlace place = {};
    place.size = sizeof place;
    FileWriter writer(request);
    const int64_t result =
        pgxReadJsonDataSets(ReadFromStream, stream, &options, TakeDataSet, &writer, &place);
    if (!isStandardInput) std::fclose(stream);
    if (result < 0) return Fail(kFromJsonCommand, path + ": " + Describe(place, result, bulk));
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
                 "where the data of a BulkDataURI are, in a file of the URI's last part, or the "
                 "part of it that \"?offset=N&length=N\" says; no other file is ever read, and no "
                 "symbolic link is followed");
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
