#include "platform/timer.h"

#include <pthread.h>
#include <time.h>

#include <new>

#include "platform/event.h"
#include "platform/fault_points.h"
#include "platform/linux/event_state.h"

namespace ormidex::platform {
namespace {

std::uint64_t MonotonicNanoseconds() {
  timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000u +
         static_cast<std::uint64_t>(time.tv_nsec);
}

constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;

struct Timer {
  Timer* next = nullptr;
  TimerId id = 0;
  std::uint64_t due = 0;     // monotonic nanoseconds
  std::uint64_t period = 0;  // nanoseconds; 0 for a timer that expires once
  EventState* event = nullptr;
  TimerCallback callback = nullptr;
  void* user = nullptr;
};

// All timers of the process share one thread, as they do with the multimedia
// timers of Windows. It starts with the first timer and then stays.
class TimerService {
 public:
  static TimerService* Instance() noexcept;

  TimerId Add(Timer* timer) noexcept;
  void StopPeriodic(TimerId id) noexcept;

 private:
  TimerService() noexcept {
    pthread_mutex_init(&mutex_, nullptr);
    InitialiseMonotonicCondition(&list_changed_);
    InitialiseMonotonicCondition(&callback_ended_);
  }

  bool StartOwnThread();
  void Run();
  Timer* Earliest() const;
  void WaitForWork(const Timer* earliest);
  void Expire(Timer* timer);
  void RunCallback(Timer* timer);
  Timer* Unlink(TimerId id);

  pthread_mutex_t mutex_;
  pthread_cond_t list_changed_;
  pthread_cond_t callback_ended_;
  Timer* timers_ = nullptr;
  TimerId last_id_ = 0;
  TimerId running_id_ = 0;  // the timer whose callback runs now
  pthread_t thread_{};
  bool thread_started_ = false;
};

// Never destroyed: its thread may be running until the process has ended.
TimerService* TimerService::Instance() noexcept {
  static TimerService* const service = new (std::nothrow) TimerService;
  return service;
}

// Not through StartThread: on Windows this thread is the system's, so a planned
// refusal of the library's own threads must not meet it.
bool TimerService::StartOwnThread() {
  const auto entry = [](void* self) -> void* {
    static_cast<TimerService*>(self)->Run();
    return nullptr;
  };
  if (pthread_create(&thread_, nullptr, entry, this) != 0) {
    return false;
  }
  pthread_detach(thread_);
  return true;
}

TimerId TimerService::Add(Timer* timer) noexcept {
  pthread_mutex_lock(&mutex_);
  thread_started_ = thread_started_ || StartOwnThread();
  TimerId id = 0;
  if (thread_started_) {
    id = timer->id = ++last_id_;
    timer->next = timers_;
    timers_ = timer;
    pthread_cond_signal(&list_changed_);
  }
  pthread_mutex_unlock(&mutex_);
  return id;
}

Timer* TimerService::Unlink(TimerId id) {
  for (Timer** link = &timers_; *link != nullptr; link = &(*link)->next) {
    if ((*link)->id == id) {
      Timer* timer = *link;
      *link = timer->next;
      return timer;
    }
  }
  return nullptr;
}

void TimerService::StopPeriodic(TimerId id) noexcept {
  pthread_mutex_lock(&mutex_);
  Timer* timer = Unlink(id);
  // A callback may stop its own timer, and cannot wait for itself.
  while (running_id_ == id && !pthread_equal(thread_, pthread_self())) {
    pthread_cond_wait(&callback_ended_, &mutex_);
  }
  pthread_mutex_unlock(&mutex_);
  delete timer;
}

Timer* TimerService::Earliest() const {
  Timer* earliest = timers_;
  for (Timer* timer = timers_; timer != nullptr; timer = timer->next) {
    if (timer->due < earliest->due) {
      earliest = timer;
    }
  }
  return earliest;
}

void TimerService::WaitForWork(const Timer* earliest) {
  if (earliest == nullptr) {
    pthread_cond_wait(&list_changed_, &mutex_);
    return;
  }
  const timespec due{static_cast<time_t>(earliest->due / 1'000'000'000u),
                     static_cast<long>(earliest->due % 1'000'000'000u)};
  pthread_cond_timedwait(&list_changed_, &mutex_, &due);
}

void TimerService::Run() {
  pthread_mutex_lock(&mutex_);
  for (;;) {
    Timer* earliest = Earliest();
    if (earliest != nullptr && earliest->due <= MonotonicNanoseconds()) {
      Expire(earliest);
    } else {
      WaitForWork(earliest);
    }
  }
}

void TimerService::Expire(Timer* timer) {
  if (timer->period != 0) {
    RunCallback(timer);
    return;
  }
  Unlink(timer->id);
  timer->event->Signal();
  timer->event->Release();
  delete timer;
}

void TimerService::RunCallback(Timer* timer) {
  // Periods that were missed altogether are skipped rather than made up for.
  const std::uint64_t now = MonotonicNanoseconds();
  timer->due += timer->period * ((now - timer->due) / timer->period + 1);
  const TimerCallback callback = timer->callback;
  void* const user = timer->user;
  running_id_ = timer->id;
  pthread_mutex_unlock(&mutex_);
  callback(user);  // the timer may be gone afterwards
  pthread_mutex_lock(&mutex_);
  running_id_ = 0;
  pthread_cond_broadcast(&callback_ended_);
}

TimerId AddTimer(const Timer& description) noexcept {
  TimerService* service = TimerService::Instance();
  auto* timer = new (std::nothrow) Timer(description);
  if (service == nullptr || timer == nullptr) {
    delete timer;
    return 0;
  }
  const TimerId id = service->Add(timer);
  if (id == 0) {
    delete timer;
  }
  return id;
}

}  // namespace

std::uint32_t TickMilliseconds() noexcept {
  return static_cast<std::uint32_t>(MonotonicNanoseconds() / kNanosecondsPerMillisecond);
}

std::uint64_t MonotonicMicroseconds() noexcept { return MonotonicNanoseconds() / 1000; }

bool ArmOneShotTimer(Event& event, std::uint32_t delay_ms,
                     std::uint32_t /*resolution_ms*/) noexcept {
  if (!event.Exists() || FaultDue(FaultPoint::kTimerStart)) {
    return false;
  }
  auto* state = static_cast<EventState*>(event.native_);
  state->Retain();
  Timer timer;
  timer.due = MonotonicNanoseconds() + delay_ms * kNanosecondsPerMillisecond;
  timer.event = state;
  if (AddTimer(timer) == 0) {
    state->Release();
    return false;
  }
  return true;
}

TimerId StartPeriodicTimer(std::uint32_t period_ms, TimerCallback callback, void* user) noexcept {
  if (period_ms == 0 || FaultDue(FaultPoint::kTimerStart)) {
    return 0;
  }
  Timer timer;
  timer.period = period_ms * kNanosecondsPerMillisecond;
  timer.due = MonotonicNanoseconds() + timer.period;
  timer.callback = callback;
  timer.user = user;
  return AddTimer(timer);
}

void StopPeriodicTimer(TimerId timer) noexcept {
  TimerService* service = TimerService::Instance();
  if (timer != 0 && service != nullptr) {
    service->StopPeriodic(timer);
  }
}

// The kernel's timers are precise enough without being asked.
void BeginFineTimerResolution() noexcept {}
void EndFineTimerResolution() noexcept {}

}  // namespace ormidex::platform
