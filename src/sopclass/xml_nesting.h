// How deeply the elements of an XML text are nested, told without recursion. The parser descends
// one level of its own stack for each level of the text and knows no limit, so a text is measured
// before it is parsed.
#pragma once

#include <cstddef>

namespace pgkit {

// True when rapidxml, given this zero-terminated text, never opens more than maxDepth elements
// inside each other, whether it accepts the text or not. (Of a text that the parser gives up early,
// the part behind that place may be counted too.)
bool IsNestedAtMost(const char* text, size_t maxDepth);

}  // namespace pgkit
