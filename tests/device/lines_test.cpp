// I2C, GPIO, GPO, frame numbers, time-out, flush and continuous auto exposure as
// literal request bytes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "support/faults.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;
using platform::FaultPoint;

class Lines : public ::testing::Test {
 protected:
  Lines() : session(driver) {}
  void RemoveDevice() { session->link.handle = nullptr; }

  ScriptedGateway driver;
  TestSession session;
};

// ---- I2C ----

using I2c = Lines;

TEST_F(I2c, WriteCarriesCountAddressDataAndAnEndByte) {
  // 2, w + 1, address with bit 0 cleared, the data, 0: 3 + 12 bytes.
  driver.Expect(0x2223FC, "00000000 08000000 0204a011 223300");
  const std::uint8_t data[3] = {0x11, 0x22, 0x33};
  EXPECT_EQ(session->I2cWrite(0xA1, data, 3), kOk);
}

TEST_F(I2c, WriteOfNothingStillSendsTheAddress) {
  driver.Expect(0x2223FC, "00000000 08000000 0201a000");
  const std::uint8_t none = 0;
  EXPECT_EQ(session->I2cWrite(0xA0, &none, 0), kOk);
}

TEST_F(I2c, ReadSendsWriteThenReadAndCopiesTheBytesRead) {
  // 3, w + 1, address, data; 1, r + 1, address with bit 0 set, r bytes, 0: 2 + 3 + 15.
  driver.Expect(0x2223FC, "00000000 08000000 0303a010 200104a1 00000000",
                "00000000 08000000 0303a010 200104a1 aabbcc00");
  const std::uint8_t out[2] = {0x10, 0x20};
  std::uint8_t in[4] = {0, 0, 0, 0xEE};
  EXPECT_EQ(session->I2cRead(0xA0, out, 2, in, 3), kOk);
  EXPECT_EQ(ToHex(in, 4), "aabbccee");
}

TEST_F(I2c, CountsAreTakenModulo256) {
  driver.Expect(0x2223FC, "00000000 08000000 0202a05a 00");
  driver.Expect(0x2223FC, "00000000 08000000 0302a05a 0102a100 00",
                "00000000 08000000 0302a05a 0102a177 00");
  std::vector<std::uint8_t> out(257, 0x5A);
  std::vector<std::uint8_t> in(257, 0xEE);
  EXPECT_EQ(session->I2cWrite(0xA0, out.data(), 257), kOk);
  EXPECT_EQ(session->I2cRead(0xA0, out.data(), 257, in.data(), 257), kOk);
  EXPECT_EQ(in[0], 0x77);
  EXPECT_EQ(in[1], 0xEE);
}

TEST_F(I2c, IgnoresTheDriversStatusWord) {
  driver.Expect(0x2223FC, "00000000 08000000 0202a05a 00", "05000080");
  driver.Expect(0x2223FC, "00000000 08000000 0302a05a 0102a100 00",
                "05000080 08000000 0302a05a 0102a177 00");
  const std::uint8_t out = 0x5A;
  std::uint8_t in = 0;
  EXPECT_EQ(session->I2cWrite(0xA0, &out, 1), kOk);
  EXPECT_EQ(session->I2cRead(0xA0, &out, 1, &in, 1), kOk);
  EXPECT_EQ(in, 0x77);
}

TEST_F(I2c, ReportsFailedRequests) {
  driver.ExpectFailure(0x2223FC, "00000000 08000000 0202a05a 00");
  driver.ExpectFailure(0x2223FC, "00000000 08000000 0302a05a 0102a100 00");
  const std::uint8_t out = 0x5A;
  std::uint8_t in = 0x77;
  EXPECT_EQ(session->I2cWrite(0xA0, &out, 1), 5u);
  EXPECT_EQ(session->I2cRead(0xA0, &out, 1, &in, 1), 5u);
  EXPECT_EQ(in, 0x77);
}

TEST_F(I2c, SendsNothingWithoutMemory) {
  std::uint8_t byte = 0x5A;
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->I2cWrite(0xA0, &byte, 1), 5u);
  }
  const Refusal refusal(FaultPoint::kAllocation);
  EXPECT_EQ(session->I2cRead(0xA0, &byte, 1, &byte, 1), 5u);
}

