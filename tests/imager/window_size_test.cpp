// The sub-window's size and the whole sub-window, request by request.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/model_gateway.h"
#include "support/register_script.h"
#include "support/second_generation_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class FirstGenerationSize : public ::testing::Test {
 protected:
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  TestSession session_{driver_};
};

class SecondGenerationSize : public FirstGenerationSize {
 protected:
  SecondGenerationSize() {
    session_.MakeSecondGeneration();
    session_->identity.firmware_version = 0x03012200;
    session_->exposure.last_exposure_time = 10;
  }
  // 10 ms are 222 rows of the default timing, or as the caller says.
  void SetsExposureAgain(const TimingRegisters& timing, const std::string& frame_length,
                         std::uint32_t low) {
    ReadsTiming(second_, timing);
    second_.WritesBlock(80, frame_length);
    second_.Reads(78, 0x40);
    second_.Writes(79, low);
    second_.Writes(78, 0);
  }
  RegisterScript second_{driver_, 0x66};
};

TEST_F(FirstGenerationSize, IsSubSamplingSizeCodesAndControllerWidth) {
  driver_.Expect(0x222000, "00000000 60000000 01000000 01000000 00000000",
                 "00000000 60000000 01000000 01000000 ff000000");
  driver_.Expect(0x222004, "ff000000 60000000 01000000 01000000 f9000000", "00000000");
  driver_.Expect(0x222004, "00000000 60000000 08000000 02000000 a080", "00000000");
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 00000008 000000a0");  // 1280 / 8
  EXPECT_EQ(session_->SetSubWindowSize(1, 1280, 1024), kOk);
  EXPECT_EQ(session_->geometry.width, 1280u);
  EXPECT_EQ(session_->geometry.height, 1024u);
  EXPECT_EQ(session_->geometry.frame_bytes, 1310720u);
  EXPECT_EQ(session_->geometry.rgb_bytes, 3932160u);
}

TEST_F(FirstGenerationSize, FactorTwoAndFourHalveAndQuarterTheFrame) {
  script_.Reads(1, 0xFF);
  script_.Writes(1, 0xFB);
  script_.WritesBlock(8, "a080");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(2, 1280, 1024), kOk);
  EXPECT_EQ(session_->geometry.width, 640u);
  EXPECT_EQ(session_->geometry.height, 512u);
  EXPECT_EQ(session_->geometry.frame_bytes, 640u * 512);
  script_.Reads(1, 0x10);
  script_.Writes(1, 0x16);
  script_.WritesBlock(8, "a080");
  script_.WritesCommand(8, 40);
  EXPECT_EQ(session_->SetSubWindowSize(4, 1280, 1024), kOk);
  EXPECT_EQ(session_->geometry.width, 320u);
  EXPECT_EQ(session_->geometry.height, 256u);
}

TEST_F(FirstGenerationSize, FrameSizeCountsBytesPerPixel) {
  session_->geometry.bytes_per_pixel = 2;
  script_.Reads(1, 0);
  script_.Writes(1, 2);
  script_.WritesBlock(8, "a080");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(2, 1280, 1024), kOk);
  EXPECT_EQ(session_->geometry.frame_bytes, 655360u);
  EXPECT_EQ(session_->geometry.rgb_bytes, 983040u);
}

TEST_F(FirstGenerationSize, ControllerWidthIsNotToldBeforeFirmware3) {
  session_->identity.firmware_version = 0x02FF0000;
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "5028");
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 320), kOk);
}

TEST_F(FirstGenerationSize, MirrorIsSentAgainOnlyWhenItIsOn) {
  session_->geometry.flip_horizontal = 1;
  script_.Reads(1, 0x10);
  script_.Writes(1, 0x10);
  driver_.ExpectEcho(0x222100, "00000000 00000000 01000000");
  script_.WritesBlock(8, "503c");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kOk);
  script_.Reads(1, 0x10);
  script_.Writes(1, 0x12);
  driver_.ExpectEcho(0x222100, "00000000 00000000 00000000");
  script_.WritesBlock(8, "503c");
  script_.WritesCommand(8, 40);
  EXPECT_EQ(session_->SetSubWindowSize(2, 640, 480), kOk);
}

