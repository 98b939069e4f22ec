// Every call to the operating system, behind one face for Windows and POSIX.
//
// Paths keep their backslashes up to here. The POSIX side turns them into slashes and, when a path
// does not exist as written, looks it up again component by component, without regard to case and
// to blanks at the end. Files are created under the very path that is given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pgkit::platform {

// Opens a regular file; null on failure, also for a null path, a directory, a pipe or a device. The
// streams are unbuffered: the module reads and writes them in large pieces of its own.
[[nodiscard]] FILE* OpenForReading(const char* path);
// The same; size receives the length of the file.
[[nodiscard]] FILE* OpenForReading(const char* path, uint64_t& size);
// Also a device, but no pipe.
[[nodiscard]] FILE* OpenForUpdate(const char* path);
// Creates or truncates a file; null on failure, also for a pipe that nobody reads.
[[nodiscard]] FILE* CreateBinary(const char* path);
[[nodiscard]] FILE* CreateText(const char* path);
// Opens a text file, or creates it, for writing at its end; null on failure. The stream is
// unbuffered. Others may remove the file while it is open.
[[nodiscard]] FILE* AppendText(const char* path);

// True for anything that the path names, directories included.
bool PathExists(const char* path);
bool IsDirectory(const char* path);
// The size of a regular file, nothing for any other path.
[[nodiscard]] std::optional<uint64_t> FileSize(const char* path);

// What a file is, whatever path or stream leads to it. Nothing for a path that names nothing and
// for a stream without a file of the system under it.
struct FileIdentity {
    uint64_t volume;
    uint64_t index;
    bool operator==(const FileIdentity&) const = default;
};
[[nodiscard]] std::optional<FileIdentity> IdentityOf(FILE* stream);
[[nodiscard]] std::optional<FileIdentity> IdentityOf(const char* path);

// What a directory holds, hidden entries too, in the byte order of their names. On POSIX a link to
// a directory is a directory. Everything else is not, whether it can be read (files) or not (pipes,
// devices, links that lead nowhere). Empty for a path that is no readable directory.
struct DirectoryEntry {
    std::string name;
    bool isDirectory;
    bool isLink;  // the way to it is not the only one: following it may lead in a circle
};
std::vector<DirectoryEntry> ListDirectory(const char* path);

// The path of the regular file that names below a folder lead to, as the system has it: each name
// as it is there, the system's separators in between. The names, none of which leads upwards, are
// joined by backslashes. Empty when there is no such file.
std::string ExistingFile(const std::string& folder, const std::string& names);

// Whether a path can lead to an entry of this name. On POSIX a backslash may be part of a name,
// where no path of ours reaches it: the path leads elsewhere.
bool IsReachableName(std::string_view name);
// Whether the system takes paths that differ in case for the same.
bool PathsIgnoreCase();

// Whether a file of this path, as written, can be put in place as a whole: where there is none, or
// a regular file that may be written.
bool CanBeReplaced(const char* path);
// Creates a file in the directory of the one that it is going to replace (of the file itself where
// the path is a link to it), and tells its path: the name of that file, or else the stem, with
// ".new" and a number behind it, which nothing had, not even a link that leads nowhere. Where there
// is a file already, nobody but the owner can open the new one on POSIX. Null on failure, also for
// a null path; there is no path then.
[[nodiscard]] FILE* CreateReplacement(const char* path, std::string& replacement, const char* stem);
// Waits until a replacement, which is closed or unbuffered, is on the disk: a file system may put a
// new name there before the content, and a loss of power in between would leave neither the old
// file nor the new.
[[nodiscard]] bool FlushToDisk(const char* replacement);
// Puts a finished file in the place of an existing one, whose permissions it takes over on POSIX,
// or where there is none; streams that are open on the old file keep its content. On failure
// nothing has changed. On Windows a file that is open can be replaced only when it was opened by
// OpenForReading.
[[nodiscard]] bool ReplaceWith(const char* path, const char* replacement);
// Removes what CreateReplacement made for the file, or with its name as the stem, and nobody put in
// place: regular files of such names, unless the stream that it gave is open still.
void RemoveStrayReplacements(const char* path);
bool RemoveFile(const char* path);

// Positions are 64-bit on both platforms.
[[nodiscard]] bool Seek(FILE* stream, uint64_t position);
[[nodiscard]] bool SeekToEnd(FILE* stream);
// Reads at a position, in as few calls of the system as it takes: at least so many bytes as are
// needed, unless the file ends before or cannot be read, and at most as many as there is room for.
// Returns how many. Where the stream stands afterwards is not said.
[[nodiscard]] size_t ReadAt(FILE* stream, uint64_t position, uint8_t* out, size_t needed,
                            size_t room);
// None when the stream has no position (a pipe).
[[nodiscard]] std::optional<uint64_t> Tell(FILE* stream);
// Cuts the end of a file off.
[[nodiscard]] bool CutTo(FILE* stream, uint64_t size);
// The length of what the stream reads; 0 when it cannot be told. May move the stream.
uint64_t StreamSize(FILE* stream);

// The directory of the host process's executable, with backslashes, one of them at its end. Where
// the executable is not known, or its path as long as the buffer of 1024 bytes that it is asked for
// with, this is "C:\" on Windows and empty on POSIX: there, that would be a name in the current
// directory.
std::string HostProgramDirectory();

struct CalendarTime {
    int year;
    int month;  // from 1
    int day;
    int hour;
    int minute;
    int second;
};
CalendarTime LocalTime();

// Compares two texts by the system's default locale, ignoring case, diacritics, symbols and
// character width. Returns -1, 0 or 1; -2 on failure.
int32_t CompareNames(const std::string& a, const std::string& b);

}  // namespace pgkit::platform
