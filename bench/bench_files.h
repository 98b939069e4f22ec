// Files to read in benchmarks, made once per run in a directory of their own that is removed when
// the program ends.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pgkit_bench {

// 1,000 CT images of about 100 elements, three of them sequences, with 32 KiB of pixels, in
// explicit VR little endian.
const std::vector<std::string>& SmallFiles();

// One file of a million elements: a sequence of 10,000 items of 100 short elements.
const std::string& BigExplicitFile();
const std::string& BigImplicitFile();

// 100 chains of sequences, each nested 500 deep.
const std::string& DeepFile();

// One image with so many MiB of pixels, in explicit VR little endian.
const std::string& ImageFile(uint32_t mebibytes);

// A directory of small files, 1,000 of them in each subdirectory: CT images of one series, the same
// with ten images in a series, or files that are no DICOM.
enum class MediumShape { kOneSeries, kManySeries, kNoDicom };
struct Medium {
    std::string directory;
    std::vector<std::string> files;  // relative paths
};
const Medium& MediumOf(int fileCount, MediumShape shape);

// Writes a file into the same directory and returns its path.
std::string WriteFile(const std::string& name, const std::string& content);

// A path in the same directory for output.
std::string OutputPath();

}  // namespace pgkit_bench
