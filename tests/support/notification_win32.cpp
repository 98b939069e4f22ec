#include "support/notification_win32.h"

#include <windows.h>

namespace testing {
namespace internal {

// Stays notified.
Notification::Notification() : event_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

Notification::~Notification() { CloseHandle(event_); }

void Notification::Notify() { SetEvent(event_); }

void Notification::WaitForNotification() { WaitForSingleObject(event_, INFINITE); }

}  // namespace internal
}  // namespace testing
