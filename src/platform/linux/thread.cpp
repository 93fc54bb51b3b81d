#include "platform/thread.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <new>

#include "platform/fault_points.h"

namespace ormidex::platform {
namespace {

// Gives way to threads of normal priority without starving.
constexpr int kBelowNormalNiceness = 5;

struct ThreadStart {
  ThreadEntry entry;
  void* argument;
  ThreadPriority priority;
};

void* RunThread(void* argument) {
  auto* heap_start = static_cast<ThreadStart*>(argument);
  const ThreadStart start = *heap_start;
  delete heap_start;
  if (start.priority == ThreadPriority::kBelowNormal) {
    // On Linux niceness belongs to the thread; id 0 names the calling one.
    setpriority(PRIO_PROCESS, 0, kBelowNormalNiceness);
  }
  start.entry(start.argument);
  return nullptr;
}

bool StartDetached(ThreadStart* start) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  const int result = pthread_create(&thread, &attributes, RunThread, start);
  pthread_attr_destroy(&attributes);
  return result == 0;
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
  if (!StartDetached(start)) {
    delete start;
    return false;
  }
  return true;
}

void SleepMilliseconds(std::uint32_t milliseconds) noexcept {
  if (milliseconds == 0) {
    sched_yield();
    return;
  }
  timespec left{static_cast<time_t>(milliseconds / 1000),
                static_cast<long>(milliseconds % 1000) * 1'000'000};
  while (nanosleep(&left, &left) != 0) {
  }
}

std::uint32_t CurrentProcessId() noexcept { return static_cast<std::uint32_t>(getpid()); }

}  // namespace ormidex::platform
