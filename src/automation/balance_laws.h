// The two control laws of white balance, step by step: levels in, next gain codes
// or the end out. No camera, no clock.
#ifndef ORMIDEX_AUTOMATION_BALANCE_LAWS_H_
#define ORMIDEX_AUTOMATION_BALANCE_LAWS_H_

#include <cstdint>
#include <optional>

#include "automation/levels.h"

namespace ormidex::automation {

inline constexpr std::uint8_t kGainCodeMax = 63;

// How much each channel counts, from the colour that the caller calls white.
struct ColourWeights {
  bool neutral = true;  // all 1: levels are taken as they are
  double red = 1.0;
  double green = 1.0;
  double blue = 1.0;

  static ColourWeights FromTargets(std::uint32_t red, std::uint32_t green, std::uint32_t blue);
  ColourLevels Apply(const ColourLevels& levels) const;
  SiteLevels Apply(const SiteLevels& levels) const;
};

// ---- Older controllers ----------------------------------------------------------

inline constexpr std::uint32_t kOlderBalanceSpread = 4;

// In the order of the imager's registers.
struct ColourGainCodes {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

// The first step asks for codes of 0 whatever the levels are, unless they are
// balanced: all balancing starts there, deliberately, so that the result does not
// depend on what was set before.
struct OlderBalance {
  std::uint32_t passes = 0;
  // Of the channel that serves as reference: 0.
  double red_factor = 0.0;
  double green_factor = 0.0;
  double blue_factor = 0.0;

  // Nothing: balanced.
  std::optional<ColourGainCodes> Step(const ColourLevels& levels);

 private:
  void FormFactors(const ColourLevels& levels);
  void ScaleFactors(const ColourLevels& levels);
};

// ---- Newer controllers ----------------------------------------------------------

inline constexpr std::uint32_t kNewerBalanceSpread = 16;

// In the order of the imager's registers.
struct SiteGainCodes {
  std::uint8_t green1 = 0;
  std::uint8_t red = 0;
  std::uint8_t blue = 0;
  std::uint8_t green2 = 0;
};

// Two straight lines that meet between the codes 31 and 32.
double GainFromCode(std::uint8_t code);
// What lies beyond the last code is held there.
std::uint8_t CodeFromGain(double gain);

// Later steps scale the gain of the code that is set, not the gain that the code
// was rounded from.
struct NewerBalance {
  std::uint32_t passes = 0;
  int reference = 0;  // channel, in the order red, green 1, green 2, blue

  // Nothing: balanced.
  std::optional<SiteGainCodes> Step(const SiteGainCodes& codes, const SiteLevels& levels);
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_BALANCE_LAWS_H_
