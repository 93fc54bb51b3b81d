// Mean levels of a measured frame, 0 to 255 for any sample width. Camera-side
// figures are not cut off at 255: a camera that reports more is believed.
#ifndef ORMIDEX_AUTOMATION_LEVELS_H_
#define ORMIDEX_AUTOMATION_LEVELS_H_

#include <cstdint>

#include "automation/site_means.h"

namespace ormidex::automation {

struct ColourLevels {
  std::uint32_t red = 0;
  std::uint32_t green = 0;
  std::uint32_t blue = 0;

  // The two greens as one, rounded down.
  static constexpr ColourLevels FromMeans(const BayerSiteMeans& means) {
    return {means.red, (std::uint32_t{means.green1} + means.green2) >> 1, means.blue};
  }
};

struct SiteLevels {
  std::uint32_t red = 0;
  std::uint32_t green1 = 0;
  std::uint32_t green2 = 0;
  std::uint32_t blue = 0;

  static constexpr SiteLevels FromMeans(const BayerSiteMeans& means) {
    return {means.red, means.green1, means.green2, means.blue};
  }
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_LEVELS_H_