TEST_F(I2c, ChecksDeviceThenPointers) {
  std::uint8_t byte = 0;
  EXPECT_EQ(session->I2cRead(0xA0, nullptr, 1, &byte, 1), 2u);
  EXPECT_EQ(session->I2cRead(0xA0, &byte, 1, nullptr, 1), 2u);
  EXPECT_EQ(session->I2cWrite(0xA0, nullptr, 1), 2u);
  RemoveDevice();
  EXPECT_EQ(session->I2cRead(0xA0, nullptr, 1, nullptr, 1), 1u);
  EXPECT_EQ(session->I2cWrite(0xA0, nullptr, 1), 1u);
}

// ---- GPIO ----

using Gpio = Lines;

TEST_F(Gpio, ReadReturnsTheDriversWordUnswapped) {
  driver.Expect(0x22200C, "00000000 00000005 00000000", "00000000 00000005 78563412");
  std::uint32_t value = 0;
  EXPECT_EQ(session->ReadGpio(&value), kOk);
  EXPECT_EQ(value, 0x12345678u);
}

TEST_F(Gpio, WriteSendsTheValueBigEndian) {
  driver.ExpectEcho(0x22200C, "00000000 00000005 12345678");
  EXPECT_EQ(session->WriteGpio(0x12345678), kOk);
}

TEST_F(Gpio, IgnoresTheFirstWordOfTheReply) {
  driver.Expect(0x22200C, "00000000 00000005 00000000", "05000080 00000005 01000000");
  driver.Expect(0x22200C, "00000000 00000005 00000001", "05000080");
  std::uint32_t value = 0;
  EXPECT_EQ(session->ReadGpio(&value), kOk);
  EXPECT_EQ(value, 1u);
  EXPECT_EQ(session->WriteGpio(1), kOk);
}

TEST_F(Gpio, ReportsPointerDeviceAndFailedRequest) {
  driver.ExpectFailure(0x22200C, "00000000 00000005 00000000");
  driver.ExpectFailure(0x22200C, "00000000 00000005 00000001");
  std::uint32_t value = 0x77;
  EXPECT_EQ(session->ReadGpio(&value), 5u);
  EXPECT_EQ(session->WriteGpio(1), 5u);
  RemoveDevice();
  EXPECT_EQ(session->ReadGpio(nullptr), 2u);
  EXPECT_EQ(session->ReadGpio(&value), 1u);
  EXPECT_EQ(session->WriteGpio(1), 1u);
  EXPECT_EQ(value, 0x77u);
}

// ---- GPO ----

using Gpo = Lines;

TEST_F(Gpo, HalfAUnitOnFirmware3Is500AndThePulseEndsAtTheOppositeLevel) {
  session->identity.firmware_version = 0x03010000;
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00000001 000001f4");
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00000001 00000000");
  std::uint32_t level = 9;
  EXPECT_EQ(session->SetGpo(1, 0.5f, 1), kOk);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0u);
  EXPECT_EQ(session->SetGpo(1, 0.0f, 1), kOk);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 1u);
}

TEST_F(Gpo, LineTwoIsAnotherOperationWithALevelOfItsOwn) {
  driver.ExpectEcho(0x2223FC, "00000000 09000000 00000000 000007d0");
  std::uint32_t level = 9;
  EXPECT_EQ(session->SetGpo(0, 2.0f, 2), kOk);
  EXPECT_EQ(session->GetGpo(&level, 2), kOk);
  EXPECT_EQ(level, 1u);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0u);
}

TEST_F(Gpo, OlderFirmwareGetsTheDurationTruncated) {
  session->identity.firmware_version = 0x02FFFFFF;
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00000001 00000002");
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00000001 00000000");
  std::uint32_t level = 9;
  EXPECT_EQ(session->SetGpo(1, 2.9f, 1), kOk);
  // Too short to be seen in the request, but a pulse all the same.
  EXPECT_EQ(session->SetGpo(1, 0.9f, 1), kOk);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0u);
}

