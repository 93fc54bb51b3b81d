// Exposure and clock of a second-generation camera, request by request.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "support/register_script.h"
#include "support/second_generation_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class SecondGenerationExposure : public ::testing::Test {
 protected:
  SecondGenerationExposure() {
    session_.MakeSecondGeneration();
    session_->identity.firmware_version = 0x03012200;
  }
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x66};
  TestSession session_{driver_};
};

TEST_F(SecondGenerationExposure, ValueIsNotSupported) {
  std::uint32_t value = 0;
  EXPECT_EQ(session_->GetExposure(&value), kNotSupported);
  EXPECT_EQ(session_->SetExposure(1), kNotSupported);
  // The pointer comes before the generation, the device before the pointer.
  EXPECT_EQ(session_->GetExposure(nullptr), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->GetExposure(nullptr), kNoCamera);
}

// The whole conversion as bytes. 25.1 ms: 719 clocks of 6.25e-5 ms, 558 rows.
TEST_F(SecondGenerationExposure, TimeIsSetByteForByte) {
  const struct {
    const char* address;
    const char* value;
  } reads[] = {{"52", "02"}, {"53", "8a"},                // 82, 83: 650
               {"4b", "02"}, {"4c", "7f"},                // 75, 76: 639
               {"4b", "02"}, {"4c", "7f"},                // again, for the shortest row
               {"47", "01"}, {"48", "df"}, {"41", "00"},  // 71, 72: 479; 65
               {"50", "01"}, {"51", "e1"}, {"47", "01"}, {"48", "df"},  // 80, 81; 71, 72
               {"5f", "14"}, {"60", "1e"}};                             // 95, 96: 20, 30
  for (const auto& read : reads) {
    const std::string head =
        std::string("00000000 66000000") + read.address + "000000" + "01000000";
    driver_.Expect(0x222000, head + "00000000", head + read.value + "000000");
  }
  driver_.Expect(0x222004, "00000000 66000000 50000000 02000000 022e", "00000000");
  driver_.Expect(0x222000, "00000000 66000000 4e000000 01000000 00000000",
                 "00000000 66000000 4e000000 01000000 40000000");
  driver_.Expect(0x222004, "ff000000 66000000 4f000000 01000000 2e000000", "00000000");
  driver_.Expect(0x222004, "ff000000 66000000 4e000000 01000000 02000000", "00000000");
  EXPECT_EQ(session_->SetExposureTime(25.1f, 0), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 25.1f);
}

TEST_F(SecondGenerationExposure, UpdateBitIsTheInverseOfTheOneRead) {
  for (const std::uint32_t high : {0x00u, 0x3Fu, 0x40u, 0xFFu}) {
    ReadsTiming(script_, {});
    script_.WritesBlock(80, "022e");
    script_.Reads(78, high);
    script_.Writes(79, 0x2E);
    script_.Writes(78, (high & 0x40) != 0 ? 0x02 : 0x42);
    EXPECT_EQ(session_->SetExposureTime(25.1f, 0), kOk);
  }
}

// 10 ms are 222 rows, the frame has 480 + 1.
TEST_F(SecondGenerationExposure, FrameLengthIsRaisedToTheShortestFrame) {
  ReadsTiming(script_, {});
  script_.WritesBlock(80, "01e1");
  script_.Reads(78, 0x40);
  script_.Writes(79, 0xDE);
  script_.Writes(78, 0x00);
  EXPECT_EQ(session_->SetExposureTime(10, 0), kOk);
}

// Window of 1280 x 960 array pixels, factor 2: a = 640, b = 480, 961 / 2 + 1 = 481.
TEST_F(SecondGenerationExposure, FrameLengthCountsRowsAfterSubSampling) {
  session_->geometry.factor = 2;
  TimingRegisters timing;
  timing.width = 1279;
  timing.height = 959;
  timing.sub_sampling = 0x05;
  ReadsTiming(script_, timing);
  script_.WritesBlock(80, "01e1");
  script_.Reads(78, 0);
  script_.Writes(79, 0);
  script_.Writes(78, 0x40);
  EXPECT_EQ(session_->SetExposureTime(0, 0), kOk);
}

