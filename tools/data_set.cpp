#include "data_set.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

#include "long_values.h"
#include "output_file.h"
#include "pgkit/dictionary.h"
#include "standard_streams.h"

namespace pgtool {

namespace {

constexpr const char* kNoDataSet = "it is no DICOM data set";

// Whoever says how a file is encoded says that it is a data set.
constexpr uint32_t kForced = PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_IMPLICIT_VR |
                             PG_OPEN_FORCE_LITTLE_ENDIAN | PG_OPEN_FORCE_BIG_ENDIAN;

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

bool Copy(std::FILE* from, std::FILE* to) {
    std::vector<char> block(0x10000);
    while (const size_t count = std::fread(block.data(), 1, block.size(), from))
        if (std::fwrite(block.data(), 1, count, to) != count) return false;
    return std::ferror(from) == 0;
}

pgkit::error CannotOpen(pgkit::failure kind, const std::string& path, const std::string& reason) {
    return {kind, "cannot open " + path + ": " + reason};
}

uint32_t NumberAt(const unsigned char* bytes, size_t size, bool isLittle) {
    uint32_t number = 0;
    for (size_t i = 0; i < size; ++i)
        number = number << 8 | bytes[isLittle ? size - 1 - i : i];
    return number;
}

// Whether a file without meta information begins with an element that the tables know, whose value
// fits into the file.
bool BeginsWithElement(const unsigned char* header, bool isLittle, uint64_t fileSize) {
    const auto group = static_cast<uint16_t>(NumberAt(header, 2, isLittle));
    const auto element = static_cast<uint16_t>(NumberAt(header + 2, 2, isLittle));
    const bool isKnown = group % 2 == 0 && pgFindValueRepresentation(group, element) != VR_Unknown;
    if (!isKnown && group != 0x0008) return false;
    const char letters[3] = {static_cast<char>(header[4]), static_cast<char>(header[5]), '\0'};
    if (pgFindValueRepresentationVR(letters) != VR_Unknown) return true;
    const uint32_t length = NumberAt(header + 4, 4, isLittle);
    return length == 0xFFFFFFFF || length + 8 <= fileSize;
}

bool LooksLikeDataSet(std::FILE* stream) {
    constexpr size_t kPreamble = 128;
    std::array<unsigned char, kPreamble + 4> start{};
    const size_t size = std::fread(start.data(), 1, start.size(), stream);
    if (std::ferror(stream) != 0) return true;  // a directory: opening it tells
    if (size == start.size() && std::memcmp(&start[kPreamble], "DICM", 4) == 0) return true;
    if (size < 8) return false;
    const bool isSought = std::fseek(stream, 0, SEEK_END) == 0;
    const long end = isSought ? std::ftell(stream) : -1;
    // Where the size does not fit into a number, everything fits into the file.
    const uint64_t fileSize = end < 0 ? UINT64_MAX : static_cast<uint64_t>(end);
    return BeginsWithElement(start.data(), true, fileSize) ||
           BeginsWithElement(start.data(), false, fileSize);
}

// The library needs a stream in which it can go back: what comes from a pipe is kept in a file
// without a name.
pgkit::result<pgkit::data_set> OpenStandardInput(uint32_t loadBelow, uint32_t flags,
                                                 bool isChecked) {
    using pgkit::failure;
    MakeStandardInputBinary();
    FileHandle copy(std::tmpfile());
    if (copy == nullptr) return CannotOpen(failure::cannot_open, "-", "no temporary file");
    if (!Copy(stdin, copy.get())) {
        return CannotOpen(failure::cannot_open, "-", "the standard input cannot be read or kept");
    }
    std::rewind(copy.get());
    const bool isDataSet = !isChecked || LooksLikeDataSet(copy.get());
    std::rewind(copy.get());
    pgkit::data_set opened;
    if (isDataSet)
        opened = pgkit::data_set(pgOpenDataSetFileHandleEx(copy.release(), loadBelow, flags));
    if (!opened) return CannotOpen(failure::not_a_data_set, "-", kNoDataSet);
    return opened;
}

// "cannot read PATH: REASON" of the library.
std::string ReasonOf(const pgkit::error& error, const std::string& path) {
    return error.message.substr(std::strlen("cannot read ") + path.size() + 2);
}

std::string SaveToFile(pgkit::data_set root, const std::string& path, uint32_t mode) {
    OutputFile output(path);
    if (output.Path().empty()) return path + ": " + DescribeSaveResult(1);
    const uint32_t result =
        root.node()->SaveDataSetAsEx(output.Path().c_str(), static_cast<int32_t>(mode));
    root = pgkit::data_set();
    if (result == 0 && output.PutInPlace()) return "";
    return path + ": " + DescribeSaveResult(result == 0 ? 1 : result);
}

// A file cannot be written from front to back: lengths and offsets are known in the end.
std::string SaveToStandardOutput(pgkit::data_set root, uint32_t mode) {
    std::error_code error;
    const auto directory = std::filesystem::temp_directory_path(error);
    TemporaryFile file(directory.string());
    if (error || file.Path().empty()) return "-: no temporary file";
    const uint32_t result =
        root.node()->SaveDataSetAsEx(file.Path().c_str(), static_cast<int32_t>(mode));
    root = pgkit::data_set();
    if (result != 0) return "-: " + DescribeSaveResult(result);
    const FileHandle written(std::fopen(file.Path().c_str(), "rb"));
    if (written == nullptr || !Copy(written.get(), stdout)) return "-: writing failed";
    return "";
}

}  // namespace

pgkit::result<pgkit::data_set> Open(const std::string& path, uint32_t loadBelow, uint32_t flags,
                                    Accept accept) {
    const bool isChecked = accept == Accept::DataSets && flags == (flags & ~kForced);
    if (path == "-") return OpenStandardInput(loadBelow, flags, isChecked);
    if (isChecked && !LooksLikeDataSet(path)) {
        return CannotOpen(pgkit::failure::not_a_data_set, path, kNoDataSet);
    }
    auto opened = pgkit::data_set::open(path, {loadBelow, flags});
    if (opened) return opened;
    return CannotOpen(opened.error().kind, path, ReasonOf(opened.error(), path));
}

std::string CannotOpen(const std::string& path) {
    const auto error = pgkit::detail::why_not_read(path, kNoDataSet);
    return "cannot open " + path + ": " + ReasonOf(error, path);
}

bool LooksLikeDataSet(const std::string& path) {
    const FileHandle stream(std::fopen(path.c_str(), "rb"));
    return stream == nullptr || LooksLikeDataSet(stream.get());  // opening it tells why not
}

std::string SaveWhole(pgkit::data_set root, const std::string& path, uint32_t mode) {
    if (!MakeLongValuesUn(*root.node())) return "a long value cannot be read";
    return path == "-" ? SaveToStandardOutput(std::move(root), mode)
                       : SaveToFile(std::move(root), path, mode);
}

std::string DescribeSaveResult(uint32_t result) {
    constexpr std::array<const char*, 8> kTexts = {"saved",
                                                   "the file cannot be created",
                                                   "a value has no source",
                                                   "writing failed",
                                                   "a value cannot be read from its source",
                                                   "out of memory",
                                                   "a value is too long for its VR",
                                                   "the file cannot be opened again"};
    return result < kTexts.size() ? kTexts[result] : "result " + std::to_string(result);
}

}  // namespace pgtool
