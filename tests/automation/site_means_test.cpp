#include "automation/site_means.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "automation/kernels/site_sums.h"

namespace ormidex::automation {
namespace {

constexpr std::uint32_t kUnused = 0xFFFFFFFFu;

// A frame whose samples depend on their parities only, given as the 2 x 2 cell.
std::vector<std::uint8_t> CellFrame(std::uint32_t width, std::uint32_t height,
                                    const std::uint8_t (&cell)[4]) {
  std::vector<std::uint8_t> frame(std::size_t{width} * height);
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width; ++x) frame[y * width + x] = cell[(y & 1) * 2 + (x & 1)];
  }
  return frame;
}

// Samples of 16 bits: the given byte above, `low` below.
std::vector<std::uint8_t> Widened(const std::vector<std::uint8_t>& frame, std::uint8_t low) {
  std::vector<std::uint8_t> wide;
  for (const std::uint8_t high : frame) {
    wide.push_back(low);
    wide.push_back(high);
  }
  return wide;
}

BayerSiteMeans Means8(std::uint32_t phase, const std::vector<std::uint8_t>& frame,
                      std::uint32_t stride, const SiteRectangle& rectangle) {
  std::uint32_t packed = 0xDEADBEEF;
  ComputeSiteMeans8(phase, frame.data(), stride, rectangle, &packed, kUnused);
  return BayerSiteMeans::FromPacked(packed);
}

BayerSiteMeans Means16(std::uint32_t phase, const std::vector<std::uint8_t>& frame,
                       std::uint32_t stride, const SiteRectangle& rectangle) {
  std::uint32_t packed = 0xDEADBEEF;
  ComputeSiteMeans16(phase, frame.data(), stride, rectangle, &packed, kUnused);
  return BayerSiteMeans::FromPacked(packed);
}

// Runs with every tier of the kernels.
class SiteMeans : public ::testing::TestWithParam<const SiteSumTier*> {
 protected:
  void SetUp() override { UseSiteSumTier(GetParam()); }
  void TearDown() override { UseSiteSumTier(nullptr); }
};

void ExpectMeans(const BayerSiteMeans& means, int red, int green1, int green2, int blue,
                 const std::string& where) {
  EXPECT_EQ(means.red, red) << where;
  EXPECT_EQ(means.green1, green1) << where;
  EXPECT_EQ(means.green2, green2) << where;
  EXPECT_EQ(means.blue, blue) << where;
}

TEST(PackedSiteMeans, HoldGreen1RedGreen2BlueFromTheTop) {
  constexpr BayerSiteMeans kMeans = BayerSiteMeans::FromPacked(0x11223344);
  EXPECT_EQ(kMeans.green1, 0x11);
  EXPECT_EQ(kMeans.red, 0x22);
  EXPECT_EQ(kMeans.green2, 0x33);
  EXPECT_EQ(kMeans.blue, 0x44);
  EXPECT_EQ(kMeans.Packed(), 0x11223344u);
}

// Even row 10, 20; odd row 30, 40. Phase 0 is R G / G B, phase 1 G R / B G (its
// rows of type A are the odd ones), phase 2 B G / G R.
TEST_P(SiteMeans, ThreePhasesAssignTheFourSites) {
  const auto frame = CellFrame(8, 4, {10, 20, 30, 40});
  const SiteRectangle all{0, 0, 8, 4};
  ExpectMeans(Means8(0, frame, 8, all), 10, 20, 30, 40, "phase 0");
  ExpectMeans(Means8(1, frame, 8, all), 20, 40, 10, 30, "phase 1");
  ExpectMeans(Means8(2, frame, 8, all), 40, 20, 30, 10, "phase 2");
  const auto wide = Widened(frame, 0xFF);
  ExpectMeans(Means16(0, wide, 8, all), 10, 20, 30, 40, "phase 0, 16 bits");
  ExpectMeans(Means16(1, wide, 8, all), 20, 40, 10, 30, "phase 1, 16 bits");
  ExpectMeans(Means16(2, wide, 8, all), 40, 20, 30, 10, "phase 2, 16 bits");
}

