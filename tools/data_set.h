// Opening and saving data sets for commands.
#pragma once

#include <cstdint>
#include <string>

#include "pgkit/data_set.hpp"

namespace pgtool {

// Values above it are copied from file to file when a data set is saved.
constexpr uint32_t kLoadedForSaving = 4096;

struct OpenRequest {
    uint32_t loadBelow = kLoadedForSaving;
    uint32_t flags = 0;  // PgOpenFlags; PG_OPEN_PAST_PIXEL_DATA is added
    // Open whatever the library's plain open functions make something of, texts and pictures too.
    bool acceptsAnything = false;
    // Gets what is wrong with a file that is cut short or broken, with its path; empty otherwise.
    // Without it such a file is not opened.
    std::string* damage = nullptr;
};

// Opens a file or, for "-", what comes from the standard input. The error's message is "cannot open
// PATH: REASON".
pgkit::result<pgkit::data_set> Open(const std::string& path, const OpenRequest& request = {});

// Why a path gave no data set, or no DICOMDIR: "cannot open PATH: REASON".
std::string CannotOpen(const std::string& path);

// A value as it stands in the file, but for the byte order.
std::string BytesOf(const pgkit::element& element);

// A value as it stands, without the blanks and NULs around it: as the library compares them.
std::string UnpaddedBytesOf(const pgkit::item& root, pgkit::tag tag);

// Saves a data set, and closes it, through an OutputFile, or to the standard output for "-". mode
// is that of SaveDataSetAsEx. Values too long for their VR become UN. Returns the reason why not,
// with which the former file is as it was, or an empty text.
[[nodiscard]] std::string SaveWhole(pgkit::data_set root, const std::string& path, uint32_t mode);

// The same, as an error.
[[nodiscard]] pgkit::error Save(pgkit::data_set root, const std::string& path, uint32_t mode);

// What a result of SaveDataSetAsEx means.
std::string DescribeSaveResult(uint32_t result);

}  // namespace pgtool
