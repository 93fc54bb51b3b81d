// Every tier that the machine has, bit for bit against the scalar tier.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "convert/convert.h"
#include "convert/guarded_buffer.h"
#include "convert/tiers.h"
#include "kernels/tiers_under_test.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

using platform::ProcessorPretence;

enum class Content {
  kRandom,
  kExtremes,
  kTwoLevels,
  kRamp,
  kNearlyFlat,
  kNearlyFlatWords,
  kCheckers,
  kCount
};

// Worst cases beside noise: only the two ends of the range; two neighbouring values,
// where roundings differ; slow ramps; near-flat fields about the edge threshold, which
// is the same for 8-bit and 16-bit samples.
void Fill(Content content, std::mt19937& random, std::size_t width, GuardedBuffer& frame) {
  for (std::size_t i = 0; i < frame.Size(); ++i) {
    const auto noise = static_cast<unsigned>(random());
    const std::size_t x = i % width;
    unsigned value = noise;
    switch (content) {
      case Content::kExtremes:
        value = (noise & 1) != 0 ? 255 : 0;
        break;
      case Content::kTwoLevels:
        value = 10 + (noise & 1);
        break;
      case Content::kRamp:
        value = static_cast<unsigned>(3 * x + 7 * (i / width));
        break;
      case Content::kNearlyFlat:
        value = 120 + noise % 24;
        break;
      case Content::kNearlyFlatWords:
        value = (i & 1) != 0 ? 120 : noise % 24;
        break;
      case Content::kCheckers:
        value = ((x + i / width) & 1) != 0 ? 255 : 0;
        break;
      default:
        break;
    }
    frame.Data()[i] = static_cast<std::uint8_t>(value);
  }
}

// A map of the pixels that differ, top row first.
std::string DifferenceMap(const GuardedBuffer& expected, const GuardedBuffer& actual,
                          std::size_t width, std::size_t height, std::size_t pixel_bytes) {
  std::string map = "\n";
  for (std::size_t y = 0; y < height && y < 40; ++y) {
    for (std::size_t x = 0; x < width && x < 150; ++x) {
      const std::size_t at = ((height - 1 - y) * width + x) * pixel_bytes;
      const bool same = std::memcmp(expected.Data() + at, actual.Data() + at, pixel_bytes) == 0;
      map += same ? '.' : 'X';
    }
    map += '\n';
  }
  return map;
}

struct Case {
  std::uint32_t code;
  std::uint32_t phase;
  std::uint32_t width;
  std::uint32_t height;
};

void Compare(const Form& form, const Case& c, Content content, std::mt19937& random) {
  const std::size_t pixels = std::size_t{c.width} * c.height;
  GuardedBuffer frame(pixels * form.sample_bytes, random() % 3);
  Fill(content, random, c.width * form.sample_bytes, frame);
  const std::size_t offset = random() % 67;
  GuardedBuffer expected(pixels * form.pixel_bytes, offset);
  {
    const TierUsed scalar(Tier::kScalar);
    form.routine(frame.Data(), c.width, c.height, expected.Data(), c.code, c.phase);
  }
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    GuardedBuffer actual(pixels * form.pixel_bytes, offset);
    form.routine(frame.Data(), c.width, c.height, actual.Data(), c.code, c.phase);
    SCOPED_TRACE(testing::Message()
                 << TierName(tier) << ", " << form.name << ", code " << c.code << ", phase "
                 << c.phase << ", " << c.width << " x " << c.height << ", content "
                 << static_cast<int>(content) << ", offset " << offset);
    actual.ExpectGuardsIntact();
    ASSERT_EQ(std::memcmp(expected.Data(), actual.Data(), expected.Size()), 0)
        << DifferenceMap(expected, actual, c.width, c.height, form.pixel_bytes);
  }
}

void CompareSizes(std::uint32_t code, std::uint32_t phase) {
  std::mt19937 random(Seed());
  const auto every_content = [&](const Form& form, std::uint32_t width, std::uint32_t height) {
    for (int content = 0; content < static_cast<int>(Content::kCount); ++content) {
      Compare(form, {code, phase, width, height}, static_cast<Content>(content), random);
      if (testing::Test::HasFatalFailure()) return;
    }
  };
  for (const Form& form : kForms) {
    for (std::uint32_t width = 1; width <= 150; width += width < 20 || width % 31 < 3 ? 1 : 3) {
      const std::uint32_t height = 1 + width % 7;
      every_content(form, width, height);
      if (testing::Test::HasFatalFailure()) return;
    }
    for (std::uint32_t height = 1; height <= 9; ++height) {
      every_content(form, 132, height);
      every_content(form, 135, height);
      if (testing::Test::HasFatalFailure()) return;
    }
    // Wider than the strips of 16-bit rows.
    every_content(form, 4100, 5);
    every_content(form, 2049, 4);
    // Higher than the bands of the codes with a green plane.
    every_content(form, 72, 67);
    if (testing::Test::HasFatalFailure()) return;
  }
}

