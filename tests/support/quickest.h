// How long an operation takes on a machine that others use, too.
#ifndef ORMIDEX_TESTS_SUPPORT_QUICKEST_H_
#define ORMIDEX_TESTS_SUPPORT_QUICKEST_H_

#include <algorithm>
#include <cstdint>

#include "platform/timer.h"

namespace ormidex::testing {

inline constexpr int kTimedRounds = 5;

// The microseconds of the quickest round; `prepare` is not counted. The processors may be
// taken from the test for seconds, so one round says little of the operation; those after
// the first that takes less than `enough` are left out.
template <typename Prepare, typename Operation>
std::uint64_t QuickestMicroseconds(std::uint64_t enough, Prepare prepare, Operation operation) {
  std::uint64_t quickest = UINT64_MAX;
  for (int round = 0; round < kTimedRounds && quickest >= enough; ++round) {
    prepare();
    const std::uint64_t start = platform::MonotonicMicroseconds();
    operation();
    quickest = std::min(quickest, platform::MonotonicMicroseconds() - start);
  }
  return quickest;
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_QUICKEST_H_
