// The control laws over whole domains of inputs, against figures that
// scripts/check_automation_arithmetic.py works out on its own. On 32-bit builds the
// x87 unit is put into each precision that a host process may have chosen.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>
#include <vector>

#include "automation/balance_laws.h"
#include "automation/exact_arithmetic.h"
#include "automation/exposure_laws.h"
#include "device/request_trace.h"

namespace ormidex::automation {
namespace {

enum class HostPrecision : std::uint16_t { kSingle = 0x000, kDouble = 0x200, kExtended = 0x300 };

class Arithmetic : public ::testing::TestWithParam<HostPrecision> {
 protected:
#if defined(__i386__)
  void SetUp() override {
    __asm__ volatile("fnstcw %0" : "=m"(saved_));
    const auto word =
        static_cast<std::uint16_t>((saved_ & ~0x300) | static_cast<std::uint16_t>(GetParam()));
    __asm__ volatile("fldcw %0" : : "m"(word));
  }
  void TearDown() override { __asm__ volatile("fldcw %0" : : "m"(saved_)); }

 private:
  std::uint16_t saved_ = 0;
#endif
};

class Digest {
 public:
  void Add(std::uint32_t word) { words_.push_back(word); }
  std::uint32_t Value() const {
    return device::Crc32(words_.data(), words_.size() * sizeof(words_[0]));
  }

 private:
  std::vector<std::uint32_t> words_;
};

class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed) {}
  std::uint8_t Byte() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<std::uint8_t>(state_ >> 24);
  }

 private:
  std::uint32_t state_;
};

TEST_P(Arithmetic, OlderBrightness) {
  Digest digest;
  for (std::uint32_t green = 0; green < 256; ++green) {
    for (std::uint32_t blue = 0; blue < 256; blue += 5) {
      for (std::uint32_t red = 0; red < 256; red += 5) {
        digest.Add(ColourBrightness(ColourLevels{red, green, blue}));
      }
    }
  }
  for (std::uint32_t grey = 0; grey < 256; ++grey) {
    digest.Add(ColourBrightness(ColourLevels{grey, grey, grey}));
  }
  EXPECT_EQ(digest.Value(), 0x58532DF5u);
}

TEST_P(Arithmetic, NewerBrightness) {
  Digest digest;
  for (std::uint32_t green1 = 0; green1 < 256; ++green1) {
    const std::uint32_t green2 = (green1 * 7 + 3) & 255;
    for (std::uint32_t blue = 0; blue < 256; blue += 15) {
      for (std::uint32_t red = 0; red < 256; red += 5) {
        digest.Add(ColourBrightness(SiteLevels{red, green1, green2, blue}));
      }
    }
  }
  for (std::uint32_t grey = 0; grey < 256; ++grey) {
    digest.Add(ColourBrightness(SiteLevels{grey, grey, grey, grey}));
  }
  EXPECT_EQ(digest.Value(), 0x8902EC87u);
}

TEST_P(Arithmetic, Targets) {
  Digest digest;
  for (std::uint32_t percent = 0; percent <= 100; ++percent) digest.Add(BisectionTarget(percent));
  for (const float gamma : {0.0f, 0.25f, 0.45f, 1.0f, 1.8f, 2.2f, 3.5f}) {
    for (std::uint32_t percent = 0; percent <= 100; ++percent) {
      digest.Add(std::bit_cast<std::uint32_t>(ProportionalTarget(gamma, percent)));
    }
  }
  EXPECT_EQ(digest.Value(), 0x25622F0Eu);
}

TEST_P(Arithmetic, Exposures) {
  Digest digest;
  for (std::uint32_t percent = 0; percent <= 100; percent += 5) {
    const float target = ProportionalTarget(1.0f, percent);
    for (std::uint32_t brightness = 1; brightness < 256; ++brightness) {
      for (const float exposure : {1.0f, 2.5f, 12.3f, 33.3f, 50.0f, 77.7f, 123.4f, 299.9f}) {
        Proportional law;
        law.exposure_ms = exposure;
        law.Step(target, brightness);
        digest.Add(std::bit_cast<std::uint32_t>(law.exposure_ms));
      }
    }
  }
  EXPECT_EQ(digest.Value(), 0xF040666Du);
}

