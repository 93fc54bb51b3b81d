// The 32-bit and the 64-bit build give the same numbers, bit for bit.
//
// Expected values were computed with Python, whose floats are IEEE doubles: every
// operation rounded to double in the order of the formula, results rounded to
// single precision by struct.pack("<f").
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "imager/formulas.h"

namespace ormidex::imager {
namespace {

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

ImagerTiming Timing(std::uint32_t row_length, std::uint32_t a, std::uint32_t b) {
  ImagerTiming timing;
  timing.row_length = row_length;
  timing.blanking_a = a;
  timing.blanking_b = b;
  return timing;
}

// clock, factor, height, value, time
TEST(BitPatterns, TimeFromExposureValue) {
  struct {
    std::uint32_t clocking, factor, height, value, bits;
  } const rows[] = {
      {128, 1, 480, 1570, 0x3E54FE63}, {128, 1, 1024, 2047, 0x428DFEED},
      {128, 2, 480, 1999, 0x418A3DB9}, {128, 4, 256, 1800, 0x3E69794F},
      {128, 1, 480, 0, 0x4D8DFEEA},    {0, 1, 480, 1570, 0x3E9FBE77},
      {0, 1, 1024, 2047, 0x42D4FDF4},  {0, 2, 480, 1999, 0x41CF5C29},
      {0, 4, 256, 1800, 0x3EAF1AA0},   {0, 1, 480, 0, 0x4DD4FDEF},
      {129, 1, 480, 1570, 0x3ED4FE63}, {129, 1, 1024, 2047, 0x430DFEED},
      {129, 2, 480, 1999, 0x420A3DB9}, {129, 4, 256, 1800, 0x3EE9794F},
      {129, 1, 480, 0, 0x4E0DFEEA},    {1, 1, 480, 1570, 0x3F1FBE77},
      {1, 1, 1024, 2047, 0x4354FDF4},  {1, 2, 480, 1999, 0x424F5C29},
      {1, 4, 256, 1800, 0x3F2F1AA0},   {1, 1, 480, 0, 0x4E54FDEF},
      {130, 1, 480, 1570, 0x3F54FE63}, {130, 1, 1024, 2047, 0x438DFEED},
      {130, 2, 480, 1999, 0x428A3DB9}, {130, 4, 256, 1800, 0x3F69794F},
      {130, 1, 480, 0, 0x4E8DFEEA},    {2, 1, 480, 1570, 0x3F9FBE77},
      {2, 1, 1024, 2047, 0x43D4FDF4},  {2, 2, 480, 1999, 0x42CF5C29},
      {2, 4, 256, 1800, 0x3FAF1AA0},   {2, 1, 480, 0, 0x4ED4FDEF},
  };
  for (const auto& row : rows) {
    const float time = TimeFromExposureValue(row.value, *FindPixelClock(row.clocking),
                                             RowLength(row.factor), row.height);
    EXPECT_EQ(Bits(time), row.bits) << row.clocking << ' ' << row.factor << ' ' << row.value;
  }
}

// clock, row length, blanking a and b, rows, time
TEST(BitPatterns, TimeFromRows) {
  struct {
    std::uint32_t clocking, row_length, a, b, rows, bits;
  } const rows[] = {
      {128, 650, 20, 30, 1, 0x3CF56BAE},      {128, 650, 20, 30, 558, 0x4185BC2E},
      {128, 1290, 7, 0, 777, 0x422A6C62},     {128, 1290, 7, 0, 16383, 0x446095DE},
      {128, 330, 255, 255, 4097, 0x4312A3BF}, {128, 207, 0, 0, 3, 0x3CE76D05},
      {0, 650, 20, 30, 1, 0x3D381062},        {0, 650, 20, 30, 558, 0x41C899DB},
      {0, 1290, 7, 0, 777, 0x427FA20C},       {0, 1290, 7, 0, 16383, 0x44A8700E},
      {0, 330, 255, 255, 4097, 0x435BF52B},   {0, 207, 0, 0, 3, 0x3D2D9168},
      {129, 650, 20, 30, 1, 0x3D756BAE},      {129, 650, 20, 30, 558, 0x4205BC2E},
      {129, 1290, 7, 0, 777, 0x42AA6C62},     {129, 1290, 7, 0, 16383, 0x44E095DE},
      {129, 330, 255, 255, 4097, 0x4392A3BF}, {129, 207, 0, 0, 3, 0x3D676D05},
      {1, 650, 20, 30, 1, 0x3DB81062},        {1, 650, 20, 30, 558, 0x424899DB},
      {1, 1290, 7, 0, 777, 0x42FFA20C},       {1, 1290, 7, 0, 16383, 0x4528700E},
      {1, 330, 255, 255, 4097, 0x43DBF52B},   {1, 207, 0, 0, 3, 0x3DAD9168},
      {130, 650, 20, 30, 1, 0x3DF56BAE},      {130, 650, 20, 30, 558, 0x4285BC2E},
      {130, 1290, 7, 0, 777, 0x432A6C62},     {130, 1290, 7, 0, 16383, 0x456095DE},
      {130, 330, 255, 255, 4097, 0x4412A3BF}, {130, 207, 0, 0, 3, 0x3DE76D05},
      {2, 650, 20, 30, 1, 0x3E381062},        {2, 650, 20, 30, 558, 0x42C899DB},
      {2, 1290, 7, 0, 777, 0x437FA20C},       {2, 1290, 7, 0, 16383, 0x45A8700E},
      {2, 330, 255, 255, 4097, 0x445BF52B},   {2, 207, 0, 0, 3, 0x3E2D9168},
  };
  for (const auto& row : rows) {
    const float time = TimeFromRows(row.rows, FindPixelClock(row.clocking)->period_ms,
                                    Timing(row.row_length, row.a, row.b));
    EXPECT_EQ(Bits(time), row.bits) << row.clocking << ' ' << row.row_length << ' ' << row.rows;
  }
}

TEST(BitPatterns, MaxExposureFirstGeneration) {
  struct {
    std::uint32_t clocking, factor, height, bits;
  } const rows[] = {
      {128, 1, 1024, 0x428DFEED}, {128, 2, 1023, 0x41A38574}, {128, 4, 490, 0x4045CDE3},
      {0, 1, 1024, 0x42D4FDF4},   {0, 2, 1023, 0x41F547AE},   {0, 4, 490, 0x40945A1D},
      {129, 1, 1024, 0x430DFEED}, {129, 2, 1023, 0x42238574}, {129, 4, 490, 0x40C5CDE3},
      {1, 1, 1024, 0x4354FDF4},   {1, 2, 1023, 0x427547AE},   {1, 4, 490, 0x41145A1D},
      {130, 1, 1024, 0x438DFEED}, {130, 2, 1023, 0x42A38574}, {130, 4, 490, 0x4145CDE3},
      {2, 1, 1024, 0x43D4FDF4},   {2, 2, 1023, 0x42F547AE},   {2, 4, 490, 0x41945A1D},
  };
  for (const auto& row : rows) {
    const float time =
        MaxExposureFirstGeneration(row.factor, row.height, *FindPixelClock(row.clocking));
    EXPECT_EQ(Bits(time), row.bits) << row.clocking << ' ' << row.factor;
  }
}

TEST(BitPatterns, MaxExposureSecondGeneration) {
  struct {
    std::uint32_t clocking, factor;
    float frame_rate;
    std::uint32_t bits;
  } const rows[] = {
      {128, 1, 5.0f, 0x43480000},   {128, 1, 12.5f, 0x42A00000},  {128, 2, 3.0f, 0x43A6AAAB},
      {128, 4, 60.0f, 0x41855555},  {128, 1, 500.0f, 0x42688FD6}, {0, 1, 5.0f, 0x43480000},
      {0, 1, 12.5f, 0x42AE6B85},    {0, 2, 3.0f, 0x43A6AAAB},     {0, 4, 60.0f, 0x41855555},
      {0, 1, 500.0f, 0x42AE6B85},   {129, 1, 5.0f, 0x43480000},   {129, 1, 12.5f, 0x42E88FD6},
      {129, 2, 3.0f, 0x43A6AAAB},   {129, 4, 60.0f, 0x41855555},  {129, 1, 500.0f, 0x42E88FD6},
      {1, 1, 5.0f, 0x43480000},     {1, 1, 12.5f, 0x432E6B85},    {1, 2, 3.0f, 0x43A6AAAB},
      {1, 4, 60.0f, 0x41855555},    {1, 1, 500.0f, 0x432E6B85},   {130, 1, 5.0f, 0x43688FD6},
      {130, 1, 12.5f, 0x43688FD6},  {130, 2, 3.0f, 0x43A6AAAB},   {130, 4, 60.0f, 0x4188B9A0},
      {130, 1, 500.0f, 0x43688FD6}, {2, 1, 5.0f, 0x43AE6B85},     {2, 1, 12.5f, 0x43AE6B85},
      {2, 2, 3.0f, 0x43A6AAAB},     {2, 4, 60.0f, 0x41CD1604},    {2, 1, 500.0f, 0x43AE6B85},
  };
  for (const auto& row : rows) {
    const float time = MaxExposureSecondGeneration(
        row.factor, 1280, 1024, *FindPixelClock(row.clocking), row.frame_rate, Timing(0, 20, 30));
    EXPECT_EQ(Bits(time), row.bits) << row.clocking << ' ' << row.factor << ' ' << row.frame_rate;
  }
}

// The constants are single precision, the arithmetic is not: python
// f32(code * f32(0.11119) + f32(0.483)).
TEST(BitPatterns, ExposureGainFromCode) {
  const std::uint32_t bits[] = {
      0x3EF74BC7, 0x3F181CD6, 0x3F3493C9, 0x3F510ABB, 0x3F6D81AE, 0x3F84FC50, 0x3F9337CA,
      0x3FA17343, 0x3FAFAEBC, 0x3FBDEA36, 0x3FCC25AF, 0x3FDA6128, 0x3FE89CA2, 0x3FF6D81B,
      0x400289CA, 0x4009A787, 0x4010C543, 0x4017E300, 0x401F00BD, 0x40261E79, 0x402D3C36,
      0x403459F3, 0x403B77AF, 0x4042956C, 0x4049B329, 0x4050D0E5, 0x4057EEA2, 0x405F0C5F,
      0x40662A1B, 0x406D47D8, 0x40746595, 0x407B8351, 0x40815087, 0x4084DF65, 0x40886E44,
      0x408BFD22, 0x408F8C00, 0x40931ADF, 0x4096A9BD, 0x409A389B, 0x409DC77A, 0x40A15658,
      0x40A4E536, 0x40A87415, 0x40AC02F3, 0x40AF91D1, 0x40B320B0, 0x40B6AF8E, 0x40BA3E6C,
      0x40BDCD4B, 0x40C15C29, 0x40C4EB07, 0x40C879E6, 0x40CC08C4, 0x40CF97A2, 0x40D32680,
      0x40D6B55F, 0x40DA443D, 0x40DDD31B, 0x40E161FA, 0x40E4F0D8, 0x40E87FB6, 0x40EC0E95,
      0x40EF9D73};
  for (std::uint32_t code = 0; code < 64; ++code) {
    EXPECT_EQ(Bits(ExposureGainFromCode(static_cast<std::uint8_t>(code))), bits[code]) << code;
  }
}

// Times of a whole number of rows, or of a half, where a register wider than double
// would round up into the next row.
TEST(BitPatterns, RowsOfTimesAtTheEdgeOfARow) {
  struct {
    std::uint32_t row_clocks;  // blanking and the fixed 19 included
    double time_ms;
    std::uint32_t rows;
  } const rows[] = {
      {140, 35.0, 3999},   {288, 243.0, 13499}, {334, 167.0, 7999},  {475, 57.0, 1919},
      {570, 256.5, 7199},  {680, 272.0, 6399},  {940, 117.5, 1999},  {1088, 59.5, 874},
      {1088, 221.0, 3249}, {1120, 24.5, 349},   {1144, 143.0, 1999}, {1148, 143.5, 1999},
      {1245, 249.0, 3199}, {1360, 76.5, 899},   {1400, 217.0, 2479}, {1400, 224.0, 2559},
      {105, 73.5, 11200},  {136, 93.5, 11000},  {192, 154.5, 12875}, {200, 62.0, 4960},
      {240, 165.0, 11000}, {296, 148.0, 8000},  {320, 78.5, 3925},   {320, 101.5, 5075},
      {440, 60.5, 2200},   {449, 224.5, 8000},  {496, 15.5, 500},    {586, 146.5, 4000},
      {736, 253.0, 5500},  {800, 29.5, 590},    {1184, 129.5, 1750}, {1632, 280.5, 2750},
  };
  for (const auto& row : rows) {
    const RowExposure exposure =
        RowsFromTime(row.time_ms, 6.25e-5, row.row_clocks - 19, Timing(0, 0, 0));
    EXPECT_EQ(exposure.rows, row.rows) << row.row_clocks << ' ' << row.time_ms;
  }
}

// Half rows of 0.104 ms. 62.5 + 0.5 comes out as 62.99999999999999 in double.
TEST(BitPatterns, ExposureValuesOfTimesAtHalfARow) {
  struct {
    double time_ms;
    std::uint32_t value;
  } const rows[] = {
      {6.5, 1085u},  {13.0, 1148u}, {19.5, 1210u}, {26.0, 1273u},  {32.5, 1336u}, {39.0, 1398u},
      {45.5, 1460u}, {52.0, 1523u}, {58.5, 1586u}, {65.0, 1648u},  {71.5, 1710u}, {78.0, 1773u},
      {84.5, 1835u}, {91.0, 1898u}, {97.5, 1960u}, {104.0, 2023u},
  };
  for (const auto& row : rows) {
    std::uint32_t value = 0;
    EXPECT_TRUE(ExposureValueFromTime(row.time_ms, *FindPixelClock(0), 1664, 1024, &value));
    EXPECT_EQ(value, row.value) << row.time_ms;
  }
}

// 40 x 600 pixels of 1 / 24000 ms come out just below 1, 160 x 600 just below 4.
TEST(BitPatterns, SettleTimesOfWholeMilliseconds) {
  struct {
    std::uint32_t width, height, milliseconds;
  } const rows[] = {
      {40, 600, 0},    {80, 600, 1},     {160, 600, 3},    {320, 600, 7},
      {504, 1000, 20}, {600, 40, 0},     {600, 400, 10},   {640, 480, 12},
      {800, 600, 20},  {1200, 1000, 49}, {1280, 1000, 53}, {24, 1000, 1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(SettleMilliseconds(row.width, row.height, *FindPixelClock(128)), row.milliseconds)
        << row.width << ' ' << row.height;
  }
}

}  // namespace
}  // namespace ormidex::imager
