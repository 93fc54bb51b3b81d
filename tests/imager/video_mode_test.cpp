// Video mode and transfer size, request by request.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "support/register_script.h"
#include "support/second_generation_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class ModeTest : public ::testing::Test {
 protected:
  // The gamma table that ends each change of the transfer size, off.
  void TurnsTableOff() { driver_.ExpectEcho(0x222028, std::string(528, '0')); }
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  RegisterScript second_{driver_, 0x66};
  TestSession session_{driver_};
};

using VideoMode = ModeTest;
using TransferSize = ModeTest;

TEST_F(VideoMode, IsOneRequest) {
  driver_.ExpectEcho(0x222088, "00000000 00000000 05000000");
  EXPECT_EQ(session_->SetVideoMode(5), kOk);
  std::uint32_t mode = 0;
  EXPECT_EQ(session_->GetVideoMode(&mode), kOk);
  EXPECT_EQ(mode, 5u);
}

TEST_F(VideoMode, UnchangedSendsNothing) { EXPECT_EQ(session_->SetVideoMode(1), kOk); }

TEST_F(VideoMode, StopsAndRestartsARunningStream) {
  session_->stream.running.store(1);
  script_.Stops();
  driver_.ExpectEcho(0x222088, "00000000 00000000 02000000");
  script_.Starts();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

TEST_F(VideoMode, StaysStoredAndTheStreamStoppedWhenTheRequestFails) {
  session_->stream.running.store(1);
  script_.Stops();
  driver_.ExpectFailure(0x222088, "00000000 00000000 02000000");
  EXPECT_EQ(session_->SetVideoMode(2), kRequestFailed);
  EXPECT_EQ(session_->geometry.video_mode, 2u);
  EXPECT_EQ(session_->stream.running.load(), 0u);
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
}

TEST_F(VideoMode, ReturnsTheDriversAnswerAfterRestarting) {
  session_->stream.running.store(1);
  script_.Stops();
  driver_.Expect(0x222088, "00000000 00000000 02000000", "05000080");
  script_.Starts();
  EXPECT_EQ(session_->SetVideoMode(2), kOutOfRange);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

TEST_F(VideoMode, OfTheSecondGenerationNeedsNoKnownClock) {
  session_.MakeSecondGeneration();
  session_->exposure.clocking = 77;
  driver_.ExpectEcho(0x222088, "00000000 00000000 03000000");
  EXPECT_EQ(session_->SetVideoMode(3), kOk);
}

// 640 x 480 pixels at 4 MHz take 76.8 ms; the system's clock may be coarse.
TEST_F(VideoMode, OfTheSecondGenerationWaitsForAFrame) {
  session_.MakeSecondGeneration();
  session_->exposure.clocking = 2;
  driver_.ExpectEcho(0x222088, "00000000 00000000 02000000");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(session_->SetVideoMode(2), kOk);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(60));
}

TEST_F(VideoMode, NeedsDeviceAndPointer) {
  EXPECT_EQ(session_->GetVideoMode(nullptr), kNullPointer);
  session_->link.handle = nullptr;
  std::uint32_t mode = 0;
  EXPECT_EQ(session_->GetVideoMode(&mode), kNoCamera);
  EXPECT_EQ(session_->SetVideoMode(1), kNoCamera);
}

TEST_F(TransferSize, IsOneRequestAndTheGammaTable) {
  driver_.ExpectEcho(0x222010, "00000000 60000000 08000000");
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  std::uint32_t bits = 0;
  EXPECT_EQ(session_->GetDataTransferSize(&bits), kOk);
  EXPECT_EQ(bits, 8u);
}

TEST_F(TransferSize, OfSixteenBitsAtClock0SwitchesToClock1AndReturns18) {
  script_.WritesCommand(12, 1);
  script_.Writes(145, 0);
  driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(16), kClockingChanged);
  EXPECT_EQ(session_->exposure.clocking, 1u);
  EXPECT_EQ(session_->geometry.bytes_per_pixel, 2u);
  EXPECT_EQ(session_->geometry.frame_bytes, 614400u);
  std::uint32_t bits = 0;
  EXPECT_EQ(session_->GetDataTransferSize(&bits), kOk);
  EXPECT_EQ(bits, 16u);
}

TEST_F(TransferSize, OfSixteenBitsAtClock128SwitchesToClock129) {
  session_->exposure.clocking = 128;
  script_.WritesCommand(12, 129);
  script_.Writes(145, 0);
  driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(16), kClockingChanged);
  EXPECT_EQ(session_->exposure.clocking, 129u);
}

TEST_F(TransferSize, OfSixteenBitsKeepsASlowClock) {
  for (std::uint32_t clocking : {129u, 1u, 130u, 2u}) {
    session_->exposure.clocking = clocking;
    driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
    TurnsTableOff();
    EXPECT_EQ(session_->SetDataTransferSize(16), kOk);
    EXPECT_EQ(session_->exposure.clocking, clocking);
  }
}

TEST_F(TransferSize, AcceptsNothingElse) {
  for (std::uint32_t bits : {0u, 1u, 7u, 10u, 15u, 17u, 24u, 0xFFFFFFFFu}) {
    EXPECT_EQ(session_->SetDataTransferSize(bits), kOutOfRange) << bits;
  }
}

