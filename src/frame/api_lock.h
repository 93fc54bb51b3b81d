// The process-wide lock that every exported function holds around its work.
//
// Opening, closing and counting cameras hold it exclusively, all other functions
// share it. Writers are preferred, there is no fairness and no time-out, and a
// thread that acquires it again while an exclusive request is involved waits for
// itself forever. The library's own threads never take it.
#ifndef ORMIDEX_FRAME_API_LOCK_H_
#define ORMIDEX_FRAME_API_LOCK_H_

#include <cstdint>

#include "platform/critical_section.h"

namespace ormidex::frame {

enum class LockMode : std::uint32_t { kShared = 0, kExclusive = 1 };

// A waiting call looks again this often, deliberately coarse: the library's
// timescale is that of frames, and an uncontended call never waits.
inline constexpr std::uint32_t kLockPollMilliseconds = 50;

class ApiLock {
 public:
  ApiLock() noexcept;
  virtual ~ApiLock();
  ApiLock(const ApiLock&) = delete;
  ApiLock& operator=(const ApiLock&) = delete;

  // Blocks until granted.
  void Acquire(LockMode mode) noexcept;
  // The mode must be the one that was acquired.
  void Release(LockMode mode) noexcept;

  struct State {
    std::uint32_t exclusive_pending;
    std::uint32_t exclusive_free;
    std::int32_t shared_count;
    bool operator==(const State&) const = default;
  };
  State Inspect() noexcept;

 private:
  bool TryShared() noexcept;
  bool TryExclusive() noexcept;

  // 1 while an exclusive holder owns the lock or a requester waits for it; holds
  // off new shared holders.
  std::uint32_t exclusive_pending_ = 0;
  std::uint32_t exclusive_free_ = 1;
  std::int32_t shared_count_ = 0;
  platform::CriticalSection guard_;  // never held while sleeping
};

// The lock of the process, from load to unload.
ApiLock& ProcessApiLock() noexcept;

// Holds a lock for a scope.
class ApiLockHold {
 public:
  ApiLockHold(ApiLock& lock, LockMode mode) noexcept : lock_(lock), mode_(mode) {
    lock_.Acquire(mode_);
  }
  ~ApiLockHold() { lock_.Release(mode_); }
  ApiLockHold(const ApiLockHold&) = delete;
  ApiLockHold& operator=(const ApiLockHold&) = delete;

 private:
  ApiLock& lock_;
  LockMode mode_;
};

// Tests: called in place of the sleep between two looks; null restores the sleep.
using LockPollSleep = void (*)(std::uint32_t milliseconds);
void ReplaceLockPollForTesting(LockPollSleep sleep) noexcept;

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_API_LOCK_H_
