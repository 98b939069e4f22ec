// Lets operator new fail, at the allocation that a test chooses, and counts what is still in use.
// Linked into one program, it replaces that program's operators.
#pragma once

#include <cstddef>

namespace pgkit_test {

// While it lives, the allocations after the first `allowed` ones throw or give null.
class FailingNew {
  public:
    explicit FailingNew(size_t allowed);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
};

// Blocks that new has given and delete has not taken back.
size_t BlocksInUse();

}  // namespace pgkit_test
