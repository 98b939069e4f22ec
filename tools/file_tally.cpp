#include "file_tally.h"

#include <cstdio>

#include "pgkit/dicomdir_creation.h"
#include "pgkit/paths.h"
#include "utf8_text.h"

namespace pgtool {

void FileTally::Count(const std::string& path, uint32_t code) {
    summary_.Count(code);
    if (code == PG_ACCEPTED) ++accepted_;
    progress_.Show(std::to_string(summary_.Files()) + " files");
    const bool isOwn = path == "dcmdir.lst" || path == "DICOMDIR";
    if (code != PG_ACCEPTED && !isOwn) ++refused_;
    if (code != PG_ACCEPTED || pgxIsFileId(path.c_str()) != 0) return;
    if (oddNames_++ == 0) firstOddName_ = path;
}

void FileTally::Print(const Command& command) const {
    summary_.Print();
    if (oddNames_ == 0) return;
    std::fflush(stdout);
    std::fprintf(stderr,
                 "pgtool %s: warning: %u of the names are no File IDs (up to 8 components of 8 "
                 "characters A-Z, 0-9, _), such as %s\n",
                 command.name, oddNames_, WithEscapes(firstOddName_).c_str());
}

}  // namespace pgtool
