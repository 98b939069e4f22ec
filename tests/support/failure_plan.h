// Which of the calls that can fail do so.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgkit_test {

enum class Failures {
    OneCall,     // one call fails, the next one succeeds again
    AllFurther,  // nothing succeeds any more
};

// While it is armed, calls fail after the first `allowed` ones.
class FailurePlan {
  public:
    void Arm(size_t allowed, Failures failures) {
        allowed_ = allowed;
        failures_ = failures;
        failed_ = 0;
        isArmed_ = true;
    }
    void Disarm() { isArmed_ = false; }

    // Asked by every call that can fail.
    bool Fails() {
        if (!isArmed_) return false;
        if (allowed_ > 0) {
            --allowed_;
            return false;
        }
        if (failures_ == Failures::OneCall && failed_ > 0) return false;
        ++failed_;
        return true;
    }

    bool HasFailed() const { return failed_ > 0; }

  private:
    bool isArmed_ = false;
    size_t allowed_ = 0;
    Failures failures_ = Failures::AllFurther;
    size_t failed_ = 0;
};

}  // namespace pgkit_test
