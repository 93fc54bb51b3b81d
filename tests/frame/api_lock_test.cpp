#include "frame/api_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <ostream>
#include <type_traits>

#include "frame/lock_poll.h"
#include "platform/event.h"
#include "platform/thread.h"

namespace ormidex::frame {

void PrintTo(const ApiLock::State& state, std::ostream* out) {
  *out << "{pending " << state.exclusive_pending << ", free " << state.exclusive_free << ", shared "
       << state.shared_count << "}";
}

namespace {

using State = ApiLock::State;
using testing::LockPoll;

constexpr LockMode kShared = LockMode::kShared;
constexpr LockMode kExclusive = LockMode::kExclusive;

static_assert(std::has_virtual_destructor_v<ApiLock>);

TEST(ApiLockTest, StartsFree) {
  ApiLock lock;
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 0}));
}

TEST(ApiLockTest, SharedHoldersAreCounted) {
  ApiLock lock;
  lock.Acquire(kShared);
  lock.Acquire(kShared);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 2}));
  lock.Release(kShared);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 1}));
  lock.Release(kShared);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 0}));
}

TEST(ApiLockTest, ExclusiveHolderRaisesPendingAndClearsFree) {
  ApiLock lock;
  lock.Acquire(kExclusive);
  EXPECT_EQ(lock.Inspect(), (State{1, 0, 0}));
  lock.Release(kExclusive);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 0}));
}

TEST(ApiLockTest, UncontendedRequestsNeverSleep) {
  ApiLock lock;
  const LockPoll poll([](int) {});
  lock.Acquire(kShared);
  lock.Acquire(kShared);
  lock.Release(kShared);
  lock.Release(kShared);
  lock.Acquire(kExclusive);
  lock.Release(kExclusive);
  EXPECT_EQ(poll.count(), 0);
}

TEST(ApiLockTest, SharedRequestLooksEvery50MillisecondsWhileHeldExclusively) {
  ApiLock lock;
  lock.Acquire(kExclusive);
  const LockPoll poll([&lock](int count) {
    if (count == 3) lock.Release(kExclusive);
  });
  lock.Acquire(kShared);
  EXPECT_EQ(poll.count(), 3);
  EXPECT_EQ(poll.milliseconds(), 50u);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 1}));
}

TEST(ApiLockTest, ExclusiveRequestLooksEvery50MillisecondsWhileHeldExclusively) {
  ApiLock lock;
  lock.Acquire(kExclusive);
  const LockPoll poll([&lock](int count) {
    EXPECT_EQ(lock.Inspect(), (State{1, 0, 0}));
    if (count == 2) lock.Release(kExclusive);
  });
  lock.Acquire(kExclusive);
  EXPECT_EQ(poll.count(), 2);
  EXPECT_EQ(poll.milliseconds(), 50u);
  EXPECT_EQ(lock.Inspect(), (State{1, 0, 0}));
}

TEST(ApiLockTest, WaitingExclusiveRequestAnnouncesItself) {
  ApiLock lock;
  lock.Acquire(kShared);
  const LockPoll poll([&lock](int) {
    EXPECT_EQ(lock.Inspect(), (State{1, 1, 1}));
    lock.Release(kShared);
  });
  lock.Acquire(kExclusive);
  EXPECT_EQ(poll.count(), 1);
  EXPECT_EQ(lock.Inspect(), (State{1, 0, 0}));
}

TEST(ApiLockTest, ExclusiveRequestWaitsForTheLastSharedHolder) {
  ApiLock lock;
  lock.Acquire(kShared);
  lock.Acquire(kShared);
  const LockPoll poll([&lock](int count) {
    EXPECT_EQ(lock.Inspect(), (State{1, 1, 3 - count}));
    lock.Release(kShared);
  });
  lock.Acquire(kExclusive);
  EXPECT_EQ(poll.count(), 2);
}

// Two exclusive callers and a shared one: the release of the first clears the flag
// of the second, and until the second looks again the shared one slips in.
TEST(ApiLockTest, SharedRequestMayOvertakeTheSecondExclusiveRequester) {
  ApiLock lock;
  lock.Acquire(kExclusive);
  const LockPoll poll([&lock](int count) {
    if (count == 1) {
      lock.Release(kExclusive);
      EXPECT_EQ(lock.Inspect(), (State{0, 1, 0}));
      lock.Acquire(kShared);  // granted at once: this is the window
      EXPECT_EQ(lock.Inspect(), (State{0, 1, 1}));
    } else {
      EXPECT_EQ(lock.Inspect(), (State{1, 1, 1})) << "the second requester announced itself again";
      lock.Release(kShared);
    }
  });
  lock.Acquire(kExclusive);
  EXPECT_EQ(poll.count(), 2);
  EXPECT_EQ(lock.Inspect(), (State{1, 0, 0}));
}

// Waiting threads of the tests below.
struct Visitor {
  ApiLock* lock;
  LockMode mode;
  std::atomic<int> polls{0};
  std::atomic<bool> inside{false};
  std::atomic<bool> may_leave{false};
  std::atomic<bool> done{false};
};

