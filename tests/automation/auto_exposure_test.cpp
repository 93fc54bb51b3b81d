// Auto exposure against a model camera: checks, requests and failures.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "automation/pass_gateway.h"
#include "platform/fault_points.h"

namespace ormidex::automation {
namespace {

using namespace requests;
using testing::TestSession;

// 13-bit counts of a 640 x 480 frame of 8 bits: levels 50 and 127.
const std::vector<std::uint8_t> kShort50 = {0x00, 0xEB, 0x00, 0xEB, 0x00, 0xEB};
const std::vector<std::uint8_t> kShort127 = {0x02, 0x54, 0x02, 0x54, 0x02, 0x54};
// 16-bit counts: 1913 and 4763, levels 51 and 127.
const std::vector<std::uint8_t> kNewer51 = {0x07, 0x79, 0x07, 0x79, 0x07, 0x79, 0x07, 0x79};
const std::vector<std::uint8_t> kNewer127 = {0x12, 0x9B, 0x12, 0x9B, 0x12, 0x9B, 0x12, 0x9B};

constexpr Cell Grey(std::uint8_t level) { return {{level, level, level, level}}; }

class AutoExposure : public ::testing::Test {
 protected:
  AutoExposure() : session_(gateway_) {
    gateway_.bus_address = device::kFirstGenerationBusAddress;
    session_->stream.running.store(1);
    session_->options.gamma = 1.0f;
  }
  ~AutoExposure() override { platform::ClearFaults(); }

  // 1000 clocks a row at 16 MHz: 160 rows are 10 ms.
  void MakeSecondGeneration() {
    session_.MakeSecondGeneration();
    gateway_.bus_address = device::kSecondGenerationBusAddress;
    gateway_.registers = {{71, 0x01}, {72, 0xDF}, {75, 0x02}, {76, 0x7F},
                          {78, 0x00}, {79, 160},  {82, 0x03}, {83, 0xD5}};
  }
  void MakeMono() { session_->identity.imager_type = device::kImagerMono; }

  Status Whole(std::uint32_t percent) { return session_->AutoExposure(percent, 0, 0, 0, 0, 0); }
  Status Part(std::uint32_t percent) { return session_->AutoExposure(percent, 1, 40, 20, 80, 60); }

  std::uint32_t RawExposure() { return gateway_.registers[18] * 256u + gateway_.registers[19]; }

