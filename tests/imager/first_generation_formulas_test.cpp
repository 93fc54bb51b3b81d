// Exposure arithmetic of the first-generation imager.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "imager/formulas.h"

namespace ormidex::imager {
namespace {

constexpr std::uint32_t kTooLong = 0xFFFFFFFFu;

// The register value, or kTooLong.
std::uint32_t Value(double time_ms, std::uint32_t clocking, std::uint32_t factor,
                    std::uint32_t height) {
  std::uint32_t value = 0;
  const PixelClock* clock = FindPixelClock(clocking);
  return ExposureValueFromTime(time_ms, *clock, RowLength(factor), height, &value) ? value
                                                                                   : kTooLong;
}

TEST(RowLength, IsKnownForTheThreeFactorsOnly) {
  EXPECT_EQ(RowLength(1), 1664u);
  EXPECT_EQ(RowLength(2), 960u);
  EXPECT_EQ(RowLength(4), 608u);
  for (std::uint32_t factor : {0u, 3u, 5u, 8u, 0xFFFFFFFFu}) EXPECT_EQ(RowLength(factor), 0u);
}

// 10 / (6.25e-5 x 1664) + 0.5 = 96.65; 96 + 2047 - 1024 = 1119.
TEST(ExposureValueFromTime, TenMillisecondsAt16MHzAndFullHeightGive1119) {
  EXPECT_EQ(Value(10, 0, 1, 1024), 1119u);
}

// 10 ms in rows: 144.2, 96.2, 72.1, 48.1, 36.1, 24.04.
TEST(ExposureValueFromTime, FollowsTheClock) {
  EXPECT_EQ(Value(10, 128, 1, 1024), 1167u);
  EXPECT_EQ(Value(10, 129, 1, 1024), 1095u);
  EXPECT_EQ(Value(10, 1, 1, 1024), 1071u);
  EXPECT_EQ(Value(10, 130, 1, 1024), 1059u);
  EXPECT_EQ(Value(10, 2, 1, 1024), 1047u);
}

// 5 ms at 16 MHz, height 480: 48.08, 83.33 and 131.6 rows above 1567.
TEST(ExposureValueFromTime, FollowsTheFactor) {
  EXPECT_EQ(Value(5, 0, 1, 480), 1615u);
  EXPECT_EQ(Value(5, 0, 2, 480), 1650u);
  EXPECT_EQ(Value(5, 0, 4, 480), 1699u);
}

TEST(ExposureValueFromTime, RoundsHalfARowUp) {
  // A row takes 0.104 ms.
  EXPECT_EQ(Value(0.0519, 0, 1, 1024), 1023u);
  EXPECT_EQ(Value(0.0521, 0, 1, 1024), 1024u);
  EXPECT_EQ(Value(0, 0, 1, 1024), 1023u);
}

// 1024 rows are the whole frame: 106.496 ms. 1025 rows would be E = 2048.
TEST(ExposureValueFromTime, RejectsAValueOf2048) {
  EXPECT_EQ(Value(106.496, 0, 1, 1024), 2047u);
  EXPECT_EQ(Value(106.54, 0, 1, 1024), 2047u);
  EXPECT_EQ(Value(106.56, 0, 1, 1024), kTooLong);
}

TEST(ExposureValueFromTime, RejectsTimesThatWouldWrapIntoTheRange) {
  // 4294966800 rows and 1023 more are 527 modulo 2^32.
  EXPECT_EQ(Value(4294966800.0 * 0.104, 0, 1, 1024), kTooLong);
  EXPECT_EQ(Value(1e30, 0, 1, 1024), kTooLong);
  EXPECT_EQ(Value(std::numeric_limits<double>::infinity(), 0, 1, 1024), kTooLong);
  EXPECT_EQ(Value(std::nan(""), 0, 1, 1024), kTooLong);
}

TEST(ExposureValueFromTime, RejectsAnUnknownFactorAndAnUnknownHeight) {
  EXPECT_EQ(Value(10, 0, 3, 1024), kTooLong);
  EXPECT_EQ(Value(10, 0, 0, 1024), kTooLong);
  // 2047 - 0xFFFFFFFF is 2048 in 32 bits.
  EXPECT_EQ(Value(0, 0, 1, 0xFFFFFFFFu), kTooLong);
}

// 1600 - (2047 - 480) = 33 rows of 0.104, 0.06 and 0.038 ms.
TEST(TimeFromExposureValue, CountsTheRowsAboveTheUnexposedOnes) {
  const PixelClock& clock = *FindPixelClock(0);
  EXPECT_FLOAT_EQ(TimeFromExposureValue(1600, clock, 1664, 480), 3.432f);
  EXPECT_FLOAT_EQ(TimeFromExposureValue(1600, clock, 960, 480), 1.98f);
  EXPECT_FLOAT_EQ(TimeFromExposureValue(1600, clock, 608, 480), 1.254f);
  EXPECT_EQ(TimeFromExposureValue(1567, clock, 1664, 480), 0.0f);
}

// One row too few is 2^32 - 1 rows of 0.104 ms: 446676598 ms.
TEST(TimeFromExposureValue, IsHugeForAValueBelowTheFirstExposedRow) {
  EXPECT_FLOAT_EQ(TimeFromExposureValue(1566, *FindPixelClock(0), 1664, 480), 446676598.7f);
}

// 1024 rows of 1664 clocks at 6.25e-8 s; 512 of 960; 256 of 608.
TEST(MaxExposureFirstGeneration, IsTheTimeOfAllRows) {
  const PixelClock& clock = *FindPixelClock(0);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, clock), 106.496f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(2, 1024, clock), 30.72f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(4, 1024, clock), 9.728f);
  // 1023 / 2 is 511 rows.
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(2, 1023, clock), 30.66f);
}

TEST(MaxExposureFirstGeneration, UsesTheRoundedPeriodsInSeconds) {
  // 1024 x 1664 = 1703936 clocks.
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, *FindPixelClock(128)), 70.997901f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, *FindPixelClock(129)), 141.995803f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, *FindPixelClock(1)), 212.992f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, *FindPixelClock(130)), 283.991605f);
  EXPECT_FLOAT_EQ(MaxExposureFirstGeneration(1, 1024, *FindPixelClock(2)), 425.984f);
}

}  // namespace
}  // namespace ormidex::imager
