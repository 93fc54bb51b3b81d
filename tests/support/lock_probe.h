// Says whether a lock is free, by taking it from another thread.
#ifndef ORMIDEX_TESTS_SUPPORT_LOCK_PROBE_H_
#define ORMIDEX_TESTS_SUPPORT_LOCK_PROBE_H_

#include <atomic>
#include <memory>

#include "platform/critical_section.h"
#include "platform/thread.h"

namespace ormidex::testing {

class LockProbe {
 public:
  explicit LockProbe(platform::CriticalSection& lock) : state_(std::make_shared<State>(lock)) {
    platform::StartThread(&LockProbe::Take, new std::shared_ptr<State>(state_));
  }
  // A thread that is still waiting waits for ever; only a failed test leaves one.
  ~LockProbe() {
    for (int i = 0; i < 10000 && !state_->done.load(); ++i) platform::SleepMilliseconds(1);
  }
  LockProbe(const LockProbe&) = delete;
  LockProbe& operator=(const LockProbe&) = delete;

  bool Taken() const { return state_->taken.load(); }
  bool TakenWithin(int milliseconds) const {
    for (; milliseconds > 0 && !Taken(); --milliseconds) platform::SleepMilliseconds(1);
    return Taken();
  }

 private:
  struct State {
    explicit State(platform::CriticalSection& section) : lock(section) {}
    platform::CriticalSection& lock;
    std::atomic<bool> taken{false};
    std::atomic<bool> done{false};
  };

  static void Take(void* argument) {
    auto* state = static_cast<std::shared_ptr<State>*>(argument);
    (*state)->lock.Enter();
    (*state)->taken.store(true);
    (*state)->lock.Leave();
    (*state)->done.store(true);
    delete state;
  }

  std::shared_ptr<State> state_;
};

// To be called by a thread that does not hold the lock.
inline bool IsFree(platform::CriticalSection& lock) { return LockProbe(lock).TakenWithin(10000); }

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_LOCK_PROBE_H_
