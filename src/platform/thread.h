// Threads that run on their own until their entry returns; nobody joins them.
#ifndef ORMIDEX_PLATFORM_THREAD_H_
#define ORMIDEX_PLATFORM_THREAD_H_

#include <cstdint>

namespace ormidex::platform {

using ThreadEntry = void (*)(void* argument);
enum class ThreadPriority { kNormal, kBelowNormal };

// Starts a detached thread with the default stack. False when the system
// refuses; the entry then never runs.
bool StartThread(ThreadEntry entry, void* argument,
                 ThreadPriority priority = ThreadPriority::kNormal) noexcept;

// 0 gives the rest of the time slice away.
void SleepMilliseconds(std::uint32_t milliseconds) noexcept;

std::uint32_t CurrentProcessId() noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_THREAD_H_
