#include "platform/fault_points.h"

#include <gtest/gtest.h>

#include "platform/event.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "platform/timer.h"

namespace ormidex::platform {
namespace {

class FaultPoints : public testing::Test {
 protected:
  void SetUp() override { ClearFaults(); }
  void TearDown() override { ClearFaults(); }
};

TEST_F(FaultPoints, NothingIsRefusedUnlessPlanned) {
  for (int i = 0; i < 10; ++i) {
    EXPECT_FALSE(FaultDue(FaultPoint::kAllocation));
  }
}

TEST_F(FaultPoints, RefusesOnceAfterTheGivenGrants) {
  RefuseOnceAfter(FaultPoint::kAllocation, 2);
  EXPECT_FALSE(FaultDue(FaultPoint::kAllocation));
  EXPECT_FALSE(FaultDue(FaultPoint::kAllocation));
  EXPECT_TRUE(FaultDue(FaultPoint::kAllocation));
  EXPECT_FALSE(FaultDue(FaultPoint::kAllocation));
}

TEST_F(FaultPoints, PointsAreIndependent) {
  RefuseOnceAfter(FaultPoint::kTimerStart, 0);
  EXPECT_FALSE(FaultDue(FaultPoint::kEventCreate));
  EXPECT_FALSE(FaultDue(FaultPoint::kThreadStart));
  EXPECT_TRUE(FaultDue(FaultPoint::kTimerStart));
}

TEST_F(FaultPoints, ClearForgetsThePlan) {
  RefuseOnceAfter(FaultPoint::kThreadStart, 0);
  ClearFaults();
  EXPECT_FALSE(FaultDue(FaultPoint::kThreadStart));
}

TEST_F(FaultPoints, AllocationsAreRefused) {
  RefuseOnceAfter(FaultPoint::kAllocation, 0);
  EXPECT_FALSE(static_cast<bool>(Buffer(16)));
  EXPECT_TRUE(static_cast<bool>(Buffer(16)));
  RefuseOnceAfter(FaultPoint::kAllocation, 0);
  EXPECT_FALSE(static_cast<bool>(Buffer::Uncleared(16)));
}

TEST_F(FaultPoints, EventsAreRefused) {
  RefuseOnceAfter(FaultPoint::kEventCreate, 0);
  Event event;
  EXPECT_FALSE(event.Create(false));
  EXPECT_FALSE(event.Exists());
  EXPECT_TRUE(event.Create(false));
  event.Close();
}

TEST_F(FaultPoints, ThreadsAreRefusedAndTheirEntryDoesNotRun) {
  RefuseOnceAfter(FaultPoint::kThreadStart, 0);
  Event ran;
  ASSERT_TRUE(ran.Create(false));
  EXPECT_FALSE(StartThread([](void* event) { static_cast<Event*>(event)->Signal(); }, &ran));
  EXPECT_FALSE(ran.Wait(50));
  ran.Close();
}

TEST_F(FaultPoints, TimersAreRefused) {
  Event event;
  ASSERT_TRUE(event.Create(false));
  RefuseOnceAfter(FaultPoint::kTimerStart, 0);
  EXPECT_FALSE(ArmOneShotTimer(event, 1, 1));
  EXPECT_FALSE(event.Wait(50));
  RefuseOnceAfter(FaultPoint::kTimerStart, 0);
  EXPECT_EQ(StartPeriodicTimer(
                10, [](void*) {}, nullptr),
            0u);
  event.Close();
}

TEST_F(FaultPoints, ARefusedThreadLeavesTimersAlone) {
  RefuseOnceAfter(FaultPoint::kThreadStart, 0);
  Event event;
  ASSERT_TRUE(event.Create(false));
  EXPECT_TRUE(ArmOneShotTimer(event, 1, 1));
  EXPECT_TRUE(event.Wait(5000));
  EXPECT_FALSE(StartThread([](void*) {}, nullptr));
  event.Close();
}

}  // namespace
}  // namespace ormidex::platform
