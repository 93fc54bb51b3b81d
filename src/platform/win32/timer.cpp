#include "platform/timer.h"

#include <windows.h>
// After windows.h, whose types it uses.
#include <mmsystem.h>

#include <atomic>
#include <new>

#include "platform/critical_section.h"
#include "platform/event.h"
#include "platform/fault_points.h"
#include "platform/win32/event_timers.h"

namespace ormidex::platform {
namespace {

// A lock that exists as soon as the library is loaded; held for a few
// instructions only.
class SpinLock {
 public:
  void Enter() noexcept {
    while (flag_.test_and_set(std::memory_order_acquire)) {
      Sleep(0);
    }
  }
  void Leave() noexcept { flag_.clear(std::memory_order_release); }

 private:
  std::atomic_flag flag_;
};

// The system sets the event itself, so no code of the library is called when a
// timer expires after the library was unloaded. It knows the event by a handle of
// the timer's own: the owner's may be closed, and its number given to something
// else, before the timer expires. These handles are closed at a later arming.
struct TimerHandle {
  TimerHandle* next;
  HANDLE owner;  // the event's own handle; null once that is closed
  HANDLE event;
  MMRESULT system_timer;
  std::uint32_t due_tick;
  std::uint32_t safe_tick;  // from then on the system does not use the handle
};

constinit SpinLock timer_handles_lock;
constinit TimerHandle* timer_handles = nullptr;
// How much later than planned the system may still be signalling.
constexpr std::uint32_t kExpiryGraceMs = 2000;
constexpr std::uint32_t kKillGraceMs = 200;
// Timers this close to their time are left to expire: the system may already have
// given the timer's number to another.
constexpr std::uint32_t kTooLateToKillMs = 150;

bool HasPassed(std::uint32_t tick, std::uint32_t now) {
  return static_cast<std::int32_t>(now - tick) >= 0;
}

void CloseExpiredHandles() {
  const std::uint32_t now = TickMilliseconds();
  timer_handles_lock.Enter();
  for (TimerHandle** link = &timer_handles; *link != nullptr;) {
    TimerHandle* entry = *link;
    if (HasPassed(entry->safe_tick, now)) {
      *link = entry->next;
      CloseHandle(entry->event);
      delete entry;
    } else {
      link = &entry->next;
    }
  }
  timer_handles_lock.Leave();
}

void KeepUntilExpired(TimerHandle* entry) {
  timer_handles_lock.Enter();
  entry->next = timer_handles;
  timer_handles = entry;
  timer_handles_lock.Leave();
}

// Takes one timer that is still to come away from an event. 0 when there is none.
MMRESULT DisownTimer(HANDLE owner, std::uint32_t now) {
  MMRESULT system_timer = 0;
  timer_handles_lock.Enter();
  for (TimerHandle* entry = timer_handles; entry != nullptr && system_timer == 0;
       entry = entry->next) {
    if (entry->owner != owner) continue;
    entry->owner = nullptr;
    if (HasPassed(entry->due_tick - kTooLateToKillMs, now)) continue;
    system_timer = entry->system_timer;
    entry->safe_tick = now + kKillGraceMs;
  }
  timer_handles_lock.Leave();
  return system_timer;
}

HANDLE Duplicate(HANDLE event) {
  HANDLE copy = nullptr;
  const HANDLE process = GetCurrentProcess();
  const BOOL done =
      DuplicateHandle(process, event, process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
  return done ? copy : nullptr;
}

// Periodic timers. The system's timer thread may still be on its way into the
// callback when the timer is killed, so it gets a ticket (slot and generation)
// instead of a pointer, and slots are never freed.
struct PeriodicSlot {
  CriticalSection section;  // held while the callback runs
  bool in_use = false;
  std::uint32_t generation = 0;
  TimerCallback callback = nullptr;
  void* user = nullptr;
  MMRESULT system_timer = 0;
};

// More than the system itself grants a process.
constexpr std::uint32_t kPeriodicSlots = 64;

struct PeriodicSlots {
  PeriodicSlots() noexcept {
    for (PeriodicSlot& slot : slots) {
      slot.section.Initialise();
    }
  }
  PeriodicSlot slots[kPeriodicSlots];
};

PeriodicSlot& Slot(std::uint32_t index) {
  static PeriodicSlots table;
  return table.slots[index];
}

std::uint32_t Ticket(std::uint32_t index, const PeriodicSlot& slot) {
  return (slot.generation * kPeriodicSlots) + index;
}

// Locks the slot of a ticket; null when its timer has been stopped.
class LockedSlot {
 public:
  explicit LockedSlot(std::uint32_t ticket)
      : slot_(Slot(ticket % kPeriodicSlots)), lock_(slot_.section) {
    current_ = slot_.in_use && Ticket(ticket % kPeriodicSlots, slot_) == ticket;
  }
  PeriodicSlot* Get() const { return current_ ? &slot_ : nullptr; }

 private:
  PeriodicSlot& slot_;
  ScopedLock lock_;
  bool current_;
};

__attribute__((force_align_arg_pointer)) void CALLBACK OnPeriod(UINT, UINT, DWORD_PTR ticket,
                                                                DWORD_PTR, DWORD_PTR) {
  const LockedSlot locked(static_cast<std::uint32_t>(ticket));
  if (const PeriodicSlot* slot = locked.Get()) {
    slot->callback(slot->user);
  }
}

// Claims a slot, or gives null. Tickets are never 0, which means "no timer".
PeriodicSlot* ClaimSlot(std::uint32_t* ticket) {
  for (std::uint32_t index = 0; index < kPeriodicSlots; ++index) {
    PeriodicSlot& slot = Slot(index);
    const ScopedLock lock(slot.section);
    if (!slot.in_use) {
      slot.in_use = true;
      ++slot.generation;
      *ticket = Ticket(index, slot);
      return &slot;
    }
  }
  return nullptr;
}

}  // namespace

std::uint32_t TickMilliseconds() noexcept { return timeGetTime(); }

std::uint64_t MonotonicMicroseconds() noexcept {
  LARGE_INTEGER frequency;
  LARGE_INTEGER count;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&count);
  const auto ticks = static_cast<std::uint64_t>(count.QuadPart);
  const auto per_second = static_cast<std::uint64_t>(frequency.QuadPart);
  // Seconds apart, so that the product cannot overflow.
  return ticks / per_second * 1'000'000u + ticks % per_second * 1'000'000u / per_second;
}

void KillTimersOf(void* event) noexcept {
  const std::uint32_t now = TickMilliseconds();
  while (const MMRESULT system_timer = DisownTimer(event, now)) {
    timeKillEvent(system_timer);
  }
}

bool ArmOneShotTimer(Event& event, std::uint32_t delay_ms, std::uint32_t resolution_ms) noexcept {
  if (!event.Exists() || FaultDue(FaultPoint::kTimerStart)) {
    return false;
  }
  CloseExpiredHandles();
  const HANDLE copy = Duplicate(event.native_);
  const std::uint32_t due = TickMilliseconds() + delay_ms;
  auto* entry =
      new (std::nothrow) TimerHandle{nullptr, event.native_, copy, 0, due, due + kExpiryGraceMs};
  if (copy != nullptr && entry != nullptr) {
    entry->system_timer =
        timeSetEvent(delay_ms, resolution_ms, reinterpret_cast<LPTIMECALLBACK>(copy), 0,
                     TIME_ONESHOT | TIME_CALLBACK_EVENT_SET);
    if (entry->system_timer != 0) {
      KeepUntilExpired(entry);
      return true;
    }
  }
  if (copy != nullptr) {
    CloseHandle(copy);
  }
  delete entry;
  return false;
}

TimerId StartPeriodicTimer(std::uint32_t period_ms, TimerCallback callback, void* user) noexcept {
  std::uint32_t ticket = 0;
  if (period_ms == 0 || FaultDue(FaultPoint::kTimerStart)) {
    return 0;
  }
  PeriodicSlot* slot = ClaimSlot(&ticket);
  if (slot == nullptr) {
    return 0;
  }
  const ScopedLock lock(slot->section);
  slot->callback = callback;
  slot->user = user;
  slot->system_timer =
      timeSetEvent(period_ms, 0, OnPeriod, ticket, TIME_PERIODIC | TIME_CALLBACK_FUNCTION);
  if (slot->system_timer == 0) {
    slot->in_use = false;
    return 0;
  }
  return ticket;
}

void StopPeriodicTimer(TimerId timer) noexcept {
  if (timer == 0) {
    return;
  }
  MMRESULT system_timer = 0;
  {
    const LockedSlot locked(timer);
    PeriodicSlot* slot = locked.Get();
    if (slot == nullptr) {
      return;
    }
    slot->in_use = false;
    system_timer = slot->system_timer;
  }
  // Without the lock: the system may wait here for a callback on its way, which
  // then finds its ticket out of date.
  timeKillEvent(system_timer);
}

// The finest period that the multimedia timers of these systems grant.
constexpr UINT kFinestPeriodMs = 1;

void BeginFineTimerResolution() noexcept { timeBeginPeriod(kFinestPeriodMs); }
void EndFineTimerResolution() noexcept { timeEndPeriod(kFinestPeriodMs); }

}  // namespace ormidex::platform
