// Exposure and clock of a first-generation camera, request by request.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "support/register_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using device::CameraSession;

class FirstGenerationExposure : public ::testing::Test {
 protected:
  FirstGenerationExposure() {
    for (std::uint8_t i = 0; i < 6; ++i) {
      session_->exposure.clocking_register_values[i] = static_cast<std::uint8_t>(0xA0 + i);
    }
  }
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  TestSession session_{driver_};
};

TEST_F(FirstGenerationExposure, ValueIsReadLowByteFirst) {
  driver_.Expect(0x222000, "00000000 60000000 13000000 01000000 00000000",
                 "00000000 60000000 13000000 01000000 5f000000");
  driver_.Expect(0x222000, "00000000 60000000 12000000 01000000 00000000",
                 "00000000 60000000 12000000 01000000 04000000");
  std::uint32_t value = 0;
  EXPECT_EQ(session_->GetExposure(&value), kOk);
  EXPECT_EQ(value, 0x045Fu);
}

TEST_F(FirstGenerationExposure, ValueIsWrittenAsOneBlockHighByteFirst) {
  driver_.Expect(0x222004, "00000000 60000000 12000000 02000000 07fe", "00000000");
  EXPECT_EQ(session_->SetExposure(2046), kOk);
}

TEST_F(FirstGenerationExposure, ValueHasNoRangeCheck) {
  script_.WritesBlock(18, "5678");
  EXPECT_EQ(session_->SetExposure(0x12345678), kOk);
}

TEST_F(FirstGenerationExposure, NullPointersAreStatus2) {
  EXPECT_EQ(session_->GetExposure(nullptr), kNullPointer);
  EXPECT_EQ(session_->GetExposureTime(nullptr), kNullPointer);
  EXPECT_EQ(session_->GetImagerClocking(nullptr), kNullPointer);
  EXPECT_EQ(session_->GetMaxExposureTime(1, 640, 480, 0, 15, nullptr), kNullPointer);
}

// 1600 - 1567 = 33 rows of 0.104 ms.
TEST_F(FirstGenerationExposure, TimeIsReadFromTheValue) {
  script_.Reads(19, 0x40);
  script_.Reads(18, 0x06);
  float time = 0;
  EXPECT_EQ(session_->GetExposureTime(&time), kOk);
  EXPECT_FLOAT_EQ(time, 3.432f);
}

TEST_F(FirstGenerationExposure, TimeOfAValueBelowTheFirstExposedRowIsHuge) {
  script_.Reads(19, 0x1E);  // 1566
  script_.Reads(18, 0x06);
  float time = 0;
  EXPECT_EQ(session_->GetExposureTime(&time), kOk);
  EXPECT_FLOAT_EQ(time, 446676598.7f);
}

TEST_F(FirstGenerationExposure, TimeNeedsAKnownFactor) {
  session_->geometry.factor = 3;
  script_.Reads(19, 0x40);
  script_.Reads(18, 0x06);
  float time = -1;
  EXPECT_EQ(session_->GetExposureTime(&time), kOutOfRange);
  EXPECT_EQ(time, -1);
  EXPECT_EQ(session_->SetExposureTime(1, 0), kOutOfRange);
  EXPECT_EQ(session_->SetExposureTime(1, 1), kOutOfRange);
}

// 1119 = 0x045F.
TEST_F(FirstGenerationExposure, TenMillisecondsAtFullHeightAreWrittenAs1119) {
  session_->geometry.width = 1280;
  session_->geometry.height = 1024;
  script_.WritesBlock(18, "045f");
  EXPECT_EQ(session_->SetExposureTime(10, 0), kOk);
}

TEST_F(FirstGenerationExposure, ATimeOf1025RowsIsTooLongWithoutTheAdjustFlag) {
  session_->geometry.height = 1024;
  EXPECT_EQ(session_->SetExposureTime(106.6f, 0), kOutOfRange);
}

