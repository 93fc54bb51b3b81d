#include "automation/exposure_laws.h"

#include "automation/exact_arithmetic.h"
#include "device/time_scale.h"

namespace ormidex::automation {

namespace {

std::uint32_t AtLeastOne(std::uint32_t level) { return level != 0 ? level : 1; }

}  // namespace

// percent x 0.01 x 255, where 0.01 is a 32-bit float: 10737418 / 2^30. In whole
// numbers there is nothing to round, so every unit gives the truncation of the
// exact product; 100 % falls just short of 255.
std::uint32_t BisectionTarget(std::uint32_t percent) {
  constexpr std::uint64_t kHundredth = 10737418;
  return static_cast<std::uint32_t>((percent * kHundredth * 255) >> 30);
}

std::uint32_t ColourBrightness(const ColourLevels& levels) {
  using Exact = DoublePrecision;
  const DoublePrecision precision;
  const double green = Exact::Product(levels.green, 0.7154);
  const double blue = Exact::Product(levels.blue, 0.0721);
  const double red = Exact::Product(levels.red, 0.2125);
  return AtLeastOne(device::TruncateToWord(Exact::Sum(Exact::Sum(green, blue), red)));
}

std::uint32_t MonoBrightness(const ColourLevels& levels) {
  return AtLeastOne((levels.green + levels.blue + levels.red) / 3);
}

// Unsigned on purpose: frames of more than 2046 rows wrap.
Bisection::Bisection(std::uint32_t frame_height)
    : lower_limit(kExposureUpperLimit - frame_height),
      low(lower_limit),
      current((low + high) >> 1) {}

// Too bright. False: the search is over.
bool Bisection::NarrowFromAbove() {
  high = current;
  if (current - low < 2) {
    if (low != lower_limit) return false;
    low = current;
  }
  current = (current + low) >> 1;
  return true;
}

// Too dark.
bool Bisection::NarrowFromBelow() {
  low = current;
  if (high - current < 2) {
    if (high != kExposureUpperLimit) return false;
    current = high;
    low = high;
  }
  current = (high + current) >> 1;
  return true;
}

Bisection::Verdict Bisection::Step(std::uint32_t target, std::uint32_t brightness) {
  const bool too_bright = brightness > target + kBisectionBand;
  const bool too_dark = brightness + kBisectionBand < target;
  if (!too_bright && !too_dark) return Verdict::kDone;
  if (!(too_bright ? NarrowFromAbove() : NarrowFromBelow())) return Verdict::kDone;
  // An end of the range counts as reached without being set, deliberately: it is
  // the best that this camera can do, and applications take it as success.
  if (current == kExposureUpperLimit || current == lower_limit) return Verdict::kDone;
  return Verdict::kSetCurrent;
}

// The constants are 32-bit floats, the result is one; what lies between is exact
// for every gamma that is of use.
float ProportionalTarget(float gamma, std::uint32_t percent) {
  using Exact = DoublePrecision;
  const DoublePrecision precision;
  const double rise =
      Exact::Product(Exact::Difference(static_cast<double>(gamma), 1.0), double{0.2f});
  const double share = Exact::Product(percent, double{0.01f});
  return Exact::ToFloat(Exact::Product(Exact::Sum(rise, share), 255.0));
}

std::uint32_t ColourBrightness(const SiteLevels& levels) {
  using Exact = DoublePrecision;
  const DoublePrecision precision;
  const double green = Exact::Product(Exact::Sum(levels.green1, levels.green2), 0.3577);
  const double blue = Exact::Product(levels.blue, 0.0721);
  const double red = Exact::Product(levels.red, 0.2125);
  return AtLeastOne(device::TruncateToWord(Exact::Sum(Exact::Sum(green, blue), red)));
}

std::uint32_t MonoBrightness(const SiteLevels& levels) {
  return AtLeastOne((levels.blue + levels.green2 + levels.green1 + levels.red) >> 2);
}

// target / brightness x exposure. Multiplied first, because that product is exact:
// the quotient is then the true one, rounded to a float. True: an end of the range.
bool Proportional::Scale(float target, std::uint32_t brightness) {
  using Exact = DoublePrecision;
  const DoublePrecision precision;
  const double product =
      Exact::Product(static_cast<double>(target), static_cast<double>(exposure_ms));
  exposure_ms = Exact::ToFloat(Exact::Quotient(product, brightness));
  if (exposure_ms < kExposureTimeMin) {
    exposure_ms = kExposureTimeMin;
    return true;
  }
  if (exposure_ms > kExposureTimeMax) {
    exposure_ms = kExposureTimeMax;
    return true;
  }
  return false;
}

Proportional::Action Proportional::Step(float target, std::uint32_t brightness) {
  // The truncated difference is at most 3.
  const double error =
      DoublePrecision::Difference(static_cast<double>(target), static_cast<double>(brightness));
  const bool in_band = error > -4.0 && error < 4.0;
  const bool done = in_band || Scale(target, brightness);
  const Action action{!in_band, done && armed};
  armed = armed || done;
  return action;
}

}  // namespace ormidex::automation
