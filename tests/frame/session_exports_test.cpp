// Counting, opening and closing through the exported functions.
#include <gtest/gtest.h>

#include "frame/export_table.h"
#include "frame/lock_poll.h"
#include "frame/startup.h"
#include "ormidex.h"
#include "platform/fault_points.h"
#include "support/model_gateway.h"

namespace ormidex::frame {
namespace {

using testing::LockPoll;
using testing::ModelGateway;

constexpr ApiLock::State kHeldByNobody{0, 1, 0};
constexpr ApiLock::State kHeldExclusively{1, 0, 0};
constexpr OrmidexUInt32 kUntouched = 0xDEADBEEF;

// A second-generation colour camera, and notes of what it sees while it is asked.
class ObservingGateway : public ModelGateway {
 public:
  ObservingGateway() {
    registers[0x0F] = 0x50;
    friendly_names = {"Torvenal(tm) 1394 Camera", "Something else", "Torvenal(tm) 1394 Camera"};
  }
  device::DriverHandle Open(const char* path, device::DriverShare share) override {
    state_at_open = ProcessApiLock().Inspect();
    if (handle_variable != nullptr) handle_at_open = *handle_variable;
    return ModelGateway::Open(path, share);
  }
  bool Close(device::DriverHandle handle) override {
    state_at_close = ProcessApiLock().Inspect();
    return ModelGateway::Close(handle);
  }
  device::EnumerationResult Enumerate(device::DeviceVisitor& visitor) override {
    state_at_enumeration = ProcessApiLock().Inspect();
    return ModelGateway::Enumerate(visitor);
  }

  const OrmidexHandle* handle_variable = nullptr;
  OrmidexHandle handle_at_open = nullptr;
  ApiLock::State state_at_open{};
  ApiLock::State state_at_close{};
  ApiLock::State state_at_enumeration{};
};

class SessionExportsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetOperatingSystemKindForTesting(3);
    device::ReplaceGatewayForTesting(&gateway);
  }
  void TearDown() override {
    platform::ClearFaults();
    device::ReplaceGatewayForTesting(nullptr);
    SetOperatingSystemKindForTesting(3);
    EXPECT_EQ(ProcessApiLock().Inspect(), kHeldByNobody);
  }

  ObservingGateway gateway;
  OrmidexHandle handle = this;
  OrmidexUInt32 count = kUntouched;
};

// ---- OrmidexGetNumberDevices ---------------------------------------------

TEST_F(SessionExportsTest, CountsTheCamerasWhateverNameIsGiven) {
  EXPECT_EQ(OrmidexGetNumberDevices("no such device type", &count), 0u);
  EXPECT_EQ(count, 2u);
}

TEST_F(SessionExportsTest, CountsUnderTheExclusiveLock) {
  EXPECT_EQ(OrmidexGetNumberDevices("", &count), 0u);
  EXPECT_EQ(gateway.state_at_enumeration, kHeldExclusively);
}

TEST_F(SessionExportsTest, NullTypeNameIs2AfterTheCountWasSetTo0WithoutTheLock) {
  ProcessApiLock().Acquire(LockMode::kExclusive);
  EXPECT_EQ(OrmidexGetNumberDevices(nullptr, &count), 2u);
  EXPECT_EQ(count, 0u);
  ProcessApiLock().Release(LockMode::kExclusive);
}

#if GTEST_HAS_DEATH_TEST
TEST_F(SessionExportsTest, NullCountIsWrittenToBeforeItIsChecked) {
  EXPECT_DEATH(OrmidexGetNumberDevices("", nullptr), "");
}
#endif

TEST_F(SessionExportsTest, CountingWaitsForASharedHolder) {
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kShared);
  LockPoll poll([&lock](int) { lock.Release(LockMode::kShared); });
  EXPECT_EQ(OrmidexGetNumberDevices("", &count), 0u);
  EXPECT_EQ(poll.count(), 1);
}

