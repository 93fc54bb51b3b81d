#include "platform/thread.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/event.h"
#include "platform/timer.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/resource.h>
#endif

namespace ormidex::platform {
namespace {

constexpr std::uint32_t kLongEnough = 10'000;  // ms; reached only when a test fails

struct Report {
  Event done;
  std::uintptr_t stack_misalignment = 1;
  bool below_normal = false;
};

bool RunsBelowNormal() {
#ifdef _WIN32
  return GetThreadPriority(GetCurrentThread()) == THREAD_PRIORITY_BELOW_NORMAL;
#else
  return getpriority(PRIO_PROCESS, 0) > 0;
#endif
}

// An aligned local lies where the compiler believes the stack to be aligned.
void ReportOnThread(void* argument) {
  auto* report = static_cast<Report*>(argument);
  alignas(16) volatile char aligned[16] = {};
  report->stack_misalignment = reinterpret_cast<std::uintptr_t>(&aligned) % 16;
  report->below_normal = RunsBelowNormal();
  report->done.Signal();
}

class ThreadReport : public testing::TestWithParam<ThreadPriority> {};

TEST_P(ThreadReport, RunsItsEntryWithTheArgumentPriorityAndAnAlignedStack) {
  Report report;
  ASSERT_TRUE(report.done.Create(false));
  const bool starter_below_normal = RunsBelowNormal();
  ASSERT_TRUE(StartThread(ReportOnThread, &report, GetParam()));
  ASSERT_TRUE(report.done.Wait(kLongEnough));
  EXPECT_EQ(report.stack_misalignment, 0u);
  if (GetParam() == ThreadPriority::kBelowNormal) {
    EXPECT_TRUE(report.below_normal);
  } else {
    EXPECT_EQ(report.below_normal, starter_below_normal);
  }
  EXPECT_EQ(RunsBelowNormal(), starter_below_normal) << "the starter's own priority changed";
  SleepMilliseconds(20);
  report.done.Close();
}

INSTANTIATE_TEST_SUITE_P(Priorities, ThreadReport,
                         testing::Values(ThreadPriority::kNormal, ThreadPriority::kBelowNormal));

TEST(Thread, SleepLastsAtLeastAboutItsTime) {
  const std::uint64_t start = MonotonicMicroseconds();
  SleepMilliseconds(30);
  EXPECT_GE(MonotonicMicroseconds() - start, 15'000u);
}

TEST(Thread, ProcessIdIsStableAndNotZero) {
  EXPECT_NE(CurrentProcessId(), 0u);
  EXPECT_EQ(CurrentProcessId(), CurrentProcessId());
}

}  // namespace
}  // namespace ormidex::platform
