// The two control laws of auto exposure, step by step: brightness in, next setting
// or the end out. No camera, no clock.
#ifndef ORMIDEX_AUTOMATION_EXPOSURE_LAWS_H_
#define ORMIDEX_AUTOMATION_EXPOSURE_LAWS_H_

#include <cstdint>

#include "automation/levels.h"

namespace ormidex::automation {

inline constexpr std::uint32_t kPassLimit = 20;

// ---- Bisection over the raw exposure value (older controllers) -----------------

inline constexpr std::uint32_t kExposureUpperLimit = 2046;
inline constexpr std::uint32_t kBisectionBand = 5;

// The level of a percentage of full scale, truncated: 100 % is 254.
std::uint32_t BisectionTarget(std::uint32_t percent);

// At least 1.
std::uint32_t ColourBrightness(const ColourLevels& levels);
std::uint32_t MonoBrightness(const ColourLevels& levels);

// A higher value is a brighter frame.
struct Bisection {
  explicit Bisection(std::uint32_t frame_height);

  enum class Verdict { kDone, kSetCurrent };
  // Moves `current` to the next value to try.
  Verdict Step(std::uint32_t target, std::uint32_t brightness);

  std::uint32_t lower_limit;
  std::uint32_t low;
  std::uint32_t high = kExposureUpperLimit;
  std::uint32_t current;

 private:
  bool NarrowFromAbove();
  bool NarrowFromBelow();
};

// ---- Proportional law over the exposure time (newer controllers) ---------------

inline constexpr float kExposureTimeMin = 1.0f;  // ms
inline constexpr float kExposureTimeMax = 300.0f;
inline constexpr float kExposureTimeStart = 50.0f;  // when the camera reports none

// A gamma above 1 raises the target by 51 levels per unit, deliberately: the curve
// darkens the picture that applications show. By the same rule a gamma of 0, which
// turns the curve off, lowers it.
float ProportionalTarget(float gamma, std::uint32_t percent);

// At least 1.
std::uint32_t ColourBrightness(const SiteLevels& levels);
std::uint32_t MonoBrightness(const SiteLevels& levels);

struct Proportional {
  float exposure_ms = kExposureTimeStart;
  // Set by the first pass that finds nothing to do or meets an end of the range,
  // and never cleared: the second such pass of a run, not the second in a row, ends
  // it.
  bool armed = false;

  struct Action {
    bool set_exposure = false;
    bool last_pass = false;
  };
  Action Step(float target, std::uint32_t brightness);

 private:
  bool Scale(float target, std::uint32_t brightness);
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_EXPOSURE_LAWS_H_
