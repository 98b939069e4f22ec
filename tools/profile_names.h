// The names of the media application profiles.
#pragma once

#include <string>
#include <vector>

namespace pgtool {

std::vector<std::string> ProfileNames();

// "unknown profile: NAME; did you mean OTHER?", or an empty text for a name that there is and for
// an empty one, which asks for no profile.
std::string ComplaintAboutProfile(const std::string& name);

}  // namespace pgtool
