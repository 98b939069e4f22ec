// The current edition for the length of a scope.
#pragma once

#include <pgkit/edition.h>

namespace pgkit_test {

class CurrentEdition {
  public:
    CurrentEdition() : former_(pgxUseEdition(PGX_EDITION_CURRENT)) {}
    ~CurrentEdition() { pgxUseEdition(former_); }
    CurrentEdition(const CurrentEdition&) = delete;
    CurrentEdition& operator=(const CurrentEdition&) = delete;

  private:
    int32_t former_;
};

}  // namespace pgkit_test
