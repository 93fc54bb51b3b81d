#include "platform/event.h"

#include <gtest/gtest.h>

#include <atomic>

#include "platform/thread.h"
#include "platform/timer.h"

namespace ormidex::platform {
namespace {

constexpr std::uint32_t kLongEnough = 10'000;  // ms; reached only when a test fails

TEST(Event, WaitResetsTheSignal) {
  Event event;
  ASSERT_TRUE(event.Create(false));
  event.Signal();
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(event.Wait(0));
  event.Close();
}

TEST(Event, InitiallySignalledReleasesTheFirstWaiterOnly) {
  Event event;
  ASSERT_TRUE(event.Create(true));
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(event.Wait(0));
  event.Close();
}

TEST(Event, SignalsDoNotAddUp) {
  Event event;
  ASSERT_TRUE(event.Create(false));
  event.Signal();
  event.Signal();
  EXPECT_TRUE(event.Wait(0));
  EXPECT_FALSE(event.Wait(0));
  event.Close();
}

TEST(Event, WaitGivesUpAfterItsTimeOut) {
  Event event;
  ASSERT_TRUE(event.Create(false));
  const std::uint64_t start = MonotonicMicroseconds();
  EXPECT_FALSE(event.Wait(50));
  // The systems' tick may end a wait a little early.
  EXPECT_GE(MonotonicMicroseconds() - start, 30'000u);
  event.Close();
}

TEST(Event, WithoutCreationNothingHappens) {
  Event event;
  EXPECT_FALSE(event.Exists());
  event.Signal();
  EXPECT_FALSE(event.Wait(kWaitForever));
  event.Close();
}

TEST(Event, CanBeCreatedAgainAfterClosing) {
  Event event;
  ASSERT_TRUE(event.Create(true));
  event.Close();
  EXPECT_FALSE(event.Exists());
  ASSERT_TRUE(event.Create(false));
  EXPECT_FALSE(event.Wait(0));
  event.Close();
}

struct TwoWaiters {
  Event signal;
  Event released;
  std::atomic<int> count{0};
};

TEST(Event, OneSignalReleasesOneOfTwoWaiters) {
  TwoWaiters shared;
  ASSERT_TRUE(shared.signal.Create(false));
  ASSERT_TRUE(shared.released.Create(false));
  const ThreadEntry waiter = [](void* argument) {
    auto* waiters = static_cast<TwoWaiters*>(argument);
    waiters->signal.Wait(kWaitForever);
    ++waiters->count;
    waiters->released.Signal();
  };
  ASSERT_TRUE(StartThread(waiter, &shared));
  ASSERT_TRUE(StartThread(waiter, &shared));

  shared.signal.Signal();
  EXPECT_TRUE(shared.released.Wait(kLongEnough));
  EXPECT_FALSE(shared.released.Wait(50)) << "the second waiter was released too";
  EXPECT_EQ(shared.count, 1);

  shared.signal.Signal();
  EXPECT_TRUE(shared.released.Wait(kLongEnough));
  EXPECT_EQ(shared.count, 2);
  SleepMilliseconds(20);  // the waiters leave Signal before the event goes
  shared.released.Close();
  shared.signal.Close();
}

}  // namespace
}  // namespace ormidex::platform
