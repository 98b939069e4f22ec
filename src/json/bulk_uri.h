// The URIs of values that are left where they are.
#pragma once

#include <cstdint>
#include <string>

#include "pgkit/json.h"
#include "pgkit/node.h"

namespace pgkit {

// Where the bytes of a value lie in the tree's file.
struct BytesInFile {
    uint64_t offset;  // PGX_JSON_NO_OFFSET when they lie in none
    uint64_t length;
};

BytesInFile FindBytes(const PGX_Node& element);

// Of encapsulated Pixel Data: from the first item to the end of the delimiter, or of the file.
BytesInFile FindFragments(const PGX_Node& pixelData);

// The URI as the options say; empty when there is none. Throws std::bad_alloc.
std::string MakeBulkUri(const PgxJsonWriteOptions& options, PGX_Node& element,
                        const std::string& path, BytesInFile bytes);

}  // namespace pgkit
