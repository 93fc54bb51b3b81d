#include "platform/event.h"

#include <windows.h>

#include "platform/fault_points.h"
#include "platform/win32/event_timers.h"

namespace ormidex::platform {

static_assert(kWaitForever == INFINITE);

bool Event::Create(bool initially_signalled) noexcept {
  if (FaultDue(FaultPoint::kEventCreate)) {
    return false;
  }
  native_ = CreateEventA(nullptr, FALSE, initially_signalled ? TRUE : FALSE, nullptr);
  return native_ != nullptr;
}

void Event::Close() noexcept {
  if (native_ != nullptr) {
    KillTimersOf(native_);
    CloseHandle(native_);
    native_ = nullptr;
  }
}

void Event::Signal() noexcept {
  if (native_ != nullptr) {
    SetEvent(native_);
  }
}

bool Event::Wait(std::uint32_t timeout_ms) noexcept {
  return native_ != nullptr && WaitForSingleObject(native_, timeout_ms) == WAIT_OBJECT_0;
}

}  // namespace ormidex::platform
