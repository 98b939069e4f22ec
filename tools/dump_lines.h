// Data sets as text, a line for each element: the form of the library's own dump, with texts in
// UTF-8, today's names, all digits of numbers, and bytes.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "pgkit/data_set.hpp"

namespace pgtool {

struct DumpStyle {
    bool currentNames = true;  // else everything but texts is as the library prints it
    bool full = false;         // long values, too
    bool coloured = false;     // tags and names stand out on a terminal
};

// The whole data set, between "DATASET" and "END-OF-DATASET".
void PrintDataSet(const pgkit::data_set& root, const DumpStyle& style);

// The elements at some places only: of a tag or a name those in sequences, too, of a path the one
// that it leads to.
void PrintElements(const pgkit::data_set& root, const std::vector<std::string>& places,
                   const DumpStyle& style);

}  // namespace pgtool
