#include "progress_line.h"

#include <algorithm>
#include <cstdio>

#include "standard_streams.h"

namespace pgtool {

namespace {

constexpr std::chrono::milliseconds kInterval{100};
constexpr std::chrono::seconds kDelay{1};

}  // namespace

ProgressLine::ProgressLine() : isShown_(StandardErrorIsTerminal()), next_(Clock::now() + kDelay) {}

ProgressLine::~ProgressLine() {
    if (width_ != 0) Rewrite("");
}

void ProgressLine::Show(std::string_view text) {
    if (!isShown_) return;
    const Clock::time_point now = Clock::now();
    if (now < next_) return;
    next_ = now + kInterval;
    width_ = std::max(width_, text.size());
    Rewrite(text);
}

void ProgressLine::Rewrite(std::string_view text) const {
    std::fprintf(stderr, "\r%-*.*s\r", static_cast<int>(width_), static_cast<int>(text.size()),
                 text.data());
    std::fflush(stderr);
}

}  // namespace pgtool
