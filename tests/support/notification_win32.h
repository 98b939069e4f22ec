// What GoogleTest makes of <mutex> and <condition_variable> elsewhere: this compiler's library has
// neither. Included before GoogleTest, which is told that it is there.
#pragma once

#ifdef __cplusplus
namespace testing {
namespace internal {

class Notification {
  public:
    Notification();
    ~Notification();
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    void Notify();
    void WaitForNotification();

  private:
    void* event_;
};

}  // namespace internal
}  // namespace testing
#endif
