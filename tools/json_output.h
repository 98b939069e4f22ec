// Data sets as DICOM JSON, for the commands that print it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "inputs.h"
#include "pgkit/json.h"
#include "text_options.h"

namespace pgtool {

// --bulk N.
void AddBulkLimit(OptionSet& options, std::string& bulk);
// Without a text no value is too long. Returns the complaint about a text that is no number, or an
// empty text.
[[nodiscard]] std::string ReadBulkLimit(const std::string& bulk, uint64_t& limit);

struct JsonOutput {
    std::FILE* stream = stdout;
    uint64_t bulkLimit = PGX_JSON_ALL_INLINE;
    std::vector<std::string> places;  // of the elements that are wanted; none for all
};

// Prints an object for one file, an array for several or a directory. Files that fail are left out.
// Returns the exit status.
int PrintJsonOf(const Command& command, const InputOptions& inputs, const JsonOutput& output);

// What a PgxJsonError means.
std::string JsonErrorText(int64_t error);

}  // namespace pgtool
