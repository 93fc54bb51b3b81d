// Makes the waiting of the API lock visible: a test's own function runs in place of
// each sleep between two looks at the lock.
#ifndef ORMIDEX_TESTS_FRAME_LOCK_POLL_H_
#define ORMIDEX_TESTS_FRAME_LOCK_POLL_H_

#include <functional>

#include "frame/api_lock.h"

namespace ormidex::testing {

// For tests in which one thread only waits at a time.
class LockPoll {
 public:
  explicit LockPoll(std::function<void(int poll)> action) {
    action_ = std::move(action);
    count_ = 0;
    frame::ReplaceLockPollForTesting([](std::uint32_t milliseconds) {
      milliseconds_ = milliseconds;
      action_(++count_);
    });
  }
  ~LockPoll() { frame::ReplaceLockPollForTesting(nullptr); }
  LockPoll(const LockPoll&) = delete;
  LockPoll& operator=(const LockPoll&) = delete;

  int count() const { return count_; }
  std::uint32_t milliseconds() const { return milliseconds_; }

 private:
  static inline std::function<void(int)> action_;
  static inline int count_ = 0;
  static inline std::uint32_t milliseconds_ = 0;
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_FRAME_LOCK_POLL_H_
