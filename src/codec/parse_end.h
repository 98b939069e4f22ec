// Where, and why, the reading of a data set came to its end.
#pragma once

#include <cstdint>

namespace pgkit {

enum class EndKind {
    Complete,            // behind an outermost element
    CutShort,            // the stream ends inside of something
    Broken,              // a header that cannot be read, or a delimiter of nothing
    LeftAfterFragments,  // fragments that are not indexed
    TooDeep
};

struct ParseEnd {
    EndKind kind = EndKind::Complete;
    uint64_t offset = 0;
    // The innermost element that is concerned.
    uint16_t group = 0xFFFF;
    uint16_t element = 0xFFFF;
};

}  // namespace pgkit