// 647 / 8 = 80; at factor 4 the unit is 32: 671 gives 640, 63 gives 32.
TEST_F(FirstGenerationSize, IsRoundedDownToWholeUnits) {
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "5001");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(1, 647, 15), kOk);
  EXPECT_EQ(session_->geometry.width, 640u);
  EXPECT_EQ(session_->geometry.height, 8u);
  script_.Reads(1, 0);
  script_.Writes(1, 6);
  script_.WritesBlock(8, "5004");
  script_.WritesCommand(8, 20);
  EXPECT_EQ(session_->SetSubWindowSize(4, 671, 63), kOk);
  EXPECT_EQ(session_->geometry.width, 160u);
  EXPECT_EQ(session_->geometry.height, 8u);
}

TEST_F(FirstGenerationSize, HeightsBelowOneUnitGiveAnEmptyFrame) {
  script_.Reads(1, 0);
  script_.Writes(1, 2);
  script_.WritesBlock(8, "5000");
  script_.WritesCommand(8, 40);
  EXPECT_EQ(session_->SetSubWindowSize(2, 640, 15), kOk);
  EXPECT_EQ(session_->geometry.height, 0u);
  EXPECT_EQ(session_->geometry.frame_bytes, 0u);
}

TEST_F(FirstGenerationSize, HasLimits) {
  EXPECT_EQ(session_->SetSubWindowSize(1, 31, 8), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindowSize(1, 32, 7), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindowSize(1, 1281, 8), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindowSize(1, 32, 1025), kOutOfRange);
  session_->geometry.column = 1;
  EXPECT_EQ(session_->SetSubWindowSize(1, 1280, 8), kOutOfRange);
  session_->geometry.row = 1;
  EXPECT_EQ(session_->SetSubWindowSize(1, 32, 1024), kOutOfRange);
}

// A minimum that is missed comes before the armed trigger, the array's edge after.
TEST_F(FirstGenerationSize, ChecksTheTriggerBetweenItsTwoRanges) {
  session_->trigger.active.store(1);
  EXPECT_EQ(session_->SetSubWindowSize(1, 31, 8), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindowSize(1, 1281, 8), kWrongState);
}

TEST_F(FirstGenerationSize, UnknownFactorsAreRejectedAfterTheRead) {
  for (std::uint32_t factor : {0u, 3u, 5u, 8u, 0xFFFFFFFFu}) {
    script_.Reads(1, 0);
    EXPECT_EQ(session_->SetSubWindowSize(factor, 640, 480), kOutOfRange);
    EXPECT_EQ(session_->geometry.factor, 1u);
  }
}

// With the position still unknown, all bits set plus the size is one less.
TEST_F(FirstGenerationSize, ChecksWrapBeforeThePositionIsKnown) {
  session_->geometry.column = 0xFFFFFFFFu;
  session_->geometry.row = 0xFFFFFFFFu;
  EXPECT_EQ(session_->SetSubWindowSize(1, 1282, 8), kOutOfRange);
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "a080");
  script_.WritesCommand(8, 160);
  EXPECT_EQ(session_->SetSubWindowSize(1, 1281, 1025), kOk);
}

// 640 x 480 at factor 1: height 479 = 0x01DF, width 639 = 0x027F.
TEST_F(SecondGenerationSize, IsSubSamplingHeightWidthAndExposure) {
  driver_.Expect(0x222000, "00000000 66000000 41000000 01000000 00000000",
                 "00000000 66000000 41000000 01000000 ff000000");
  driver_.Expect(0x222004, "ff000000 66000000 41000000 01000000 f0000000", "00000000");
  driver_.Expect(0x222004, "00000000 66000000 47000000 02000000 01df", "00000000");
  driver_.Expect(0x222004, "00000000 66000000 4b000000 02000000 027f", "00000000");
  SetsExposureAgain({}, "01e1", 0xDE);
  driver_.ExpectEcho(0x2223FC, "00000000 02000000 00000008 00000050");
  EXPECT_EQ(session_->SetSubWindowSize(1, 647, 487), kOk);
  EXPECT_EQ(session_->geometry.width, 640u);
  EXPECT_EQ(session_->geometry.height, 480u);
}

