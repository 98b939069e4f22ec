// What a medium says about itself to a person without any program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pgtool {

// One of the media of a run.
struct MediumNumber {
    size_t number = 1;
    size_t count = 1;
};

// "DISC", or of several "DISC_2_OF_3": at most 16 characters. The beginning is cut to leave room.
std::string FileSetIdOf(const std::string& beginning, MediumNumber medium);

struct MediumContent {
    size_t patients = 0;
    size_t studies = 0;
    size_t series = 0;
    size_t instances = 0;
    size_t common = 0;  // of these belong to no patient
};

// "1 patient, 2 studies, 3 series, 120 instances".
std::string Describe(const MediumContent& content);

// README.TXT: ASCII, lines of at most 72 characters that end with CR and LF. It names nobody.
std::string ReadmeText(const std::string& fileSetId, MediumNumber medium,
                       const MediumContent& content, bool hasWeb);

}  // namespace pgtool
