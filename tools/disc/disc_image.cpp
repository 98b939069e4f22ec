#include "disc/disc_image.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "disc/program.h"
#include "output_file.h"
#include "system_path.h"

namespace pgtool {

namespace {

std::string VolumeIdOf(std::string fileSetId) {
    std::replace(fileSetId.begin(), fileSetId.end(), ' ', '_');
    return fileSetId;
}

}  // namespace

DiscImage::DiscImage() : program_(FindProgram("xorriso")), isXorriso_(!program_.empty()) {
    if (!isXorriso_) program_ = FindProgram("genisoimage");
}

std::string DiscImage::Complaint() const {
    if (!program_.empty()) return "";
    return "--image: neither xorriso nor genisoimage is installed";
}

std::string DiscImage::Make(const std::string& folder, const std::string& fileSetId,
                            const std::string& image) const {
    OutputFile output(image);
    if (output.Path().empty()) return image + ": the file cannot be created";
    std::vector<std::string> command = {program_};
    // It extends names by itself unless told otherwise.
    if (isXorriso_) command.insert(command.end(), {"-as", "mkisofs", "--norock"});
    command.insert(command.end(), {"-quiet", "-iso-level", "1", "-no-pad", "-V",
                                   VolumeIdOf(fileSetId), "-o", output.Path(), folder});
    const int status = RunToItsEnd(command);
    if (status != 0) {
        return image + ": " + SystemPath(program_).filename().string() +
               " failed with exit status " + std::to_string(status);
    }
    return output.PutInPlace() ? "" : image + ": the file cannot be created";
}

std::string DiscImage::NameOf(const std::string& image, MediumNumber medium) {
    if (medium.count == 1) return image;
    char number[32];
    std::snprintf(number, sizeof number, "%04zu", medium.number);
    const std::filesystem::path path = SystemPath(image);
    const std::string suffix = path.extension().string();
    return image.substr(0, image.size() - suffix.size()) + number + suffix;
}

}  // namespace pgtool
