// Prints all data sets that a DICOMDIR refers to as one array of DICOM JSON. Values of more than a
// kilobyte, pixels above all, are left where they are: the URI of each says where that is.
//
//   disc_to_json DICOMDIR > disc.json
#include <pgkit/diagnostics.h>
#include <pgkit/json.h>
#include <pgkit/data_set.hpp>

#include <cstdio>
#include <string>

namespace {

// Takes the pieces of the JSON as they come: a data set is never in memory as a whole.
size_t Print(void*, const void* bytes, size_t size) { return std::fwrite(bytes, 1, size, stdout); }

// Whether the file could be printed.
bool PrintFile(const std::string& path) {
    const auto instance = pgkit::data_set::open(path);
    if (!instance) {
        std::fprintf(stderr, "%s\n", instance.error().message.c_str());
        return false;
    }
    PgxJsonWriteOptions options = PGX_JSON_WRITE_OPTIONS;
    options.bulkLimit = 1024;
    options.sourceUri = path.c_str();
    const std::int64_t result = pgxWriteJson(instance->node(), &options, Print, nullptr);
    if (result < 0) {
        char reason[128];
        pgxJsonErrorText(static_cast<std::int32_t>(result), reason, sizeof reason);
        std::fprintf(stderr, "%s: %s\n", path.c_str(), reason);
    }
    return result >= 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    pgxSetVerbosity(0);  // nothing but JSON on the standard output
    const auto disc = pgkit::directory::open(arguments[1]);
    if (!disc) {
        std::fprintf(stderr, "%s\n", disc.error().message.c_str());
        return 1;
    }
    const char* separator = "[";
    for (const pgkit::patient patient : disc->patients())
        for (const pgkit::study study : patient.studies())
            for (const pgkit::series series : study.series())
                for (const pgkit::leaf leaf : series.leaves()) {
                    std::fputs(separator, stdout);
                    separator = ",\n";
                    if (!PrintFile(leaf.path())) return 1;
                }
    std::puts(*separator == '[' ? "[]" : "]");
    return 0;
}
