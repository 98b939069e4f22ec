// pgkit, the C++ layer (data_set.hpp): why a file could not be opened. Nothing here is for programs
// to call.
#ifndef PGKIT_CPP_OPENING_HPP
#define PGKIT_CPP_OPENING_HPP

#include <sys/stat.h>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>

#include "pgkit/cpp/result.hpp"
#include "pgkit/open_report.h"

// Compilers of Microsoft's kind would rather have other names for these.
#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4996)
#endif

namespace pgkit {
inline namespace v1 {
namespace detail {

constexpr const char* no_data_set = "it is no DICOM data set";

inline error cannot_read(failure kind, const std::string& path, const char* reason) {
    return {kind, "cannot read " + path + ": " + reason};
}

// As the library reads paths, on every system: backslashes separate, too, unless they are part of a
// name that is there.
inline bool find_file(std::string& path, struct stat& found) {
    if (stat(path.c_str(), &found) == 0) return true;
    std::string other = path;
    for (char& c : other)
        if (c == '\\') c = '/';
    if (other == path || stat(other.c_str(), &found) != 0) return false;
    path = other;
    return true;
}

// A file was not opened, and the system knows why: is it one, and does it let us read it? Only
// regular files are opened for that: others might make us wait.
inline error why_not_read(const std::string& path, const char* what_it_is_not) {
    struct stat found;
    std::string existing = path;
    if (!find_file(existing, found)) {
        const bool is_missing = errno == ENOENT || errno == ENOTDIR;
        return is_missing ? cannot_read(failure::no_such_file, path, "no such file")
                          : cannot_read(failure::cannot_open, path, "it cannot be opened");
    }
    if ((found.st_mode & S_IFMT) == S_IFDIR)
        return cannot_read(failure::cannot_open, path, "it is a directory");
    if ((found.st_mode & S_IFMT) != S_IFREG)
        return cannot_read(failure::cannot_open, path, "it is no file");
    std::FILE* const stream = std::fopen(existing.c_str(), "rb");
    if (stream == nullptr) {
        return cannot_read(failure::cannot_open, path,
                           errno == EACCES ? "permission denied" : "it cannot be opened");
    }
    std::fclose(stream);
    return cannot_read(failure::not_a_data_set, path, what_it_is_not);
}

// By a PgxOpenResult without a tree; source names the file or the bytes.
inline error why_no_data_set(const std::string& source, std::int32_t result) {
    switch (result) {
        case PGX_OPEN_CANNOT_OPEN:
            return cannot_read(failure::cannot_open, source, "it cannot be opened");
        case PGX_OPEN_READ_FAILED:
            return cannot_read(failure::read_failed, source, "reading failed");
        case PGX_OPEN_TOO_LARGE:
            return cannot_read(failure::cannot_open, source,
                               "it inflates to more than can be believed");
        case PGX_OPEN_NO_TEMPORARY:
            return cannot_read(failure::cannot_open, source, "there is no room to inflate it");
        case PGX_OPEN_NO_MEMORY:
            return cannot_read(failure::no_memory, source, "memory has run out");
        default:
            return cannot_read(failure::not_a_data_set, source, no_data_set);
    }
}

// The system knows best why it does not let a file be opened.
inline error why_not_opened(const std::string& path, std::int32_t result) {
    return result == PGX_OPEN_CANNOT_OPEN ? why_not_read(path, no_data_set)
                                          : why_no_data_set(path, result);
}

// A report to be filled in, with the options of another, which may be null.
inline PgxOpenReport new_report(const PgxOpenReport* options) {
    PgxOpenReport report = {};
    report.size = sizeof report;
    report.options = options != nullptr ? options->options : 0;
    return report;
}

}  // namespace detail
}  // namespace v1
}  // namespace pgkit

#if defined(_MSC_VER)
#pragma warning(pop)
#endif

#endif
