#include "frame_statistics.h"

#include <algorithm>

namespace ormidex_tool {

FrameStatistics Measure(const std::vector<unsigned char>& frame, const Geometry& geometry) {
  FrameStatistics statistics;
  const std::size_t step = geometry.bytes_per_pixel;
  // Of a 16-bit sample the upper byte counts.
  const auto level = [&](std::size_t x, std::size_t y) {
    return std::uint32_t{frame[(y * geometry.width + x) * step + step - 1]};
  };
  std::uint64_t sum = 0;
  std::uint64_t differences = 0;
  std::uint64_t compared = 0;
  statistics.lowest = 255;
  for (std::size_t y = 0; y < geometry.height; ++y) {
    for (std::size_t x = 0; x < geometry.width; ++x) {
      const std::uint32_t value = level(x, y);
      sum += value;
      ++statistics.histogram[value / 16];
      statistics.lowest = std::min(statistics.lowest, value);
      statistics.highest = std::max(statistics.highest, value);
      statistics.black += value == 0 ? 1 : 0;
      statistics.clipped += value == 255 ? 1 : 0;
      if (x < 2) continue;
      const auto difference =
          static_cast<std::int64_t>(value) - static_cast<std::int64_t>(level(x - 2, y));
      differences += static_cast<std::uint64_t>(difference * difference);
      ++compared;
    }
  }
  const std::uint64_t samples = std::uint64_t{geometry.width} * geometry.height;
  if (samples == 0) statistics.lowest = 0;
  if (samples != 0) statistics.mean = static_cast<double>(sum) / static_cast<double>(samples);
  if (compared != 0) {
    statistics.focus = static_cast<double>(differences) / static_cast<double>(compared);
  }
  return statistics;
}

nlohmann::ordered_json ToJson(const FrameStatistics& statistics) {
  return {{"mean", statistics.mean},          {"lowest", statistics.lowest},
          {"highest", statistics.highest},    {"black", statistics.black},
          {"clipped", statistics.clipped},    {"focus", statistics.focus},
          {"histogram", statistics.histogram}};
}

}  // namespace ormidex_tool
