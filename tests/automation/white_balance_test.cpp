// White balance against a model camera: checks, requests and failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "automation/pass_gateway.h"
#include "platform/fault_points.h"

namespace ormidex::automation {
namespace {

using namespace requests;
using testing::TestSession;

// 13-bit counts of a 640 x 480 frame of 8 bits: 469, 235 and 118 are the levels
// 100, 50 and 25.
const std::vector<std::uint8_t> kShort100x50x25 = {0x01, 0xD5, 0x00, 0xEB, 0x00, 0x76};
const std::vector<std::uint8_t> kShort100 = {0x01, 0xD5, 0x01, 0xD5, 0x01, 0xD5};
// 16-bit counts: 3751, 7501 and 1876 are 100, 200 and 50.
const std::vector<std::uint8_t> kNewer100x200x50 = {0x0E, 0xA7, 0x1D, 0x4D, 0x1D, 0x4D, 0x07, 0x54};
const std::vector<std::uint8_t> kNewer200 = {0x1D, 0x4D, 0x1D, 0x4D, 0x1D, 0x4D, 0x1D, 0x4D};

constexpr Cell kTinted = {{100, 50, 50, 25}};
constexpr Cell kGrey = {{100, 100, 100, 100}};
constexpr Cell kNewerTinted = {{100, 200, 200, 50}};

Lines Times(int count, const Lines& lines) {
  Lines all;
  for (int i = 0; i < count; ++i) all = all + lines;
  return all;
}

class WhiteBalance : public ::testing::Test {
 protected:
  WhiteBalance() : session_(gateway_) { Prepare(gateway_, session_); }
  ~WhiteBalance() override { platform::ClearFaults(); }

  static void Prepare(PassGateway& gateway, TestSession& session) {
    gateway.bus_address = device::kFirstGenerationBusAddress;
    gateway.registers = {{20, 5}, {21, 6}, {22, 7}};
    gateway.command_registers[14] = 0x64;
    session->stream.running.store(1);
    session->options.gamma = 1.0f;
    session->gains = {0, 9, 10, 11};  // mono, red, blue, green
  }
  // Codes of 14 are gains of 0.9995; 160 rows of 1000 clocks are 10 ms.
  static void MakeSecondGeneration(PassGateway& gateway, TestSession& session) {
    session.MakeSecondGeneration();
    gateway.bus_address = device::kSecondGenerationBusAddress;
    gateway.registers = {{0, 14},    {1, 14},    {2, 14},    {3, 14},   {71, 0x01}, {72, 0xDF},
                         {75, 0x02}, {76, 0x7F}, {78, 0x00}, {79, 160}, {82, 0x03}, {83, 0xD5}};
  }
  void MakeSecondGeneration() { MakeSecondGeneration(gateway_, session_); }

  static Status Whole(TestSession& session) {
    return session->WhiteBalance(0, 0, 0, 0, 0, 255, 255, 255);
  }
  static Status Part(TestSession& session) {
    return session->WhiteBalance(1, 40, 20, 80, 60, 255, 255, 255);
  }
  Status Whole() { return Whole(session_); }
  Status Part() { return Part(session_); }

  std::vector<int> Registers(std::uint32_t first, std::uint32_t count) {
    std::vector<int> values;
    for (std::uint32_t i = 0; i < count; ++i) values.push_back(gateway_.registers[first + i]);
    return values;
  }

