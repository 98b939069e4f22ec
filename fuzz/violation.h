// How a fuzz target says that a promise is broken; crashes, leaks and hangs speak for themselves.
#pragma once

#include <stdexcept>
#include <string>

namespace pgkit_fuzz {

class Violation : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

inline void Require(bool holds, const std::string& promise) {
    if (!holds) throw Violation(promise);
}

}  // namespace pgkit_fuzz
