// Writing to a display that has gone away must not end the application.
#ifndef ORMIDEX_PLATFORM_LINUX_BROKEN_PIPE_GUARD_H_
#define ORMIDEX_PLATFORM_LINUX_BROKEN_PIPE_GUARD_H_

#include <pthread.h>
#include <signal.h>
#include <time.h>

namespace ormidex::platform {

// Keeps the broken-pipe signal from this thread for the object's lifetime; the
// write then fails by its result alone.
class BrokenPipeGuard {
 public:
  BrokenPipeGuard() {
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &Signal(), &former_mask_);
  }
  ~BrokenPipeGuard() {
    if (!was_pending_) {
      const timespec at_once{};
      sigtimedwait(&Signal(), nullptr, &at_once);
    }
    pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
  }
  BrokenPipeGuard(const BrokenPipeGuard&) = delete;
  BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

 private:
  static const sigset_t& Signal() {
    static const sigset_t signal = [] {
      sigset_t set;
      sigemptyset(&set);
      sigaddset(&set, SIGPIPE);
      return set;
    }();
    return signal;
  }
  sigset_t former_mask_;
  bool was_pending_ = false;
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_LINUX_BROKEN_PIPE_GUARD_H_
