// The sums that the camera's controller makes of a whole frame, as its statistics
// block gives them, and the means they stand for. Arithmetic is unsigned, 32 bits
// wide and truncating; a frame without pixels has levels of 0.
#ifndef ORMIDEX_AUTOMATION_STATISTICS_H_
#define ORMIDEX_AUTOMATION_STATISTICS_H_

#include <cstdint>

#include "automation/levels.h"

namespace ormidex::automation {

inline constexpr std::uint32_t kStatisticsRegister = 16;
inline constexpr std::uint32_t kLongStatisticsBytes = 12;
inline constexpr std::uint32_t kShortStatisticsBytes = 6;
inline constexpr std::uint32_t kNewerStatisticsBytes = 8;

// Older controllers, firmware 2.2 up to 3.0: sums of red, of both greens and of
// blue as little-endian 32-bit words.
ColourLevels LevelsFromLongStatistics(const std::uint8_t* block, std::uint32_t frame_bytes);
// Older controllers from firmware 3.0 on: 13 bits each, big-endian, in units of
// 16384 levels.
ColourLevels LevelsFromShortStatistics(const std::uint8_t* block, std::uint32_t frame_bytes);
// Newer controllers: red, green 1, green 2 and blue in 16 bits each, big-endian, in
// units of 2048 levels.
SiteLevels LevelsFromNewerStatistics(const std::uint8_t* block, std::uint32_t pixels);

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_STATISTICS_H_
