#include "data_set.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

#include "directory_links.h"
#include "output_file.h"
#include "pgkit/long_values.h"
#include "pgkit/open_report.h"
#include "standard_streams.h"
#include "stream.h"

namespace pgtool {

namespace {

bool Copy(std::FILE* from, std::FILE* to) {
    std::vector<char> block(0x10000);
    while (const size_t count = std::fread(block.data(), 1, block.size(), from))
        if (std::fwrite(block.data(), 1, count, to) != count) return false;
    return std::ferror(from) == 0;
}

pgkit::error NotOpened(pgkit::failure kind, const std::string& path, const std::string& reason) {
    return {kind, "cannot open " + path + ": " + reason};
}

size_t ReadStandardInput(void*, void* bytes, size_t size) {
    const size_t count = std::fread(bytes, 1, size, stdin);
    return count == 0 && std::ferror(stdin) != 0 ? PGX_READ_FAILED : count;
}

std::string PlaceOf(const PgxOpenReport& report) {
    const pgkit::tag tag{report.group, report.element};
    const std::string keyword = tag.keyword();
    return "at byte " + std::to_string(report.offset) + ", in " + tag.text() +
           (keyword.empty() ? "" : " ") + keyword;
}

// What is wrong with a file that gave a tree; empty when it is complete.
std::string DamageOf(const PgxOpenReport& report) {
    switch (report.result) {
        case PGX_OPEN_CUT_SHORT:
            return "it is cut short " + PlaceOf(report);
        case PGX_OPEN_BROKEN:
            return "it cannot be read any further " + PlaceOf(report);
        case PGX_OPEN_TOO_DEEP:
            return "its sequences are nested too deep " + PlaceOf(report);
        case PGX_OPEN_READ_FAILED:
            return "reading failed " + PlaceOf(report);
        default:
            return "";
    }
}

// "cannot read PATH: REASON" of the library.
std::string ReasonOf(const pgkit::error& error, const std::string& path) {
    return error.message.substr(std::strlen("cannot read ") + path.size() + 2);
}

pgkit::error WhyNotOpened(const std::string& path, int32_t result) {
    const auto error = path == "-" ? pgkit::detail::why_no_data_set(path, result)
                                   : pgkit::detail::why_not_opened(path, result);
    return NotOpened(error.kind, path, ReasonOf(error, path));
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
    const Stream written(std::fopen(file.Path().c_str(), "rb"));
    if (written == nullptr || !Copy(written.get(), stdout)) return "-: writing failed";
    return "";
}

}  // namespace

pgkit::result<pgkit::data_set> Open(const std::string& path, const OpenRequest& request) {
    using pgkit::failure;
    const uint32_t flags = request.flags | PG_OPEN_PAST_PIXEL_DATA;
    PgxOpenReport report = {};
    report.size = sizeof report;
    report.options = PGX_OPEN_DETECT_BIG_ENDIAN;
    report.result = PGX_OPEN_CANNOT_OPEN;
    pgkit::data_set opened;
    if (path == "-") {
        MakeStandardInputBinary();
        opened = pgkit::data_set(pgxOpenFrom(ReadStandardInput, nullptr, flags, &report));
    } else if (request.acceptsAnything) {
        opened = pgkit::data_set(pgOpenDataSetFileEx(path.c_str(), request.loadBelow, flags));
    } else {
        opened = pgkit::data_set(pgxOpenFile(path.c_str(), request.loadBelow, flags, &report));
    }
    if (!opened) return WhyNotOpened(path, report.result);
    const std::string damage = DamageOf(report);
    if (damage.empty()) return opened;
    if (request.damage == nullptr) return NotOpened(failure::read_failed, path, damage);
    *request.damage = path + ": " + damage;
    return opened;
}

std::string CannotOpen(const std::string& path) {
    const auto error = pgkit::detail::why_not_opened(path, PGX_OPEN_CANNOT_OPEN);
    return "cannot open " + path + ": " + ReasonOf(error, path);
}

std::string BytesOf(const pgkit::element& element) {
    const std::vector<uint8_t> bytes = element.bytes();
    return std::string(bytes.begin(), bytes.end());
}

std::string UnpaddedBytesOf(const pgkit::item& root, pgkit::tag tag) {
    constexpr std::string_view kPadding(" \0", 2);
    const auto bytes = root.find(tag).bytes();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const size_t first = text.find_first_not_of(kPadding);
    if (first == text.npos) return "";
    return std::string(text.substr(first, text.find_last_not_of(kPadding) - first + 1));
}

std::string SaveWhole(pgkit::data_set root, const std::string& path, uint32_t mode) {
    TieDirectoryLinks(root);
    if (pgxMakeLongValuesUn(root.node()) == 0) return "a long value cannot be read";
    return path == "-" ? SaveToStandardOutput(std::move(root), mode)
                       : SaveToFile(std::move(root), path, mode);
}

pgkit::error Save(pgkit::data_set root, const std::string& path, uint32_t mode) {
    const std::string reason = SaveWhole(std::move(root), path, mode);
    if (reason.empty()) return {};
    return {pgkit::failure::write_failed, reason};
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