class EveryTier : public testing::TestWithParam<std::uint32_t> {};

TEST_P(EveryTier, EqualsTheScalarTierOnEverySizeAndContent) { CompareSizes(GetParam(), 0); }

INSTANTIATE_TEST_SUITE_P(Codes, EveryTier, testing::Values(0u, 2u, 3u, 4u, 5u, 16u, 17u, 18u, 255u),
                         [](const testing::TestParamInfo<std::uint32_t>& code) {
                           return "Code" + std::to_string(code.param);
                         });

struct BilinearCase {
  std::uint32_t phase;
  ProcessorPretence processor;
  const char* name;
};

class EveryTierBilinear : public testing::TestWithParam<BilinearCase> {
 protected:
  void SetUp() override { platform::PretendProcessorForTesting(GetParam().processor); }
  void TearDown() override { platform::PretendProcessorForTesting(ProcessorPretence::kNone); }
};

TEST_P(EveryTierBilinear, EqualsTheScalarTierOnEverySizeAndContent) {
  CompareSizes(1, GetParam().phase);
}

INSTANTIATE_TEST_SUITE_P(
    Roundings, EveryTierBilinear,
    testing::Values(BilinearCase{0, ProcessorPretence::kNoMmx, "PortablePhase0"},
                    BilinearCase{1, ProcessorPretence::kNoMmx, "PortablePhase1"},
                    BilinearCase{2, ProcessorPretence::kNoMmx, "PortablePhase2"},
                    BilinearCase{0, ProcessorPretence::kMmxOnly, "MmxPhase0"},
                    BilinearCase{1, ProcessorPretence::kMmxOnly, "MmxPhase1"},
                    BilinearCase{2, ProcessorPretence::kMmxOnly, "MmxPhase2"},
                    BilinearCase{0, ProcessorPretence::kMmxAndExtended, "ExtendedPhase0"},
                    BilinearCase{1, ProcessorPretence::kMmxAndExtended, "ExtendedPhase1"},
                    BilinearCase{2, ProcessorPretence::kMmxAndExtended, "ExtendedPhase2"}),
    [](const testing::TestParamInfo<BilinearCase>& c) { return c.param.name; });

// ---- Monochrome ------------------------------------------------------------

TEST(EveryTierMono, EqualsTheScalarTierOnEverySize) {
  std::mt19937 random(Seed());
  for (std::uint32_t width = 1; width <= 200; ++width) {
    const std::uint32_t height = 1 + width % 3;
    GuardedBuffer frame(std::size_t{2} * width * height, random() % 3);
    Fill(Content::kRandom, random, width, frame);
    const std::size_t offset = random() % 67;
    for (const auto expand : {ExpandMono8, ExpandMono16}) {
      GuardedBuffer expected(std::size_t{3} * width * height, offset);
      {
        const TierUsed scalar(Tier::kScalar);
        expand(frame.Data(), width, height, expected.Data());
      }
      for (const Tier tier : VectorTiers()) {
        const TierUsed used(tier);
        GuardedBuffer actual(std::size_t{3} * width * height, offset);
        expand(frame.Data(), width, height, actual.Data());
        SCOPED_TRACE(testing::Message() << TierName(tier) << ", " << width << " x " << height);
        actual.ExpectGuardsIntact();
        ASSERT_EQ(expected.Contents(), actual.Contents());
      }
    }
  }
}

// ---- Colour correction -----------------------------------------------------

// Noise, greys and full channels, where the exact value is at or near an integer.
void FillForCorrection(std::mt19937& random, bool wide, GuardedBuffer& image) {
  Fill(Content::kRandom, random, 1, image);
  const std::size_t channel_bytes = wide ? 2 : 1;
  const std::size_t structured = image.Size() / channel_bytes / 2;
  for (std::size_t i = 0; i < structured; ++i) {
    const std::size_t value = i % 7 == 0 ? 255 : i / 3 % 256;
    for (std::size_t byte = 0; byte < channel_bytes; ++byte) {
      image.Data()[i * channel_bytes + byte] = static_cast<std::uint8_t>(value);
    }
  }
}

