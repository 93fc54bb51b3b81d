#include "frame/api_lock.h"

#include <atomic>

#include "platform/thread.h"

namespace ormidex::frame {

namespace {

constinit std::atomic<LockPollSleep> poll_sleep{&platform::SleepMilliseconds};

}  // namespace

ApiLock::ApiLock() noexcept { guard_.Initialise(); }

ApiLock::~ApiLock() { guard_.Delete(); }

bool ApiLock::TryShared() noexcept {
  const platform::ScopedLock lock(guard_);
  if (exclusive_pending_ != 0) return false;
  ++shared_count_;
  return true;
}

// A request that cannot be granted yet announces itself, so that no new shared
// holder enters before it.
bool ApiLock::TryExclusive() noexcept {
  const platform::ScopedLock lock(guard_);
  const bool granted = exclusive_free_ == 1 && shared_count_ == 0;
  if (granted) exclusive_free_ = 0;
  exclusive_pending_ = 1;
  return granted;
}

void ApiLock::Acquire(LockMode mode) noexcept {
  while (!(mode == LockMode::kShared ? TryShared() : TryExclusive())) {
    poll_sleep.load()(kLockPollMilliseconds);
  }
}

// The pending flag is cleared even when a second exclusive requester waits,
// deliberately: it raises the flag again at its next look, and until then shared
// requests may overtake it. An application that opens several cameras from
// several threads thus lets the calls on open cameras through in between.
void ApiLock::Release(LockMode mode) noexcept {
  const platform::ScopedLock lock(guard_);
  if (mode == LockMode::kShared) {
    --shared_count_;
    return;
  }
  exclusive_free_ = 1;
  exclusive_pending_ = 0;
}

ApiLock::State ApiLock::Inspect() noexcept {
  const platform::ScopedLock lock(guard_);
  return {exclusive_pending_, exclusive_free_, shared_count_};
}

namespace {

ApiLock process_lock;

}  // namespace

ApiLock& ProcessApiLock() noexcept { return process_lock; }

void ReplaceLockPollForTesting(LockPollSleep sleep) noexcept {
  poll_sleep.store(sleep != nullptr ? sleep : &platform::SleepMilliseconds);
}

}  // namespace ormidex::frame
