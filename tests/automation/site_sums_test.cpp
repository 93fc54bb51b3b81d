// The kernels of the site means: every tier that this machine has, against the reference
// and against sums that are known beforehand.
#include "automation/kernels/site_sums.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "automation/fenced_bytes.h"
#include "platform/processor.h"

namespace ormidex::automation {
namespace {

void FillAtRandom(std::uint8_t* bytes, std::size_t count, std::uint32_t seed) {
  for (std::size_t i = 0; i < count; ++i) {
    seed = seed * 1664525u + 1013904223u;
    bytes[i] = static_cast<std::uint8_t>(seed >> 24);
  }
}

std::vector<std::uint8_t> RandomBytes(std::size_t count, std::uint32_t seed) {
  std::vector<std::uint8_t> bytes(count);
  FillAtRandom(bytes.data(), count, seed);
  return bytes;
}

class SiteSumKernels : public ::testing::TestWithParam<const SiteSumTier*> {
 protected:
  static SiteSums Sum8(const SampleRows& samples) { return GetParam()->sum8(samples); }
  static SiteSums Sum16(const SampleRows& samples) { return GetParam()->sum16(samples); }
};

std::string Text(const SiteSums& sums) {
  return std::to_string(sums.rows[0].first) + " " + std::to_string(sums.rows[0].second) + " / " +
         std::to_string(sums.rows[1].first) + " " + std::to_string(sums.rows[1].second);
}

void ExpectLikeReference(const SiteSumTier& tier, const SampleRows& samples, int bits) {
  const SiteSumKernel kernel = bits == 8 ? tier.sum8 : tier.sum16;
  const SiteSumKernel reference = bits == 8 ? kScalarSiteSums.sum8 : kScalarSiteSums.sum16;
  ASSERT_EQ(Text(kernel(samples)), Text(reference(samples)))
      << samples.pairs << " pairs of " << bits << " bits x " << samples.rows << " rows";
}

// The buffer ends with the last sample, so a read beyond it shows under a checking
// allocator.
TEST_P(SiteSumKernels, EqualTheReferenceAtEveryWidthAndAlignment) {
  for (std::uint32_t pairs = 0; pairs < 200; ++pairs) {
    for (std::size_t offset = 0; offset < 4; ++offset) {
      const std::size_t stride = std::size_t{pairs} * 4;
      const auto bytes = RandomBytes(offset + stride * 3, pairs * 8 + 1);
      ExpectLikeReference(*GetParam(), {bytes.data() + offset, stride, 3, pairs}, 16);
      ExpectLikeReference(*GetParam(), {bytes.data() + offset, stride, 3, pairs * 2}, 8);
      ExpectLikeReference(*GetParam(), {bytes.data() + offset, stride / 2, 3, pairs}, 8);
    }
  }
}

TEST_P(SiteSumKernels, EqualTheReferenceAtEveryAddressOfAVector) {
  const auto bytes = RandomBytes(64 + 9 * 331, 7);
  for (std::size_t offset = 0; offset < 64; ++offset) {
    ExpectLikeReference(*GetParam(), {bytes.data() + offset, 331, 9, 165}, 8);
    ExpectLikeReference(*GetParam(), {bytes.data() + offset, 331, 9, 82}, 16);
  }
}

// Rows are taken several at a time; every number of them is left over at some time.
TEST_P(SiteSumKernels, EveryNumberOfRows) {
  for (std::uint32_t pairs : {1u, 5u, 8u, 32u, 33u, 40u}) {
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t y = 0; y < 12; ++y) {
      const auto first = static_cast<std::uint8_t>((y & 1) != 0 ? 7 : 3);
      const auto second = static_cast<std::uint8_t>((y & 1) != 0 ? 11 : 5);
      for (std::uint32_t i = 0; i < pairs; ++i) bytes.insert(bytes.end(), {first, second});
      bytes.insert(bytes.end(), {250, 250, 250});  // between the rows
    }
    for (std::uint32_t rows = 0; rows <= 12; ++rows) {
      const std::uint32_t even = (rows + 1) / 2 * pairs;
      const std::uint32_t odd = rows / 2 * pairs;
      EXPECT_EQ(Text(Sum8({bytes.data(), pairs * 2 + 3, rows, pairs})),
                Text({{{even * 3, even * 5}, {odd * 7, odd * 11}}}))
          << pairs << " pairs x " << rows;
    }
  }
}

// Nothing but the rectangle is read, wherever it lies in its memory.
TEST_P(SiteSumKernels, ReadNothingOutsideTheRows) {
  FencedBytes memory;
  ASSERT_TRUE(memory.Ready());
  FillAtRandom(memory.Begin(), FencedBytes::kSize, 3);
  for (std::uint32_t pairs = 1; pairs < 150; ++pairs) {
    for (std::uint32_t rows = 1; rows < 8; ++rows) {
      for (const int bits : {8, 16}) {
        const std::size_t row_bytes = std::size_t{pairs} * 2 * static_cast<std::size_t>(bits / 8);
        const std::size_t stride = row_bytes + 5;
        const std::size_t size = (rows - 1) * stride + row_bytes;
        ExpectLikeReference(*GetParam(), {memory.Begin(), stride, rows, pairs}, bits);
        ExpectLikeReference(*GetParam(), {memory.End() - size, stride, rows, pairs}, bits);
      }
    }
  }
}

// What stands between the rows, or in a 16-bit sample's lower byte, does not count.
TEST_P(SiteSumKernels, TakeNothingButTheSamples) {
  for (const std::uint32_t pairs : {1u, 7u, 15u, 16u, 17u, 31u, 32u, 33u, 63u, 64u, 65u}) {
    std::vector<std::uint8_t> bytes(std::size_t{pairs} * 4 * 6 + 6 * 9, 0xFF);
    const std::size_t stride = std::size_t{pairs} * 4 + 9;
    for (std::uint32_t y = 0; y < 6; ++y) {
      for (std::uint32_t x = 0; x < pairs * 2; ++x) bytes[y * stride + x * 2 + 1] = 2;
    }
    EXPECT_EQ(
        Text(Sum16({bytes.data(), stride, 6, pairs})),
        Text({{{pairs * 1536, pairs * 1536}, {pairs * 1536, pairs * 1536}}}))  // 3 rows x 0x0200
        << pairs;
  }
}

// Rows around the length from which on they are summed in strips: 256 vectors of 16, 32
// or 64 bytes, or 128 of 64.
TEST_P(SiteSumKernels, LongRowsOfAllOnes) {
  const std::vector<std::uint8_t> bytes(5 * 40000, 0xFF);
  for (const std::uint32_t strip : {4096u, 8192u, 16384u, 32768u}) {
    for (const std::uint32_t row_bytes : {strip - 4, strip, strip + 4, strip + 60, strip + 64}) {
      const std::uint32_t pairs8 = row_bytes / 2;
      const std::uint32_t pairs16 = row_bytes / 4;
      // Rows 0, 2 and 4, rows 1 and 3.
      EXPECT_EQ(Text(Sum8({bytes.data(), 40000, 5, pairs8})),
                Text({{{pairs8 * 765, pairs8 * 765}, {pairs8 * 510, pairs8 * 510}}}))
          << row_bytes;
      EXPECT_EQ(
          Text(Sum16({bytes.data(), 40000, 5, pairs16})),
          Text({{{pairs16 * 195840, pairs16 * 195840}, {pairs16 * 130560, pairs16 * 130560}}}))
          << row_bytes;
    }
  }
}

TEST_P(SiteSumKernels, LongRowsEqualTheReference) {
  const auto bytes = RandomBytes(3 * 50000, 5);
  for (const std::uint32_t pairs : {2047u, 4095u, 4097u, 8191u, 8193u, 10007u, 12500u}) {
    ExpectLikeReference(*GetParam(), {bytes.data(), 50000, 3, pairs}, 8);
    ExpectLikeReference(*GetParam(), {bytes.data(), 50000, 3, pairs}, 16);
  }
}

// More rows than the lanes can add without widening. A stride of 0 reads the same row
// over and over.
TEST_P(SiteSumKernels, TallRectanglesOfAllOnes) {
  const std::vector<std::uint8_t> row(800, 0xFF);
  for (const std::uint32_t pairs : {1u, 8u, 16u, 32u, 33u, 100u, 200u}) {
    for (const std::uint32_t rows : {1021u, 1024u, 2051u, 4098u}) {
      const std::uint32_t even = (rows + 1) / 2 * pairs;
      const std::uint32_t odd = rows / 2 * pairs;
      EXPECT_EQ(Text(Sum8({row.data(), 0, rows, pairs})),
                Text({{{even * 255, even * 255}, {odd * 255, odd * 255}}}));
      EXPECT_EQ(Text(Sum16({row.data(), 0, rows, pairs})),
                Text({{{even * 0xFF00, even * 0xFF00}, {odd * 0xFF00, odd * 0xFF00}}}));
    }
  }
}

TEST_P(SiteSumKernels, WrapAroundAt32Bits) {
  const std::vector<std::uint8_t> bytes(std::size_t{1280} * 1024 * 2, 0xFF);
  // 20 million sites: 35,000 x 640 x 255 = 5,712,000,000, less 2^32.
  EXPECT_EQ(Text(Sum8({bytes.data(), 0, 70000, 640})),
            "1417032704 1417032704 / 1417032704 1417032704");
  // 512 x 640 x 0xFF00 = 21,390,950,400, less 4 x 2^32.
  EXPECT_EQ(Text(Sum16({bytes.data(), 2560, 1024, 640})),
            "4211081216 4211081216 / 4211081216 4211081216");
}

TEST_P(SiteSumKernels, RectanglesOfNothing) {
  const std::uint8_t byte = 9;
  EXPECT_EQ(Text(Sum8({&byte, 1, 0, 100})), "0 0 / 0 0");
  EXPECT_EQ(Text(Sum16({&byte, 1, 100, 0})), "0 0 / 0 0");
}

INSTANTIATE_TEST_SUITE_P(Tiers, SiteSumKernels, ::testing::ValuesIn(AvailableSiteSumTiers()),
                         [](const auto& test) { return test.param->name; });

// ---- The choice of a tier -------------------------------------------------------------

std::string Names() {
  std::string names;
  for (const SiteSumTier* tier : AvailableSiteSumTiers()) names += std::string(" ") + tier->name;
  return names;
}

TEST(SiteSumTiers, GrowWithTheProcessor) {
  const platform::VectorFeatures features = platform::DetectVectorFeatures();
  std::string expected = " scalar";
  if (features.sse2) expected += " sse2";
  if (features.avx2) expected += " avx2";
  if (features.avx512_vbmi) expected += " avx512";
  if (features.avx512_vnni) expected += " avx512vnni";
  EXPECT_EQ(Names(), expected);
  EXPECT_EQ(features.avx512_vnni,
            features.avx512_vbmi && __builtin_cpu_supports("avx512vnni") != 0);
}

std::string NameForWish(const char* wish) { return SiteSumTierForWish(wish).name; }

// The name of the last tier up to number `last`, from 0, that this machine has.
std::string TierUpTo(std::size_t last) {
  const auto tiers = AvailableSiteSumTiers();
  return tiers[last < tiers.size() ? last : tiers.size() - 1]->name;
}

TEST(SiteSumTiers, NameOfAConversionTierLeavesTheTiersUpToIt) {
  EXPECT_EQ(NameForWish("scalar"), "scalar");
  EXPECT_EQ(NameForWish("ssse3"), TierUpTo(1));
  EXPECT_EQ(NameForWish("avx2"), TierUpTo(2));
  EXPECT_EQ(NameForWish("avx512"), TierUpTo(4));
  EXPECT_EQ(NameForWish(nullptr), TierUpTo(4));
  EXPECT_EQ(NameForWish(""), TierUpTo(4));
  EXPECT_EQ(NameForWish("fastest"), TierUpTo(4));
}

class TierEnvironment : public ::testing::Test {
 protected:
  TierEnvironment() {
    const char* value = std::getenv("ORMIDEX_TIER");
    if (value != nullptr) before_ = value;
  }
  ~TierEnvironment() override {
    Set(before_.c_str());
    UseSiteSumTier(nullptr);
  }
  // An empty value is no tier's name.
  static void Set(const char* value) {
#if defined(_WIN32)
    _putenv((std::string("ORMIDEX_TIER=") + value).c_str());
#else
    setenv("ORMIDEX_TIER", value, 1);
#endif
  }

 private:
  std::string before_;
};

TEST_F(TierEnvironment, IsAskedAtTheFirstUseAndNotAgain) {
  Set("scalar");
  UseSiteSumTier(nullptr);
  EXPECT_EQ(&ActiveSiteSumTier(), &kScalarSiteSums);
  Set("");
  EXPECT_EQ(&ActiveSiteSumTier(), &kScalarSiteSums);
  UseSiteSumTier(nullptr);
  EXPECT_EQ(&ActiveSiteSumTier(), AvailableSiteSumTiers().back());
}

}  // namespace
}  // namespace ormidex::automation
