// Exposure arithmetic of the second-generation imager.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "imager/formulas.h"

namespace ormidex::imager {
namespace {

constexpr std::uint32_t kOlder = 0x030121FF;
constexpr std::uint32_t kNewer = 0x03012200;

std::uint32_t Row(std::uint32_t width_register, std::uint32_t height_register,
                  std::uint32_t divisor, std::uint32_t bytes_per_pixel, std::int32_t megahertz,
                  std::uint32_t firmware) {
  return MinimumRowLength(
      {width_register, height_register, divisor, bytes_per_pixel, megahertz, firmware});
}

// a = 640, q = (3200 + 265) x 2000 = 6930000, q / 16 = 433125,
// n = 1250000 / 433125 + 1 = 3, 480 is a multiple of 3,
// 2000 / 3 - 43 = 623.7: the data row of 640 + 10 is longer.
TEST(MinimumRowLength, IsTheDataRowWhereThePacketsAreFastEnough) {
  EXPECT_EQ(Row(639, 479, 1, 1, 16, kNewer), 650u);
  // d = 433125 - 203 x 640 = 303205, e = 1250000 - 33125 = 1216875, n = 4 + 1 = 5;
  // ((640 x 5 x 0.0203 + 125) x 16 + 640) / 6 - 43 = 570.2.
  EXPECT_EQ(Row(639, 479, 1, 1, 16, kOlder), 650u);
  EXPECT_EQ(Row(1279, 1023, 1, 1, 16, kNewer), 1290u);
}

// n = 5 does not divide 1016, nor 6; 7 x 640 = 4480 is beyond a packet: back to 4.
// ((2560 x 0.0203 + 125) x 16 + 640) / 5 - 43 = (2831.488 + 640) / 5 - 43 = 651.3.
TEST(MinimumRowLength, SearchesBackFromTheLargestPacket) {
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, kOlder), 652u);
}

// The newer branch of the same window starts at 3 and finds 4 upwards; 500 - 43.
TEST(MinimumRowLength, SearchesUpwardsFirst) {
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, kNewer), 650u);
  // Upwards 6, 7, 8: 248 rows are 31 packets of 8, 2000 / 8 - 43 = 207 against 330.
  EXPECT_EQ(Row(319, 247, 1, 1, 16, kNewer), 330u);
}

// The smallest window has 8 rows, and n starts at 24 (newer) or 27 (older): upwards
// nothing fits, downwards 8. 2000 / 8 - 43 = 207;
// ((256 x 0.0203 + 125) x 16 + 32) / 9 - 43 = 192.02.
TEST(MinimumRowLength, IsSetByThePacketsForTheSmallestWindow) {
  EXPECT_EQ(Row(31, 7, 1, 1, 16, kNewer), 207u);
  EXPECT_EQ(Row(31, 7, 1, 1, 16, kOlder), 193u);
}

// 24 MHz, whole array, older: q = 13330000, q / 24 = 555416, d = 295576,
// e = 1250000 - 22083 = 1227917, n = 5; 5 x 1280 is too much, so 2;
// ((2560 x 0.0203 + 125) x 24 + 1280) / 3 - 43 = 1799.4.
TEST(MinimumRowLength, CountsThePacketRateOfOlderFirmware) {
  EXPECT_EQ(Row(1279, 1023, 1, 1, 24, kOlder), 1800u);
  // 12 MHz, two bytes: n = 3 falls to 1, (51.968 + 125) x 12 + 1280 = 3403.6, / 2 - 43.
  EXPECT_EQ(Row(1279, 1023, 1, 2, 12, kOlder), 1659u);
}

// 1272 / 4 = 318 columns, 1016 / 4 = 254 rows at 6 MHz: n = 3, upwards to 13, down to 2;
// ((636 x 0.0203 + 125) x 6 + 318) / 3 - 43 = 338.8.
TEST(MinimumRowLength, DividesTheWindowByTheDecimation) {
  EXPECT_EQ(Row(1271, 1015, 4, 1, 6, kOlder), 339u);
  EXPECT_EQ(Row(1271, 1015, 4, 1, 4, kNewer), 328u);
  EXPECT_EQ(Row(319, 239, 2, 1, 16, kOlder), 170u);
}

TEST(MinimumRowLength, ChangesItsRuleAtFirmware03012200) {
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, 0x03012200), 650u);
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, 0x030121FF), 652u);
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, 0xFFFFFFFFu), 650u);
  EXPECT_EQ(Row(639, 1015, 1, 1, 16, 0), 652u);
}

// A row that no packet can hold leaves one row a packet.
TEST(MinimumRowLength, EndsItsSearchForRowsBeyondAPacket) {
  EXPECT_EQ(Row(4087, 7, 1, 1, 16, kNewer), 4098u);
  EXPECT_EQ(Row(4088, 7, 1, 1, 16, kNewer), 4099u);
  EXPECT_EQ(Row(16383, 16383, 1, 2, 16, kNewer), 16394u);
}

TEST(MinimumRowLength, SurvivesEveryRegisterContent) {
  for (std::uint32_t width = 0; width <= 16383; width += 127) {
    for (std::uint32_t height : {0u, 1u, 6u, 7u, 1023u, 16383u}) {
      for (std::uint32_t divisor : {1u, 2u, 4u}) {
        for (std::int32_t megahertz : {4, 24}) {
          const std::uint32_t a = (width + 1) / divisor;
          EXPECT_GE(Row(width, height, divisor, 2, megahertz, kOlder), a + 10);
          EXPECT_GE(Row(width, height, divisor, 2, megahertz, kNewer), a + 10);
        }
      }
    }
  }
}

