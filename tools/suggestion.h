// What somebody who mistyped a word may have meant.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pgtool {

// The words that differ least from the one that was typed, case ignored, the nearest first; none
// when none is near.
std::vector<std::string> NearestFew(const std::string& typed, const std::vector<std::string>& words,
                                    size_t most);

// "; did you mean WORD?", with up to so many words, or nothing.
std::string DidYouMean(const std::string& typed, const std::vector<std::string>& words,
                       size_t most = 1);

}  // namespace pgtool
