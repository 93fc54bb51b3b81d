#include "automation/balance_laws.h"

#include <algorithm>
#include <limits>

#include "automation/exact_arithmetic.h"
#include "device/time_scale.h"

namespace ormidex::automation {

namespace {

using Exact = DoublePrecision;

constexpr std::uint32_t kLevelMax = 255;

double Weight(std::uint32_t reference, std::uint32_t target) {
  return target != 0 ? Exact::Quotient(reference, target) : 0.0;
}

std::uint32_t WeightedLevel(std::uint32_t level, double weight) {
  return std::min(device::TruncateToWord(Exact::Product(level, weight)), kLevelMax);
}

}  // namespace

// The largest target is the reference; a tie goes to red, then to green.
ColourWeights ColourWeights::FromTargets(std::uint32_t red, std::uint32_t green,
                                         std::uint32_t blue) {
  ColourWeights weights;
  if (red == green && green == blue) return weights;
  const DoublePrecision precision;
  const std::uint32_t reference = std::max({red, green, blue});
  weights.neutral = false;
  weights.red = Weight(reference, red);
  weights.green = Weight(reference, green);
  weights.blue = Weight(reference, blue);
  return weights;
}

ColourLevels ColourWeights::Apply(const ColourLevels& levels) const {
  if (neutral) return levels;
  const DoublePrecision precision;
  return {WeightedLevel(levels.red, red), WeightedLevel(levels.green, green),
          WeightedLevel(levels.blue, blue)};
}

SiteLevels ColourWeights::Apply(const SiteLevels& levels) const {
  if (neutral) return levels;
  const DoublePrecision precision;
  return {WeightedLevel(levels.red, red), WeightedLevel(levels.green1, green),
          WeightedLevel(levels.green2, green), WeightedLevel(levels.blue, blue)};
}

namespace {

constexpr double kCodesPerFactor = 20.0;

std::uint8_t CodeFromFactor(double factor) {
  const double code = Exact::Product(factor, kCodesPerFactor);
  return code >= kGainCodeMax ? kGainCodeMax : static_cast<std::uint8_t>(code);
}

// factor x to / from, left to right.
double Scaled(double factor, std::uint32_t to, std::uint32_t from) {
  return Exact::Quotient(Exact::Product(factor, to), from);
}

bool Balanced(const ColourLevels& levels) {
  const auto [least, most] = std::minmax({levels.red, levels.green, levels.blue});
  return most - least <= kOlderBalanceSpread;
}

ColourLevels WithoutZeros(const ColourLevels& levels) {
  return {std::max(levels.red, 1u), std::max(levels.green, 1u), std::max(levels.blue, 1u)};
}

}  // namespace

// From scratch, with the brightest channel as reference.
void OlderBalance::FormFactors(const ColourLevels& levels) {
  const auto [red, green, blue] = levels;
  const bool red_brightest = red >= green && red >= blue;
  const bool green_brightest = !red_brightest && blue <= green && green >= red;
  const std::uint32_t brightest = red_brightest ? red : green_brightest ? green : blue;
  red_factor = red_brightest ? 0.0 : Exact::Quotient(brightest, red);
  green_factor = green_brightest ? 0.0 : Exact::Quotient(brightest, green);
  blue_factor = red_brightest || green_brightest ? Exact::Quotient(brightest, blue) : 0.0;
}

// The reference is known by its factor of 0.
void OlderBalance::ScaleFactors(const ColourLevels& levels) {
  const auto [red, green, blue] = levels;
  if (red_factor == 0.0) {
    green_factor = Scaled(green_factor, red, green);
    blue_factor = Scaled(blue_factor, red, blue);
  }
  if (green_factor == 0.0) {
    red_factor = Scaled(red_factor, green, red);
    blue_factor = Scaled(blue_factor, green, blue);
  }
  if (blue_factor == 0.0) {
    red_factor = Scaled(red_factor, blue, red);
    green_factor = Scaled(green_factor, blue, green);
  }
}

std::optional<ColourGainCodes> OlderBalance::Step(const ColourLevels& levels) {
  if (Balanced(levels)) return std::nullopt;
  const std::uint32_t pass = passes++;
  if (pass == 0) return ColourGainCodes{};
  const DoublePrecision precision;
  if (pass == 1) {
    FormFactors(WithoutZeros(levels));
  } else {
    ScaleFactors(WithoutZeros(levels));
  }
  return ColourGainCodes{CodeFromFactor(red_factor), CodeFromFactor(green_factor),
                         CodeFromFactor(blue_factor)};
}

namespace {

// A channel without any signal asks for more than there is.
constexpr double kEndlessGain = std::numeric_limits<double>::infinity();

constexpr std::uint8_t kLastFlatCode = 31;
constexpr double kSteepFrom = 1.37;

}  // namespace

double GainFromCode(std::uint8_t code) {
  const DoublePrecision precision;
  if (code > kLastFlatCode) {
    return Exact::Sum(Exact::Product(code - kLastFlatCode, 0.0435), 1.3475);
  }
  return Exact::Sum(Exact::Product(code, 0.02175), 0.695);
}

std::uint8_t CodeFromGain(double gain) {
  const DoublePrecision precision;
  double code = 0.0;
  if (!(gain <= kSteepFrom)) {
    code = Exact::Sum(Exact::Product(Exact::Difference(gain, 1.3475), 22.98850574712644), 31.5);
  } else if (gain >= 0.695) {
    code = Exact::Sum(Exact::Product(Exact::Difference(gain, 0.695), 45.97701149425288), 0.5);
  }
  return code < kGainCodeMax ? static_cast<std::uint8_t>(code) : kGainCodeMax;
}

namespace {

constexpr int kChannels = 4;  // red, green 1, green 2, blue

struct Channels {
  std::uint32_t level[kChannels];
  double gain[kChannels];