TEST_F(TransferSize, IsTheOldOneWhenTheClockCannotBeChanged) {
  driver_.ExpectFailure(0x2223FC, "00000000 02000000 0000000c 00000001");
  EXPECT_EQ(session_->SetDataTransferSize(16), kRequestFailed);
  EXPECT_EQ(session_->geometry.bytes_per_pixel, 1u);
}

TEST_F(TransferSize, IsAlsoABitOfCommandRegister7ForSomeFirmware) {
  session_->exposure.clocking = 1;
  for (std::uint32_t firmware : {0x02020001u, 0x02FFFFFFu}) {
    session_->identity.firmware_version = firmware;
    driver_.Expect(0x2223FC, "00000000 01000000 00008807 00000000",
                   "00000000 01000000 00008807 000000f0");
    driver_.ExpectEcho(0x2223FC, "00000000 02000000 00008807 000000f1");
    driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
    TurnsTableOff();
    EXPECT_EQ(session_->SetDataTransferSize(16), kOk);
    script_.ReadsCommand(0x8807, 0xFF);
    script_.WritesCommand(0x8807, 0xFE);
    driver_.ExpectEcho(0x222010, "00000000 60000000 08000000");
    TurnsTableOff();
    EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  }
}

TEST_F(TransferSize, IsNotABitForTheOthers) {
  for (std::uint32_t firmware : {0u, 0x02020000u, 0x03000000u}) {
    session_->identity.firmware_version = firmware;
    driver_.ExpectEcho(0x222010, "00000000 60000000 08000000");
    TurnsTableOff();
    EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
  }
  session_.MakeSecondGeneration();
  session_->identity.firmware_version = 0x02020001;
  second_.ReadsPair(78, 0);
  second_.ReadsPair(82, 650);
  second_.Reads(95, 20);
  second_.Reads(96, 30);
  driver_.ExpectEcho(0x222010, "00000000 66000000 08000000");
  ReadsTiming(second_, {});
  second_.WritesBlock(80, "01e1");
  second_.Reads(78, 0);
  second_.Writes(79, 0);
  second_.Writes(78, 0x40);
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
}

// 640 rows of 719 clocks at 8 MHz are 57.52 ms. With two bytes a pixel the shortest
// row stays 650: n = 1250000 / 866250 + 1 = 2.
TEST_F(TransferSize, OfTheSecondGenerationKeepsTheExposureTime) {
  session_.MakeSecondGeneration();
  session_->identity.firmware_version = 0x03012200;
  session_->exposure.clocking = 1;
  session_->stream.running.store(1);
  second_.Stops();
  second_.ReadsPair(78, 0x4280);
  second_.ReadsPair(82, 650);
  second_.Reads(95, 20);
  second_.Reads(96, 30);
  driver_.ExpectEcho(0x222010, "00000000 66000000 10000000");
  ReadsTiming(second_, {});
  second_.WritesBlock(80, "0280");
  second_.Reads(78, 0x42);
  second_.Writes(79, 0x80);
  second_.Writes(78, 0x02);
  // 614400 bytes.
  driver_.Expect(0x222040, "00000000 80020000 e0010000 00600900 00000000 00000000");
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(16), kOk);
  EXPECT_FLOAT_EQ(session_->exposure.last_exposure_time, 57.52f);
}

TEST_F(TransferSize, LoadsTheTableOfTheStoredGammaAtTheNewWidth) {
  session_->options.gamma = 2.2f;
  session_->exposure.clocking = 1;
  driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
  // Entries have tests of their own; here the kind of the table counts.
  driver_.ExpectAnything(0x222028, 2056);
  EXPECT_EQ(session_->SetDataTransferSize(16), kOk);
  driver_.ExpectEcho(0x222010, "00000000 60000000 08000000");
  driver_.ExpectAnything(0x222028, 264);
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
}

TEST_F(TransferSize, ReturnsTheGammaTablesStatus) {
  driver_.ExpectEcho(0x222010, "00000000 60000000 08000000");
  driver_.Expect(0x222028, std::string(528, '0'), "03000080");
  EXPECT_EQ(session_->SetDataTransferSize(8), kNotSupported);
  // Also after a change of the clock, where success would be 18.
  script_.WritesCommand(12, 1);
  script_.Writes(145, 0);
  driver_.ExpectEcho(0x222010, "00000000 60000000 10000000");
  driver_.ExpectFailure(0x222028, std::string(528, '0'));
  EXPECT_EQ(session_->SetDataTransferSize(16), kRequestFailed);
  EXPECT_EQ(session_->geometry.bytes_per_pixel, 2u);
}

TEST_F(TransferSize, IgnoresTheDriversStatusWord) {
  driver_.Expect(0x222010, "00000000 60000000 08000000", "05000080");
  TurnsTableOff();
  EXPECT_EQ(session_->SetDataTransferSize(8), kOk);
}

TEST_F(TransferSize, NeedsDeviceAndPointer) {
  EXPECT_EQ(session_->GetDataTransferSize(nullptr), kNullPointer);
  session_->link.handle = nullptr;
  std::uint32_t bits = 0;
  EXPECT_EQ(session_->GetDataTransferSize(&bits), kNoCamera);
  EXPECT_EQ(session_->SetDataTransferSize(9), kNoCamera);
}

}  // namespace
}  // namespace ormidex::testing