// Blanking 20 and 30: 719 clocks, 0.0449375 ms a row at 16 MHz.
RowExposure Rows(double time_ms) {
  ImagerTiming timing;
  timing.row_length = 1000;  // of no account here
  timing.blanking_a = 20;
  timing.blanking_b = 30;
  return RowsFromTime(time_ms, 6.25e-5, 650, timing);
}

TEST(RowsFromTime, TruncatesToWholeRows) {
  EXPECT_EQ(Rows(0).rows, 0u);
  EXPECT_EQ(Rows(0.0449).rows, 0u);
  EXPECT_EQ(Rows(0.045).rows, 1u);
  EXPECT_EQ(Rows(25.1).rows, 558u);
  EXPECT_EQ(Rows(100).rows, 2225u);
  EXPECT_EQ(Rows(100).row_length, 650u);
  EXPECT_FALSE(Rows(100).row_length_given);
}

// 16384 rows are 736.256 ms. At 736.3 the row is 736.3 / (6.25e-5 x 16383) = 719.09
// clocks, 650 without blanking; at 800 it is 781.29, so 712.
TEST(RowsFromTime, LengthensTheRowWhenTheCountReaches16384) {
  EXPECT_EQ(Rows(736.25).rows, 16383u);
  EXPECT_FALSE(Rows(736.25).row_length_given);
  EXPECT_EQ(Rows(736.3).rows, 16383u);
  EXPECT_TRUE(Rows(736.3).row_length_given);
  EXPECT_EQ(Rows(736.3).row_length, 650u);
  EXPECT_EQ(Rows(800).rows, 16383u);
  EXPECT_EQ(Rows(800).row_length, 712u);
}

// 16383 clocks and the 69 around them: 16452 x 6.25e-5 x 16383 = 16845.83 ms.
TEST(RowsFromTime, CapsTheRowAt16383Clocks) {
  EXPECT_EQ(Rows(16845.8).row_length, 16382u);
  EXPECT_EQ(Rows(16846.0).row_length, 16383u);
  EXPECT_EQ(Rows(16847.0).row_length, 16383u);
  EXPECT_EQ(Rows(20000).row_length, 16383u);
}

TEST(RowsFromTime, TakesHugeTimesAsTheLongest) {
  for (double time : {4.4e9, 1e30, 3.4e38, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(Rows(time).rows, 16383u) << time;
    EXPECT_EQ(Rows(time).row_length, 16383u) << time;
    EXPECT_TRUE(Rows(time).row_length_given) << time;
  }
}

// 30 + 650 + 20 + 19 = 719 clocks.
TEST(TimeFromRows, MultipliesTheWholeRowTime) {
  ImagerTiming timing;
  timing.row_length = 650;
  timing.blanking_a = 20;
  timing.blanking_b = 30;
  EXPECT_EQ(TimeFromRows(0, 6.25e-5, timing), 0.0f);
  EXPECT_FLOAT_EQ(TimeFromRows(100, 6.25e-5, timing), 4.49375f);
  EXPECT_FLOAT_EQ(TimeFromRows(16383, 6.25e-5, timing), 736.211063f);
  EXPECT_FLOAT_EQ(TimeFromRows(16383, 4.1667e-5, timing), 490.811317f);
  EXPECT_FLOAT_EQ(TimeFromRows(16383, 2.5e-4, timing), 2944.84425f);
}

float Longest(std::uint32_t factor, float frame_rate) {
  ImagerTiming timing;
  timing.row_length = 0;  // of no account here
  timing.blanking_a = 20;
  timing.blanking_b = 30;
  return MaxExposureSecondGeneration(factor, 1280, 1024, *FindPixelClock(0), frame_rate, timing);
}

// Factor 1: n = 1026, row clocks 1281 + 79 = 1360, 85 us, full-exposure rate
// 1 / (1027 x 85e-6) = 11.456 a second; 1026 x 0.085 ms = 87.21 ms.
TEST(MaxExposureSecondGeneration, IsTheFullFrameAtRatesAboveTheFullExposureRate) {
  EXPECT_FLOAT_EQ(Longest(1, 11.5f), 87.21f);
  EXPECT_FLOAT_EQ(Longest(1, 30.0f), 87.21f);
  EXPECT_FLOAT_EQ(Longest(1, 1e9f), 87.21f);
}

TEST(MaxExposureSecondGeneration, IsTheFrameTimeAtSlowerRates) {
  EXPECT_FLOAT_EQ(Longest(1, 5.0f), 200.0f);
  EXPECT_FLOAT_EQ(Longest(1, 7.5f), 133.333333f);
  EXPECT_FLOAT_EQ(Longest(1, 11.4f), 87.7192982f);
}

// Factor 2: n = 513, 640 + 79 = 719 clocks: 513 x 0.0449375 = 23.0529 ms.
// Factor 4: n = 257, 320 + 79 = 399 clocks: 257 x 0.0249375 = 6.40894 ms.
TEST(MaxExposureSecondGeneration, DividesRowsAndColumnsByTheFactor) {
  EXPECT_FLOAT_EQ(Longest(2, 1e9f), 23.0529375f);
  EXPECT_FLOAT_EQ(Longest(4, 1e9f), 6.4089375f);
}

}  // namespace
}  // namespace ormidex::imager