thread_local Visitor* current_visitor = nullptr;

void CountPollAndYield(std::uint32_t) {
  if (current_visitor != nullptr) ++current_visitor->polls;
  platform::SleepMilliseconds(1);
}

void Visit(void* argument) {
  auto* visitor = static_cast<Visitor*>(argument);
  current_visitor = visitor;
  visitor->lock->Acquire(visitor->mode);
  visitor->inside = true;
  while (!visitor->may_leave) platform::SleepMilliseconds(1);
  visitor->inside = false;
  visitor->lock->Release(visitor->mode);
  visitor->done = true;
}

template <typename Condition>
bool Eventually(Condition condition) {
  for (int i = 0; i < 20000; ++i) {
    if (condition()) return true;
    platform::SleepMilliseconds(1);
  }
  return false;
}

class ApiLockThreadsTest : public ::testing::Test {
 protected:
  void SetUp() override { ReplaceLockPollForTesting(&CountPollAndYield); }
  void TearDown() override { ReplaceLockPollForTesting(nullptr); }
  ApiLock lock;
};

TEST_F(ApiLockThreadsTest, SharedHoldersAreInsideAtTheSameTime) {
  Visitor a{&lock, kShared};
  Visitor b{&lock, kShared};
  ASSERT_TRUE(platform::StartThread(&Visit, &a));
  ASSERT_TRUE(platform::StartThread(&Visit, &b));
  EXPECT_TRUE(Eventually([&] { return a.inside && b.inside; }));
  a.may_leave = b.may_leave = true;
  EXPECT_TRUE(Eventually([&] { return a.done && b.done; }));
}

TEST_F(ApiLockThreadsTest, SharedCallerArrivingWhileAWriterWaitsGoesAfterTheWriter) {
  Visitor early_reader{&lock, kShared};
  Visitor writer{&lock, kExclusive};
  Visitor late_reader{&lock, kShared};
  ASSERT_TRUE(platform::StartThread(&Visit, &early_reader));
  ASSERT_TRUE(Eventually([&] { return early_reader.inside.load(); }));
  ASSERT_TRUE(platform::StartThread(&Visit, &writer));
  ASSERT_TRUE(Eventually([&] { return writer.polls > 0; }));
  ASSERT_TRUE(platform::StartThread(&Visit, &late_reader));
  ASSERT_TRUE(Eventually([&] { return late_reader.polls >= 3; }));
  EXPECT_FALSE(late_reader.inside) << "though only another reader is inside";

  early_reader.may_leave = true;
  ASSERT_TRUE(Eventually([&] { return writer.inside.load(); }));
  const int polls_before = late_reader.polls;
  ASSERT_TRUE(Eventually([&] { return late_reader.polls >= polls_before + 3; }));
  EXPECT_FALSE(late_reader.inside);

  writer.may_leave = late_reader.may_leave = true;
  EXPECT_TRUE(Eventually([&] { return early_reader.done && writer.done && late_reader.done; }));
}

struct Crowd {
  ApiLock* lock;
  int plain = 0;  // written by exclusive holders, read by shared ones, no atomics
  std::atomic<int> readers_inside{0};
  std::atomic<int> writers_inside{0};
  std::atomic<int> faults{0};
  std::atomic<int> finished{0};
};

constexpr int kRounds = 300;

void WriteOften(void* argument) {
  auto* crowd = static_cast<Crowd*>(argument);
  for (int i = 0; i < kRounds; ++i) {
    const ApiLockHold hold(*crowd->lock, kExclusive);
    if (++crowd->writers_inside != 1 || crowd->readers_inside != 0) ++crowd->faults;
    ++crowd->plain;
    --crowd->writers_inside;
  }
  ++crowd->finished;
}

void ReadOften(void* argument) {
  auto* crowd = static_cast<Crowd*>(argument);
  int last = 0;
  for (int i = 0; i < kRounds; ++i) {
    const ApiLockHold hold(*crowd->lock, kShared);
    ++crowd->readers_inside;
    if (crowd->writers_inside != 0 || crowd->plain < last) ++crowd->faults;
    last = crowd->plain;
    --crowd->readers_inside;
  }
  ++crowd->finished;
}

TEST_F(ApiLockThreadsTest, ExclusiveHoldersAreAloneAmongManyThreads) {
  ReplaceLockPollForTesting([](std::uint32_t) { platform::SleepMilliseconds(0); });
  Crowd crowd{&lock};
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(platform::StartThread(&WriteOften, &crowd));
    ASSERT_TRUE(platform::StartThread(&ReadOften, &crowd));
    ASSERT_TRUE(platform::StartThread(&ReadOften, &crowd));
  }
  ASSERT_TRUE(Eventually([&] { return crowd.finished == 6; }));
  EXPECT_EQ(crowd.faults, 0);
  EXPECT_EQ(crowd.plain, 2 * kRounds);
  EXPECT_EQ(lock.Inspect(), (State{0, 1, 0}));
}

}  // namespace
}  // namespace ormidex::frame