  Channels(const SiteGainCodes& codes, const SiteLevels& levels)
      : level{levels.red, levels.green1, levels.green2, levels.blue},
        gain{GainFromCode(codes.red), GainFromCode(codes.green1), GainFromCode(codes.green2),
             GainFromCode(codes.blue)} {}

  bool Balanced() const {
    const auto [least, most] = std::minmax_element(level, level + kChannels);
    return *most - *least <= kNewerBalanceSpread;
  }
  SiteGainCodes Codes() const {
    return {CodeFromGain(gain[1]), CodeFromGain(gain[0]), CodeFromGain(gain[3]),
            CodeFromGain(gain[2])};
  }

  // Levels as they would be without gain; the brightest is the reference.
  int GainsFromRawLevels() {
    const DoublePrecision precision;
    std::uint32_t raw[kChannels];
    for (int i = 0; i < kChannels; ++i) {
      raw[i] = device::TruncateToWord(Exact::Quotient(level[i], gain[i]));
    }
    const std::uint32_t* brightest = std::max_element(raw, raw + kChannels);
    for (int i = 0; i < kChannels; ++i) {
      gain[i] = raw[i] != 0 ? Exact::Quotient(*brightest, raw[i]) : kEndlessGain;
    }
    return static_cast<int>(brightest - raw);
  }

  void ScaleTo(std::uint32_t reference_level) {
    const DoublePrecision precision;
    for (int i = 0; i < kChannels; ++i) {
      gain[i] = level[i] != 0 ? Scaled(gain[i], reference_level, level[i]) : kEndlessGain;
    }
  }
};

}  // namespace

std::optional<SiteGainCodes> NewerBalance::Step(const SiteGainCodes& codes,
                                                const SiteLevels& levels) {
  Channels channels(codes, levels);
  if (channels.Balanced()) return std::nullopt;
  if (passes++ == 0) {
    reference = channels.GainsFromRawLevels();
  } else {
    channels.ScaleTo(channels.level[reference]);
  }
  return channels.Codes();
}

}  // namespace ormidex::automation
