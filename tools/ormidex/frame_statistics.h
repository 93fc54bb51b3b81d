// Figures of one raw frame.
#ifndef ORMIDEX_TOOLS_FRAME_STATISTICS_H_
#define ORMIDEX_TOOLS_FRAME_STATISTICS_H_

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <vector>

#include "camera.h"

namespace ormidex_tool {

struct FrameStatistics {
  std::array<std::uint64_t, 16> histogram{};  // samples in 16 equal classes of level
  double mean = 0.0;                          // of the 8-bit levels
  std::uint32_t lowest = 0;
  std::uint32_t highest = 0;
  std::uint64_t black = 0;    // samples at 0
  std::uint64_t clipped = 0;  // samples at full scale
  // Mean squared difference of like-coloured neighbours, two columns apart: higher
  // is sharper, for one scene and one light.
  double focus = 0.0;
};

FrameStatistics Measure(const std::vector<unsigned char>& frame, const Geometry& geometry);
nlohmann::ordered_json ToJson(const FrameStatistics& statistics);

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_FRAME_STATISTICS_H_
