// Threads for tests that are built for both systems.
#ifndef ORMIDEX_TESTS_CAPTURE_THREADS_H_
#define ORMIDEX_TESTS_CAPTURE_THREADS_H_

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "platform/thread.h"

namespace ormidex::testing {

inline bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 20000) {
  for (int waited = 0; waited < milliseconds; ++waited) {
    if (condition()) return true;
    platform::SleepMilliseconds(1);
  }
  return condition();
}

// Threads that run one function each; the destructor waits for all of them.
class Threads {
 public:
  ~Threads() { Join(1 << 30); }

  void Start(std::function<void()> work) {
    auto* task = new Task{std::move(work), running_};
    running_->fetch_add(1);
    if (!platform::StartThread(Run, task)) {
      running_->fetch_sub(1);
      delete task;
    }
  }
  bool Join(int milliseconds = 20000) {
    return WaitUntil([this] { return running_->load() == 0; }, milliseconds);
  }

 private:
  struct Task {
    std::function<void()> work;
    std::shared_ptr<std::atomic<int>> running;
  };
  static void Run(void* argument) {
    std::unique_ptr<Task> task(static_cast<Task*>(argument));
    task->work();
    const std::shared_ptr<std::atomic<int>> running = task->running;
    task.reset();
    running->fetch_sub(1);
  }

  std::shared_ptr<std::atomic<int>> running_ = std::make_shared<std::atomic<int>>(0);
};

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_CAPTURE_THREADS_H_