TEST_F(SecondGenerationExposure, RowLengthIsWrittenOnlyWhenItDiffers) {
  TimingRegisters timing;
  timing.row_length = 0x0300;
  ReadsTiming(script_, timing);
  script_.WritesBlock(82, "028a");
  script_.WritesBlock(80, "022e");
  script_.Reads(78, 0x40);
  script_.Writes(79, 0x2E);
  script_.Writes(78, 0x02);
  EXPECT_EQ(session_->SetExposureTime(25.1f, 0), kOk);
}

TEST_F(SecondGenerationExposure, OnlySixBitsOfTheHighBytesCount) {
  TimingRegisters timing;
  timing.row_length = 0xC28A;
  timing.width = 0x827F;
  timing.height = 0x41DF;
  timing.sub_sampling = 0xFC;
  ReadsTiming(script_, timing);
  script_.WritesBlock(80, "022e");
  script_.Reads(78, 0x40);
  script_.Writes(79, 0x2E);
  script_.Writes(78, 0x02);
  EXPECT_EQ(session_->SetExposureTime(25.1f, 0), kOk);
}

// 800 ms would be 17802 rows: 781.29 clocks a row instead, 712 = 0x02C8 of its own.
TEST_F(SecondGenerationExposure, ATimeOf16384RowsLengthensTheRowAndReports16383) {
  ReadsTiming(script_, {});
  script_.WritesBlock(82, "02c8");
  script_.WritesBlock(80, "3fff");
  script_.Reads(78, 0x00);
  script_.Writes(79, 0xFF);
  script_.Writes(78, 0x7F);
  EXPECT_EQ(session_->SetExposureTime(800, 0), kOk);
}

// 736.3 ms ask for 650 clocks again: a lengthened row is written all the same.
TEST_F(SecondGenerationExposure, ALengthenedRowIsWrittenEvenWhenItIsThere) {
  ReadsTiming(script_, {});
  script_.WritesBlock(82, "028a");
  script_.WritesBlock(80, "3fff");
  script_.Reads(78, 0x40);
  script_.Writes(79, 0xFF);
  script_.Writes(78, 0x3F);
  EXPECT_EQ(session_->SetExposureTime(736.3f, 0), kOk);
}

TEST_F(SecondGenerationExposure, HugeTimesAreCappedAtTheLongestRow) {
  for (float time : {1e6f, 1e30f, std::numeric_limits<float>::infinity()}) {
    ReadsTiming(script_, {});
    script_.WritesBlock(82, "3fff");
    script_.WritesBlock(80, "3fff");
    script_.Reads(78, 0x40);
    script_.Writes(79, 0xFF);
    script_.Writes(78, 0x3F);
    EXPECT_EQ(session_->SetExposureTime(time, 0), kOk);
    EXPECT_EQ(session_->exposure.last_exposure_time, time);
  }
}

TEST_F(SecondGenerationExposure, TimesBelowZeroOrNotANumberAreOutOfRange) {
  for (float time : {-0.001f, -1e30f, std::nanf("")}) {
    EXPECT_EQ(session_->SetExposureTime(time, 0), kOutOfRange) << time;
  }
  EXPECT_EQ(session_->exposure.last_exposure_time, 0.0f);
}

TEST_F(SecondGenerationExposure, AdjustFlagDoesNotTouchTheClock) {
  ReadsTiming(script_, {});
  script_.WritesBlock(82, "02c8");
  script_.WritesBlock(80, "3fff");
  script_.Reads(78, 0x00);
  script_.Writes(79, 0xFF);
  script_.Writes(78, 0x7F);
  EXPECT_EQ(session_->SetExposureTime(800, 1), kOk);
}

// Older firmware: 640 x 1016 pixels need rows of 652 clocks, 721 with blanking;
// 25.1 / (721 x 6.25e-5) = 557.0.
TEST_F(SecondGenerationExposure, OlderFirmwareHasItsOwnShortestRow) {
  session_->identity.firmware_version = 0x030121FF;
  session_->geometry.height = 1016;
  TimingRegisters timing;
  timing.height = 1015;
  ReadsTiming(script_, timing);
  script_.WritesBlock(82, "028c");
  script_.WritesBlock(80, "03f9");  // 1016 + 1
  script_.Reads(78, 0x40);
  script_.Writes(79, 0x2D);
  script_.Writes(78, 0x02);
  EXPECT_EQ(session_->SetExposureTime(25.1f, 0), kOk);
}