TEST_F(SessionExportsTest, MissingEnumeratorIs4AndReleasesTheLock) {
  gateway.enumerator_available = false;
  EXPECT_EQ(OrmidexGetNumberDevices("", &count), 4u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(ProcessApiLock().Inspect(), kHeldByNobody);
}

TEST_F(SessionExportsTest, EmptyCategoryIs0Cameras) {
  gateway.friendly_names.clear();
  EXPECT_EQ(OrmidexGetNumberDevices("", &count), 0u);
  EXPECT_EQ(count, 0u);
}

TEST_F(SessionExportsTest, CountingOnAnUnknownSystemIs15AndReleasesTheLock) {
  SetOperatingSystemKindForTesting(0);
  EXPECT_EQ(OrmidexGetNumberDevices("", &count), 15u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(ProcessApiLock().Inspect(), kHeldByNobody);
}

// ---- OrmidexInitialize ----------------------------------------------------

TEST_F(SessionExportsTest, OpensACameraAndStoresItsHandle) {
  ASSERT_EQ(OrmidexInitialize("", 1, &handle), 0u);
  EXPECT_NE(handle, nullptr);
  char name[ORMIDEX_IMAGER_NAME_BYTES];
  EXPECT_EQ(OrmidexGetImagerName(handle, name), 0u);
  EXPECT_STREQ(name, "Imager1");
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
}

TEST_F(SessionExportsTest, HandleIsStoredBeforeTheDeviceIsOpened) {
  gateway.handle_variable = &handle;
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(gateway.handle_at_open, handle);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
}

TEST_F(SessionExportsTest, OpensUnderTheExclusiveLock) {
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(gateway.state_at_enumeration, kHeldExclusively);
  EXPECT_EQ(gateway.state_at_open, kHeldExclusively);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
}

TEST_F(SessionExportsTest, FailedAllocationIs1WithoutTheLock) {
  ProcessApiLock().Acquire(LockMode::kExclusive);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
  EXPECT_EQ(OrmidexInitialize("", 0, &handle), 1u);
  EXPECT_EQ(handle, nullptr);
  EXPECT_TRUE(gateway.opened_paths.empty());
  ProcessApiLock().Release(LockMode::kExclusive);
}

TEST_F(SessionExportsTest, IndexBeyondTheLastCameraIs3AndLeavesHandle0) {
  EXPECT_EQ(OrmidexInitialize("", 2, &handle), 3u);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(SessionExportsTest, OpeningWithNullTypeNameIs2AndLeavesHandle0) {
  EXPECT_EQ(OrmidexInitialize(nullptr, 0, &handle), 2u);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(SessionExportsTest, OpeningOnAnUnknownSystemIs15AndLeavesHandle0) {
  SetOperatingSystemKindForTesting(0);
  EXPECT_EQ(OrmidexInitialize("", 0, &handle), 15u);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(SessionExportsTest, FailedOpeningReturnsItsStatusAndLeavesTheDeviceOpen) {
  gateway.fail_request = 0;  // the serial number
  EXPECT_EQ(OrmidexInitialize("", 0, &handle), 5u);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(gateway.opened_paths.size(), 1u);
  EXPECT_EQ(gateway.closed, 0) << "no teardown on this path";
}

// ---- OrmidexUninitialize --------------------------------------------------

TEST_F(SessionExportsTest, ClosingSetsTheHandleTo0AndASecondCallIs1) {
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(gateway.closed, 1);
  EXPECT_EQ(OrmidexUninitialize(&handle), 1u);
  EXPECT_EQ(gateway.closed, 1);
}

TEST_F(SessionExportsTest, ClosingAVariableThatHolds0Is1WithoutTheLock) {
  handle = nullptr;
  ProcessApiLock().Acquire(LockMode::kExclusive);
  EXPECT_EQ(OrmidexUninitialize(&handle), 1u);
  ProcessApiLock().Release(LockMode::kExclusive);
}

TEST_F(SessionExportsTest, ClosesUnderTheExclusiveLock) {
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_EQ(gateway.state_at_close, kHeldExclusively);
}

TEST_F(SessionExportsTest, DeviceThatDoesNotCloseIs3AndTheHandleIs0Nevertheless) {
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  gateway.close_fails = true;
  EXPECT_EQ(OrmidexUninitialize(&handle), 3u);
  EXPECT_EQ(handle, nullptr);
}

TEST_F(SessionExportsTest, ClosingWaitsForASharedHolder) {
  ASSERT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kShared);
  LockPoll poll([&](int) {
    EXPECT_EQ(gateway.closed, 0);
    lock.Release(LockMode::kShared);
  });
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
  EXPECT_EQ(poll.count(), 1);
}

TEST_F(SessionExportsTest, OpeningWaitsForASharedHolder) {
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kShared);
  LockPoll poll([&](int) {
    EXPECT_TRUE(gateway.opened_paths.empty());
    EXPECT_EQ(handle, nullptr) << "set to 0 before the lock is asked for";
    lock.Release(LockMode::kShared);
  });
  EXPECT_EQ(OrmidexInitialize("", 0, &handle), 0u);
  EXPECT_EQ(poll.count(), 1);
  EXPECT_EQ(OrmidexUninitialize(&handle), 0u);
}

}  // namespace
}  // namespace ormidex::frame
