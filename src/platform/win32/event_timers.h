// Timers that are armed on an event which is about to be closed.
#ifndef ORMIDEX_PLATFORM_WIN32_EVENT_TIMERS_H_
#define ORMIDEX_PLATFORM_WIN32_EVENT_TIMERS_H_

namespace ormidex::platform {

// Gives the timers armed on an event's handle back to the system, which grants a
// process 16 of them. Without this a process could make no more than 16 timed
// transfers in the time that one of their timers takes to expire.
void KillTimersOf(void* event) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_WIN32_EVENT_TIMERS_H_
