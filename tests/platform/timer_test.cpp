#include "platform/timer.h"

#include <gtest/gtest.h>

#include <atomic>

#include "platform/event.h"
#include "platform/thread.h"

namespace ormidex::platform {
namespace {

constexpr std::uint32_t kLongEnough = 10'000;  // ms; reached only when a test fails

TEST(Clock, TicksAndMicrosecondsAdvanceTogether) {
  const std::uint32_t tick = TickMilliseconds();
  const std::uint64_t micro = MonotonicMicroseconds();
  SleepMilliseconds(60);
  const std::uint32_t ticks = TickMilliseconds() - tick;
  const std::uint64_t micros = MonotonicMicroseconds() - micro;
  EXPECT_GE(ticks, 30u);
  // Between the two readings nothing but a few instructions pass, plus what the
  // scheduler takes; a wrong unit would be a factor of a thousand.
  EXPECT_LT(micros, (ticks + 2000u) * 1000u);
  EXPECT_GT(micros + 50'000u, ticks * 1000u);
}

TEST(OneShotTimer, SignalsItsEventOnceAfterTheDelay) {
  Event event;
  ASSERT_TRUE(event.Create(false));
  const std::uint64_t start = MonotonicMicroseconds();
  ASSERT_TRUE(ArmOneShotTimer(event, 60, 1));
  EXPECT_TRUE(event.Wait(kLongEnough));
  EXPECT_GE(MonotonicMicroseconds() - start, 40'000u);
  EXPECT_FALSE(event.Wait(100)) << "it signalled twice";
  event.Close();
}

TEST(OneShotTimer, TimersExpireInTheOrderOfTheirTimes) {
  Event late;
  Event early;
  ASSERT_TRUE(late.Create(false));
  ASSERT_TRUE(early.Create(false));
  ASSERT_TRUE(ArmOneShotTimer(late, 400, 1));
  ASSERT_TRUE(ArmOneShotTimer(early, 20, 1));
  EXPECT_TRUE(early.Wait(kLongEnough));
  EXPECT_FALSE(late.Wait(0));
  EXPECT_TRUE(late.Wait(kLongEnough));
  early.Close();
  late.Close();
}

TEST(OneShotTimer, MayOutliveItsEventAndHitsNoOther) {
  Event closed_first;
  ASSERT_TRUE(closed_first.Create(false));
  ASSERT_TRUE(ArmOneShotTimer(closed_first, 50, 1));
  closed_first.Close();
  // Its successors may get the memory or the handle number of the closed one.
  Event successors[8];
  for (Event& event : successors) {
    ASSERT_TRUE(event.Create(false));
  }
  SleepMilliseconds(150);
  for (Event& event : successors) {
    EXPECT_FALSE(event.Wait(0));
    event.Close();
  }
}

// The multimedia timers of Windows are 16 for a process.
TEST(OneShotTimer, ClosingTheEventGivesTheTimerBack) {
  for (int i = 0; i < 100; ++i) {
    Event event;
    ASSERT_TRUE(event.Create(false));
    ASSERT_TRUE(ArmOneShotTimer(event, 60'000, 100)) << "after " << i << " timers";
    event.Close();
  }
}

TEST(OneShotTimer, NeedsAnEvent) {
  Event never_created;
  EXPECT_FALSE(ArmOneShotTimer(never_created, 1, 1));
}

struct Periodic {
  std::atomic<int> calls{0};
  std::atomic<TimerId> own_id{0};
  Event called;
  Event go_on;
};

TEST(PeriodicTimer, CallsAgainAndAgainUntilStopped) {
  Periodic periodic;
  ASSERT_TRUE(periodic.called.Create(false));
  const TimerId timer = StartPeriodicTimer(
      10,
      [](void* user) {
        auto* state = static_cast<Periodic*>(user);
        ++state->calls;
        state->called.Signal();
      },
      &periodic);
  ASSERT_NE(timer, 0u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(periodic.called.Wait(kLongEnough));
  }
  StopPeriodicTimer(timer);
  const int calls = periodic.calls;
  EXPECT_GE(calls, 3);
  SleepMilliseconds(60);
  EXPECT_EQ(periodic.calls, calls) << "called after it was stopped";
  periodic.called.Close();
}

TEST(PeriodicTimer, StoppingWaitsForTheRunningCallback) {
  Periodic periodic;
  ASSERT_TRUE(periodic.called.Create(false));
  const TimerId timer = StartPeriodicTimer(
      10,
      [](void* user) {
        auto* state = static_cast<Periodic*>(user);
        state->called.Signal();
        SleepMilliseconds(100);
        ++state->calls;
      },
      &periodic);
  ASSERT_NE(timer, 0u);
  ASSERT_TRUE(periodic.called.Wait(kLongEnough));
  StopPeriodicTimer(timer);
  const int calls = periodic.calls;
  EXPECT_GE(calls, 1) << "stopped while the callback was still running";
  SleepMilliseconds(150);
  EXPECT_EQ(periodic.calls, calls);
  periodic.called.Close();
}

TEST(PeriodicTimer, MayBeStoppedFromItsOwnCallback) {
  Periodic periodic;
  ASSERT_TRUE(periodic.called.Create(false));
  ASSERT_TRUE(periodic.go_on.Create(false));
  periodic.own_id = StartPeriodicTimer(
      10,
      [](void* user) {
        auto* state = static_cast<Periodic*>(user);
        ++state->calls;
        state->go_on.Wait(kLongEnough);  // until own_id is stored
        StopPeriodicTimer(state->own_id);
        state->called.Signal();
      },
      &periodic);
  ASSERT_NE(periodic.own_id, 0u);
  periodic.go_on.Signal();
  EXPECT_TRUE(periodic.called.Wait(kLongEnough));
  SleepMilliseconds(60);
  EXPECT_EQ(periodic.calls, 1);
  periodic.called.Close();
  periodic.go_on.Close();
}

TEST(PeriodicTimer, TimersAreToldApart) {
  Periodic first;
  Periodic second;
  ASSERT_TRUE(first.called.Create(false));
  ASSERT_TRUE(second.called.Create(false));
  const TimerCallback count = [](void* user) {
    auto* state = static_cast<Periodic*>(user);
    ++state->calls;
    state->called.Signal();
  };
  const TimerId first_timer = StartPeriodicTimer(10, count, &first);
  const TimerId second_timer = StartPeriodicTimer(10, count, &second);
  ASSERT_NE(first_timer, second_timer);
  StopPeriodicTimer(first_timer);
  const int first_calls = first.calls;
  second.called.Wait(0);
  EXPECT_TRUE(second.called.Wait(kLongEnough));
  EXPECT_EQ(first.calls, first_calls);
  StopPeriodicTimer(second_timer);
  StopPeriodicTimer(second_timer);  // a stopped timer's id is harmless
  first.called.Close();
  second.called.Close();
}

TEST(PeriodicTimer, StoppingNoTimerDoesNothing) { StopPeriodicTimer(0); }

TEST(PeriodicTimer, FineResolutionIsAskedForAndGivenBack) {
  BeginFineTimerResolution();
  EndFineTimerResolution();
}

}  // namespace
}  // namespace ormidex::platform