// 0x022E = 558 rows of 719 clocks at 6.25e-5 ms.
TEST_F(SecondGenerationExposure, TimeIsReadBackFromTheRows) {
  script_.ReadsPair(78, 0xC22E);
  script_.ReadsPair(82, 0xC28A);
  script_.Reads(95, 20);
  script_.Reads(96, 30);
  float time = 0;
  EXPECT_EQ(session_->GetExposureTime(&time), kOk);
  EXPECT_FLOAT_EQ(time, 25.075125f);
}

// 481 / 1 + 1 = 482 rows; 641 + 20 + 30 + 29 = 720 clocks of 6.25e-8 s: 45 us;
// 482 rows are 21.69 ms, and 483 give 46 frames a second.
TEST_F(SecondGenerationExposure, LongestTimeReadsTheBlanking) {
  script_.Reads(95, 20);
  script_.Reads(96, 30);
  float time = 0;
  EXPECT_EQ(session_->GetMaxExposureTime(1, 640, 480, 0, 60, &time), kOk);
  EXPECT_FLOAT_EQ(time, 21.69f);
  script_.Reads(95, 20);
  script_.Reads(96, 30);
  EXPECT_EQ(session_->GetMaxExposureTime(1, 640, 480, 0, 20, &time), kOk);
  EXPECT_FLOAT_EQ(time, 50.0f);
  EXPECT_EQ(session_->GetMaxExposureTime(1, 640, 480, 3, 60, &time), kOutOfRange);
  EXPECT_EQ(session_->GetMaxExposureTime(0, 640, 480, 0, 60, &time), kOutOfRange);
}

TEST_F(SecondGenerationExposure, GainIsReadInManualModeOnly) {
  script_.Reads(34, 0xFE);
  script_.Reads(16, 63);
  float gain = 0;
  EXPECT_EQ(session_->GetExposureGain(&gain), kOk);
  EXPECT_FLOAT_EQ(gain, 7.48797f);
  for (std::uint32_t mode : {0x00u, 0x01u, 0x03u, 0xFDu}) {
    script_.Reads(34, mode);
    gain = 5;
    EXPECT_EQ(session_->GetExposureGain(&gain), kWrongState) << mode;
    EXPECT_EQ(gain, 5);
  }
}

TEST_F(SecondGenerationExposure, GainIsMinusOneWhenItsCodeCannotBeRead) {
  script_.Reads(34, 0x02);
  driver_.ExpectFailure(0x222000, "00000000 66000000 10000000 01000000 00000000");
  float gain = 5;
  EXPECT_EQ(session_->GetExposureGain(&gain), kRequestFailed);
  EXPECT_EQ(gain, -1.0f);
}

TEST_F(SecondGenerationExposure, SettingTheGainSwitchesToManualAndKeepsTheOtherBits) {
  script_.Reads(34, 0xF5);
  script_.Writes(34, 0xF6);
  script_.Writes(16, 63);
  EXPECT_EQ(session_->SetExposureGain(7.488f), kOk);
  script_.Reads(34, 0x02);
  script_.Writes(34, 0x02);
  script_.Writes(16, 0);
  EXPECT_EQ(session_->SetExposureGain(0.483f), kOk);
}

TEST_F(SecondGenerationExposure, GainsOutsideTheRangeAreRejected) {
  for (float gain : {7.4881f, 0.4829f, 0.0f, -1.0f, 1e30f, std::nanf("")}) {
    EXPECT_EQ(session_->SetExposureGain(gain), kOutOfRange) << gain;
  }
}

TEST_F(SecondGenerationExposure, GainChecksTheGenerationBeforeTheDevice) {
  session_->link.handle = nullptr;
  float gain = 0;
  EXPECT_EQ(session_->GetExposureGain(&gain), kNoCamera);
  EXPECT_EQ(session_->SetExposureGain(1), kNoCamera);
}

