#include "simulator/clock.h"

#include "platform/thread.h"
#include "platform/timer.h"

namespace ormidex::simulator {
namespace {

// What one look at the command channel costs: a cycle of the serial bus.
constexpr Microseconds kBusCycle = 125;

// Rounded up, because a wait that ends early would only be repeated. Long waits
// are cut: the caller looks again after each.
std::uint32_t MillisecondsUntil(Microseconds moment, Microseconds now) {
  if (moment <= now) return 0;
  const Microseconds rest = (moment - now + 999) / 1000;
  return rest > 60000 ? 60000 : static_cast<std::uint32_t>(rest);
}

}  // namespace

Microseconds RealClock::Now() { return platform::MonotonicMicroseconds(); }

void RealClock::WaitUntil(Microseconds due, platform::Event& wake) {
  const std::uint32_t milliseconds = MillisecondsUntil(due, Now());
  if (milliseconds != 0) wake.Wait(milliseconds);
}

void RealClock::WaitForWake(Microseconds deadline, platform::Event& wake) {
  WaitUntil(deadline, wake);
}

void FastClock::JumpTo(Microseconds moment) {
  Microseconds now = now_.load(std::memory_order_relaxed);
  while (now < moment && !now_.compare_exchange_weak(now, moment, std::memory_order_acq_rel)) {
  }
}

void FastClock::WaitUntil(Microseconds due, platform::Event& wake) {
  if (!wake.Wait(0)) JumpTo(due);
}

void FastClock::WaitForWake(Microseconds deadline, platform::Event& wake) {
  const std::uint32_t milliseconds = MillisecondsUntil(deadline, Now());
  if (!wake.Wait(milliseconds)) JumpTo(Now() + milliseconds * Microseconds{1000});
}

void FastClock::Polled() { now_.fetch_add(kBusCycle, std::memory_order_acq_rel); }

void VirtualClock::WaitUntil(Microseconds due, platform::Event& wake) {
  int place = -1;
  {
    platform::ScopedLock hold(lock_);
    if (Now() >= due) return;
    for (int i = 0; i < kMaxWaiters && place < 0; ++i) {
      if (waiters_[i] == nullptr) place = i;
    }
    if (place >= 0) waiters_[place] = &wake;
  }
  // Without a free place the caller looks again every millisecond.
  wake.Wait(place >= 0 ? platform::kWaitForever : 1);
  if (place < 0) return;
  platform::ScopedLock hold(lock_);
  waiters_[place] = nullptr;
}

void VirtualClock::WaitForWake(Microseconds deadline, platform::Event& wake) {
  WaitUntil(deadline, wake);
}

void VirtualClock::Advance(Microseconds duration) {
  platform::ScopedLock hold(lock_);
  now_.fetch_add(duration, std::memory_order_acq_rel);
  for (platform::Event* waiter : waiters_) {
    if (waiter != nullptr) waiter->Signal();
  }
}

int VirtualClock::Waiting() {
  platform::ScopedLock hold(lock_);
  int count = 0;
  for (const platform::Event* waiter : waiters_) count += waiter != nullptr;
  return count;
}

}  // namespace ormidex::simulator
