// pgtool dump: a data set as text.
#include <cstdio>

#include "command.h"
#include "data_set.h"
#include "options.h"

namespace pgtool {

namespace {

// Values above it are read one by one when they are printed, which costs a seek each.
constexpr uint32_t kDefaultLoadLimit = 4096;

int Dump(const Arguments& arguments) {
    uint32_t loadLimit = kDefaultLoadLimit;
    uint32_t flags = 0;
    Arguments files;
    const std::string complaint =
        ParseOptions(arguments, {{"--load-limit", &loadLimit}, {"--flags", &flags}}, &files);
    if (!complaint.empty()) return Misuse(kDumpCommand, complaint);
    if (files.size() != 1) return Misuse(kDumpCommand, "exactly one file is expected");

    const DataSet root(pgOpenDataSetFileEx(files[0].c_str(), loadLimit, flags));
    if (root == nullptr) return Fail(kDumpCommand, CannotOpen(files[0]));
    root->Dump(stdout, "");
    return kDone;
}

}  // namespace

const Command kDumpCommand = {
    "dump", "dump FILE [--load-limit N] [--flags N]",
    "print a data set as text, a line per element",
    "  --load-limit N  load values shorter than N bytes while opening; the others are\n"
    "                  read when they are printed, so the text is the same (default 4096)\n"
    "  --flags N       open flags, a sum of\n"
    "                    0x01  leave the fragments of encapsulated pixel data unindexed\n"
    "                    0x08  explicit VR      0x10  implicit VR\n"
    "                    0x20  little endian    0x40  big endian\n"
    "                          (these four only for a file without meta information)\n"
    "                    0x200 items of UN sequences keep the surrounding encoding\n"
    "                    0x400 items of UN sequences are inspected for it\n"
    "Numbers are decimal, or hexadecimal behind 0x.\n",
    Dump};

}  // namespace pgtool
