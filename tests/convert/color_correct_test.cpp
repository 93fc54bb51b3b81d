#include "convert/pictures.h"

namespace ormidex::convert {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Corrected(Bytes image, std::int32_t amount) {
  ColorCorrect(image.data(), image.size() / 3, amount, false);
  return image;
}

TEST(ColorCorrection, AmountZeroLeavesEveryPixelAsItWas) {
  Bytes image;
  for (int value = 0; value < 256; ++value) {
    for (const int other : {0, 1, 127, 128, 254, 255}) {
      image.push_back(static_cast<std::uint8_t>(value));
      image.push_back(static_cast<std::uint8_t>(other));
      image.push_back(static_cast<std::uint8_t>(255 - value));
    }
  }
  EXPECT_EQ(Corrected(image, 0), image);
}

TEST(ColorCorrection, AmountOneHundredStrengthensAndLimits) {
  EXPECT_EQ(Corrected({200, 100, 0}, 100), (Bytes{255, 100, 0}));
  EXPECT_EQ(Corrected({0, 100, 200}, 100), (Bytes{0, 100, 255}));
}

TEST(ColorCorrection, AmountMinusOneHundredGivesTheMeanOfTheOtherTwo) {
  EXPECT_EQ(Corrected({10, 21, 30}, -100), (Bytes{25, 20, 15}));
}

// The factor 2.2351741790771484e-08 is not 0: a mean of the others just below an
// integer is lifted by it only where the others add up to one exactly.
TEST(ColorCorrection, SinglePrecisionFactorsAreUsedAsTheyRound) {
  // 0.01f * 50 = 0.4999999888..., so a = 1.5 in single precision, b = -0.25.
  EXPECT_EQ(Corrected({100, 60, 20}, 50), (Bytes{130, 60, 0}));
  // 0.01f is a little below one hundredth and 0.005f its half: with amount 1, a
  // rounds to 1.00999999046 and b to -0.00499999989; a + 2 b falls short of 1, and
  // a grey loses one.
  EXPECT_EQ(Corrected({200, 200, 200}, 1), (Bytes{199, 199, 199}));
}

TEST(ColorCorrection, WidePixelsAreLimitedAt65535) {
  std::uint16_t image[] = {40000, 20000, 0, 60000, 0, 0};
  ColorCorrect(image, 2, 100, true);
  EXPECT_EQ(image[0], 65535);
  EXPECT_EQ(image[1], 20000);
  EXPECT_EQ(image[2], 0);
  EXPECT_EQ(image[3], 65535);
  EXPECT_EQ(image[4], 0);
}

TEST(ColorCorrection, NothingBeyondTheGivenPixelsIsTouched) {
  for (std::size_t pixels = 0; pixels < 70; ++pixels) {
    GuardedBuffer image(3 * pixels, 1);
    ColorCorrect(image.Data(), pixels, 300, false);
    image.ExpectGuardsIntact();
  }
}

}  // namespace
}  // namespace ormidex::convert
