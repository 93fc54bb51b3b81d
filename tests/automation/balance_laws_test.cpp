#include "automation/balance_laws.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace ormidex::automation {
namespace {

std::string Text(const ColourLevels& levels) {
  return std::to_string(levels.red) + " " + std::to_string(levels.green) + " " +
         std::to_string(levels.blue);
}
std::string Text(const std::optional<ColourGainCodes>& codes) {
  if (!codes) return "balanced";
  return std::to_string(codes->red) + " " + std::to_string(codes->green) + " " +
         std::to_string(codes->blue);
}
// In the order red, green 1, green 2, blue.
std::string Text(const std::optional<SiteGainCodes>& codes) {
  if (!codes) return "balanced";
  return std::to_string(codes->red) + " " + std::to_string(codes->green1) + " " +
         std::to_string(codes->green2) + " " + std::to_string(codes->blue);
}

// ---- Weights --------------------------------------------------------------------------

TEST(ColourWeights, EqualTargetsAreNeutralAndCapNothing) {
  for (const std::uint32_t target : {0u, 1u, 200u, 0xFFFFFFFFu}) {
    const ColourWeights weights = ColourWeights::FromTargets(target, target, target);
    EXPECT_TRUE(weights.neutral);
    EXPECT_EQ(Text(weights.Apply(ColourLevels{300, 20, 10})), "300 20 10");
  }
}

TEST(ColourWeights, LargestTargetIsTheReference) {
  const ColourLevels levels{40, 60, 100};
  EXPECT_EQ(Text(ColourWeights::FromTargets(4, 2, 1).Apply(levels)), "40 120 255");
  EXPECT_EQ(Text(ColourWeights::FromTargets(2, 4, 1).Apply(levels)), "80 60 255");
  EXPECT_EQ(Text(ColourWeights::FromTargets(2, 1, 4).Apply(levels)), "80 240 100");
  EXPECT_EQ(Text(ColourWeights::FromTargets(5, 5, 2).Apply(levels)), "40 60 250");
  EXPECT_EQ(Text(ColourWeights::FromTargets(2, 5, 5).Apply(levels)), "100 60 100");
}

TEST(ColourWeights, WeightedLevelsAreTruncatedAndCappedAt255) {
  // 100 x 3 / 2, 33 x 3 / 2, 250 x 3 / 2
  EXPECT_EQ(Text(ColourWeights::FromTargets(2, 2, 3).Apply(ColourLevels{100, 33, 250})),
            "150 49 250");
  EXPECT_EQ(Text(ColourWeights::FromTargets(2, 3, 2).Apply(ColourLevels{250, 33, 171})),
            "255 33 255");
}

TEST(ColourWeights, TargetOfZeroGivesTheChannelNoWeight) {
  EXPECT_EQ(Text(ColourWeights::FromTargets(5, 5, 0).Apply(ColourLevels{100, 110, 120})),
            "100 110 0");
  EXPECT_EQ(Text(ColourWeights::FromTargets(0, 7, 0).Apply(ColourLevels{100, 110, 120})),
            "0 110 0");
}

TEST(ColourWeights, BothGreensShareTheGreenWeight) {
  const SiteLevels levels = ColourWeights::FromTargets(4, 2, 1).Apply(SiteLevels{10, 20, 30, 40});
  EXPECT_EQ(levels.red, 10u);
  EXPECT_EQ(levels.green1, 40u);
  EXPECT_EQ(levels.green2, 60u);
  EXPECT_EQ(levels.blue, 160u);
}

// ---- Older law ------------------------------------------------------------------------

TEST(OlderBalance, SpreadOfFourIsBalanced) {
  OlderBalance law;
  EXPECT_EQ(Text(law.Step({100, 104, 102})), "balanced");
  EXPECT_EQ(Text(law.Step({100, 105, 102})), "0 0 0");
}

TEST(OlderBalance, FirstPassAsksForZeroCodes) {
  OlderBalance law;
  EXPECT_EQ(Text(law.Step({200, 100, 50})), "0 0 0");
  EXPECT_EQ(law.passes, 1u);
}

OlderBalance AfterFirstPass() {
  OlderBalance law;
  law.Step({200, 100, 50});
  return law;
}

TEST(OlderBalance, SecondPassMakesTheBrightestChannelTheReference) {
  // 20 x 200 / 100, 20 x 200 / 50 beyond the last code
  EXPECT_EQ(Text(AfterFirstPass().Step({200, 100, 50})), "0 40 63");
  // 20 x 150 / 100, 20 x 150 / 120
  EXPECT_EQ(Text(AfterFirstPass().Step({100, 150, 120})), "30 0 25");
  // 20 x 100 / 50, 20 x 100 / 60 = 33.3
  EXPECT_EQ(Text(AfterFirstPass().Step({50, 60, 100})), "40 33 0");
}

TEST(OlderBalance, TiesGoToRedThenToGreen) {
  EXPECT_EQ(Text(AfterFirstPass().Step({100, 100, 50})), "0 20 40");
  EXPECT_EQ(Text(AfterFirstPass().Step({100, 50, 100})), "0 40 20");
  EXPECT_EQ(Text(AfterFirstPass().Step({50, 100, 100})), "40 0 20");
}

TEST(OlderBalance, LaterPassesScaleTheFactorsAndKeepTheReference) {
  OlderBalance red = AfterFirstPass();
  red.Step({200, 100, 80});  // factors 2 and 2.5
  // 2 x 200 / 160 = 2.5, 2.5 x 200 / 250 = 2: blue is brighter now, red stays.
  EXPECT_EQ(Text(red.Step({200, 160, 250})), "0 50 40");
  OlderBalance green = AfterFirstPass();
  green.Step({100, 200, 80});                               // 2 and 2.5
  EXPECT_EQ(Text(green.Step({250, 200, 160})), "32 0 62");  // 1.6, 3.125
  OlderBalance blue = AfterFirstPass();
  blue.Step({100, 80, 200});  // 2 and 2.5
  EXPECT_EQ(Text(blue.Step({160, 250, 200})), "50 40 0");
}

// The code stops at 63, the factor does not: 4 x 200 / 100 = 8 is scaled down from 8.
TEST(OlderBalance, FactorsBeyondTheLastCodeAreRemembered) {
  OlderBalance law = AfterFirstPass();
  law.Step({200, 190, 50});                               // blue factor 4
  EXPECT_EQ(Text(law.Step({200, 200, 100})), "0 21 63");  // green 20 x 1.0526, blue 8
  EXPECT_EQ(Text(law.Step({100, 100, 255})), "0 21 62");  // blue 3.137
}

TEST(OlderBalance, LevelOfZeroCountsAsOne) {
  EXPECT_EQ(Text(AfterFirstPass().Step({0, 0, 10})), "63 63 0");
  EXPECT_EQ(Text(AfterFirstPass().Step({3, 5, 0})), "33 0 63");
}

TEST(OlderBalance, CodeOf63IsTheLast) {
  // 63 / 20 = 3.15: 252 / 80 is 3.15, 252 / 81 is 3.11.
  EXPECT_EQ(Text(AfterFirstPass().Step({252, 80, 81})), "0 63 62");
}

// ---- Newer law ------------------------------------------------------------------------

TEST(NewerGainCurve, TwoLinesMeetBetweenCodes31And32) {
  EXPECT_DOUBLE_EQ(GainFromCode(0), 0.695);
  EXPECT_DOUBLE_EQ(GainFromCode(1), 0.71675);
  EXPECT_DOUBLE_EQ(GainFromCode(31), 1.36925);
  EXPECT_DOUBLE_EQ(GainFromCode(32), 1.391);
  EXPECT_DOUBLE_EQ(GainFromCode(63), 2.7395);
}

TEST(NewerGainCurve, GainsBecomeTheNearestCode) {
  EXPECT_EQ(CodeFromGain(0.0), 0);
  EXPECT_EQ(CodeFromGain(0.69), 0);
  EXPECT_EQ(CodeFromGain(0.695), 0);
  EXPECT_EQ(CodeFromGain(0.7058), 0);   // 0.4966 codes
  EXPECT_EQ(CodeFromGain(0.7060), 1);   // 0.5057 codes
  EXPECT_EQ(CodeFromGain(1.0), 14);     // 14.02
  EXPECT_EQ(CodeFromGain(1.37), 31);    // 31.03
  EXPECT_EQ(CodeFromGain(1.3701), 32);  // the steep line begins at 32.02
  EXPECT_EQ(CodeFromGain(2.0), 46);
}

TEST(NewerGainCurve, EveryCodeMapsBackToItself) {
  for (int code = 0; code <= 63; ++code) {
    EXPECT_EQ(CodeFromGain(GainFromCode(static_cast<std::uint8_t>(code))), code);
  }
}

TEST(NewerGainCurve, GainBeyondTheLastCodeIsHeldThere) {
  EXPECT_EQ(CodeFromGain(2.7395), 63);
  EXPECT_EQ(CodeFromGain(2.8), 63);
  EXPECT_EQ(CodeFromGain(1e300), 63);
  EXPECT_EQ(CodeFromGain(std::numeric_limits<double>::infinity()), 63);
  EXPECT_EQ(CodeFromGain(std::numeric_limits<double>::quiet_NaN()), 63);
}

constexpr SiteGainCodes kUnity{14, 14, 14, 14};  // gain 0.9995

TEST(NewerBalance, SpreadOfSixteenIsBalanced) {
  NewerBalance law;
  EXPECT_EQ(Text(law.Step(kUnity, {100, 116, 110, 105})), "balanced");
  EXPECT_EQ(law.passes, 0u);
  EXPECT_NE(Text(law.Step(kUnity, {100, 117, 110, 105})), "balanced");
  EXPECT_EQ(law.passes, 1u);
}

// Raw levels 100, 200, 200, 50: gains 2, 1, 1 and 4.
TEST(NewerBalance, FirstPassWorksOnLevelsWithoutGain) {
  NewerBalance law;
  EXPECT_EQ(Text(law.Step(kUnity, {100, 200, 200, 50})), "46 14 14 63");
  EXPECT_EQ(law.reference, 1);
}

// Codes 46 and 0 are gains 2.0 and 0.695: raw levels 100 / 2 and 140 / 0.695 = 201,
// so red needs four times as much.
TEST(NewerBalance, FirstPassTakesTheCurrentGainsOut) {
  NewerBalance law;
  EXPECT_EQ(Text(law.Step({0, 46, 0, 0}, {100, 140, 140, 140})), "63 14 14 14");
  EXPECT_EQ(law.reference, 1);
}

TEST(NewerBalance, ReferenceIsTheFirstOfTheBrightest) {
  NewerBalance red;
  red.Step(kUnity, {200, 200, 200, 50});
  EXPECT_EQ(red.reference, 0);
  NewerBalance second_green;
  second_green.Step(kUnity, {100, 150, 200, 200});
  EXPECT_EQ(second_green.reference, 2);
  NewerBalance blue;
  blue.Step(kUnity, {100, 150, 180, 200});
  EXPECT_EQ(blue.reference, 3);
}

TEST(NewerBalance, LaterPassesScaleTheGainOfTheCode) {
  NewerBalance law;
  law.Step(kUnity, {100, 200, 200, 50});
  // Red: code 46 is 2.0, x 200 / 180 = 2.222: 51.6. Blue: code 63 is 2.7395, x 200 /
  // 190 = 2.884: beyond. From the gain of 4 that blue wanted it would be beyond too,
  // so the pass after it tells: 2.7395 x 200 / 220 = 2.490: 57.8.
  EXPECT_EQ(Text(law.Step({14, 46, 63, 14}, {180, 200, 200, 190})), "51 14 14 63");
  EXPECT_EQ(Text(law.Step({14, 51, 63, 14}, {200, 200, 200, 220})), "51 14 14 57");
}

// mean / gain below 1: no raw level, and no division by it.
TEST(NewerBalance, ChannelWithoutRawLevelGetsTheLastCode) {
  NewerBalance law;
  EXPECT_EQ(Text(law.Step({14, 63, 14, 14}, {2, 100, 100, 0})), "63 14 14 63");
}

TEST(NewerBalance, ChannelWithoutLevelGetsTheLastCode) {
  NewerBalance law;
  law.Step(kUnity, {200, 100, 100, 100});
  // Red is the reference and has gone dark: everything but a dark channel is turned
  // down to nothing.
  EXPECT_EQ(Text(law.Step(kUnity, {0, 100, 100, 0})), "63 0 0 63");
}

}  // namespace
}  // namespace ormidex::automation
