#include "platform/fault_points.h"

#include <atomic>
#include <cstddef>

namespace ormidex::platform {
namespace {

// For each point the number of calls until the one that is refused, counting
// that call; 0 when nothing is planned.
constinit std::atomic<int> countdowns[static_cast<std::size_t>(FaultPoint::kCount)] = {};

std::atomic<int>& Countdown(FaultPoint point) {
  return countdowns[static_cast<std::size_t>(point)];
}

}  // namespace

bool FaultDue(FaultPoint point) noexcept {
  std::atomic<int>& countdown = Countdown(point);
  int left = countdown.load(std::memory_order_relaxed);
  while (left > 0) {
    // Released, so that a test that saw the refusal sees what led to it.
    if (countdown.compare_exchange_weak(left, left - 1, std::memory_order_acq_rel,
                                        std::memory_order_relaxed)) {
      return left == 1;
    }
  }
  return false;
}

void RefuseOnceAfter(FaultPoint point, int grants) noexcept {
  Countdown(point).store(grants + 1, std::memory_order_relaxed);
}

bool RefusalPending(FaultPoint point) noexcept {
  return Countdown(point).load(std::memory_order_acquire) > 0;
}

void ClearFaults() noexcept {
  for (std::atomic<int>& countdown : countdowns) {
    countdown.store(0, std::memory_order_relaxed);
  }
}

}  // namespace ormidex::platform
