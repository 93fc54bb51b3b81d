#include "platform/thread.h"

#include <process.h>
#include <windows.h>

#include <new>

#include "platform/fault_points.h"

namespace ormidex::platform {
namespace {

struct ThreadStart {
  ThreadEntry entry;
  void* argument;
  ThreadPriority priority;
};

// The system promises a thread's stack 4-byte alignment only; the compiler's code
// wants 16.
__attribute__((force_align_arg_pointer)) void __cdecl RunThread(void* argument) {
  auto* heap_start = static_cast<ThreadStart*>(argument);
  const ThreadStart start = *heap_start;
  delete heap_start;
  if (start.priority == ThreadPriority::kBelowNormal) {
    // Here and not at the starter, whose handle is invalid once a short-lived
    // thread has ended.
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
  }
  start.entry(start.argument);
}

}  // namespace

bool StartThread(ThreadEntry entry, void* argument, ThreadPriority priority) noexcept {
  if (FaultDue(FaultPoint::kThreadStart)) {
    return false;
  }
  auto* start = new (std::nothrow) ThreadStart{entry, argument, priority};
  if (start == nullptr) {
    return false;
  }
  constexpr unsigned kDefaultStack = 0;
  if (_beginthread(RunThread, kDefaultStack, start) == static_cast<std::uintptr_t>(-1)) {
    delete start;
    return false;
  }
  return true;
}

void SleepMilliseconds(std::uint32_t milliseconds) noexcept { Sleep(milliseconds); }

std::uint32_t CurrentProcessId() noexcept { return GetCurrentProcessId(); }

}  // namespace ormidex::platform