constexpr std::uint32_t kBalanced = 0xFFFFFFFFu;

TEST_P(Arithmetic, OlderBalance) {
  Digest digest;
  Random random(1);
  for (int run = 0; run < 4000; ++run) {
    automation::OlderBalance law;
    for (int pass = 0; pass < 10; ++pass) {
      const std::uint8_t red = random.Byte();
      const std::uint8_t green = random.Byte();
      const std::uint8_t blue = random.Byte();
      const auto codes = law.Step({red, green, blue});
      if (!codes) {
        digest.Add(kBalanced);
        continue;
      }
      digest.Add(codes->red);
      digest.Add(codes->green);
      digest.Add(codes->blue);
    }
  }
  EXPECT_EQ(digest.Value(), 0x1B1E3B5Au);
}

TEST_P(Arithmetic, GainCurve) {
  Digest digest;
  for (std::uint32_t code = 0; code < 256; ++code) {
    const auto gain = std::bit_cast<std::uint64_t>(GainFromCode(static_cast<std::uint8_t>(code)));
    digest.Add(static_cast<std::uint32_t>(gain));
    digest.Add(static_cast<std::uint32_t>(gain >> 32));
  }
  const DoublePrecision precision;
  for (int most = 1; most < 367; ++most) {
    for (int raw = 1; raw <= most; ++raw) {
      digest.Add(CodeFromGain(DoublePrecision::Quotient(most, raw)));
    }
  }
  EXPECT_EQ(digest.Value(), 0x3C55C5C8u);
}

TEST_P(Arithmetic, NewerBalance) {
  Digest digest;
  Random random(2);
  for (int run = 0; run < 4000; ++run) {
    automation::NewerBalance law;
    SiteGainCodes codes;
    for (std::uint8_t* code : {&codes.red, &codes.green1, &codes.green2, &codes.blue}) {
      *code = random.Byte() & 63;
    }
    for (int pass = 0; pass < 10; ++pass) {
      SiteLevels levels;
      for (std::uint32_t* level : {&levels.red, &levels.green1, &levels.green2, &levels.blue}) {
        *level = random.Byte();
      }
      const auto next = law.Step(codes, levels);
      if (!next) {
        digest.Add(kBalanced);
        continue;
      }
      codes = *next;
      for (const std::uint8_t code : {codes.red, codes.green1, codes.green2, codes.blue}) {
        digest.Add(code);
      }
    }
  }
  EXPECT_EQ(digest.Value(), 0x569491F6u);
}

TEST_P(Arithmetic, Weights) {
  Digest digest;
  Random random(3);
  for (int i = 0; i < 20000; ++i) {
    std::uint8_t bytes[6];
    std::generate(std::begin(bytes), std::end(bytes), [&] { return random.Byte(); });
    const auto weights = ColourWeights::FromTargets(bytes[0], bytes[1], bytes[2]);
    const ColourLevels levels = weights.Apply(ColourLevels{bytes[3], bytes[4], bytes[5]});
    digest.Add(levels.red);
    digest.Add(levels.green);
    digest.Add(levels.blue);
  }
  EXPECT_EQ(digest.Value(), 0x2AADF454u);
}

#if defined(__i386__)
INSTANTIATE_TEST_SUITE_P(HostPrecisions, Arithmetic,
                         ::testing::Values(HostPrecision::kSingle, HostPrecision::kDouble,
                                           HostPrecision::kExtended));
#else
INSTANTIATE_TEST_SUITE_P(HostPrecisions, Arithmetic, ::testing::Values(HostPrecision::kDouble));
#endif

}  // namespace
}  // namespace ormidex::automation
