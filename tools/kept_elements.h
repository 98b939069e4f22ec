// Data sets of which only some elements are wanted.
#pragma once

#include <string>
#include <vector>

#include "pgkit/data_set.hpp"

namespace pgtool {

// The elements that are meant by places: those that paths lead to, and those of tags and names
// wherever they are. In the order of the places.
std::vector<pgkit::element> ElementsAt(const pgkit::data_set& root,
                                       const std::vector<std::string>& places);

// Removes all others from a data set, but for the sequences and items around them, and Specific
// Character Set, by which their texts are read. The file is not changed.
void KeepElementsAt(pgkit::data_set& root, const std::vector<std::string>& places);

}  // namespace pgtool