TEST_P(SiteMeans, PhaseTwoSwapsRedAndBlueAndKeepsTheGreens) {
  const auto frame = CellFrame(12, 6, {7, 90, 110, 200});
  const SiteRectangle rectangle{1, 1, 11, 5};
  const BayerSiteMeans zero = Means8(0, frame, 12, rectangle);
  const BayerSiteMeans two = Means8(2, frame, 12, rectangle);
  EXPECT_EQ(two.red, zero.blue);
  EXPECT_EQ(two.blue, zero.red);
  EXPECT_EQ(two.green1, zero.green1);
  EXPECT_EQ(two.green2, zero.green2);
}

TEST_P(SiteMeans, ParitiesAreThoseOfTheFrameNotOfTheRectangle) {
  const auto frame = CellFrame(16, 16, {10, 20, 30, 40});
  const auto wide = Widened(frame, 0);
  for (std::uint32_t left = 0; left < 4; ++left) {
    for (std::uint32_t top = 0; top < 4; ++top) {
      const SiteRectangle rectangle{left, top, left + 8, top + 8};
      const std::string where = std::to_string(left) + ", " + std::to_string(top);
      ExpectMeans(Means8(0, frame, 16, rectangle), 10, 20, 30, 40, where);
      ExpectMeans(Means8(1, frame, 16, rectangle), 20, 40, 10, 30, where);
      ExpectMeans(Means8(2, frame, 16, rectangle), 40, 20, 30, 10, where);
      ExpectMeans(Means16(1, wide, 16, rectangle), 20, 40, 10, 30, where);
    }
  }
}

// 5 x 4 pixels: 4 samples of each kind are summed, the divisor is 20 / 4 = 5.
TEST_P(SiteMeans, OddWidthIgnoresItsLastColumnButDividesByAllPixels) {
  auto frame = CellFrame(8, 4, {100, 50, 200, 250});
  for (std::uint32_t y = 0; y < 4; ++y) frame[y * 8 + 4] = 255;  // the odd column
  ExpectMeans(Means8(0, frame, 8, {0, 0, 5, 4}), 80, 40, 160, 200, "5 x 4");
}

// 2 x 3 pixels: rows 0 and 2 are type A, row 1 type B; the divisor is 6 / 4 = 1.
// The even column of type A sums 100 + 100, the odd one 30 + 30.
TEST_P(SiteMeans, OddHeightWeighsTheRowTypesUnevenly) {
  const auto frame = CellFrame(2, 4, {100, 30, 20, 60});
  ExpectMeans(Means8(0, frame, 2, {0, 0, 2, 3}), 200, 60, 20, 60, "2 x 3");
}

// 4 x 3 pixels of 255: type A sums 4 x 255 = 1020 over 12 / 4 = 3, which is 340, or
// 84 in its low eight bits. Type B sums 2 x 255 over 3, which is 170.
TEST_P(SiteMeans, MeanAbove255KeepsItsLowEightBitsAndSpoilsNoOther) {
  const std::vector<std::uint8_t> frame(4 * 3, 255);
  ExpectMeans(Means8(0, frame, 4, {0, 0, 4, 3}), 84, 84, 170, 170, "8 bits");
  const std::vector<std::uint8_t> wide(4 * 3 * 2, 255);
  ExpectMeans(Means16(0, wide, 4, {0, 0, 4, 3}), 84, 84, 170, 170, "16 bits");
}

TEST_P(SiteMeans, LowByteOfA16BitSampleIsDroppedBeforeSumming) {
  std::vector<std::uint8_t> frame;
  for (int i = 0; i < 4 * 4; ++i) {
    frame.push_back(0xFF);
    frame.push_back(0x01);
  }
  // 0x0100 each: 4 x 0x0100 / 4, shifted right by 8, is 1; 0x01FF would give 1 too,
  // so the difference shows in one bright sample among three of 0x00FF.
  ExpectMeans(Means16(0, frame, 4, {0, 0, 4, 4}), 1, 1, 1, 1, "0x01FF");
  const std::vector<std::uint8_t> low_only = Widened(std::vector<std::uint8_t>(16, 0), 0xFF);
  ExpectMeans(Means16(0, low_only, 4, {0, 0, 4, 4}), 0, 0, 0, 0, "0x00FF");
  // Reds 0x01FF, 0x01FF, 0x01FF, 0x00FF: 0x0300 / 4 >> 8 is 0, with low bytes 1.
  frame[21] = 0x00;
  EXPECT_EQ(Means16(0, frame, 4, {0, 0, 4, 4}).red, 0);
}