// 1280 x 960 at factor 2: 1279 = 0x04FF, 959 = 0x03BF; 640 x 480 come out, and the
// shortest frame is 481 rows already with the new factor.
TEST_F(SecondGenerationSize, CodesItsFactors) {
  TimingRegisters timing;
  timing.width = 1279;
  timing.height = 959;
  timing.sub_sampling = 0x55;
  second_.Reads(65, 0x5F);
  second_.Writes(65, 0x55);
  second_.WritesBlock(71, "03bf");
  second_.WritesBlock(75, "04ff");
  SetsExposureAgain(timing, "01e1", 0xDE);
  second_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(2, 1280, 960), kOk);
  EXPECT_EQ(session_->geometry.width, 640u);
  // 1280 x 960 at factor 4: 961 / 4 + 1 = 241 rows = 0x00F1. Rows of 320 pixels:
  // n = 1250000 / 233125 + 1 = 6, 240 is a multiple; 2000 / 6 - 43 = 290.3, so 330;
  // 399 clocks are 0.0249375 ms: 401 = 0x0191 rows in 10 ms.
  timing.sub_sampling = 0x5A;
  timing.row_length = 330;
  second_.Reads(65, 0x55);
  second_.Writes(65, 0x5A);
  second_.WritesBlock(71, "03bf");
  second_.WritesBlock(75, "04ff");
  ReadsTiming(second_, timing);
  second_.WritesBlock(80, "0191");
  second_.Reads(78, 0x40);
  second_.Writes(79, 0x91);
  second_.Writes(78, 0x01);
  second_.WritesCommand(8, 40);
  EXPECT_EQ(session_->SetSubWindowSize(4, 1280, 960), kOk);
  EXPECT_EQ(session_->geometry.width, 320u);
  EXPECT_EQ(session_->geometry.height, 240u);
}

// The imager has set itself to 640 rows; the last time given to it was 10 ms.
TEST_F(SecondGenerationSize, ContinuousAutoExposureKeepsTheImagersOwnTime) {
  session_->exposure.continuous_auto = 1;
  second_.Reads(65, 0);
  second_.Writes(65, 0);
  second_.WritesBlock(71, "01df");
  second_.WritesBlock(75, "027f");
  second_.ReadsPair(78, 0x0280);  // 28.76 ms
  second_.ReadsPair(82, 650);
  second_.Reads(95, 20);
  second_.Reads(96, 30);
  ReadsTiming(second_, {});
  second_.WritesBlock(80, "0280");
  second_.Reads(78, 0x02);
  second_.Writes(79, 0x80);
  second_.Writes(78, 0x42);
  second_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kOk);
  EXPECT_FLOAT_EQ(session_->exposure.last_exposure_time, 28.76f);
}

TEST_F(SecondGenerationSize, NoRequestForTheMirror) {
  session_->geometry.flip_horizontal = 1;
  second_.Reads(65, 0);
  second_.Writes(65, 0);
  second_.WritesBlock(71, "01df");
  second_.WritesBlock(75, "027f");
  SetsExposureAgain({}, "01e1", 0xDE);
  second_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindowSize(1, 640, 480), kOk);
}

// Size code 0 is the register value -1; what the imager makes of it is its business,
// the library must only survive it.
TEST_F(SecondGenerationSize, SizeCodeZeroIsWrittenAsAllBitsSet) {
  TimingRegisters timing;
  timing.height = 0xFFFF;
  timing.sub_sampling = 0x05;
  second_.Reads(65, 0);
  second_.Writes(65, 5);
  second_.WritesBlock(71, "ffff");
  second_.WritesBlock(75, "027f");
  // 16384 / 2 + 1 = 8193 rows at least. Rows of 320 pixels: n = 6 is raised to 8, of
  // which 8192 is a multiple; 2000 / 8 - 43 = 207, so 330 clocks; 401 rows in 10 ms.
  timing.row_length = 330;
  ReadsTiming(second_, timing);
  second_.WritesBlock(80, "2001");
  second_.Reads(78, 0x40);
  second_.Writes(79, 0x91);
  second_.Writes(78, 0x01);
  second_.WritesCommand(8, 40);
  EXPECT_EQ(session_->SetSubWindowSize(2, 640, 8), kOk);
  EXPECT_EQ(session_->geometry.height, 0u);
}

TEST(WindowSize, EverySmallHeightIsSurvivedByBothGenerations) {
  for (std::uint32_t factor : {1u, 2u, 4u}) {
    for (std::uint32_t height = 8; height <= 40; ++height) {
      ModelGateway first;
      first.bus_address = 0x60;
      TestSession a(first);
      EXPECT_EQ(a->SetSubWindowSize(factor, 32, height), kOk);
      ModelGateway second;
      TestSession b(second);
      b.MakeSecondGeneration();
      EXPECT_EQ(b->SetSubWindowSize(factor, 32, height), kOk);
      const std::uint32_t unit = 8 * factor;
      EXPECT_EQ(a->geometry.height, height / unit * unit / factor);
      EXPECT_EQ(b->geometry.height, height / unit * unit / factor);
    }
  }
}

