// Register writes that the library sends on threads of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/thread.h"
#include "support/faults.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using platform::FaultPoint;

constexpr int kPollsUntilGivenUp = 10'000;  // of a millisecond; reached only on failure

class AsynchronousWrite : public ::testing::Test {
 protected:
  AsynchronousWrite() : session(driver) { driver.bus_address = 0x60; }

  // The requests, in any order, once there are `count` of them.
  std::vector<std::string> WaitForRequests(std::size_t count) {
    std::vector<std::string> requests = driver.Requests();
    for (int i = 0; i < kPollsUntilGivenUp && requests.size() < count; ++i) {
      platform::SleepMilliseconds(1);
      requests = driver.Requests();
    }
    std::sort(requests.begin(), requests.end());
    return requests;
  }

  ModelGateway driver;
  TestSession session;
};

TEST_F(AsynchronousWrite, SendsASingleRegisterAsABlockOfOneByte) {
  EXPECT_EQ(session->WriteRegister(0x91, 0x11, 1), kOk);
  EXPECT_EQ(WaitForRequests(1),
            std::vector<std::string>{"0x222004 [17] 00000000 60000000 91000000 01000000 11"});
}

TEST_F(AsynchronousWrite, SendsABlock) {
  const std::uint8_t data[3] = {1, 2, 3};
  EXPECT_EQ(session->WriteMultRegister(0x14, 3, data, 1), kOk);
  EXPECT_EQ(WaitForRequests(1),
            std::vector<std::string>{"0x222004 [19] 00000000 60000000 14000000 03000000 010203"});
}

TEST_F(AsynchronousWrite, CarriesUpTo255Bytes) {
  const std::vector<std::uint8_t> data(255, 0xAB);
  EXPECT_EQ(session->WriteMultRegister(0x14, 255, data.data(), 1), kOk);
  const std::vector<std::string> requests = WaitForRequests(1);
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].rfind("0x222004 [271] 00000000 60000000 14000000 ff000000 abababab", 0),
            0u);
}

TEST_F(AsynchronousWrite, OfMoreThan255BytesIsRefusedWithoutARequest) {
  const std::vector<std::uint8_t> data(256);
  EXPECT_EQ(session->WriteMultRegister(0x14, 256, data.data(), 1), 7u);
  EXPECT_TRUE(driver.Requests().empty());
}

TEST_F(AsynchronousWrite, ChecksPointerAndDeviceFirst) {
  session->link.handle = nullptr;
  const std::uint8_t byte = 0;
  EXPECT_EQ(session->WriteMultRegister(0x14, 256, nullptr, 1), 2u);
  EXPECT_EQ(session->WriteMultRegister(0x14, 256, &byte, 1), 1u);
}

TEST_F(AsynchronousWrite, ReportsAThreadThatDoesNotStart) {
  const std::uint8_t byte = 0;
  {
    const Refusal refusal(FaultPoint::kThreadStart);
    EXPECT_EQ(session->WriteRegister(0x91, 0x11, 1), 10u);
  }
  {
    const Refusal refusal(FaultPoint::kThreadStart);
    EXPECT_EQ(session->WriteMultRegister(0x91, 1, &byte, 1), 10u);
  }
  EXPECT_TRUE(driver.Requests().empty());
}

TEST_F(AsynchronousWrite, ReportsAJobThatCannotBeAllocated) {
  const std::uint8_t byte = 0;
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->WriteRegister(0x91, 0x11, 1), 9u);
  }
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->WriteMultRegister(0x91, 1, &byte, 1), 9u);
  }
  EXPECT_TRUE(driver.Requests().empty());
}

TEST_F(AsynchronousWrite, EndsSilentlyWhenItsRecordCannotBeAllocated) {
  {
    // The job is granted; the worker's record is not.
    const Refusal refusal(FaultPoint::kAllocation, 1);
    EXPECT_EQ(session->WriteRegister(0x91, 0x11, 1), kOk);
    for (int i = 0; i < kPollsUntilGivenUp && platform::RefusalPending(FaultPoint::kAllocation);
         ++i) {
      platform::SleepMilliseconds(1);
    }
    EXPECT_FALSE(platform::RefusalPending(FaultPoint::kAllocation));
  }
  EXPECT_TRUE(driver.Requests().empty());
  EXPECT_EQ(session->WriteRegister(0x92, 0x12, 1), kOk);
  EXPECT_EQ(WaitForRequests(1),
            std::vector<std::string>{"0x222004 [17] 00000000 60000000 92000000 01000000 12"});
}

TEST_F(AsynchronousWrite, ReturnsSuccessWhateverTheDriverAnswers) {
  driver.fail_codes.insert(0x222004);
  EXPECT_EQ(session->WriteRegister(0x91, 0x11, 1), kOk);
  EXPECT_EQ(WaitForRequests(1).size(), 1u);
}

TEST_F(AsynchronousWrite, ManyAtOnceAllArrive) {
  std::vector<std::string> expected;
  for (int i = 0; i < 16; ++i) {
    const auto value = static_cast<std::uint8_t>(i);
    EXPECT_EQ(session->WriteRegister(0x20, value, 1), kOk);
    expected.push_back("0x222004 [17] 00000000 60000000 20000000 01000000 " + ToHex(&value, 1));
  }
  EXPECT_EQ(WaitForRequests(16), expected);
}

}  // namespace
}  // namespace ormidex::testing
