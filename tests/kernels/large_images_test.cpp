// Images that do not fit the caches, whose rows reach memory in other ways.
//
// The scalar tier would take seconds for them. The frames therefore repeat themselves
// every kPeriod rows, and so do the images: what the scalar tier makes of three periods
// says what stands in every row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "convert/convert.h"
#include "convert/guarded_buffer.h"
#include "convert/row_target.h"
#include "convert/tiers.h"
#include "kernels/tiers_under_test.h"
#include "platform/processor.h"

namespace ormidex::convert {
namespace {

// Even, as the mosaic is; no multiple of the bands that codes 3 and 4 work in.
constexpr std::size_t kPeriod = 38;

struct Size {
  std::uint32_t width;
  std::uint32_t height;
};
// Written past the caches: images of 24 MiB, rows of at most 24576 bytes. Heights are
// odd, or not a multiple of the period.
constexpr Size kStreamedNarrow[] = {{4096, 2100}, {4100, 2052}, {4097, 2061},
                                    {2050, 4097}, {8192, 1031}, {4061, 2080}};
constexpr Size kStreamedWide[] = {{4096, 1031}, {4093, 1030}, {2051, 2060}, {4092, 1027}};
// Too wide for that, and images of 6 to 24 MiB: fetched ahead.
constexpr Size kFetchedNarrow[] = {{2050, 1101}, {8196, 1030}, {4093, 1500}, {1283, 2000}};
constexpr Size kFetchedWide[] = {{1027, 1100}, {4100, 1030}, {2050, 1401}, {1284, 901}};

bool IsStreamed(Size size, std::size_t pixel_bytes) {
  return pixel_bytes * size.width * size.height >= kStreamFromBytes &&
         pixel_bytes * size.width <= 24576;
}

TEST(LargeImageSizes, AreOnTheirSidesOfTheThresholds) {
  for (const Size size : kStreamedNarrow) EXPECT_TRUE(IsStreamed(size, 3)) << size.width;
  for (const Size size : kStreamedWide) EXPECT_TRUE(IsStreamed(size, 6)) << size.width;
  for (const Size size : kFetchedNarrow) {
    EXPECT_FALSE(IsStreamed(size, 3)) << size.width;
    EXPECT_GE(std::size_t{3} * size.width * size.height, kPrefetchFromBytes) << size.width;
  }
  for (const Size size : kFetchedWide) {
    EXPECT_FALSE(IsStreamed(size, 6)) << size.width;
    EXPECT_GE(std::size_t{6} * size.width * size.height, kPrefetchFromBytes) << size.width;
  }
}

// What is converted, and how; the same call for both tiers.
struct Job {
  const Form& form;
  std::uint32_t code;
  std::uint32_t phase;
  Size size;