// 640 rows at 16 MHz are 28.76 ms (a little more in single precision); at 8 MHz a row
// of 719 clocks takes 0.089875 ms: 320 rows. The shortest row at 8 MHz: n = 1250000 / 866250 + 1 =
// 2, 1000 / 2 - 43 = 457: 650 again.
void ChangesClock(RegisterScript& script, std::uint32_t address, std::uint32_t code) {
  script.ReadsPair(78, 0x4280);
  script.ReadsPair(82, 650);
  script.Reads(95, 20);
  script.Reads(96, 30);
  script.WritesCommand(address, code);
  ReadsTiming(script, {});
  script.WritesBlock(80, "01e1");
  script.Reads(78, 0x42);
  script.Writes(79, 0x40);
  script.Writes(78, 0x01);
}

TEST_F(SecondGenerationExposure, ClockChangeKeepsTheExposureTime) {
  script_.ReadsCommand(0, 0x4B);
  ChangesClock(script_, 12, 1);
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
  EXPECT_EQ(session_->exposure.clocking, 1u);
  EXPECT_FLOAT_EQ(session_->exposure.last_exposure_time, 28.76f);
}

TEST_F(SecondGenerationExposure, ClockChangeStopsAndRestartsARunningStream) {
  session_->stream.running.store(1);
  script_.ReadsCommand(0, 0x4A);
  script_.Stops();
  ChangesClock(script_, 12, 1);
  script_.Starts();
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

TEST_F(SecondGenerationExposure, ClockGoesToCommandRegister5BeforeFirmware3) {
  session_->identity.firmware_version = 0x02FF0000;
  script_.ReadsCommand(0x8800, 0);
  ChangesClock(script_, 0x8805, 1);
  EXPECT_EQ(session_->SetImagerClocking(1), kOk);
}

TEST_F(SecondGenerationExposure, ImagersOfLetterJRefuseTheTwoFastestClocks) {
  for (std::uint32_t code : {0u, 128u}) {
    driver_.ExpectEcho(0x2223FC, "00000000 01000000 00000000 00000000");
    script_.ReadsCommand(0, 0x4A);
    ChangesClock(script_, 12, 1);
    EXPECT_EQ(session_->SetImagerClocking(3), kOutOfRange);  // the letter is read first
    EXPECT_EQ(session_->SetImagerClocking(1), kOk);
    script_.ReadsCommand(0, 0x4A);
    EXPECT_EQ(session_->SetImagerClocking(code), kOutOfRange);
    session_->exposure.clocking = 0;
  }
}

TEST_F(SecondGenerationExposure, SixteenBitTransferForbidsTheTwoFastestClocks) {
  session_->geometry.bytes_per_pixel = 2;
  for (std::uint32_t code : {0u, 128u}) {
    script_.ReadsCommand(0, 0);
    EXPECT_EQ(session_->SetImagerClocking(code), kOutOfRange);
  }
}

// 600 rows are 26.9625 ms, in single precision a little less: 599 rows come out.
TEST_F(SecondGenerationExposure, ATimeReadAndSetAgainCanLoseARow) {
  script_.ReadsPair(78, 0x0258);
  script_.ReadsPair(82, 650);
  script_.Reads(95, 20);
  script_.Reads(96, 30);
  float time = 0;
  EXPECT_EQ(session_->GetExposureTime(&time), kOk);
  EXPECT_FLOAT_EQ(time, 26.9625f);
  ReadsTiming(script_, {});
  script_.WritesBlock(80, "0257");
  script_.Reads(78, 0x02);
  script_.Writes(79, 0x57);
  script_.Writes(78, 0x42);
  EXPECT_EQ(session_->SetExposureTime(time, 0), kOk);
}

// The write fails, the rest of the sequence still runs at the old clock.
TEST_F(SecondGenerationExposure, AFailedClockWriteStillRestoresExposureAndStream) {
  session_->stream.running.store(1);
  script_.ReadsCommand(0, 0);
  script_.Stops();
  script_.ReadsPair(78, 0x4280);
  script_.ReadsPair(82, 650);
  script_.Reads(95, 20);
  script_.Reads(96, 30);
  driver_.ExpectFailure(0x2223FC, "00000000 02000000 0000000c 00000001");
  ReadsTiming(script_, {});
  script_.WritesBlock(80, "0280");
  script_.Reads(78, 0x42);
  script_.Writes(79, 0x80);
  script_.Writes(78, 0x02);
  script_.Starts();
  EXPECT_EQ(session_->SetImagerClocking(1), kRequestFailed);
  EXPECT_EQ(session_->exposure.clocking, 0u);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

}  // namespace
}  // namespace ormidex::testing