TEST_P(SiteMeans, MeansAreTruncated) {
  // Reds 1, 0, 0, 2 in a 4 x 4 frame: 3 / 4.
  std::vector<std::uint8_t> frame(16, 0);
  frame[0] = 1;
  frame[10] = 2;
  EXPECT_EQ(Means8(0, frame, 4, {0, 0, 4, 4}).red, 0);
  frame[2] = 1;
  EXPECT_EQ(Means8(0, frame, 4, {0, 0, 4, 4}).red, 1);
}

TEST_P(SiteMeans, CountersComeBackAsZeroWhateverTheFrameHolds) {
  const std::vector<std::uint8_t> frame(64, 255);
  std::uint32_t packed = 0;
  std::uint32_t dark = 77;
  std::uint32_t clipped = 88;
  ComputeSiteMeans8(0, frame.data(), 8, {0, 0, 8, 8}, &packed, 0, &dark, &clipped);
  EXPECT_EQ(dark, 0u);
  EXPECT_EQ(clipped, 0u);
  EXPECT_EQ(packed, 0xFFFFFFFFu);
  dark = clipped = 99;
  ComputeSiteMeans16(0, frame.data(), 4, {0, 0, 4, 8}, &packed, 1, &dark, &clipped);
  EXPECT_EQ(dark, 0u);
  EXPECT_EQ(clipped, 0u);
}

// 514 x 512 pixels have 65,792 sites of one kind, and 65,792 x 0xFF00 =
// 4,294,901,760 still fits in 32 bits; 514 x 514 have 66,049, whose sum of
// 4,311,678,720 wraps to 16,711,424: over 66,049 that is 253, shifted right 0.
TEST_P(SiteMeans, SixteenBitSumsWrapAround) {
  const std::vector<std::uint8_t> frame(std::size_t{514} * 514 * 2, 0xFF);
  ExpectMeans(Means16(0, frame, 514, {0, 0, 514, 512}), 255, 255, 255, 255, "65,792 sites");
  ExpectMeans(Means16(0, frame, 514, {0, 0, 514, 514}), 0, 0, 0, 0, "66,049 sites");
  // 1280 x 1024: 327,680 sites x 0xFF00 is 21,390,950,400, less 4 x 2^32 is
  // 4,211,081,216; over 327,680 that is 12,851, shifted right by 8 is 50.
  const std::vector<std::uint8_t> full(std::size_t{1280} * 1024 * 2, 0xFF);
  ExpectMeans(Means16(0, full, 1280, {0, 0, 1280, 1024}), 50, 50, 50, 50, "full frame");
}

// Fewer than four pixels: divided by 1. Fewer than two columns hold no pair.
TEST_P(SiteMeans, RectanglesBelowTwoByTwoGiveTheSumsOfWhatTheyHold) {
  const auto frame = CellFrame(4, 4, {10, 20, 30, 40});
  ExpectMeans(Means8(0, frame, 4, {0, 0, 0, 0}), 0, 0, 0, 0, "0 x 0");
  ExpectMeans(Means8(0, frame, 4, {1, 1, 1, 3}), 0, 0, 0, 0, "0 x 2");
  ExpectMeans(Means8(0, frame, 4, {0, 0, 4, 0}), 0, 0, 0, 0, "4 x 0");
  ExpectMeans(Means8(0, frame, 4, {0, 0, 1, 1}), 0, 0, 0, 0, "1 x 1");
  ExpectMeans(Means8(0, frame, 4, {0, 0, 1, 3}), 0, 0, 0, 0, "1 x 3");
  ExpectMeans(Means8(0, frame, 4, {0, 0, 2, 1}), 10, 20, 0, 0, "2 x 1");
  ExpectMeans(Means8(0, frame, 4, {0, 1, 3, 2}), 0, 0, 30, 40, "3 x 1");
  ExpectMeans(Means16(0, Widened(frame, 9), 4, {0, 0, 2, 1}), 10, 20, 0, 0, "2 x 1, 16 bits");
}

TEST_P(SiteMeans, OneColumnHoldsNoPairHoweverTallItIs) {
  const auto frame = CellFrame(4, 16, {10, 20, 30, 40});
  ExpectMeans(Means8(0, frame, 4, {1, 0, 2, 16}), 0, 0, 0, 0, "1 x 16");
}

INSTANTIATE_TEST_SUITE_P(Tiers, SiteMeans, ::testing::ValuesIn(AvailableSiteSumTiers()),
                         [](const auto& test) { return test.param->name; });

}  // namespace
}  // namespace ormidex::automation