  PassGateway gateway_;
  TestSession session_;
};

// ---- Checks ---------------------------------------------------------------------------

TEST_F(AutoExposure, NoDeviceIsOneBeforeAnythingElse) {
  session_->link.handle = nullptr;
  session_->stream.running.store(0);
  EXPECT_EQ(session_->AutoExposure(101, 1, 9999, 0, 0, 0), kNoCamera);
}

TEST_F(AutoExposure, StoppedStreamIsThirteenBeforeTheArguments) {
  session_->stream.running.store(0);
  EXPECT_EQ(session_->AutoExposure(101, 1, 9999, 0, 0, 0), kWrongState);
}

TEST_F(AutoExposure, ContinuousAutoExposureIsThirteenForBothLaws) {
  session_->exposure.continuous_auto = 1;
  EXPECT_EQ(session_->AutoExposure(101, 0, 0, 0, 0, 0), kWrongState);
  MakeSecondGeneration();
  EXPECT_EQ(Whole(50), kWrongState);
  EXPECT_TRUE(gateway_.Requests().empty());
}

TEST_F(AutoExposure, TargetAbove100IsSeven) {
  EXPECT_EQ(Whole(101), kOutOfRange);
  EXPECT_EQ(Whole(0xFFFFFFFFu), kOutOfRange);
  EXPECT_TRUE(gateway_.Requests().empty());
}

TEST_F(AutoExposure, RectangleOutsideTheFrameIsSeven) {
  EXPECT_EQ(session_->AutoExposure(50, 1, 1, 0, 640, 480), kOutOfRange);
  EXPECT_EQ(session_->AutoExposure(50, 1, 0, 1, 640, 480), kOutOfRange);
  EXPECT_EQ(session_->AutoExposure(50, 1, 641, 0, 0, 0), kOutOfRange);
  // A sum of 2^32 or more does not wrap back into the frame.
  EXPECT_EQ(session_->AutoExposure(50, 1, 0xFFFFFFFFu, 0, 2, 4), kOutOfRange);
  EXPECT_EQ(session_->AutoExposure(50, 1, 0, 4, 4, 0xFFFFFFFEu), kOutOfRange);
  EXPECT_TRUE(gateway_.Requests().empty());
}

TEST_F(AutoExposure, RectangleArgumentsAreIgnoredWithoutTheFlag) {
  gateway_.blocks = {kShort127};
  EXPECT_EQ(session_->AutoExposure(50, 0, 9999, 9999, 9999, 9999), kOk);
}

TEST_F(AutoExposure, RectangleUpToTheFramesEdgesIsAccepted) {
  gateway_.frames = {Grey(127)};
  EXPECT_EQ(session_->AutoExposure(50, 1, 0, 0, 640, 480), kOk);
  EXPECT_EQ(session_->AutoExposure(50, 1, 636, 476, 4, 4), kOk);
  EXPECT_EQ(session_->AutoExposure(50, 1, 640, 480, 0, 0), kOk);
}

// ---- Bisection: requests -----------------------------------------------------------------

const Lines kBitOn = kPause + ReadCommand(15) + WriteCommand(15, 0x81) + kResume;
const Lines kBitOff = kPause + ReadCommand(15) + WriteCommand(15, 0x80) + kResume;
const Lines kShortBlock = {"0x2223FC [22] 00000000 11000000 00000010 00000006 00000000 0000"};

// Level 50 for a target of 127, then 127: 1806 (0x070E) and 1926 (0x0786) are set.
TEST_F(AutoExposure, BisectionOfAColourCameraByItsStatistics) {
  gateway_.command_registers[15] = 0x80;
  gateway_.blocks = {kShort50, kShort127};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(gateway_.Requests(),
            WriteImagerPair("60", 18, 0x07, 0x0E) + kBitOn +        // the run's beginning
                kFlush + kFrame + kFrame + kShortBlock +            // pass 1
                WriteImagerPair("60", 18, 0x07, 0x86) +             //
                kFlush + kFrame + kFrame + kShortBlock + kBitOff);  // pass 2, the end
}

TEST_F(AutoExposure, FirmwareBelow3HasLongStatisticsAndRegister7) {
  session_->identity.firmware_version = 0x02020000;
  gateway_.command_registers[0x8807] = 0x40;
  // 127 x 76,800, 127 x 153,600, 127 x 76,800
  gateway_.blocks = {{0x00, 0xD4, 0x94, 0x00, 0x00, 0xA8, 0x29, 0x01, 0x00, 0xD4, 0x94, 0x00}};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(gateway_.Requests(),
            WriteImagerPair("60", 18, 0x07, 0x0E) + kPause + ReadCommand(7, "88") +
                WriteCommand(7, 0x41, "88") + kResume + kFlush + kFrame + kFrame +
                Lines{"0x2223FC [28] 00000000 11000000 00008810 0000000c 00000000 00000000 "
                      "00000000"} +
                kPause + ReadCommand(7, "88") + WriteCommand(7, 0x40, "88") + kResume);
}

TEST_F(AutoExposure, FirmwareBelow22MeasuresTheFrameItself) {
  session_->identity.firmware_version = 0x02010000;
  MakeMono();
  gateway_.frames = {Grey(0), Grey(127)};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(gateway_.Requests(), WriteImagerPair("60", 18, 0x07, 0x0E) + kFlush + kFrame + kFrame);
}

TEST_F(AutoExposure, RectangleIsMeasuredInTheSecondFrameOfEachPass) {
  MakeMono();
  // The first frame of each pass is as it was before and does not count.
  gateway_.frames = {Grey(127), Grey(50), Grey(50), Grey(127)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(gateway_.Requests(), WriteImagerPair("60", 18, 0x07, 0x0E) + kFlush + kFrame + kFrame +
                                     WriteImagerPair("60", 18, 0x07, 0x86) + kFlush + kFrame +
                                     kFrame);
}

TEST_F(AutoExposure, MonochromeCameraWritesNoCommandRegister) {
  MakeMono();
  gateway_.blocks = {kShort127};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(gateway_.Requests(),
            WriteImagerPair("60", 18, 0x07, 0x0E) + kFlush + kFrame + kFrame + kShortBlock);
}

TEST_F(AutoExposure, BothGreensCountAsTheirMean) {
  // 0.7154 x ((100 + 151) >> 1) = 89.4
  gateway_.frames = {Cell{{0, 100, 151, 0}}};
  EXPECT_EQ(Part(33), kOk);  // 84: 89 is its band's last level
  EXPECT_EQ(RawExposure(), 1806u);
}

TEST_F(AutoExposure, SixteenBitFramesAreMeasuredByTheirUpperBytes) {
  session_->geometry.bytes_per_pixel = 2;
  gateway_.sample_bytes = 2;
  gateway_.frames = {Grey(127)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(RawExposure(), 1806u);
}

TEST_F(AutoExposure, RectangleIsRoundedToMultiplesOfFourAndAtLeastFour) {
  MakeMono();
  // Only rows 0 to 3 and columns 0 to 3 have light; a rectangle of 7 x 7 is 4 x 4.
  class Corner : public PassGateway {
   public:
    bool Control(device::DriverHandle handle, const device::DriverRequest& request,
                 std::uint32_t* returned) override {
      if (!PassGateway::Control(handle, request, returned)) return false;
      if (request.code == device::CAM_IOCTL_READ_FRAME) {
        auto* out = static_cast<std::uint8_t*>(request.out);
        std::memset(out, 0, request.out_bytes);
        for (int y = 0; y < 4; ++y) std::memset(out + y * 640, 127, 4);
      }
      return true;
    }
  } corner;
  corner.bus_address = device::kFirstGenerationBusAddress;
  TestSession session(corner);
  session->stream.running.store(1);
  session->identity.imager_type = device::kImagerMono;
  for (const std::uint32_t side : {1u, 2u, 3u, 4u, 5u, 7u, 0u}) {
    EXPECT_EQ(session->AutoExposure(50, 1, 0, 0, side, side), kOk);
    EXPECT_EQ(corner.registers[18] * 256 + corner.registers[19], 1806) << side;
  }
  EXPECT_EQ(session->AutoExposure(50, 1, 0, 0, 8, 8), kOk);
  EXPECT_NE(corner.registers[18] * 256 + corner.registers[19], 1806);
}

// ---- Bisection: ends and failures ----------------------------------------------------------

TEST_F(AutoExposure, DarkSceneEndsNearTheUpperLimitWithSuccess) {
  gateway_.frames = {Grey(0)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(RawExposure(), 2045u);
}

TEST_F(AutoExposure, BrightSceneEndsNearTheLowerLimitWithSuccess) {
  gateway_.frames = {Grey(255)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(RawExposure(), 1567u);
}

// A frame of 4000 rows has a range that wraps and is too wide for 20 passes. Twenty
// values are set after the first one.
TEST_F(AutoExposure, TwentyPassesWithoutReachingTheBandAreSixteen) {
  MakeMono();
  session_->geometry.height = 4000;
  gateway_.frames = {Grey(255)};
  gateway_.frame_width = 640;
  EXPECT_EQ(Part(0), kNotConverged);
  EXPECT_EQ(gateway_.frames_read, 40);
  int sets = 0;
  for (const std::string& line : gateway_.Requests()) sets += line.rfind("0x222004", 0) == 0;
  EXPECT_EQ(sets, 21);
}

TEST_F(AutoExposure, AllocationOfTheFrameFailsWithNineAfterTheFirstExposureIsSet) {
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 1);  // the register's record
  EXPECT_EQ(Whole(50), kOutOfMemory);
  EXPECT_EQ(gateway_.Requests(), WriteImagerPair("60", 18, 0x07, 0x0E));
}

// Each request of the run fails once. Only the exposure and the measured frame end
// it, and from the first pass on the end of the run still comes.
TEST_F(AutoExposure, EachRequestOfABisectionFailing) {
  const std::map<int, Status> statuses = {{0, kRequestFailed},    // exposure
                                          {7, kRequestFailed},    // pass 1, second frame
                                          {8, kRequestFailed},    // exposure
                                          {11, kRequestFailed}};  // pass 2, second frame
  const std::map<int, std::size_t> counts = {{0, 1}, {7, 12}, {8, 13}, {11, 16}};
  for (int request = 0; request < 16; ++request) {
    PassGateway gateway;
    gateway.bus_address = device::kFirstGenerationBusAddress;
    gateway.command_registers[15] = 0x80;
    gateway.frames = {Grey(50), Grey(50), Grey(127), Grey(127)};
    TestSession session(gateway);
    session->stream.running.store(1);
    gateway.fail_request = request;
    // A frame that is not read is not counted, so a skipped frame's failure shifts
    // the levels by one; both frames of a pass are alike, for that it tells nothing.
    if (request == 6) gateway.frames = {Grey(50), Grey(127), Grey(127)};
    const Status expected = statuses.count(request) != 0 ? statuses.at(request) : kOk;
    EXPECT_EQ(session->AutoExposure(50, 1, 0, 0, 640, 480), expected) << request;
    const std::size_t count = counts.count(request) != 0 ? counts.at(request) : 16u;
    EXPECT_EQ(gateway.Requests().size(), count) << request;
    // The register is written back as it was read; one that could not be read
    // keeps nothing but the bit.
    const bool unread = request == 2 || request == 13;
    const bool not_cleared = request == 14;
    EXPECT_EQ(gateway.command_registers[15], unread ? 0 : not_cleared ? 0x81 : 0x80) << request;
  }
}

TEST_F(AutoExposure, FailedFrameIsNotLookedAtWhenTheCameraMeasures) {
  gateway_.blocks = {kShort127};
  gateway_.fail_codes = {device::CAM_IOCTL_READ_FRAME, device::CAM_IOCTL_FLUSH};
  EXPECT_EQ(Whole(50), kOk);
}

// The first block cannot be read: levels of 0, so the exposure goes up.
TEST_F(AutoExposure, FailedStatisticsCountAsDark) {
  gateway_.blocks = {kShort127};
  gateway_.fail_request = 8;
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(RawExposure(), 1926u);
}

// The second block cannot be read: the first one's level of 50 counts again.
TEST_F(AutoExposure, FailedStatisticsKeepWhatTheBufferHeld) {
  gateway_.blocks = {kShort50, kShort50, kShort127};
  gateway_.fail_request = 13;
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(RawExposure(), 1986u);
}

TEST_F(AutoExposure, TriggerModeFailsTheFrameRead) {
  session_->trigger.active.store(1);
  EXPECT_EQ(Part(50), kWrongState);
}

// ---- Proportional law: requests -------------------------------------------------------------

Lines ReadImagers(std::initializer_list<unsigned> addresses) {
  Lines lines;
  for (const unsigned address : addresses) lines = lines + ReadImager("66", address);
  return lines;
}

const Lines kGetTime = ReadImagers({78, 79, 82, 83, 95, 96});
const Lines kRowInputs = ReadImagers({82, 83, 75, 76, 75, 76, 71, 72, 65, 80, 81, 71, 72, 95, 96});

Lines NewerStatistics(unsigned selection) {
  return ReadCommand(2) + WriteCommand(2, selection | 0x20) + ReadCommand(6) + ReadCommand(7) +
         Lines{"0x2223FC [24] 00000000 11000000 00000010 00000008 00000000 00000000"};
}

// 10 ms at level 51 for a target of 127.5: 25 ms. The shortest row is 650 clocks
// (0x028A) plus 19, so that is 597 rows (0x0255). Two passes in the band end it.
TEST_F(AutoExposure, ProportionalLawByTheCamerasStatistics) {
  MakeSecondGeneration();
  MakeMono();
  gateway_.command_registers[2] = 0x01;
  gateway_.blocks = {kNewer51, kNewer127};
  EXPECT_EQ(Whole(50), kOk);
  const Lines set_time = kRowInputs + WriteImagerPair("66", 82, 0x02, 0x8A) +
                         WriteImagerPair("66", 80, 0x02, 0x55) + ReadImager("66", 78) +
                         WriteImager("66", 79, 0x55) + WriteImager("66", 78, 0x42);
  EXPECT_EQ(gateway_.Requests(), kGetTime +                                              //
                                     kFlush + kFrame + kFrame + NewerStatistics(0x01) +  // pass 1
                                     set_time +                                          //
                                     kFlush + kFrame + kFrame + NewerStatistics(0x21) +  // pass 2
                                     kFlush + kFrame + kFrame + NewerStatistics(0x21));  // pass 3
  EXPECT_EQ(session_->exposure.last_exposure_time, 25.0f);
}

TEST_F(AutoExposure, ProportionalLawReadsAThirdFrameForARectangle) {
  MakeSecondGeneration();
  MakeMono();
  gateway_.frames = {Grey(0), Grey(0), Grey(127), Grey(0), Grey(0), Grey(127)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(gateway_.Requests(),
            kGetTime + kFlush + kFrame + kFrame + kFrame + kFlush + kFrame + kFrame + kFrame);
}

TEST_F(AutoExposure, ProportionalLawOfAColourCamera) {
  MakeSecondGeneration();
  // 0.3577 x (90 + 92) + 0.0721 x 120 + 0.2125 x 40 = 65.10 + 8.65 + 8.5 = 82
  gateway_.frames = {Cell{{40, 90, 92, 120}}};
  EXPECT_EQ(Part(31), kOk);  // 79.05: within 3
  EXPECT_EQ(session_->exposure.last_exposure_time, 0.0f);
  EXPECT_EQ(Part(30), kOk);  // 76.5: 5.5 away
  EXPECT_NE(session_->exposure.last_exposure_time, 0.0f);
}

TEST_F(AutoExposure, ProportionalLawTakesSixteenBitFrames) {
  MakeSecondGeneration();
  session_->geometry.bytes_per_pixel = 2;
  gateway_.sample_bytes = 2;
  gateway_.frames = {Grey(128)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 0.0f);
}

TEST_F(AutoExposure, ProportionalLawDoesNotRoundItsRectangle) {
  MakeSecondGeneration();
  MakeMono();
  // Columns 0 and 1 of 128, column 2 of 0: 3 columns have two pairs' worth of
  // pixels, one pair summed, so 6 x 2 of it is two thirds of the level.
  class Stripes : public PassGateway {
   public:
    bool Control(device::DriverHandle handle, const device::DriverRequest& request,
                 std::uint32_t* returned) override {
      if (!PassGateway::Control(handle, request, returned)) return false;
      if (request.code == device::CAM_IOCTL_READ_FRAME) {
        std::memset(request.out, 128, request.out_bytes);
      }
      return true;
    }
  } stripes;
  stripes.bus_address = device::kSecondGenerationBusAddress;
  stripes.registers = gateway_.registers;
  TestSession session(stripes);
  session.MakeSecondGeneration();
  session->identity.imager_type = device::kImagerMono;
  session->stream.running.store(1);
  session->options.gamma = 1.0f;
  // 3 x 4 pixels: 2 samples of each kind over 12 / 4 = 3: 256 / 3 = 85; target 84.15.
  EXPECT_EQ(session->AutoExposure(33, 1, 0, 0, 3, 4), kOk);
  EXPECT_EQ(session->exposure.last_exposure_time, 0.0f);
}

TEST_F(AutoExposure, ProportionalLawTakesRectanglesBelowTwoByTwo) {
  MakeSecondGeneration();
  gateway_.frames = {Grey(127)};
  for (const std::uint32_t width : {0u, 1u, 2u, 3u}) {
    for (const std::uint32_t height : {0u, 1u, 2u, 3u}) {
      EXPECT_EQ(session_->AutoExposure(50, 1, 7, 5, width, height), kOk);
    }
  }
}

TEST_F(AutoExposure, ProportionalLawEndsAt300MillisecondsOnADarkScene) {
  MakeSecondGeneration();
  gateway_.frames = {Grey(0)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 300.0f);
  // 10 ms x 127.5 is beyond at once, and the second pass meets the end again.
  EXPECT_EQ(gateway_.frames_read, 6);
}

TEST_F(AutoExposure, ProportionalLawSucceedsAfterTwentyPassesWithoutReachingTheBand) {
  MakeSecondGeneration();
  MakeMono();
  // The scene answers every change with the opposite one.
  for (int pass = 0; pass < 20; ++pass) {
    const Cell cell = Grey(pass % 2 == 0 ? 102 : 150);
    gateway_.frames.insert(gateway_.frames.end(), 3, cell);
  }
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(gateway_.frames_read, 60);
}

TEST_F(AutoExposure, ProportionalLawStartsAt50MillisecondsWhenTheCameraReportsNone) {
  MakeSecondGeneration();
  MakeMono();
  gateway_.registers[79] = 0;
  gateway_.frames = {Grey(51)};
  gateway_.frames.insert(gateway_.frames.begin(), 2, Grey(51));
  gateway_.frames.push_back(Grey(127));
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 125.0f);  // 127.5 / 51 x 50
}

TEST_F(AutoExposure, GammaRaisesTheProportionalTarget) {
  MakeSecondGeneration();
  MakeMono();
  gateway_.frames = {Grey(178)};
  session_->options.gamma = 2.0f;  // 178.5 for 50 %
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 0.0f);
  session_->options.gamma = 0.0f;  // 76.5
  gateway_.frames = {Grey(76)};
  EXPECT_EQ(Part(50), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 0.0f);
}

TEST_F(AutoExposure, FrameOfTheProportionalLawNotAllocatedIsNine) {
  MakeSecondGeneration();
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 6);  // six registers read
  EXPECT_EQ(Whole(50), kOutOfMemory);
  EXPECT_EQ(gateway_.Requests(), kGetTime);
}

// Each request of a run fails once: only the exposure read at its beginning ends it.
TEST_F(AutoExposure, EachRequestOfTheProportionalLawFailing) {
  constexpr int kRequests = 6 + 8 + 20 + 8 + 8;
  for (int request = 0; request < kRequests; ++request) {
    PassGateway gateway;
    MakeSecondGeneration();
    gateway.bus_address = device::kSecondGenerationBusAddress;
    gateway.registers = gateway_.registers;
    gateway.blocks = {kNewer51, kNewer127};
    TestSession session(gateway);
    session.MakeSecondGeneration();
    session->identity.imager_type = device::kImagerMono;
    session->stream.running.store(1);
    session->options.gamma = 1.0f;
    gateway.fail_request = request;
    const bool reading_time = request < 6;
    EXPECT_EQ(session->AutoExposure(50, 0, 0, 0, 0, 0), reading_time ? kRequestFailed : kOk)
        << request;
    if (reading_time) {
      EXPECT_EQ(gateway.Requests().size(), static_cast<std::size_t>(request) + 1);
    }
  }
}

// ---- Frames without rows -------------------------------------------------------------------

// Sub-sampling by 2 leaves no row of a window 8 rows high.
TEST_F(AutoExposure, FrameWithoutRowsIsSurvived) {
  session_->geometry.height = 0;
  gateway_.blocks = {kShort127};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(RawExposure(), 2046u);
  EXPECT_EQ(session_->AutoExposure(50, 1, 0, 0, 4, 0), kOutOfRange);  // no frame of 0 bytes
  MakeSecondGeneration();
  gateway_.blocks = {kNewer127};
  EXPECT_EQ(Whole(50), kOk);
  EXPECT_EQ(session_->AutoExposure(50, 1, 0, 0, 4, 0), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 300.0f);
}

}  // namespace
}  // namespace ormidex::automation