TEST_F(Gpo, AnyNonZeroLevelIsSentAndKeptAsGivenButInvertsToZero) {
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00001234 00000000");
  driver.ExpectEcho(0x2223FC, "00000000 06000000 00001234 000003e8");
  std::uint32_t level = 9;
  EXPECT_EQ(session->SetGpo(0x1234, 0.0f, 1), kOk);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0x1234u);
  EXPECT_EQ(session->SetGpo(0x1234, 1.0f, 1), kOk);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0u);
}

TEST_F(Gpo, SetChecksFirmwareDeviceDurationAndLineInThisOrder) {
  EXPECT_EQ(session->SetGpo(1, -0.001f, 1), 7u);
  EXPECT_EQ(session->SetGpo(1, 0.0f, 0), 7u);
  EXPECT_EQ(session->SetGpo(1, 0.0f, 3), 7u);
  RemoveDevice();
  EXPECT_EQ(session->SetGpo(1, -1.0f, 3), 1u);
  session->identity.firmware_version = 0x034D0000;
  EXPECT_EQ(session->SetGpo(1, -1.0f, 3), 12u);
}

TEST_F(Gpo, GetChecksDevicePointerFirmwareAndLineInThisOrder) {
  std::uint32_t level = 9;
  EXPECT_EQ(session->GetGpo(&level, 0), 7u);
  EXPECT_EQ(session->GetGpo(&level, 3), 7u);
  session->identity.firmware_version = 0x02430000;
  EXPECT_EQ(session->GetGpo(&level, 3), 12u);
  EXPECT_EQ(session->GetGpo(nullptr, 3), 2u);
  RemoveDevice();
  EXPECT_EQ(session->GetGpo(nullptr, 3), 1u);
  EXPECT_EQ(level, 9u);
}

TEST_F(Gpo, AFailedRequestKeepsTheLevel) {
  driver.ExpectFailure(0x2223FC, "00000000 06000000 00000001 00000000");
  std::uint32_t level = 9;
  EXPECT_EQ(session->SetGpo(1, 0.0f, 1), 5u);
  EXPECT_EQ(session->GetGpo(&level, 1), kOk);
  EXPECT_EQ(level, 0u);
}

// ---- Frame number ----

using FrameNumber = Lines;

TEST_F(FrameNumber, ReturnsTheCounterAndThePairOfWords) {
  driver.Expect(0x2220C0, "00000000 60000000 00000000 00000000 00000000",
                "00000000 60000000 fe000000 78563412 ffffffff");
  std::uint8_t counter = 0;
  std::uint32_t pair[2] = {};
  EXPECT_EQ(session->GetFrameNumber(&counter, pair), kOk);
  EXPECT_EQ(counter, 0xFE);
  EXPECT_EQ(pair[0], 0x12345678u);
  EXPECT_EQ(pair[1], 0xFFFFFFFFu);
}

TEST_F(FrameNumber, ReturnsTheDriversStatusWordItself) {
  driver.Expect(0x2220C0, "00000000 60000000 00000000 00000000 00000000",
                "05000080 60000000 07000000 01000000 02000000");
  driver.Expect(0x2220C0, "00000000 60000000 00000000 00000000 00000000", "01000000");
  std::uint8_t counter = 0;
  std::uint32_t pair[2] = {};
  EXPECT_EQ(session->GetFrameNumber(&counter, pair), 0x80000005u);
  EXPECT_EQ(counter, 7);
  EXPECT_EQ(pair[1], 2u);
  EXPECT_EQ(session->GetFrameNumber(&counter, pair), 1u);
}

TEST_F(FrameNumber, ReportsDeviceAllocationAndFailedRequest) {
  driver.ExpectFailure(0x2220C0, "00000000 60000000 00000000 00000000 00000000");
  std::uint8_t counter = 7;
  std::uint32_t pair[2] = {1, 2};
  EXPECT_EQ(session->GetFrameNumber(&counter, pair), 5u);
  {
    const Refusal refusal(FaultPoint::kAllocation);
    EXPECT_EQ(session->GetFrameNumber(&counter, pair), 9u);
  }
  RemoveDevice();
  EXPECT_EQ(session->GetFrameNumber(&counter, pair), 1u);
  EXPECT_EQ(counter, 7);
  EXPECT_EQ(pair[0], 1u);
  EXPECT_EQ(pair[1], 2u);
}

