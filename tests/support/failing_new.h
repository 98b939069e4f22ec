// Lets memory run out, at the allocation that a test chooses, and counts what is still in use.
// Linked into one program, it replaces that program's operators new and delete, and stands in front
// of the C library's allocation functions for whoever calls them from the program.
#pragma once

#include <cstddef>

#include "support/failure_plan.h"

namespace pgkit_test {

// While it lives, the allocations after the first `allowed` ones throw or give null.
class FailingNew {
  public:
    explicit FailingNew(size_t allowed, Failures failures = Failures::AllFurther);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    // Whether an allocation was refused, up to now.
    bool HasFailed() const;
};

// While it lives, the C library's allocation functions give nothing larger than this.
class LittleMemory {
  public:
    explicit LittleMemory(size_t largest);
    ~LittleMemory();
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;
};

// Blocks that new has given and delete has not taken back.
size_t BlocksInUse();

}  // namespace pgkit_test
