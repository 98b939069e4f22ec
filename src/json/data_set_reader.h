// Data sets from JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "json/json_parser.h"
#include "pgkit/json.h"

namespace pgkit {

// What was read, and what went wrong.
struct JsonReading {
    int64_t count = 0;    // of the data sets that were handed over
    int32_t error = 0;    // 0 or a PgxJsonError
    uint64_t offset = 0;  // where reading ended
    std::string path;
};

// Hands each data set over to take, which owns it from then on and answers whether to go on. The
// options are complete. Throws std::bad_alloc.
JsonReading ReadDataSets(const JsonSource& source, const PgxJsonReadOptions& options,
                         PgxJsonDataSetFunction take, void* context);

}  // namespace pgkit
