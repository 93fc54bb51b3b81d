#include "platform/critical_section.h"

#include <gtest/gtest.h>

#include "platform/event.h"
#include "platform/thread.h"

namespace ormidex::platform {
namespace {

constexpr std::uint32_t kLongEnough = 10'000;  // ms; reached only when a test fails

struct Contest {
  CriticalSection section;
  Event entered;
  int counter = 0;
};

TEST(CriticalSection, ItsHolderEntersAgain) {
  CriticalSection section;
  section.Initialise();
  section.Enter();
  section.Enter();
  section.Leave();
  section.Leave();
  section.Delete();
}

TEST(CriticalSection, IsFreeOnlyAfterAsManyLeavesAsEnters) {
  Contest contest;
  contest.section.Initialise();
  ASSERT_TRUE(contest.entered.Create(false));
  contest.section.Enter();
  contest.section.Enter();
  ASSERT_TRUE(StartThread(
      [](void* argument) {
        auto* shared = static_cast<Contest*>(argument);
        { const ScopedLock lock(shared->section); }
        shared->entered.Signal();
      },
      &contest));

  contest.section.Leave();
  EXPECT_FALSE(contest.entered.Wait(50));
  contest.section.Leave();
  EXPECT_TRUE(contest.entered.Wait(kLongEnough));
  SleepMilliseconds(20);
  contest.entered.Close();
  contest.section.Delete();
}

TEST(CriticalSection, KeepsThreadsApart) {
  constexpr int kRounds = 20'000;
  Contest contest;
  contest.section.Initialise();
  ASSERT_TRUE(contest.entered.Create(false));
  ASSERT_TRUE(StartThread(
      [](void* argument) {
        auto* shared = static_cast<Contest*>(argument);
        for (int i = 0; i < kRounds; ++i) {
          const ScopedLock lock(shared->section);
          ++shared->counter;
        }
        shared->entered.Signal();
      },
      &contest));
  for (int i = 0; i < kRounds; ++i) {
    const ScopedLock lock(contest.section);
    ++contest.counter;
  }
  ASSERT_TRUE(contest.entered.Wait(kLongEnough));
  EXPECT_EQ(contest.counter, 2 * kRounds);
  SleepMilliseconds(20);
  contest.entered.Close();
  contest.section.Delete();
}

}  // namespace
}  // namespace ormidex::platform
