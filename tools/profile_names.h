// The media application profiles by their names.
#pragma once

#include <string>
#include <vector>

#include "pgkit/cpp/item.hpp"

namespace pgtool {

std::vector<std::string> ProfileNames();

// "unknown profile: NAME; did you mean OTHER?", or an empty text for a name that there is and for
// an empty one, which asks for no profile.
std::string ComplaintAboutProfile(const std::string& name);

// Whether a profile allows a data set, which has or is to have this transfer syntax: as the
// creation of a DICOMDIR judges it, by the SOP class of the File Meta Information first.
bool IsAllowed(const std::string& profile, const pgkit::item& root,
               const std::string& transferSyntax);

}  // namespace pgtool
