// A user who does not want to wait any longer.
#pragma once

namespace pgtool {

// While it lives, SIGINT and SIGTERM end nothing by themselves: work looks now and then whether one
// came, stops, and cleans up. A second one ends the program at once.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static bool Came();

    // Once all is cleaned up: ends the program as the signal would have done, if one came.
    static void Obey();

  private:
    using Handler = void (*)(int);

    Handler formerInterrupt_;
    Handler formerTerminate_;
};

}  // namespace pgtool
