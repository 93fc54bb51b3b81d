// The camera's gamma tables.
//
// Entries were computed with Python's math module, for gamma g as a 32-bit float:
//   toe = log(M) / log(B) < 1 / g;  k = (1 / M) ** g;  m = B ** -g
//   o = (k / B - m) / (m - 1)
//   int(x * k + 0.5) for i < 6 with a toe, else
//   int(((x / M) ** g * (o + 1) - o) * M + 0.5)
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "imager/formulas.h"

namespace ormidex::imager {
namespace {

using Entries = std::vector<std::uint32_t>;

GammaCurve Curve8(float gamma) { return {static_cast<double>(gamma), 255.0, 51.0}; }
GammaCurve Curve10(float gamma) { return {static_cast<double>(gamma), 65535.0, 13107.0}; }

Entries Of8(float gamma, const Entries& indices) {
  Entries entries;
  for (std::uint32_t i : indices) entries.push_back(Curve8(gamma).Entry(i, i));
  return entries;
}

Entries Of10(float gamma, const Entries& indices) {
  Entries entries;
  for (std::uint32_t i : indices) entries.push_back(Curve10(gamma).Entry(i, i * 64.0));
  return entries;
}

const Entries kFirst = {0, 1, 2, 3, 4, 5, 6, 7, 8};
const Entries kRest8 = {16, 51, 64, 128, 200, 254, 255};
const Entries kRest10 = {16, 128, 256, 512, 1000, 1023};

TEST(GammaCurve8, IsAPlainPowerWithoutAToe) {
  EXPECT_EQ(Of8(2.2f, kFirst), (Entries{0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Of8(2.2f, kRest8), (Entries{1, 7, 12, 56, 149, 253, 255}));
  EXPECT_EQ(Of8(3.0f, kRest8), (Entries{0, 2, 4, 32, 123, 252, 255}));
}

TEST(GammaCurve8, HasALinearToeOfSixEntriesForStrongCurves) {
  // 1 / 255 to the power of one half is 0.0626 a step.
  EXPECT_EQ(Of8(0.5f, kFirst), (Entries{0, 0, 0, 0, 0, 0, 4, 8, 11}));
  EXPECT_EQ(Of8(0.5f, kRest8), (Entries{33, 91, 107, 169, 221, 254, 255}));
  EXPECT_EQ(Of8(0.05f, kFirst), (Entries{0, 1, 2, 2, 3, 4, 14, 23, 31}));
  EXPECT_EQ(Of8(0.05f, kRest8), (Entries{73, 146, 161, 207, 238, 255, 255}));
}

// ln 255 / ln 51 = 1.4093, so the toe ends between 0.7095 and 0.7096.
TEST(GammaCurve8, TurnsTheToeOnBelow0Point7095) {
  EXPECT_TRUE(Curve8(0.7095f).toe);
  EXPECT_FALSE(Curve8(0.7096f).toe);
  EXPECT_EQ(Of8(0.709f, kFirst), (Entries{0, 0, 0, 0, 0, 0, 2, 5, 7}));
  EXPECT_EQ(Of8(0.71f, kFirst), (Entries{0, 5, 8, 11, 13, 16, 18, 20, 22}));
}

// ln 65535 / ln 13107 = 1.16975, so here it ends between 0.8548 and 0.8549.
TEST(GammaCurve10, TurnsTheToeOnBelow0Point8549) {
  EXPECT_TRUE(Curve10(0.8548f).toe);
  EXPECT_FALSE(Curve10(0.8549f).toe);
  EXPECT_EQ(Of10(0.85f, kFirst), (Entries{0, 0, 0, 0, 0, 0, 810, 926, 1040}));
  EXPECT_EQ(Of10(0.86f, kFirst), (Entries{0, 169, 307, 434, 556, 674, 789, 900, 1010}));
}

TEST(GammaCurve10, EvaluatesEveryEntryAt64TimesItsIndex) {
  EXPECT_EQ(Of10(2.2f, kFirst), (Entries{0, 0, 0, 0, 0, 1, 1, 1, 2}));
  EXPECT_EQ(Of10(2.2f, kRest10), (Entries{7, 676, 3104, 14263, 62205, 65396}));
  EXPECT_EQ(Of10(0.5f, kFirst), (Entries{0, 0, 1, 1, 1, 1, 4483, 4889, 5266}));
  EXPECT_EQ(Of10(0.5f, kRest10), (Entries{7687, 22797, 32479, 46171, 64756, 65503}));
}

TEST(GammaCurve, NeverLeavesItsRangeNorFalls) {
  for (float gamma : {1e-6f, 0.01f, 0.3f, 0.7f, 0.9f, 1.5f, 10.0f, 1e6f}) {
    std::uint32_t before = 0;
    for (std::uint32_t i = 0; i < 1024; ++i) {
      const std::uint32_t entry = Curve10(gamma).Entry(i, i * 64.0);
      EXPECT_LE(entry, 65535u) << gamma << ' ' << i;
      EXPECT_GE(entry, before) << gamma << ' ' << i;
      before = entry;
    }
  }
}

// So small a gamma makes (1 / M) ^ g exactly 1: there is no toe, and only black
// stays black.
TEST(GammaCurve, HasNoToeWhenItsSlopeIsExactlyOne) {
  EXPECT_FALSE(Curve8(1e-20f).toe);
  EXPECT_EQ(Of8(1e-20f, {0, 1, 128, 255}), (Entries{0, 255, 255, 255}));
}

TEST(GammaCurve, TakesAnInfiniteGammaAsAStep) {
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Of8(infinite, {0, 1, 254, 255}), (Entries{0, 0, 0, 255}));
}

}  // namespace
}  // namespace ormidex::imager
