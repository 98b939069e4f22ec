// What somebody who mistyped a word may have meant.
#pragma once

#include <string>
#include <vector>

namespace pgtool {

// The word that differs least from the one that was typed, case ignored; empty when none is near.
std::string Nearest(const std::string& typed, const std::vector<std::string>& words);

// As many words as are near, at most three, the nearest first.
std::vector<std::string> NearestFew(const std::string& typed,
                                    const std::vector<std::string>& words);

// "; did you mean A, B or C?" of these, or nothing.
std::string DidYouMeanOneOf(const std::string& typed, const std::vector<std::string>& words);

// "; did you mean WORD?", or nothing.
std::string DidYouMean(const std::string& typed, const std::vector<std::string>& words);

}  // namespace pgtool