void CompareCorrection(std::mt19937& random, std::size_t pixels, std::int32_t amount, bool wide) {
  const std::size_t offset = random() % 67;
  GuardedBuffer original((wide ? 6 : 3) * pixels, offset);
  FillForCorrection(random, wide, original);
  GuardedBuffer expected = original;
  {
    const TierUsed scalar(Tier::kScalar);
    ColorCorrect(expected.Data(), pixels, amount, wide);
  }
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    GuardedBuffer actual = original;
    ColorCorrect(actual.Data(), pixels, amount, wide);
    SCOPED_TRACE(testing::Message() << TierName(tier) << ", amount " << amount << ", " << pixels
                                    << (wide ? " wide" : "") << " pixels, offset " << offset);
    actual.ExpectGuardsIntact();
    ASSERT_EQ(expected.Contents(), actual.Contents());
  }
}

class EveryTierColorCorrection : public testing::TestWithParam<bool> {};

TEST_P(EveryTierColorCorrection, EqualsTheScalarTierForEveryAmount) {
  std::mt19937 random(Seed());
  for (std::int32_t amount = -1000; amount <= 1000;
       amount += amount > -150 && amount < 150 ? 1 : 37) {
    CompareCorrection(random, 200 + random() % 200, amount, GetParam());
    if (HasFatalFailure()) return;
  }
  for (const std::int32_t amount :
       {std::numeric_limits<std::int32_t>::min(), -54321, -12345, 5000, 32767, 65536, 16777217,
        std::numeric_limits<std::int32_t>::max()}) {
    CompareCorrection(random, 200, amount, GetParam());
    if (HasFatalFailure()) return;
  }
}

// A channel's result depends on it and on the sum of the others: all pairs of these, for
// amounts whose factors have two limbs and three, and exact values that are often integers.
TEST(ColorCorrectionTiers, EqualTheScalarTierForEveryChannelAndSumOfTheOthers) {
  constexpr std::size_t kSums = 511;
  GuardedBuffer original(3 * 256 * kSums, 0);
  for (std::size_t i = 0; i < 256 * kSums; ++i) {
    const std::size_t sum = i % kSums;
    const std::size_t other = std::min<std::size_t>(sum, 255);
    std::uint8_t* const pixel = original.Data() + 3 * i;
    pixel[0] = static_cast<std::uint8_t>(i / kSums);
    pixel[1] = static_cast<std::uint8_t>(other);
    pixel[2] = static_cast<std::uint8_t>(sum - other);
  }
  for (const std::int32_t amount :
       {-100, -99, -50, -30, -6, -1, 1, 5, 7, 20, 30, 50, 100, 199, 200}) {
    GuardedBuffer expected = original;
    {
      const TierUsed scalar(Tier::kScalar);
      ColorCorrect(expected.Data(), 256 * kSums, amount, false);
    }
    for (const Tier tier : VectorTiers()) {
      const TierUsed used(tier);
      GuardedBuffer actual = original;
      ColorCorrect(actual.Data(), 256 * kSums, amount, false);
      ASSERT_EQ(expected.Contents(), actual.Contents()) << TierName(tier) << ", amount " << amount;
    }
  }
}

