// A line on the terminal that tells how far a command is.
#pragma once

#include <chrono>
#include <string_view>

namespace pgtool {

// Shows nothing where nobody looks, nor in the first second. The cursor stays at the beginning of
// the line: what anybody else prints to the standard error stream overwrites it. In the end the
// line is cleared.
class ProgressLine {
  public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Texts that come soon after another are left out.
    void Show(std::string_view text);

  private:
    using Clock = std::chrono::steady_clock;

    void Rewrite(std::string_view text) const;

    bool isShown_;
    Clock::time_point next_;
    size_t width_ = 0;  // of the longest text so far
};

}  // namespace pgtool
