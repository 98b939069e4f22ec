// Makes a DICOM file of a data set in DICOM JSON.
//
//   json_to_file JSON FILE
#include <pgkit/json.h>
#include <pgkit/data_set.hpp>

#include <cstdio>
#include <memory>

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

size_t Read(void* file, void* bytes, size_t size) {
    auto* const stream = static_cast<std::FILE*>(file);
    const size_t count = std::fread(bytes, 1, size, stream);
    return count == 0 && std::ferror(stream) != 0 ? PGX_READ_FAILED : count;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    const std::unique_ptr<std::FILE, CloseFile> json(std::fopen(arguments[1], "rb"));
    if (json == nullptr) {
        std::perror(arguments[1]);
        return 1;
    }
    PgxJsonPlace place = {};
    place.size = sizeof place;
    pgkit::data_set made(pgxReadJson(Read, json.get(), nullptr, &place));
    if (!made) {
        char reason[128];
        pgxJsonErrorText(place.error, reason, sizeof reason);
        std::fprintf(stderr, "%s: byte %llu, %s: %s\n", arguments[1],
                     static_cast<unsigned long long>(place.offset), place.path, reason);
        return 1;
    }
    const auto saved = made.save(arguments[2]);
    if (!saved) std::fprintf(stderr, "%s\n", saved.error().message.c_str());
    return saved ? 0 : 1;
}
