// The one way between paths of bytes and the system's names.
#pragma once

#include <string>

namespace pgkit::platform {

// Empty for what is not valid in the encoding of paths; nothing has that name.
std::wstring Wide(const std::string& path);
std::string Narrow(const std::wstring& name);

}  // namespace pgkit::platform
