#include "convert/convert.h"
#include "convert/samples.h"

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

}  // namespace

void ColorCorrect(void* image, std::size_t pixels, std::int32_t amount, bool wide) {
  auto* bytes = static_cast<std::uint8_t*>(image);
  const Factors factors = FactorsFor(amount);
  if (wide) {
    Correct<Form16To48>(bytes, pixels, factors);
  } else {
    Correct<Form8To24>(bytes, pixels, factors);
  }
}

}  // namespace ormidex::convert