TEST_P(EveryTierColorCorrection, EqualsTheScalarTierOnEveryNumberOfPixels) {
  std::mt19937 random(Seed());
  for (std::size_t pixels = 0; pixels <= 150; ++pixels) {
    for (const std::int32_t amount : {-100, -7, 30, 100, 333}) {
      CompareCorrection(random, pixels, amount, GetParam());
      if (HasFatalFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Widths, EveryTierColorCorrection, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& wide) {
                           return wide.param ? "Of48Bits" : "Of24Bits";
                         });

// ---- What a kernel leaves behind -------------------------------------------

// Vector registers whose upper halves are in use slow down every SSE instruction that
// the application runs afterwards. What the processor says of their use is kept on the
// safe side by hypervisors, so their contents are looked at: the kernels' last values
// stand there unless a kernel left vector mode at its end.
bool UpperHalvesAreClear() {
  std::uint8_t halves[8][16];
  __asm__ volatile(
      "vextractf128 $1, %%ymm0, 0(%0)\n\t"
      "vextractf128 $1, %%ymm1, 16(%0)\n\t"
      "vextractf128 $1, %%ymm2, 32(%0)\n\t"
      "vextractf128 $1, %%ymm3, 48(%0)\n\t"
      "vextractf128 $1, %%ymm4, 64(%0)\n\t"
      "vextractf128 $1, %%ymm5, 80(%0)\n\t"
      "vextractf128 $1, %%ymm6, 96(%0)\n\t"
      "vextractf128 $1, %%ymm7, 112(%0)"
      :
      : "r"(halves)
      : "memory");
  const auto* first = &halves[0][0];
  return std::all_of(first, first + sizeof halves, [](std::uint8_t byte) { return byte == 0; });
}

TEST(EveryTierState, ConversionsLeaveTheUpperHalvesOfVectorRegistersClear) {
  if (HighestTier() < Tier::kAvx2) {
    GTEST_SKIP() << "the processor has no such registers";
  }
  const std::uint32_t width = 320;
  const std::uint32_t height = 8;
  GuardedBuffer frame(std::size_t{2} * width * height);
  GuardedBuffer image(std::size_t{6} * width * height);
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    for (const Form& form : kForms) {
      for (const std::uint32_t code : kCodes) {
        __asm__ volatile("vzeroupper");
        form.routine(frame.Data(), width, height, image.Data(), code, 0);
        EXPECT_TRUE(UpperHalvesAreClear())
            << TierName(tier) << ", " << form.name << ", code " << code;
      }
    }
    ExpandMono8(frame.Data(), width, height, image.Data());
    EXPECT_TRUE(UpperHalvesAreClear()) << TierName(tier) << ", mono, 8 bits";
    ExpandMono16(frame.Data(), width, height, image.Data());
    EXPECT_TRUE(UpperHalvesAreClear()) << TierName(tier) << ", mono, 16 bits";
    for (const bool wide : {false, true}) {
      ColorCorrect(image.Data(), std::size_t{width} * height, 30, wide);
      EXPECT_TRUE(UpperHalvesAreClear())
          << TierName(tier) << ", colour correction" << (wide ? ", wide" : "");
    }
  }
}

// ---- The choice of a tier --------------------------------------------------

TEST(Tiers, EachHasItsNameAndItsKernels) {
  EXPECT_STREQ(TierName(Tier::kScalar), "scalar");
  EXPECT_STREQ(TierName(Tier::kSsse3), "ssse3");
  EXPECT_STREQ(TierName(Tier::kAvx2), "avx2");
  EXPECT_STREQ(TierName(Tier::kAvx512), "avx512");
  EXPECT_EQ(KernelsOf(Tier::kScalar), nullptr);
  EXPECT_EQ(LowerTier(KernelsOf(Tier::kAvx512)), KernelsOf(Tier::kAvx2));
  EXPECT_EQ(LowerTier(KernelsOf(Tier::kAvx2)), KernelsOf(Tier::kSsse3));
  EXPECT_EQ(LowerTier(KernelsOf(Tier::kSsse3)), nullptr);
}

TEST(Tiers, TheVariableForcesALowerTierOnly) {
  EXPECT_EQ(TierForWish("scalar", Tier::kAvx2), Tier::kScalar);
  EXPECT_EQ(TierForWish("ssse3", Tier::kAvx512), Tier::kSsse3);
  EXPECT_EQ(TierForWish("avx512", Tier::kAvx2), Tier::kAvx2) << "the machine has no AVX-512";
  EXPECT_EQ(TierForWish("fastest", Tier::kAvx2), Tier::kAvx2) << "not a tier";
  EXPECT_EQ(TierForWish(nullptr, Tier::kAvx512), Tier::kAvx512);
}

// The rounding must not follow the instruction set: a processor that says it has no
// multimedia extensions gets the portable result at every tier.
TEST(Tiers, RoundingFollowsTheProcessorTestsAndNotTheTier) {
  std::mt19937 random(Seed());
  GuardedBuffer frame(128 * 16);
  Fill(Content::kRandom, random, 128, frame);
  const auto image_of = [&frame](ProcessorPretence pretence) {
    platform::PretendProcessorForTesting(pretence);
    GuardedBuffer image(3 * 128 * 16);
    DemosaicTo24From8(frame.Data(), 128, 16, image.Data(), 1, 0);
    platform::PretendProcessorForTesting(ProcessorPretence::kNone);
    return image.Contents();
  };
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    EXPECT_NE(image_of(ProcessorPretence::kNoMmx), image_of(ProcessorPretence::kMmxOnly));
    EXPECT_NE(image_of(ProcessorPretence::kMmxOnly), image_of(ProcessorPretence::kMmxAndExtended));
  }
}

}  // namespace
}  // namespace ormidex::convert
