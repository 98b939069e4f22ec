// pgtool documentation: its manual page and the completions of shells.
#include <cstdio>
#include <memory>

#include "commands.h"
#include "help.h"

namespace pgtool {

namespace {

Work DefineDocumentation(OptionSet& options) {
    const auto formats = std::make_shared<Arguments>();
    options.Operands(formats.get(), 1, 1, "man, bash or zsh is expected");
    return [formats]() -> int {
        const std::string text = Documentation(formats->front());
        if (text.empty()) return Misuse(kDocumentationCommand, "man, bash or zsh is expected");
        std::fputs(text.c_str(), stdout);
        return kDone;
    };
}

}  // namespace

const Command kDocumentationCommand = {
    "documentation", "documentation man|bash|zsh",
    "print the manual page, or what completes commands in a shell",
    "Prints the manual page (for man -l), or the completion of commands and options for bash or\n"
    "zsh. An installation has all three in their places.\n",
    DefineDocumentation};

}  // namespace pgtool