// 106.6 ms at 12 MHz: 768.7 rows, 769 + 1023 = 1792 = 0x0700.
TEST_F(FirstGenerationExposure, ATimeThatDoesNotFitSlowsTheClockWithTheAdjustFlag) {
  session_->geometry.height = 1024;
  script_.WritesCommand(12, 0x81);
  script_.Writes(145, 0xA1);
  script_.WritesBlock(18, "0700");
  EXPECT_EQ(session_->SetExposureTime(106.6f, 1), kOk);
  EXPECT_EQ(session_->exposure.clocking, 129u);
}

// From 24 MHz down to 4: 400 ms are 961.5 rows of 0.416 ms, 962 + 1023 = 1985.
TEST_F(FirstGenerationExposure, AdjustingStepsThroughEveryClockToTheSlowest) {
  session_->geometry.height = 1024;
  session_->exposure.clocking = 128;
  script_.WritesCommand(12, 2);
  script_.Writes(145, 0xA5);
  script_.WritesBlock(18, "07c1");
  EXPECT_EQ(session_->SetExposureTime(400, 1), kOk);
  EXPECT_EQ(session_->exposure.clocking, 2u);
}

// One row more than 1024 at 4 MHz is 426.2 ms.
TEST_F(FirstGenerationExposure, AdjustingGivesUpBelowTheSlowestClock) {
  session_->geometry.height = 1024;
  EXPECT_EQ(session_->SetExposureTime(426.3f, 1), kOutOfRange);
  EXPECT_EQ(session_->exposure.clocking, 0u);
}

// A short time would fit a faster clock as well: 1 ms at 6 MHz are 3.6 rows.
TEST_F(FirstGenerationExposure, AdjustingNeverMovesToAFasterClock) {
  session_->geometry.height = 1024;
  session_->exposure.clocking = 130;
  script_.WritesCommand(12, 0x82);
  script_.Writes(145, 0xA2);
  script_.WritesBlock(18, "0403");
  EXPECT_EQ(session_->SetExposureTime(1, 1), kOk);
}

TEST_F(FirstGenerationExposure, AdjustingIsRefusedWhereTheTransferForbidsTheClock) {
  session_->geometry.bytes_per_pixel = 2;
  EXPECT_EQ(session_->SetExposureTime(1, 1), kOutOfRange);
}

TEST_F(FirstGenerationExposure, TimesBelowZeroHugeOrNotANumberAreOutOfRange) {
  const float infinite = std::numeric_limits<float>::infinity();
  for (float time : {-0.001f, -1e30f, -infinite, std::nanf(""), 1e30f, infinite, 4.46676e8f}) {
    EXPECT_EQ(session_->SetExposureTime(time, 0), kOutOfRange) << time;
    EXPECT_EQ(session_->SetExposureTime(time, 1), kOutOfRange) << time;
  }
}

TEST_F(FirstGenerationExposure, ZeroExposesNoRow) {
  script_.WritesBlock(18, "061f");  // 1567
  EXPECT_EQ(session_->SetExposureTime(0, 0), kOk);
  script_.WritesBlock(18, "061f");
  EXPECT_EQ(session_->SetExposureTime(-0.0f, 0), kOk);
}

TEST_F(FirstGenerationExposure, LongestTimeNeedsNoRequest) {
  float time = 0;
  EXPECT_EQ(session_->GetMaxExposureTime(2, 1280, 1024, 0, 15, &time), kOk);
  EXPECT_FLOAT_EQ(time, 30.72f);
}

TEST_F(FirstGenerationExposure, LongestTimeRejectsUnknownFactorsAndClocks) {
  float time = -1;
  for (std::uint32_t factor : {0u, 3u, 5u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session_->GetMaxExposureTime(factor, 1280, 1024, 0, 15, &time), kOutOfRange);
  }
  for (std::uint32_t clocking : {3u, 127u, 131u, 256u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session_->GetMaxExposureTime(1, 1280, 1024, clocking, 15, &time), kOutOfRange);
  }
  EXPECT_EQ(time, -1);
}