// ---- Time-out ----

using Timeout = Lines;

TEST_F(Timeout, IsZeroUntilSetAndKeptOnceTheDriverAcceptedIt) {
  std::uint32_t timeout = 9;
  EXPECT_EQ(session->GetTimeout(&timeout), kOk);
  EXPECT_EQ(timeout, 0u);
  driver.ExpectEcho(0x22202C, "00000000 00000000 a00f0000");
  EXPECT_EQ(session->SetTimeout(4000), kOk);
  EXPECT_EQ(session->GetTimeout(&timeout), kOk);
  EXPECT_EQ(timeout, 4000u);
}

TEST_F(Timeout, IgnoresTheDriversStatusWord) {
  driver.Expect(0x22202C, "00000000 00000000 ffffffff", "12000080");
  std::uint32_t timeout = 0;
  EXPECT_EQ(session->SetTimeout(0xFFFFFFFF), kOk);
  EXPECT_EQ(session->GetTimeout(&timeout), kOk);
  EXPECT_EQ(timeout, 0xFFFFFFFFu);
}

TEST_F(Timeout, ReportsDevicePointerAndFailedRequest) {
  driver.ExpectFailure(0x22202C, "00000000 00000000 01000000");
  std::uint32_t timeout = 9;
  EXPECT_EQ(session->SetTimeout(1), 5u);
  EXPECT_EQ(session->GetTimeout(&timeout), kOk);
  EXPECT_EQ(timeout, 0u);
  EXPECT_EQ(session->GetTimeout(nullptr), 2u);
  RemoveDevice();
  EXPECT_EQ(session->SetTimeout(1), 1u);
  EXPECT_EQ(session->GetTimeout(nullptr), 1u);
}

// ---- Flush ----

using Flush = Lines;

TEST_F(Flush, SendsARequestWithoutBuffers) {
  session->stream.running.store(1);
  driver.Expect(0x222170, "");
  EXPECT_EQ(session->FlushVideoData(), kOk);
}

TEST_F(Flush, NeedsAStreamAVideoModeAndNoTrigger) {
  EXPECT_EQ(session->FlushVideoData(), 13u);
  session->stream.running.store(1);
  session->geometry.video_mode = 0;
  EXPECT_EQ(session->FlushVideoData(), 13u);
  session->geometry.video_mode = 1;
  session->trigger.active.store(1);
  EXPECT_EQ(session->FlushVideoData(), 13u);
  RemoveDevice();
  EXPECT_EQ(session->FlushVideoData(), 1u);
}

TEST_F(Flush, ReportsAFailedRequest) {
  session->stream.running.store(1);
  driver.ExpectFailure(0x222170, "");
  EXPECT_EQ(session->FlushVideoData(), 5u);
}

// ---- Continuous auto exposure ----

using ContinuousAutoExposure = Lines;

TEST_F(ContinuousAutoExposure, SendsBothArgumentsAndKeepsTheFirst) {
  session.MakeSecondGeneration();
  driver.ExpectEcho(0x2223FC, "00000000 18000000 00000001 00abcdef");
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 0xABCDEF), kOk);
  EXPECT_EQ(session->exposure.continuous_auto, 1u);
}

TEST_F(ContinuousAutoExposure, IsRefusedForAFirstGenerationImagerEvenWithoutADevice) {
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 2), 12u);
  RemoveDevice();
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 2), 12u);
}

TEST_F(ContinuousAutoExposure, AFailedRequestKeepsTheSetting) {
  session.MakeSecondGeneration();
  driver.ExpectFailure(0x2223FC, "00000000 18000000 00000001 00000002");
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 2), 5u);
  EXPECT_EQ(session->exposure.continuous_auto, 0u);
}

TEST_F(ContinuousAutoExposure, HasNoDeviceCheckOfItsOwn) {
  session.MakeSecondGeneration();
  RemoveDevice();
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 2), 5u);
}

}  // namespace
}  // namespace ormidex::testing
