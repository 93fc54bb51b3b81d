#include "platform/event.h"

#include <pthread.h>
#include <time.h>

#include <new>

#include "platform/fault_points.h"
#include "platform/linux/event_state.h"

namespace ormidex::platform {

timespec MonotonicDeadline(std::uint32_t milliseconds) noexcept {
  constexpr long kNanosecondsPerSecond = 1'000'000'000;
  timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  time.tv_sec += milliseconds / 1000;
  time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
  if (time.tv_nsec >= kNanosecondsPerSecond) {
    time.tv_nsec -= kNanosecondsPerSecond;
    ++time.tv_sec;
  }
  return time;
}

void InitialiseMonotonicCondition(pthread_cond_t* condition) noexcept {
  pthread_condattr_t attributes;
  pthread_condattr_init(&attributes);
  pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
  pthread_cond_init(condition, &attributes);
  pthread_condattr_destroy(&attributes);
}

EventState* EventState::Create(bool initially_signalled) noexcept {
  return new (std::nothrow) EventState(initially_signalled);
}

EventState::EventState(bool initially_signalled) noexcept : signalled_(initially_signalled) {
  pthread_mutex_init(&mutex_, nullptr);
  InitialiseMonotonicCondition(&changed_);
}

EventState::~EventState() {
  pthread_cond_destroy(&changed_);
  pthread_mutex_destroy(&mutex_);
}

void EventState::Release() noexcept {
  if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    delete this;
  }
}

void EventState::Signal() noexcept {
  pthread_mutex_lock(&mutex_);
  signalled_ = true;
  pthread_cond_signal(&changed_);
  pthread_mutex_unlock(&mutex_);
}

bool EventState::Wait(std::uint32_t timeout_ms) noexcept {
  const timespec deadline = MonotonicDeadline(timeout_ms == kWaitForever ? 0 : timeout_ms);
  pthread_mutex_lock(&mutex_);
  int result = 0;
  while (!signalled_ && result == 0 && timeout_ms != 0) {
    result = timeout_ms == kWaitForever ? pthread_cond_wait(&changed_, &mutex_)
                                        : pthread_cond_timedwait(&changed_, &mutex_, &deadline);
  }
  const bool released = signalled_;
  signalled_ = false;
  pthread_mutex_unlock(&mutex_);
  return released;
}

bool Event::Create(bool initially_signalled) noexcept {
  if (FaultDue(FaultPoint::kEventCreate)) {
    return false;
  }
  native_ = EventState::Create(initially_signalled);
  return native_ != nullptr;
}

void Event::Close() noexcept {
  if (native_ != nullptr) {
    static_cast<EventState*>(native_)->Release();
    native_ = nullptr;
  }
}

void Event::Signal() noexcept {
  if (native_ != nullptr) {
    static_cast<EventState*>(native_)->Signal();
  }
}

bool Event::Wait(std::uint32_t timeout_ms) noexcept {
  if (native_ == nullptr) {
    return false;
  }
  // Like a system wait, this one outlives a Close by another thread.
  auto* state = static_cast<EventState*>(native_);
  state->Retain();
  const bool released = state->Wait(timeout_ms);
  state->Release();
  return released;
}

}  // namespace ormidex::platform
