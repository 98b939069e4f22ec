// Writes each frame of a DICOM image to a file of its own: the samples as they are in memory, or
// one compressed frame (or fragment) after the other.
//
//   frames_to_raw FILE PREFIX        writes PREFIX1.raw, PREFIX2.raw ...
#include <pgkit/data_set.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace {

bool Write(const std::string& path, pgkit::span<const std::uint8_t> bytes) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && isWritten;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    const auto image = pgkit::data_set::open(arguments[1]);
    if (!image) {
        std::fprintf(stderr, "%s\n", image.error().message.c_str());
        return 1;
    }
    std::vector<std::uint8_t> room;  // for one frame after the other
    int number = 0;
    for (const pgkit::frame frame : image->frames()) {
        const std::string path = arguments[2] + std::to_string(++number) + ".raw";
        const pgkit::span<const std::uint8_t> bytes = frame.bytes(room);
        if (bytes.size() != frame.size() || !Write(path, bytes)) {
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
            return 1;
        }
        std::printf("%s: %d bytes\n", path.c_str(), static_cast<int>(bytes.size()));
    }
    if (number == 0) std::fprintf(stderr, "%s has no frames\n", arguments[1]);
    return number == 0 ? 1 : 0;
}