  PassGateway gateway_;
  TestSession session_;
};

using Codes = std::vector<int>;

// ---- Checks ---------------------------------------------------------------------------

TEST_F(WhiteBalance, ChecksOfBothLawsInTheirOrder) {
  for (int generation = 1; generation <= 2; ++generation) {
    if (generation == 2) MakeSecondGeneration();
    session_->stream.running.store(0);
    EXPECT_EQ(session_->WhiteBalance(1, 9999, 0, 0, 0, 1, 1, 1), kWrongState);
    void* handle = session_->link.handle;
    session_->link.handle = nullptr;
    EXPECT_EQ(session_->WhiteBalance(1, 9999, 0, 0, 0, 1, 1, 1), kNoCamera);
    session_->link.handle = handle;
    session_->stream.running.store(1);
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
    EXPECT_EQ(session_->WhiteBalance(1, 1, 0, 640, 480, 1, 1, 1), kOutOfRange);
    EXPECT_EQ(session_->WhiteBalance(1, 0, 1, 640, 480, 1, 1, 1), kOutOfRange);
    EXPECT_EQ(session_->WhiteBalance(1, 0xFFFFFFFFu, 0, 2, 4, 1, 1, 1), kOutOfRange);
    EXPECT_EQ(Whole(), kOutOfMemory);
    EXPECT_TRUE(gateway_.Requests().empty());
  }
}

TEST_F(WhiteBalance, RectangleArgumentsAreIgnoredWithoutTheFlag) {
  gateway_.blocks = {kShort100};
  EXPECT_EQ(session_->WhiteBalance(0, 9999, 9999, 9999, 9999, 1, 1, 1), kOk);
}

// ---- Older law ------------------------------------------------------------------------

const Lines kReadGains = {"0x222000 [19] 00000000 60000000 14000000 03000000 000000"};
Lines WriteGains(const std::string& codes) {
  return {"0x222004 [19] 00000000 60000000 14000000 03000000 " + codes};
}
const Lines kShortBlock = {"0x2223FC [22] 00000000 11000000 00000010 00000006 00000000 0000"};

// Codes 0, then 20 x 100 / 50 = 40 and 20 x 100 / 25 = 80, held at 63.
TEST_F(WhiteBalance, OlderLawByTheCamerasStatistics) {
  gateway_.blocks = {kShort100x50x25, kShort100x50x25, kShort100};
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(gateway_.Requests(), ReadCommand(14) + WriteCommand(14, 0) + kReadGains +  // beginning
                                     Times(4, kFrame) + kShortBlock +                  // pass 1
                                     WriteGains("000000") +                            //
                                     Times(4, kFrame) + kShortBlock +                  // pass 2
                                     WriteGains("00283f") +                            //
                                     Times(4, kFrame) + kShortBlock +                  // pass 3
                                     WriteCommand(14, 0x64));                          // end
  EXPECT_EQ(Registers(20, 3), (Codes{0, 40, 63}));
  EXPECT_EQ(session_->gains.red, 0u);
  EXPECT_EQ(session_->gains.green, 40u);
  EXPECT_EQ(session_->gains.blue, 63u);
}

TEST_F(WhiteBalance, OlderLawMeasuresARectangleInTheFourthFrame) {
  // What the first three frames of a pass show does not count.
  gateway_.frames = {kGrey, kGrey,   kGrey,   kTinted, kGrey,   kGrey,
                     kGrey, kTinted, kTinted, kTinted, kTinted, kGrey};
  EXPECT_EQ(Part(), kOk);
  EXPECT_EQ(gateway_.Requests(), ReadCommand(14) + WriteCommand(14, 0) + kReadGains +
                                     Times(4, kFrame) + WriteGains("000000") + Times(4, kFrame) +
                                     WriteGains("00283f") + Times(4, kFrame) +
                                     WriteCommand(14, 0x64));
}

TEST_F(WhiteBalance, OlderLawOfFirmwareBelow3ReadsLongStatistics) {
  session_->identity.firmware_version = 0x02020000;
  gateway_.command_registers[0x8806] = 0x32;
  // 100 x 76,800, 100 x 153,600, 100 x 76,800
  gateway_.blocks = {{0x00, 0x30, 0x75, 0x00, 0x00, 0x60, 0xEA, 0x00, 0x00, 0x30, 0x75, 0x00}};
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(gateway_.Requests(),
            ReadCommand(6, "88") + WriteCommand(6, 0, "88") + kReadGains + Times(4, kFrame) +
                Lines{"0x2223FC [28] 00000000 11000000 00008810 0000000c 00000000 00000000 "
                      "00000000"} +
                WriteCommand(6, 0x32, "88"));
}

// There is no saturation to put aside either, and that does not matter.
TEST_F(WhiteBalance, OlderLawOfFirmwareBelow22MeasuresTheFrameItself) {
  session_->identity.firmware_version = 0x02010000;
  gateway_.frames = {kGrey};
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(gateway_.Requests(), kReadGains + Times(4, kFrame));
}

TEST_F(WhiteBalance, BalancedPictureKeepsItsGainsAndRefreshesTheCachedOnes) {
  gateway_.blocks = {kShort100};
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(Registers(20, 3), (Codes{5, 6, 7}));
  EXPECT_EQ(session_->gains.red, 5u);
  EXPECT_EQ(session_->gains.green, 6u);
  EXPECT_EQ(session_->gains.blue, 7u);
}

// A camera that is balanced only thanks to its gains, but not within the spread,
// starts from zero again.
TEST_F(WhiteBalance, OlderLawStartsFromZeroCodes) {
  gateway_.frames.insert(gateway_.frames.end(), 4, Cell{{105, 100, 100, 100}});
  gateway_.frames.push_back(kGrey);
  EXPECT_EQ(Part(), kOk);
  EXPECT_EQ(Registers(20, 3), (Codes{0, 0, 0}));
}

TEST_F(WhiteBalance, OlderLawWithoutEffectIsSixteenAfterTwentyPassesAndPutsTheGainsBack) {
  gateway_.frames = {kTinted};
  EXPECT_EQ(Part(), kNotConverged);
  EXPECT_EQ(gateway_.frames_read, 80);
  int writes = 0;
  for (const std::string& line : gateway_.Requests()) writes += line.rfind("0x222004", 0) == 0;
  EXPECT_EQ(writes, 21);  // twenty passes and the saved codes
  EXPECT_EQ(Registers(20, 3), (Codes{5, 6, 7}));
  EXPECT_EQ(session_->gains.red, 5u);
  EXPECT_EQ(session_->gains.green, 6u);
  EXPECT_EQ(session_->gains.blue, 7u);
  EXPECT_EQ(gateway_.command_registers[14], 0x64);
}

TEST_F(WhiteBalance, TargetsOfZeroAreNeutral) {
  gateway_.blocks = {kShort100};
  EXPECT_EQ(session_->WhiteBalance(0, 0, 0, 0, 0, 0, 0, 0), kOk);
}

// The channel that does not count at all never comes near the others.
TEST_F(WhiteBalance, TargetOfZeroForOneChannelIsSixteen) {
  gateway_.frames = {kGrey};
  EXPECT_EQ(session_->WhiteBalance(1, 0, 0, 640, 480, 100, 100, 0), kNotConverged);
}

TEST_F(WhiteBalance, TargetColourIsWhatCountsAsWhite) {
  gateway_.frames = {Cell{{200, 100, 100, 50}}};
  EXPECT_EQ(session_->WhiteBalance(1, 0, 0, 640, 480, 4, 2, 1), kOk);
  EXPECT_EQ(Registers(20, 3), (Codes{5, 6, 7}));
}

// Each request of a run over a rectangle fails once.
TEST_F(WhiteBalance, EachRequestOfTheOlderLawFailing) {
  constexpr int kRequests = 18;
  const std::map<int, Status> ends = {
      {2, kRequestFailed},   // gains read
      {6, kRequestFailed},   // pass 1, fourth frame
      {7, kRequestFailed},   // zero codes
      {11, kRequestFailed},  // pass 2, fourth frame
      {12, kRequestFailed},  // codes
      {16, kRequestFailed},  // pass 3, fourth frame
  };
  for (int request = 0; request < kRequests; ++request) {
    PassGateway gateway;
    TestSession session(gateway);
    Prepare(gateway, session);
    gateway.frames.insert(gateway.frames.end(), 8, kTinted);
    gateway.frames.push_back(kGrey);
    // One frame fewer is read when a skipped one fails.
    if ((request >= 3 && request <= 5) || (request >= 8 && request <= 10)) {
      gateway.frames.erase(gateway.frames.begin());
    }
    gateway.fail_request = request;
    const bool fails = ends.count(request) != 0;
    EXPECT_EQ(Part(session), fails ? ends.at(request) : kOk) << request;

    // Gains that could not be read are taken to be those last known.
    const Codes saved = request == 2 ? Codes{9, 11, 10} : Codes{5, 6, 7};
    const Codes expected = fails ? saved : Codes{0, 40, 63};
    EXPECT_EQ((Codes{gateway.registers[20], gateway.registers[21], gateway.registers[22]}),
              expected)
        << request;
    EXPECT_EQ((Codes{static_cast<int>(session->gains.red), static_cast<int>(session->gains.green),
                     static_cast<int>(session->gains.blue)}),
              expected)
        << request;
    // A saturation that cannot be read stays at 0, one that cannot be put back too.
    const int saturation = request == 0 || request == 17 ? 0 : 0x64;
    EXPECT_EQ(gateway.command_registers[14], saturation) << request;
  }
}

TEST_F(WhiteBalance, FailedFrameIsNotLookedAtWhenTheCameraMeasures) {
  gateway_.blocks = {kShort100};
  gateway_.fail_codes = {device::CAM_IOCTL_READ_FRAME};
  EXPECT_EQ(Whole(), kOk);
}

TEST_F(WhiteBalance, FailedRestoringOfTheGainsIsIgnored) {
  gateway_.fail_codes = {device::CAM_IOCTL_WRITE_REGISTERS};
  gateway_.frames = {kTinted};
  EXPECT_EQ(Part(), kRequestFailed);
  EXPECT_EQ(session_->gains.red, 5u);
}

TEST_F(WhiteBalance, MonochromeCameraIsBalancedLikeAnyOther) {
  session_->identity.imager_type = device::kImagerMono;
  gateway_.frames = {kGrey};
  EXPECT_EQ(Part(), kOk);
}

// ---- Newer law ------------------------------------------------------------------------

const Lines kReadSiteGains = {"0x222000 [20] 00000000 66000000 00000000 04000000 00000000"};
Lines WriteSiteGains(const std::string& codes) {
  return {"0x222004 [20] 00000000 66000000 00000000 04000000 " + codes};
}
Lines NewerStatistics() {
  return ReadCommand(2) + WriteCommand(2, 0x21) + ReadCommand(6) + ReadCommand(7) +
         Lines{"0x2223FC [24] 00000000 11000000 00000010 00000008 00000000 00000000"};
}
// The table is turned off again, as a gamma of 1 means.
Lines GammaOff() {
  std::string line = "0x222028 [264]";
  for (int i = 0; i < 264 / 4; ++i) line += " 00000000";
  return {line};
}

// Red, green, green, blue 100, 200, 200, 50 at gains near 1: red to 2.0 (code 46,
// 0x2E), blue beyond the last code, the greens to 1.0 (code 14, 0x0E).
TEST_F(WhiteBalance, NewerLawByTheCamerasStatistics) {
  MakeSecondGeneration();
  gateway_.command_registers[2] = 0x01;
  gateway_.blocks = {kNewer100x200x50, kNewer200};
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(gateway_.Requests(),
            ReadCommand(14) + WriteCommand(14, 0x80) +  // beginning
                ReadCommand(2) + WriteCommand(2, 0x01) + ReadCommand(6) + ReadCommand(7) +  // dark
                WriteCommand(2, 0x21) + ReadCommand(6) + ReadCommand(7) +  // clipped
                kReadSiteGains +                                           //
                kFlush + kFrame + kFrame + NewerStatistics() +             // pass 1
                WriteSiteGains("0e2e3f0e") +                               //
                kFlush + kFrame + kFrame + NewerStatistics() +             // pass 2
                GammaOff() + WriteCommand(14, 0x64));                      // end
  EXPECT_EQ(session_->gains.red, 46u);
  EXPECT_EQ(session_->gains.green, 14u);
  EXPECT_EQ(session_->gains.blue, 63u);
}

TEST_F(WhiteBalance, NewerLawMeasuresARectangleInTheThirdFrame) {
  MakeSecondGeneration();
  gateway_.frames = {kGrey,        kGrey,        kGrey,        kGrey, kGrey,
                     kNewerTinted, kNewerTinted, kNewerTinted, kGrey};
  EXPECT_EQ(Part(), kOk);
  EXPECT_EQ(gateway_.Requests(), ReadCommand(14) + WriteCommand(14, 0x80) + kFlush +
                                     Times(3, kFrame) + kReadSiteGains + kFlush + Times(3, kFrame) +
                                     WriteSiteGains("0e2e3f0e") + kFlush + Times(3, kFrame) +
                                     GammaOff() + WriteCommand(14, 0x64));
}

TEST_F(WhiteBalance, CachedGreenIsTheMeanOfBothGreens) {
  MakeSecondGeneration();
  gateway_.registers[0] = 20;
  gateway_.registers[1] = 30;
  gateway_.registers[2] = 40;
  gateway_.registers[3] = 23;
  gateway_.frames = {kGrey};
  EXPECT_EQ(Part(), kOk);
  EXPECT_EQ(session_->gains.red, 30u);
  EXPECT_EQ(session_->gains.green, 21u);
  EXPECT_EQ(session_->gains.blue, 40u);
}

TEST_F(WhiteBalance, SiteWithoutLightCountsAsOneInARectangle) {
  MakeSecondGeneration();
  gateway_.frames = {Cell{{0, 17, 17, 17}}};  // 1 and 17 are within the spread
  EXPECT_EQ(Part(), kOk);
  gateway_.frames = {Cell{{0, 18, 18, 18}}};
  EXPECT_EQ(Part(), kNotConverged);
}

// 10 x 256 counts of 32 pixels are 81,920, more than a quarter of 307,200.
class BadlyExposed : public WhiteBalance {
 protected:
  BadlyExposed() {
    MakeSecondGeneration();
    gateway_.command_registers[6] = 10;
    gateway_.blocks = {kNewer200};
  }
  // Exposure times that were set, as rows.
  std::vector<std::uint32_t> RowsSet() {
    std::vector<std::uint32_t> rows;
    std::uint32_t low = 0;
    for (const std::string& line : gateway_.Requests()) {
      const std::string low_write = "0x222004 [20] ff000000 66000000 4f000000 01000000 ";
      const std::string high_write = "0x222004 [20] ff000000 66000000 4e000000 01000000 ";
      if (line.rfind(low_write, 0) == 0) {
        low = static_cast<std::uint32_t>(std::stoul(line.substr(low_write.size(), 2), nullptr, 16));
      }
      if (line.rfind(high_write, 0) == 0) {
        const auto high =
            static_cast<std::uint32_t>(std::stoul(line.substr(high_write.size(), 2), nullptr, 16));
        rows.push_back((high & 0x3F) * 256 + low);
      }
    }
    return rows;
  }
};

// The target of 45 % is 114.75 and the level stays at 200: 10 ms, then 5.7375,
// 3.2919, 1.8887, 1.0836 and 1.0 twice; a row is 0.0418125 ms. 10 ms, or 239 rows,
// is put back.
TEST_F(BadlyExposed, PictureIsExposedForTheBalanceAndThenAsBefore) {
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(RowsSet(), (std::vector<std::uint32_t>{137, 78, 45, 25, 23, 23, 239}));
  EXPECT_EQ(session_->exposure.last_exposure_time, 10.0f);
}

TEST_F(BadlyExposed, QuarterOfThePixelsIsNotYetBad) {
  // 2400 x 32 = 76,800 is a quarter.
  gateway_.command_registers[6] = 9;
  gateway_.command_registers[7] = 96;
  EXPECT_EQ(Whole(), kOk);
  EXPECT_TRUE(RowsSet().empty());
  gateway_.command_registers[7] = 97;
  EXPECT_EQ(Whole(), kOk);
  EXPECT_FALSE(RowsSet().empty());
}

TEST_F(BadlyExposed, CameraThatExposesByItselfIsLeftAlone) {
  session_->exposure.continuous_auto = 1;
  EXPECT_EQ(Whole(), kOk);
  EXPECT_TRUE(RowsSet().empty());
}

TEST_F(BadlyExposed, RectangleIsNeverFoundToBeBadlyExposed) {
  gateway_.frames = {Cell{{255, 255, 255, 255}}};
  EXPECT_EQ(Part(), kOk);
  EXPECT_TRUE(RowsSet().empty());
}

TEST_F(BadlyExposed, ExposureIsPutBackWhenTheBalanceFails) {
  gateway_.blocks = {kNewer100x200x50};
  EXPECT_EQ(Whole(), kNotConverged);
  EXPECT_EQ(RowsSet().back(), 239u);
}

// The time is not known, so nothing is exposed and nothing put back; gamma and
// saturation are.
TEST_F(BadlyExposed, FailedExposureReadEndsTheRun) {
  gateway_.fail_request = 9;
  EXPECT_EQ(Whole(), kRequestFailed);
  EXPECT_TRUE(RowsSet().empty());
  EXPECT_EQ(gateway_.Requests().size(), 12u);
  EXPECT_EQ(gateway_.command_registers[14], 0x64);
}

// Auto exposure cannot read the time that was read just before: the balance goes on.
TEST_F(BadlyExposed, FailedAutoExposureIsIgnored) {
  gateway_.fail_request = 9 + 6;
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(RowsSet(), (std::vector<std::uint32_t>{239}));
}

TEST_F(WhiteBalance, NewerLawWithoutEffectIsSixteenAndKeepsTheGainsInForce) {
  MakeSecondGeneration();
  gateway_.frames = {kNewerTinted};
  EXPECT_EQ(Part(), kNotConverged);
  EXPECT_EQ(gateway_.frames_read, 3 + 20 * 3);
  // Red and blue run to the last code; the greens are measured against green 1.
  EXPECT_EQ(Registers(0, 4), (Codes{14, 63, 63, 14}));
  EXPECT_EQ(session_->gains.red, 63u);
}

// Each request of a run over a rectangle fails once. The gains of a failed run stay
// as they were last written.
TEST_F(WhiteBalance, EachRequestOfTheNewerLawFailing) {
  constexpr int kRequests = 18;
  const std::map<int, Codes> gains_after_failure = {
      {6, {14, 14, 14, 14}},   // gains read
      {10, {14, 14, 14, 14}},  // pass 1, third frame
      {11, {14, 14, 14, 14}},  // gains written
      {15, {14, 46, 63, 14}},  // pass 2, third frame
  };
  for (int request = 0; request < kRequests; ++request) {
    PassGateway gateway;
    TestSession session(gateway);
    Prepare(gateway, session);
    MakeSecondGeneration(gateway, session);
    gateway.frames.insert(gateway.frames.end(), 6, kNewerTinted);
    gateway.frames.push_back(kGrey);
    const bool skipped_frame_fails = (request >= 3 && request <= 5) || request == 8 || request == 9;
    if (skipped_frame_fails) gateway.frames.erase(gateway.frames.begin());
    gateway.fail_request = request;
    const auto failure = gains_after_failure.find(request);
    const bool fails = failure != gains_after_failure.end();
    EXPECT_EQ(Part(session), fails ? kRequestFailed : kOk) << request;
    EXPECT_EQ((Codes{gateway.registers[0], gateway.registers[1], gateway.registers[2],
                     gateway.registers[3]}),
              fails ? failure->second : (Codes{14, 46, 63, 14}))
        << request;
    const Lines sent = gateway.Requests();
    const bool saturation_unread = request == 0;
    EXPECT_EQ((Lines{sent.end() - 2, sent.end()}),
              GammaOff() + WriteCommand(14, saturation_unread ? 0x80 : 0x64))
        << request;
  }
}

TEST_F(WhiteBalance, NewerLawWithItsSaturationOperation) {
  MakeSecondGeneration();
  session_->identity.firmware_version = 0x03011101;
  gateway_.frames = {kGrey};
  EXPECT_EQ(Part(), kOk);
  // Operations 21 (read) and 20 (write); the model reports what it was sent, 0.
  const Lines sent = gateway_.Requests();
  EXPECT_EQ(sent[0], "0x2223FC [12] 00000000 15000000 00000000");
  EXPECT_EQ(sent[1], "0x2223FC [12] 00000000 14000000 00000080");
  EXPECT_EQ(sent.back(), "0x2223FC [12] 00000000 14000000 00000000");
}

TEST_F(WhiteBalance, GammaIsWrittenBack) {
  MakeSecondGeneration();
  session_->options.gamma = 2.2f;
  gateway_.frames = {kGrey};
  EXPECT_EQ(Part(), kOk);
  const Lines sent = gateway_.Requests();
  EXPECT_EQ(sent[sent.size() - 2].substr(0, 28), "0x222028 [264] 00000000 0800");
  EXPECT_EQ(session_->options.gamma, 2.2f);
}

// ---- Frames without rows -------------------------------------------------------------------

TEST_F(WhiteBalance, FrameWithoutRowsIsSurvived) {
  session_->geometry.height = 0;
  gateway_.blocks = {kShort100};
  EXPECT_EQ(Whole(), kOk);  // levels of 0 are balanced
  EXPECT_EQ(session_->WhiteBalance(1, 0, 0, 4, 0, 1, 1, 1), kOutOfRange);
  MakeSecondGeneration();
  gateway_.command_registers[6] = 0xFF;
  EXPECT_EQ(Whole(), kOk);
  EXPECT_EQ(session_->WhiteBalance(1, 0, 0, 4, 0, 1, 1, 1), kOutOfRange);
}

}  // namespace
}  // namespace ormidex::automation
