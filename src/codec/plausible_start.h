// Whether bytes without File Meta Information are a data set, and in which encoding.
#pragma once

#include <cstdint>
#include <optional>

#include "codec/stream_reader.h"
#include "codec/transfer_syntax.h"
#include "pgkit/open_report.h"

namespace pgkit {

struct EncodingGuess {
    Encoding encoding;
    PgxCertainty certainty;
};

// Looks at the first elements, from position 0 on, in the encodings that the flags (PgOpenFlags)
// leave. None when they look like elements in none. Moves the reader.
[[nodiscard]] std::optional<EncodingGuess> GuessEncoding(StreamReader& reader, uint32_t flags,
                                                         bool detectsBigEndian);

}  // namespace pgkit