  std::size_t SourceRowBytes() const { return form.sample_bytes * size.width; }
  std::size_t ImageRowBytes() const { return form.pixel_bytes * size.width; }
  void Run(const GuardedBuffer& frame, std::size_t height, GuardedBuffer& image) const {
    ASSERT_EQ(form.routine(frame.Data(), size.width, static_cast<std::uint32_t>(height),
                           image.Data(), code, phase),
              kOk);
  }
};

// Noise, and in every other row of samples little of it, near the threshold 9.
void FillPeriodic(std::mt19937& random, const Job& job, GuardedBuffer& frame) {
  const std::size_t period = kPeriod * job.SourceRowBytes();
  for (std::size_t i = 0; i < period; ++i) {
    const bool gentle = i / job.SourceRowBytes() / 4 % 2 != 0;
    const auto noise = static_cast<std::uint8_t>(random() >> 8);
    frame.Data()[i] = gentle ? static_cast<std::uint8_t>(120 + noise % 24) : noise;
  }
  for (std::size_t i = period; i < frame.Size(); i += period) {
    std::memcpy(frame.Data() + i, frame.Data(), std::min(period, frame.Size() - i));
  }
}

// The row of the short image that equals row `y` of the image.
std::size_t RowOfShort(std::size_t y, std::size_t height, std::size_t short_height) {
  if (y < kPeriod) {
    return y;
  }
  if (height - y <= kPeriod) {
    return y - height + short_height;
  }
  return kPeriod + y % kPeriod;
}

void ExpectRows(const Job& job, const GuardedBuffer& expected, const GuardedBuffer& image) {
  const std::size_t height = job.size.height;
  const std::size_t row_bytes = job.ImageRowBytes();
  const std::size_t short_height = expected.Size() / row_bytes;
  for (std::size_t y = 0; y < height; ++y) {
    const std::size_t short_y = RowOfShort(y, height, short_height);
    const std::uint8_t* wanted = expected.Data() + (short_height - 1 - short_y) * row_bytes;
    const std::uint8_t* found = image.Data() + (height - 1 - y) * row_bytes;
    if (std::memcmp(wanted, found, row_bytes) == 0) continue;
    const std::uint8_t* first = std::mismatch(wanted, wanted + row_bytes, found).first;
    FAIL() << "source row " << y << ", from byte " << first - wanted << " of " << row_bytes;
  }
}

void Compare(const Job& job, std::mt19937& random) {
  const std::size_t height = job.size.height;
  const std::size_t short_height = 3 * kPeriod + height % kPeriod;
  GuardedBuffer frame(job.SourceRowBytes() * height, random() % 3);
  FillPeriodic(random, job, frame);
  const std::size_t offset = 1 + 2 * (random() % 32);
  GuardedBuffer expected(job.ImageRowBytes() * short_height);
  {
    const TierUsed scalar(Tier::kScalar);
    job.Run(frame, short_height, expected);
  }
  GuardedBuffer image(job.ImageRowBytes() * height, offset);
  for (const Tier tier : VectorTiers()) {
    const TierUsed used(tier);
    std::memset(image.Data(), kUntouched, image.Size());
    job.Run(frame, height, image);
    SCOPED_TRACE(testing::Message() << TierName(tier) << ", " << job.form.name << ", code "
                                    << job.code << ", phase " << job.phase << ", " << job.size.width
                                    << " x " << height << ", offset " << offset);
    image.ExpectGuardsIntact();
    ExpectRows(job, expected, image);
    if (testing::Test::HasFatalFailure()) return;
  }
}

// The sizes take turns, so that each code meets several of them and each of them
// several codes.
template <std::size_t kCount>
Size InTurn(const Size (&sizes)[kCount], std::size_t turn) {
  return sizes[turn % kCount];
}

class LargeImages : public testing::TestWithParam<std::uint32_t> {
 protected:
  void TearDown() override {
    platform::PretendProcessorForTesting(platform::ProcessorPretence::kNone);
  }
};

TEST_P(LargeImages, EqualTheScalarTier) {
  std::mt19937 random(Seed());
  const std::uint32_t code = GetParam();
  const std::size_t first = static_cast<std::size_t>(
      std::find(std::begin(kCodes), std::end(kCodes), code) - std::begin(kCodes));
  for (std::size_t form = 0; form < std::size(kForms); ++form) {
    const bool narrow = kForms[form].pixel_bytes == 3;
    const auto compare = [&](Size size, std::size_t turn) {
      Compare({kForms[form], code, static_cast<std::uint32_t>(turn % 3), size}, random);
    };
    for (std::size_t turn = first + form; turn < first + form + (kSanitized ? 1 : 2); ++turn) {
      compare(narrow ? InTurn(kStreamedNarrow, turn) : InTurn(kStreamedWide, turn), turn);
      compare(narrow ? InTurn(kFetchedNarrow, turn) : InTurn(kFetchedWide, turn), turn);
      if (HasFatalFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Codes, LargeImages, testing::ValuesIn(kCodes),
                         [](const testing::TestParamInfo<std::uint32_t>& code) {
                           return "Code" + std::to_string(code.param);
                         });

// Live pictures: every phase and rounding, on every size.
TEST_F(LargeImages, BilinearInEveryPhaseAndRounding) {
  std::mt19937 random(Seed());
  std::uint32_t phase = 0;
  for (const auto processor :
       {platform::ProcessorPretence::kNoMmx, platform::ProcessorPretence::kMmxOnly,
        platform::ProcessorPretence::kMmxAndExtended}) {
    platform::PretendProcessorForTesting(processor);
    for (const Size size : kStreamedNarrow) {
      if (kSanitized && size.width % 4 != 0) continue;
      Compare({kForms[0], kBilinear, phase++ % 3, size}, random);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(LargeMonoImages, EqualTheScalarTier) {
  std::mt19937 random(Seed());
  const Form forms[] = {{"mono, 8 to 24",
                         [](const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                            std::uint8_t* image, std::uint32_t, std::uint32_t) -> Status {
                           ExpandMono8(source, width, height, image);
                           return kOk;
                         },
                         1, 3},
                        {"mono, 16 to 24",
                         [](const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                            std::uint8_t* image, std::uint32_t, std::uint32_t) -> Status {
                           ExpandMono16(source, width, height, image);
                           return kOk;
                         },
                         2, 3}};
  for (const Form& form : forms) {
    for (const Size size : {kStreamedNarrow[0], kStreamedNarrow[2], kFetchedNarrow[1]}) {
      Compare({form, 0, 0, size}, random);
      if (HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace ormidex::convert
