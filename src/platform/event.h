// An auto-reset event: a signal releases one waiter, or the next one to come.
// Signals do not add up.
#ifndef ORMIDEX_PLATFORM_EVENT_H_
#define ORMIDEX_PLATFORM_EVENT_H_

#include <cstdint>

namespace ormidex::platform {

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFFu;

// Create and Close are explicit: the order in which events go is behaviour.
class Event {
 public:
  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  // Returns false when the system refuses.
  bool Create(bool initially_signalled) noexcept;
  // Closing an event that was never created does nothing. A timer that is still
  // armed on the event may expire later without harm.
  void Close() noexcept;
  bool Exists() const { return native_ != nullptr; }

  void Signal() noexcept;
  // True when the event was signalled (and is now reset), false after the
  // time-out. 0 tests without waiting. False at once if it was never created.
  bool Wait(std::uint32_t timeout_ms) noexcept;

 private:
  friend bool ArmOneShotTimer(Event& event, std::uint32_t delay_ms,
                              std::uint32_t resolution_ms) noexcept;
  void* native_ = nullptr;
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_EVENT_H_
