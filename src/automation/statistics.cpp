#include "automation/statistics.h"

namespace ormidex::automation {

namespace {

std::uint32_t LittleEndian32(const std::uint8_t* bytes) {
  return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

std::uint32_t BigEndian16(const std::uint8_t* bytes) { return bytes[0] * 256u + bytes[1]; }

// Frames of no pixels exist: a window of fewer rows than the imager can sub-sample.
std::uint32_t Mean(std::uint32_t sum, std::uint32_t count) { return count != 0 ? sum / count : 0; }

}  // namespace

ColourLevels LevelsFromLongStatistics(const std::uint8_t* block, std::uint32_t frame_bytes) {
  return {Mean(LittleEndian32(block), frame_bytes / 4),
          Mean(LittleEndian32(block + 4), frame_bytes / 2),
          Mean(LittleEndian32(block + 8), frame_bytes / 4)};
}

ColourLevels LevelsFromShortStatistics(const std::uint8_t* block, std::uint32_t frame_bytes) {
  const auto level = [frame_bytes](const std::uint8_t* bytes) {
    return Mean((BigEndian16(bytes) & 0x1FFFu) * 65536u, frame_bytes);
  };
  return {level(block), level(block + 2), level(block + 4)};
}

SiteLevels LevelsFromNewerStatistics(const std::uint8_t* block, std::uint32_t pixels) {
  const auto level = [pixels](const std::uint8_t* bytes) {
    return Mean(BigEndian16(bytes) * 2048u, pixels / 4);
  };
  return {level(block), level(block + 2), level(block + 4), level(block + 6)};
}

}  // namespace ormidex::automation
