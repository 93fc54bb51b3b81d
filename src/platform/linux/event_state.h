// The shared part of an event. A timer that is armed on an event holds a
// reference of its own, so the event's owner may close it first.
#ifndef ORMIDEX_PLATFORM_LINUX_EVENT_STATE_H_
#define ORMIDEX_PLATFORM_LINUX_EVENT_STATE_H_

#include <pthread.h>

#include <atomic>
#include <cstdint>

namespace ormidex::platform {

class EventState {
 public:
  // Returns an event with one reference, or null.
  static EventState* Create(bool initially_signalled) noexcept;

  void Retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void Release() noexcept;

  void Signal() noexcept;
  bool Wait(std::uint32_t timeout_ms) noexcept;

 private:
  explicit EventState(bool initially_signalled) noexcept;
  ~EventState();

  std::atomic<int> references_{1};
  pthread_mutex_t mutex_;
  pthread_cond_t changed_;
  bool signalled_;
};

// The monotonic clock's time `milliseconds` from now.
timespec MonotonicDeadline(std::uint32_t milliseconds) noexcept;

// Prepares a condition whose timed waits follow the monotonic clock, so that a
// change of the wall clock neither stretches nor cuts a wait.
void InitialiseMonotonicCondition(pthread_cond_t* condition) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_LINUX_EVENT_STATE_H_
