// Modules that are looked for at run time, by a name without its ending: "pgview32" is pgview32.dll
// on Windows and pgview32.so on POSIX. They are looked for beside the host program, beside this
// library, and where the system keeps its own; never in the current directory, which may be a disc
// of anyone's making.
#pragma once

namespace pgkit::platform {

// Null when there is none, or none that can be loaded; nothing is shown to the user.
void* OpenModule(const char* name);
// Null is allowed.
void CloseModule(void* module);

using ModuleFunction = void (*)();
// An exported function; null for a null module and when it has none of this name.
ModuleFunction FindFunction(void* module, const char* name);

}  // namespace pgkit::platform
