#include "automation/statistics.h"

#include <gtest/gtest.h>

namespace ormidex::automation {
namespace {

constexpr std::uint32_t kVga = 640 * 480;

TEST(LongStatistics, AreLittleEndianSums) {
  // 76,800 sites of red at 100, 153,600 of green at 50, 76,800 of blue at 1, less 1.
  const std::uint8_t block[] = {0x00, 0x30, 0x75, 0x00, 0x00, 0x30,
                                0x75, 0x00, 0xFF, 0x2B, 0x01, 0x00};
  const ColourLevels levels = LevelsFromLongStatistics(block, kVga);
  EXPECT_EQ(levels.red, 100u);
  EXPECT_EQ(levels.green, 50u);
  EXPECT_EQ(levels.blue, 0u);  // 76,799 / 76,800
}

TEST(LongStatistics, UseAll32Bits) {
  const std::uint8_t block[] = {0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80, 0, 0, 1, 0};
  const ColourLevels levels = LevelsFromLongStatistics(block, 0x04000000);
  EXPECT_EQ(levels.red, 255u);
  EXPECT_EQ(levels.green, 64u);
  EXPECT_EQ(levels.blue, 0u);
}

TEST(ShortStatistics, Are13BitsBigEndianAndIgnoreTheUpperThree) {
  // 596 x 65536 / 307200 = 127.1, 235 gives 50.1, 8191 gives 1747.4.
  const std::uint8_t block[] = {0x02, 0x54, 0xE0, 0xEB, 0xFF, 0xFF};
  const ColourLevels levels = LevelsFromShortStatistics(block, kVga);
  EXPECT_EQ(levels.red, 127u);
  EXPECT_EQ(levels.green, 50u);
  EXPECT_EQ(levels.blue, 1747u);
}

TEST(ShortStatistics, FrameBytesCountBothBytesOfASample) {
  const std::uint8_t block[] = {0x02, 0x54, 0x02, 0x54, 0x02, 0x54};
  EXPECT_EQ(LevelsFromShortStatistics(block, kVga * 2).red, 63u);  // 63.6
}

TEST(NewerStatistics, Are16BitsBigEndianOfFourSites) {
  // 76,800 sites: 3750 x 2048 / 76800 = 100; 37.5, 75 and 65535 give 1, 2 and 1747.
  const std::uint8_t block[] = {0x0E, 0xA6, 0x00, 0x26, 0x00, 0x4B, 0xFF, 0xFF};
  const SiteLevels levels = LevelsFromNewerStatistics(block, kVga);
  EXPECT_EQ(levels.red, 100u);
  EXPECT_EQ(levels.green1, 1u);
  EXPECT_EQ(levels.green2, 2u);
  EXPECT_EQ(levels.blue, 1747u);
}

TEST(Statistics, FrameWithoutPixelsHasNoLevels) {
  const std::uint8_t block[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (const std::uint32_t bytes : {0u, 1u}) {
    EXPECT_EQ(LevelsFromLongStatistics(block, bytes).green, 0u);
    EXPECT_EQ(LevelsFromNewerStatistics(block, bytes).red, 0u);
  }
  EXPECT_EQ(LevelsFromShortStatistics(block, 0).blue, 0u);
}

}  // namespace
}  // namespace ormidex::automation
