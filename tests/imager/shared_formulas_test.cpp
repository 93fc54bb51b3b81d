// Arithmetic that both imager generations share.
#include <gtest/gtest.h>

#include <cstdint>

#include "imager/formulas.h"

namespace ormidex::imager {
namespace {

TEST(PixelClocks, AreTheSixCodesWithTheirRoundedPeriods) {
  struct {
    std::uint32_t code;
    std::int32_t megahertz;
    double period_ms;
    double period_s;
  } const expected[] = {
      {128, 24, 4.1667e-5, 4.1667e-8},  {0, 16, 6.25e-5, 6.25e-8},
      {129, 12, 8.3334e-5, 8.3334e-8},  {1, 8, 1.25e-4, 1.25e-7},
      {130, 6, 1.66668e-4, 1.66668e-7}, {2, 4, 2.5e-4, 2.5e-7},
  };
  for (const auto& row : expected) {
    const PixelClock* clock = FindPixelClock(row.code);
    ASSERT_NE(clock, nullptr) << row.code;
    EXPECT_EQ(clock->megahertz, row.megahertz);
    EXPECT_EQ(clock->period_ms, row.period_ms);
    EXPECT_EQ(clock->period_s, row.period_s);
  }
}

TEST(PixelClocks, RejectEveryOtherCode) {
  for (std::uint32_t code = 3; code < 128; ++code) EXPECT_EQ(FindPixelClock(code), nullptr);
  for (std::uint32_t code : {131u, 255u, 256u, 384u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(FindPixelClock(code), nullptr) << code;
  }
}

TEST(PixelClocks, StepFromFastToSlow) {
  const std::uint32_t order[] = {128, 0, 129, 1, 130, 2, kNoClocking};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(FindPixelClock(order[i])->next_slower, order[i + 1]);
}

// The stored values stand in the order 128, 129, 130, 0, 1, 2.
TEST(PixelClocks, KnowThePlaceOfTheirRegisterValue) {
  const std::uint32_t order[] = {128, 129, 130, 0, 1, 2};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(FindPixelClock(order[i])->fpn_index, i);
}

// 640 x 480 = 307200 pixels: 19.2, 38.4, 76.8, 12.8, 25.6 and 51.2 ms.
TEST(SettleMilliseconds, IsTheTimeOfOneFrame) {
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(0)), 19u);
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(1)), 38u);
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(2)), 76u);
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(128)), 12u);
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(129)), 25u);
  EXPECT_EQ(SettleMilliseconds(640, 480, *FindPixelClock(130)), 51u);
  EXPECT_EQ(SettleMilliseconds(1280, 1024, *FindPixelClock(0)), 81u);
  EXPECT_EQ(SettleMilliseconds(0, 480, *FindPixelClock(0)), 0u);
}

// Per-pixel times are a whole number of parts of a second here, not the rounded
// periods of the exposure: 1280 x 1024 / 24000 = 54.6 and / 6000 = 218.45.
TEST(SettleMilliseconds, UsesExactPixelTimes) {
  EXPECT_EQ(FindPixelClock(128)->settle_ms, 1.0 / 24000);
  EXPECT_EQ(FindPixelClock(129)->settle_ms, 1.0 / 12000);
  EXPECT_EQ(FindPixelClock(130)->settle_ms, 1.0 / 6000);
  EXPECT_EQ(FindPixelClock(0)->settle_ms, 0.0000625);
  EXPECT_EQ(FindPixelClock(1)->settle_ms, 0.000125);
  EXPECT_EQ(FindPixelClock(2)->settle_ms, 0.00025);
}

TEST(ExposureGain, ReadsACodeAsItsGain) {
  EXPECT_FLOAT_EQ(ExposureGainFromCode(0), 0.483f);
  EXPECT_FLOAT_EQ(ExposureGainFromCode(1), 0.59419f);
  EXPECT_FLOAT_EQ(ExposureGainFromCode(10), 1.5949f);
  EXPECT_FLOAT_EQ(ExposureGainFromCode(63), 7.48797f);
  EXPECT_FLOAT_EQ(ExposureGainFromCode(255), 28.83645f);
}

// (gain - 0.483) x 8.993614 + 0.5: 7.005 x 8.993614 = 63.0003; 1.0 gives 4.65 + 0.5.
TEST(ExposureGain, WritesAGainAsTheNearestCode) {
  EXPECT_EQ(CodeFromExposureGain(0.483f), 0);
  EXPECT_EQ(CodeFromExposureGain(0.538f), 0);
  EXPECT_EQ(CodeFromExposureGain(0.539f), 1);
  EXPECT_EQ(CodeFromExposureGain(1.0f), 5);
  EXPECT_EQ(CodeFromExposureGain(2.0f), 14);
  EXPECT_EQ(CodeFromExposureGain(7.43f), 62);
  EXPECT_EQ(CodeFromExposureGain(7.488f), 63);
}

TEST(ExposureGain, ComesBackAsTheSameCode) {
  for (int code = 0; code <= 63; ++code) {
    EXPECT_EQ(CodeFromExposureGain(ExposureGainFromCode(static_cast<std::uint8_t>(code))), code);
  }
}

TEST(SizeCode, CountsUnitsOfEightPixelsAtFactorOne) {
  EXPECT_EQ(SizeCode(1280, 1), 160);
  EXPECT_EQ(SizeCode(640, 1), 80);
  EXPECT_EQ(SizeCode(647, 1), 80);
  EXPECT_EQ(SizeCode(8, 1), 1);
}

TEST(SizeCode, DropsWhatTheFactorCannotHold) {
  EXPECT_EQ(SizeCode(1280, 2), 160);
  EXPECT_EQ(SizeCode(655, 2), 80);  // 640
  EXPECT_EQ(SizeCode(648, 2), 80);
  EXPECT_EQ(SizeCode(671, 4), 80);
  EXPECT_EQ(SizeCode(672, 4), 84);
  EXPECT_EQ(SizeCode(1024, 4), 128);
}

TEST(SizeCode, IsZeroForHeightsBelowOneUnit) {
  for (std::uint32_t height = 8; height <= 15; ++height) EXPECT_EQ(SizeCode(height, 2), 0);
  for (std::uint32_t height = 8; height <= 31; ++height) EXPECT_EQ(SizeCode(height, 4), 0);
  EXPECT_EQ(SizeCode(16, 2), 2);
  EXPECT_EQ(SizeCode(32, 4), 4);
}

// 1280 / 3 x 3 = 1278; 1278 / 8 = 159. 640 / 5 x 5 = 640.
TEST(SizeCode, RoundsToWholeFactorsForTheOthers) {
  EXPECT_EQ(SizeCode(1280, 3), 159);
  EXPECT_EQ(SizeCode(640, 5), 80);
  EXPECT_EQ(SizeCode(32, 7), 3);  // 28
  EXPECT_EQ(SizeCode(32, 64), 0);
  EXPECT_EQ(SizeCode(32, 0), 0);  // nothing to divide by
}

}  // namespace
}  // namespace ormidex::imager
