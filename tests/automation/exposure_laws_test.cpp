#include "automation/exposure_laws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace ormidex::automation {
namespace {

// ---- Bisection --------------------------------------------------------------------

TEST(BisectionTarget, IsTruncatedSoThatFullScaleIs254) {
  // percent x 2.54999994...
  EXPECT_EQ(BisectionTarget(0), 0u);
  EXPECT_EQ(BisectionTarget(1), 2u);
  EXPECT_EQ(BisectionTarget(10), 25u);
  EXPECT_EQ(BisectionTarget(20), 50u);   // not 51
  EXPECT_EQ(BisectionTarget(40), 101u);  // not 102
  EXPECT_EQ(BisectionTarget(50), 127u);
  EXPECT_EQ(BisectionTarget(60), 152u);  // not 153
  EXPECT_EQ(BisectionTarget(80), 203u);  // not 204
  EXPECT_EQ(BisectionTarget(99), 252u);
  EXPECT_EQ(BisectionTarget(100), 254u);
}

TEST(OlderBrightness, WeighsTheColours) {
  EXPECT_EQ(ColourBrightness(ColourLevels{0, 100, 0}), 71u);
  EXPECT_EQ(ColourBrightness(ColourLevels{100, 0, 0}), 21u);
  EXPECT_EQ(ColourBrightness(ColourLevels{0, 0, 100}), 7u);
  // 80 x 0.7154 + 120 x 0.0721 + 40 x 0.2125 = 57.232 + 8.652 + 8.5
  EXPECT_EQ(ColourBrightness(ColourLevels{40, 80, 120}), 74u);
}

TEST(OlderBrightness, MonoIsTheMeanOfThree) {
  EXPECT_EQ(MonoBrightness(ColourLevels{10, 20, 31}), 20u);
  EXPECT_EQ(MonoBrightness(ColourLevels{255, 255, 255}), 255u);
}

TEST(OlderBrightness, ZeroCountsAsOne) {
  EXPECT_EQ(ColourBrightness(ColourLevels{}), 1u);
  EXPECT_EQ(ColourBrightness(ColourLevels{1, 0, 1}), 1u);
  EXPECT_EQ(MonoBrightness(ColourLevels{1, 1, 0}), 1u);
}

// Runs the search on a picture of constant brightness; the values it sets.
std::vector<std::uint32_t> Search(Bisection search, std::uint32_t target,
                                  std::uint32_t brightness) {
  std::vector<std::uint32_t> set;
  while (set.size() < 50 && search.Step(target, brightness) == Bisection::Verdict::kSetCurrent) {
    set.push_back(search.current);
  }
  return set;
}

using Values = std::vector<std::uint32_t>;

TEST(Bisection, StartsInTheMiddleOfTheRange) {
  const Bisection search(480);
  EXPECT_EQ(search.lower_limit, 1566u);
  EXPECT_EQ(search.low, 1566u);
  EXPECT_EQ(search.high, 2046u);
  EXPECT_EQ(search.current, 1806u);
}

TEST(Bisection, BandIsFiveLevelsToBothSides) {
  const auto sets = [](std::uint32_t brightness) {
    Bisection search(480);
    return search.Step(100, brightness) == Bisection::Verdict::kSetCurrent;
  };
  EXPECT_TRUE(sets(94));
  EXPECT_FALSE(sets(95));
  EXPECT_FALSE(sets(105));
  EXPECT_TRUE(sets(106));
}

TEST(Bisection, TargetZeroHasABandUpToFive) {
  Bisection search(480);
  EXPECT_EQ(search.Step(BisectionTarget(0), 5), Bisection::Verdict::kDone);
  EXPECT_EQ(search.Step(BisectionTarget(0), 6), Bisection::Verdict::kSetCurrent);
}

TEST(Bisection, TargetHundredAimsAt254) {
  Bisection search(480);
  EXPECT_EQ(search.Step(BisectionTarget(100), 249), Bisection::Verdict::kDone);
  EXPECT_EQ(search.Step(BisectionTarget(100), 248), Bisection::Verdict::kSetCurrent);
}

// At 2045 the upper end is next: it counts as reached without being set.
TEST(Bisection, DarkPictureEndsBelowTheUpperLimit) {
  EXPECT_EQ(Search(Bisection(480), 127, 1),
            (Values{1926, 1986, 2016, 2031, 2038, 2042, 2044, 2045}));
}

// At 1567 the lower bound moves up to the value itself, which is set once more.
TEST(Bisection, BrightPictureEndsAboveTheLowerLimit) {
  EXPECT_EQ(Search(Bisection(480), 127, 255),
            (Values{1686, 1626, 1596, 1581, 1573, 1569, 1567, 1567}));
}

TEST(Bisection, EndsWhenTheBoundsMeetInsideTheRangeFromAbove) {
  Bisection search(480);
  ASSERT_EQ(search.Step(127, 1), Bisection::Verdict::kSetCurrent);
  ASSERT_EQ(search.current, 1926u);
  EXPECT_EQ(Search(search, 127, 255), (Values{1866, 1836, 1821, 1813, 1809, 1807}));
}

TEST(Bisection, EndsWhenTheBoundsMeetInsideTheRangeFromBelow) {
  Bisection search(480);
  ASSERT_EQ(search.Step(127, 255), Bisection::Verdict::kSetCurrent);
  ASSERT_EQ(search.current, 1686u);
  EXPECT_EQ(Search(search, 127, 1), (Values{1746, 1776, 1791, 1798, 1802, 1804, 1805}));
}

TEST(Bisection, HeightOf2046StartsAtHalfTheUpperLimit) {
  const Bisection search(2046);
  EXPECT_EQ(search.lower_limit, 0u);
  EXPECT_EQ(search.current, 1023u);
}

// 2046 - 4000 wraps to 0xFFFFF85E; with 2046 that wraps again, to 92.
TEST(Bisection, GreaterHeightsWrap) {
  Bisection search(4000);
  EXPECT_EQ(search.lower_limit, 0xFFFFF85Eu);
  EXPECT_EQ(search.current, 46u);
  // (46 + 0xFFFFF85E) / 2
  EXPECT_EQ(search.Step(0, 255), Bisection::Verdict::kSetCurrent);
  EXPECT_EQ(search.current, 0x7FFFFC46u);
}

// A frame without rows leaves one value to try, and that is not set again.
TEST(Bisection, HeightOfZeroEndsAtOnce) {
  EXPECT_EQ(Bisection(0).current, 2046u);
  EXPECT_TRUE(Search(Bisection(0), 127, 1).empty());
  EXPECT_TRUE(Search(Bisection(0), 127, 255).empty());
}

// ---- Proportional law ---------------------------------------------------------------

TEST(ProportionalTarget, IsTheNearestFloat) {
  EXPECT_EQ(ProportionalTarget(1.0f, 0), 0.0f);
  EXPECT_EQ(ProportionalTarget(1.0f, 50), 127.5f);   // 127.49999715
  EXPECT_EQ(ProportionalTarget(1.0f, 20), 51.0f);    // 50.99999886
  EXPECT_EQ(ProportionalTarget(1.0f, 100), 255.0f);  // 254.99999430
}

TEST(ProportionalTarget, GammaAboveOneRaisesItBy51LevelsAUnit) {
  EXPECT_EQ(ProportionalTarget(2.0f, 50), 178.5f);
  EXPECT_EQ(ProportionalTarget(3.0f, 50), 229.5f);
}

TEST(ProportionalTarget, GammaZeroLowersItBy51Levels) {
  EXPECT_EQ(ProportionalTarget(0.0f, 50), 76.5f);
  EXPECT_EQ(ProportionalTarget(0.0f, 0), -51.0f);
  // 20 x 0.01 and 0.2 as floats differ by 2^-27.
  EXPECT_EQ(ProportionalTarget(0.0f, 20), -255.0f / 134217728.0f);
}

TEST(NewerBrightness, WeighsTheFourSites) {
  EXPECT_EQ(ColourBrightness(SiteLevels{0, 100, 0, 0}), 35u);
  EXPECT_EQ(ColourBrightness(SiteLevels{0, 0, 100, 0}), 35u);
  EXPECT_EQ(ColourBrightness(SiteLevels{0, 100, 100, 0}), 71u);
  // (81 + 80) x 0.3577 + 120 x 0.0721 + 40 x 0.2125 = 57.5897 + 8.652 + 8.5
  EXPECT_EQ(ColourBrightness(SiteLevels{40, 81, 80, 120}), 74u);
  EXPECT_EQ(MonoBrightness(SiteLevels{10, 20, 30, 43}), 25u);
}

TEST(NewerBrightness, ZeroCountsAsOne) {
  EXPECT_EQ(ColourBrightness(SiteLevels{}), 1u);
  EXPECT_EQ(MonoBrightness(SiteLevels{1, 1, 1, 0}), 1u);
}

Proportional At(float exposure_ms) {
  Proportional law;
  law.exposure_ms = exposure_ms;
  return law;
}

TEST(Proportional, ScalesTheTimeByTargetOverBrightness) {
  Proportional law = At(10.0f);
  const Proportional::Action action = law.Step(127.5f, 51);
  EXPECT_TRUE(action.set_exposure);
  EXPECT_FALSE(action.last_pass);
  EXPECT_EQ(law.exposure_ms, 25.0f);
  EXPECT_FALSE(law.armed);
}

// The difference is truncated before it is compared with 3.
TEST(Proportional, BandIsThreeTruncatedLevelsToBothSides) {
  const auto sets = [](std::uint32_t brightness) {
    return At(10.0f).Step(127.5f, brightness).set_exposure;
  };
  EXPECT_TRUE(sets(123));   // 4.5
  EXPECT_FALSE(sets(124));  // 3.5
  EXPECT_FALSE(sets(131));  // -3.5
  EXPECT_TRUE(sets(132));   // -4.5
}

TEST(Proportional, TimeIsHeldBetweenOneAndThreeHundredMilliseconds) {
  Proportional bright = At(1.5f);
  EXPECT_TRUE(bright.Step(127.5f, 255).set_exposure);  // 0.75 ms
  EXPECT_EQ(bright.exposure_ms, 1.0f);
  EXPECT_TRUE(bright.armed);
  Proportional dark = At(200.0f);
  EXPECT_TRUE(dark.Step(127.5f, 1).set_exposure);
  EXPECT_EQ(dark.exposure_ms, 300.0f);
  EXPECT_TRUE(dark.armed);
}

TEST(Proportional, ExactlyAtTheLimitsIsNotHeld) {
  Proportional law = At(2.0f);
  law.Step(50.0f, 100);
  EXPECT_EQ(law.exposure_ms, 1.0f);
  EXPECT_FALSE(law.armed);
  law = At(150.0f);
  law.Step(100.0f, 50);
  EXPECT_EQ(law.exposure_ms, 300.0f);
  EXPECT_FALSE(law.armed);
}

TEST(Proportional, SecondDoneEventIsTheLastPass) {
  Proportional law = At(10.0f);
  EXPECT_FALSE(law.Step(127.5f, 127).last_pass);
  EXPECT_TRUE(law.Step(127.5f, 127).last_pass);
}

TEST(Proportional, TheTwoDoneEventsNeedNotFollowOneAnother) {
  Proportional law = At(10.0f);
  EXPECT_FALSE(law.Step(127.5f, 127).last_pass);
  EXPECT_FALSE(law.Step(127.5f, 100).last_pass);
  EXPECT_FALSE(law.Step(127.5f, 110).last_pass);
  EXPECT_TRUE(law.Step(127.5f, 127).last_pass);
}

TEST(Proportional, TwoEndsOfTheRangeAreTwoDoneEvents) {
  Proportional law = At(200.0f);
  EXPECT_FALSE(law.Step(127.5f, 1).last_pass);
  const Proportional::Action second = law.Step(127.5f, 1);
  EXPECT_TRUE(second.last_pass);
  EXPECT_TRUE(second.set_exposure);
}

TEST(Proportional, NegativeTargetGivesTheShortestTime) {
  Proportional law = At(10.0f);
  EXPECT_TRUE(law.Step(-51.0f, 100).set_exposure);
  EXPECT_EQ(law.exposure_ms, 1.0f);
}

TEST(Proportional, EndlessTargetGivesTheLongestTime) {
  Proportional law = At(10.0f);
  EXPECT_TRUE(
      law.Step(ProportionalTarget(std::numeric_limits<float>::infinity(), 50), 100).set_exposure);
  EXPECT_EQ(law.exposure_ms, 300.0f);
}

}  // namespace
}  // namespace ormidex::automation
