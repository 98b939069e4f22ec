// A number that is handed out once: also to threads that ask at the same time, since what they make
// of it must differ.
#pragma once

#include <atomic>

namespace pgkit {

// Counts from a first to a last value, and then again from the first.
class Counter {
  public:
    constexpr Counter(int first, int last) : first_(first), last_(last), next_(first) {}

    int Next() {
        int number = next_.load(std::memory_order_relaxed);
        while (!next_.compare_exchange_weak(number, number == last_ ? first_ : number + 1,
                                            std::memory_order_relaxed)) {
        }
        return number;
    }

  private:
    int first_;
    int last_;
    std::atomic<int> next_;
};

}  // namespace pgkit
