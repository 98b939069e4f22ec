#include "json_output.h"

#include "data_set.h"
#include "digits.h"
#include "kept_elements.h"
#include "pgkit/json.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

// Longer values are read piece by piece when they are written.
constexpr uint32_t kLoadedForJson = 4096;

size_t WriteToStream(void* stream, const void* bytes, size_t size) {
    return std::fwrite(bytes, 1, size, static_cast<std::FILE*>(stream));
}

class DataSetPrinter {
  public:
    explicit DataSetPrinter(const JsonOutput& output) : output_(output) {}

    // Nothing of a data set is written when its end cannot be: what was written would be no JSON.
    pgkit::error Print(const Input& input, const char* separator) {
        std::string damage;
        auto root = Open(input.path, {kLoadedForJson, 0, false, &damage});
        if (!root) return root.error();
        if (!output_.places.empty()) KeepElementsAt(*root, output_.places);
        const std::string source = WellFormedUtf8(input.path);
        PgxJsonWriteOptions options = PGX_JSON_WRITE_OPTIONS;
        options.bulkLimit = output_.bulkLimit;
        options.sourceUri = source.c_str();
        const int64_t size = pgxGetJson(root->node(), &options, nullptr, 0);
        if (size < 0) return Failed(input, size);
        std::fputs(count_ == 0 ? "" : separator, output_.stream);
        ++count_;
        const int64_t written = pgxWriteJson(root->node(), &options, WriteToStream, output_.stream);
        if (written < 0) return Failed(input, written);
        if (damage.empty()) return {};
        return {pgkit::failure::read_failed, damage};
    }

  private:
    static pgkit::error Failed(const Input& input, int64_t result) {
        return {pgkit::failure::write_failed, input.path + ": " + JsonErrorText(result)};
    }

    const JsonOutput& output_;
    size_t count_ = 0;
};

}  // namespace

void AddBulkLimit(OptionSet& options, std::string& bulk) {
    options.Text("--bulk", "N", &bulk,
                 "values of more than N stored bytes become a BulkDataURI, the file with their "
                 "offset and length (0: every value that may)");
}

std::string ReadBulkLimit(const std::string& bulk, uint64_t& limit) {
    limit = PGX_JSON_ALL_INLINE;
    if (bulk.empty()) return "";
    const auto number = ParseDigits<uint64_t>(bulk, 10);
    if (!number) return "--bulk: a number of bytes is expected";
    limit = *number;
    return "";
}

std::string JsonErrorText(int64_t error) {
    char text[128];
    pgxJsonErrorText(static_cast<int32_t>(error), text, sizeof text);
    return text;
}

int PrintJsonOf(const Command& command, const InputOptions& inputs, const JsonOutput& output) {
    const bool isArray = MayBeSeveral(inputs);
    DataSetPrinter printer(output);
    if (isArray) std::fputs("[", output.stream);
    const InputCounts counts = ForEachInput(
        command, inputs, [&](const Input& input) { return printer.Print(input, ",\n"); });
    if (isArray) std::fputs("]", output.stream);
    if (isArray || counts.done != 0) std::fputs("\n", output.stream);
    return counts.failed == 0 ? kDone : kFailed;
}

}  // namespace pgtool
