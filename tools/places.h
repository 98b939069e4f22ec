// Places in data sets as users write them: names, tags, paths.
#pragma once

#include <string>
#include <vector>

#include "pgkit/data_set.hpp"

namespace pgtool {

// Whether a text is a name, a tag or a path whose steps are such. "[*]" stands
// for all items.
bool IsPlace(const std::string& text);

// "there is no element NAME; did you mean OTHER?"
std::string NoSuchPlace(const std::string& text);

// The places that a path with "[*]" in it stands for: one for each item that is there. Of any other
// path only itself.
std::vector<std::string> ExpandedPlaces(const pgkit::item& root, const std::string& text);

// The complaint about the first text that is no place, or an empty text.
std::string ComplaintAboutPlaces(const std::vector<std::string>& texts);

}  // namespace pgtool
