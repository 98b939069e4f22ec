// Modules that are looked for at run time, by a name without its ending: "pgview32" is pgview32.dll
// on Windows and pgview32.so on POSIX. They are looked for beside the host program, beside this
// library, and where the system keeps its own; never in the current directory, which may be a disc
// of anyone's making. On POSIX the system is not asked while its search path leads there.
#pragma once

namespace pgkit::platform {

// Remembers the directory of this library. To be called while the library is being loaded: the
// system may know it by a path that starts in the directory that is the current one only then.
// Throws std::bad_alloc. Until then, nothing is found beside the library.
void NoteOwnDirectory();

// Null when there is none, or none that can be loaded; nothing is shown to the user.
[[nodiscard]] void* OpenModule(const char* name);
// Null is allowed.
void CloseModule(void* module);

using ModuleFunction = void (*)();
// An exported function; null for a null module and when it has none of this name.
ModuleFunction FindFunction(void* module, const char* name);

}  // namespace pgkit::platform