TEST_F(FirstGenerationSize, SubWindowMovesFirstWhereTheOldSizeStillFits) {
  script_.Pauses();
  script_.WritesBlock(4, "00680068");
  script_.Resumes();
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "5028");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindow(1, 100, 100, 640, 320), kOk);
}

// 640 + 640 columns and 480 + 544 rows just fit.
TEST_F(FirstGenerationSize, SubWindowMovesFirstUpToTheArraysEdge) {
  script_.Pauses();
  script_.WritesBlock(4, "02840224");
  script_.Resumes();
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "503c");
  script_.WritesCommand(8, 80);
  EXPECT_EQ(session_->SetSubWindow(1, 640, 544, 640, 480), kOk);
}

// 640 + 641 columns would not fit, so the size comes first.
TEST_F(FirstGenerationSize, SubWindowShrinksFirstWhereTheOldSizeWouldNotFit) {
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "2828");
  script_.WritesCommand(8, 40);
  script_.Pauses();
  script_.WritesBlock(4, "02850004");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindow(1, 641, 0, 320, 320), kOk);
  // The same for rows: 320 + 705.
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "2820");
  script_.WritesCommand(8, 40);
  script_.Pauses();
  script_.WritesBlock(4, "028502c5");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindow(1, 641, 705, 320, 256), kOk);
}

TEST_F(FirstGenerationSize, SubWindowMustLieInTheArray) {
  EXPECT_EQ(session_->SetSubWindow(1, 0, 0, 1281, 1024), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindow(1, 1, 0, 1280, 1024), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindow(1, 0, 1, 1280, 1024), kOutOfRange);
  script_.Reads(1, 0);
  script_.Writes(1, 0);
  script_.WritesBlock(8, "a080");
  script_.WritesCommand(8, 160);
  EXPECT_EQ(session_->SetSubWindow(1, 0, 0, 1280, 1024), kOk);
}

TEST_F(FirstGenerationSize, SubWindowReturnsItsFirstFailure) {
  script_.Pauses();
  driver_.ExpectFailure(0x222004, "00000000 60000000 04000000 04000000 00050005");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindow(1, 1, 1, 640, 480), kRequestFailed);
  EXPECT_EQ(session_->SetSubWindow(1, 641, 0, 31, 480), kOutOfRange);
  // The position stays although the size is refused.
  script_.Pauses();
  script_.WritesBlock(4, "00060006");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindow(1, 2, 2, 31, 480), kOutOfRange);
  EXPECT_EQ(session_->geometry.column, 2u);
}

TEST_F(FirstGenerationSize, GettersGiveArrayPixels) {
  session_->geometry.factor = 4;
  session_->geometry.width = 320;
  session_->geometry.height = 256;
  session_->geometry.column = 8;
  session_->geometry.row = 16;
  std::uint32_t factor = 0;
  std::uint32_t column = 0;
  std::uint32_t row = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  EXPECT_EQ(session_->GetSubWindow(&factor, &column, &row, &width, &height), kOk);
  EXPECT_EQ(factor, 4u);
  EXPECT_EQ(column, 8u);
  EXPECT_EQ(row, 16u);
  EXPECT_EQ(width, 1280u);
  EXPECT_EQ(height, 1024u);
  width = height = factor = 0;
  EXPECT_EQ(session_->GetSubWindowSize(&factor, &width, &height), kOk);
  EXPECT_EQ(factor, 4u);
  EXPECT_EQ(width, 1280u);
  EXPECT_EQ(height, 1024u);
}

TEST_F(FirstGenerationSize, GettersNeedDeviceAndEveryPointer) {
  std::uint32_t v = 7;
  EXPECT_EQ(session_->GetSubWindow(nullptr, &v, &v, &v, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindow(&v, nullptr, &v, &v, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindow(&v, &v, nullptr, &v, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindow(&v, &v, &v, nullptr, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindow(&v, &v, &v, &v, nullptr), kNullPointer);
  EXPECT_EQ(session_->GetSubWindowSize(nullptr, &v, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindowSize(&v, nullptr, &v), kNullPointer);
  EXPECT_EQ(session_->GetSubWindowSize(&v, &v, nullptr), kNullPointer);
  EXPECT_EQ(v, 7u);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->GetSubWindow(nullptr, nullptr, nullptr, nullptr, nullptr), kNoCamera);
  EXPECT_EQ(session_->GetSubWindowSize(nullptr, nullptr, nullptr), kNoCamera);
}

}  // namespace
}  // namespace ormidex::testing