TEST_F(FirstGenerationExposure, TheSecondGenerationsGainIsNotSupported) {
  float gain = 0;
  EXPECT_EQ(session_->GetExposureGain(&gain), kNotSupported);
  EXPECT_EQ(session_->SetExposureGain(1), kNotSupported);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->GetExposureGain(&gain), kNotSupported);
  EXPECT_EQ(session_->SetExposureGain(1), kNotSupported);
}

TEST_F(FirstGenerationExposure, ClockIsTwoWritesAndLeavesTheStreamRunning) {
  session_->stream.running.store(1);
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 0000000c 00000001");
  driver_.Expect(0x222004, "ff000000 60000000 91000000 01000000 a4000000", "00000000");
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
  std::uint32_t clocking = 0;
  EXPECT_EQ(session_->GetImagerClocking(&clocking), kOk);
  EXPECT_EQ(clocking, 1u);
}

TEST_F(FirstGenerationExposure, EveryClockHasItsCodeAndItsRegisterValue) {
  const struct {
    std::uint32_t code, value;
  } clocks[] = {{128, 0xA0}, {129, 0xA1}, {130, 0xA2}, {0, 0xA3}, {1, 0xA4}, {2, 0xA5}};
  for (const auto& clock : clocks) {
    script_.WritesCommand(12, clock.code);
    script_.Writes(145, clock.value);
    EXPECT_EQ(session_->SetImagerClocking(clock.code), kOk);
  }
}

TEST_F(FirstGenerationExposure, ClockGoesToCommandRegister5BeforeFirmware3) {
  session_->identity.firmware_version = 0x02FFFFFF;
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 00008805 00000082");
  script_.Writes(145, 0xA2);
  EXPECT_EQ(session_->SetImagerClocking(130), kOk);
  session_->identity.firmware_version = 0x03000000;
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 0000000c 00000082");
  script_.Writes(145, 0xA2);
  EXPECT_EQ(session_->SetImagerClocking(130), kOk);
}

TEST_F(FirstGenerationExposure, UnknownClocksAreOutOfRange) {
  for (std::uint32_t code : {3u, 127u, 131u, 255u, 256u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session_->SetImagerClocking(code), kOutOfRange) << code;
  }
}

TEST_F(FirstGenerationExposure, SixteenBitTransferForbidsTheTwoFastestClocks) {
  session_->geometry.bytes_per_pixel = 2;
  EXPECT_EQ(session_->SetImagerClocking(0), kOutOfRange);
  EXPECT_EQ(session_->SetImagerClocking(128), kOutOfRange);
  script_.WritesCommand(12, 129);
  script_.Writes(145, 0xA1);
  EXPECT_EQ(session_->SetImagerClocking(129), kOk);
}

// The value stays, so the time follows the clock: 33 rows are 6.864 ms at 8 MHz.
TEST_F(FirstGenerationExposure, TimeScalesWithTheClock) {
  script_.WritesCommand(12, 1);
  script_.Writes(145, 0xA4);
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
  script_.Reads(19, 0x40);
  script_.Reads(18, 0x06);
  float time = 0;
  EXPECT_EQ(session_->GetExposureTime(&time), kOk);
  EXPECT_FLOAT_EQ(time, 6.864f);
}

TEST_F(FirstGenerationExposure, DriverAnswersAreMapped) {
  driver_.Expect(0x222004, "00000000 60000000 12000000 02000000 07fe", "05000080");
  EXPECT_EQ(session_->SetExposure(2046), kOutOfRange);
  script_.WritesCommand(12, 2);
  driver_.Expect(0x222004, "ff000000 60000000 91000000 01000000 a5000000", "03000080");
  EXPECT_EQ(session_->SetImagerClocking(2), kNotSupported);
}

}  // namespace
}  // namespace ormidex::testing
