#include <cmath>
#include <initializer_list>

#include "convert/convert.h"
#include "convert/samples.h"
#include "convert/tiers.h"

namespace ormidex::convert {
namespace {

// Rounded to single precision; the arithmetic on them is double. With amount -100
// the own-channel factor is therefore about 2.2e-8 and not 0.
struct Factors {
  double own;
  double others;
};

Factors FactorsFor(std::int32_t amount) {
  const double strength = amount;
  const float own = static_cast<float>(1.0 + static_cast<double>(0.01f) * strength);
  const float others = static_cast<float>(-(static_cast<double>(0.005f) * strength));
  return {own, others};
}

template <typename Form>
Sample Limit(double value) {
  if (!(value > 0.0)) {
    return 0;
  }
  return value >= Form::kMax ? Form::kMax : static_cast<Sample>(value);
}

template <typename Form>
void Correct(std::uint8_t* image, std::size_t pixels, const Factors& factors) {
  for (std::size_t i = 0; i < pixels; ++i) {
    std::uint8_t* pixel = image + i * 3 * Form::kChannelBytes;
    const auto c0 = static_cast<double>(Form::Load(pixel, 0));
    const auto c1 = static_cast<double>(Form::Load(pixel, 1));
    const auto c2 = static_cast<double>(Form::Load(pixel, 2));
    Form::Store(pixel, 0, Limit<Form>(factors.own * c0 + factors.others * (c1 + c2)));
    Form::Store(pixel, 1, Limit<Form>(factors.own * c1 + factors.others * (c0 + c2)));
    Form::Store(pixel, 2, Limit<Form>(factors.own * c2 + factors.others * (c0 + c1)));
  }
}

// The factors in the kernels' fixed point of so many limbs; false where they have more
// digits or are larger than it holds.
bool ToFixedPoint(const Factors& factors, int count, CorrectionFactors& fixed) {
  const int high_bits = kCorrectionHighBits[count];
  const int fraction_bits = high_bits + kCorrectionLimbBits * (count - 1);
  const double limit = std::ldexp(1.0, 15 - high_bits);
  fixed = {.count = count, .limbs = {}};
  int half = 0;
  for (const double factor : {factors.own - factors.others, factors.others}) {
    const double scaled = std::ldexp(factor, fraction_bits);
    if (!(std::fabs(factor) < limit) || scaled != std::floor(scaled)) {
      return false;
    }
    auto rest = static_cast<std::int64_t>(scaled);
    for (int i = count - 1; i >= 0; --i) {
      const std::int64_t limb = i > 0 ? rest & ((1 << kCorrectionLimbBits) - 1) : rest;
      const std::uint32_t bits = static_cast<std::uint16_t>(limb);
      fixed.limbs[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(fixed.limbs[i]) |
                                                 bits << (16 * half));
      rest >>= kCorrectionLimbBits;
    }
    ++half;
  }
  return true;
}

// Pixels of 3 bytes that a kernel did.
std::size_t CorrectByKernel(std::uint8_t* image, std::size_t pixels, const Factors& factors) {
  const Kernels* kernels = KernelsOf(ActiveTier());
  CorrectionFactors fixed;
  if (kernels == nullptr || !(ToFixedPoint(factors, 2, fixed) || ToFixedPoint(factors, 3, fixed))) {
    return 0;
  }
  return kernels->color_correct24(image, pixels, fixed);
}

}  // namespace

void ColorCorrect(void* image, std::size_t pixels, std::int32_t amount, bool wide) {
  auto* bytes = static_cast<std::uint8_t*>(image);
  const Factors factors = FactorsFor(amount);
  if (wide) {
    Correct<Form16To48>(bytes, pixels, factors);
  } else {
    const std::size_t done = CorrectByKernel(bytes, pixels, factors);
    Correct<Form8To24>(bytes + 3 * done, pixels - done, factors);
  }
}

}  // namespace ormidex::convert
