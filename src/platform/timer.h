// Clocks and timers.
#ifndef ORMIDEX_PLATFORM_TIMER_H_
#define ORMIDEX_PLATFORM_TIMER_H_

#include <cstdint>

#include "platform/event.h"

namespace ormidex::platform {

// Milliseconds since some moment before the process began; wraps after 49.7 days.
std::uint32_t TickMilliseconds() noexcept;

// Microseconds on a clock that never goes back, for measuring durations.
std::uint64_t MonotonicMicroseconds() noexcept;

// Signals the event once, delay_ms from now. It cannot be cancelled; closing the
// event meanwhile is allowed.
bool ArmOneShotTimer(Event& event, std::uint32_t delay_ms, std::uint32_t resolution_ms) noexcept;

// Calls back on a thread of the system's own every period_ms until stopped.
// Returns 0 when the timer could not be started.
using TimerId = std::uintptr_t;
using TimerCallback = void (*)(void* user);
TimerId StartPeriodicTimer(std::uint32_t period_ms, TimerCallback callback, void* user) noexcept;
// After it returns the callback is not running and does not run again.
void StopPeriodicTimer(TimerId timer) noexcept;

// Asks for, and gives back, the system's finest timer resolution.
void BeginFineTimerResolution() noexcept;
void EndFineTimerResolution() noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_TIMER_H_
