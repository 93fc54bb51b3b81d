// The statistics block that the controller sums up while a frame is read out.
//
// Every layout holds sums of the whole frame on a scale that the controller chose
// when it was built. 16-bit frames take twice the bytes, and the older
// controllers then sum nine bits of a sample instead of eight, so that a sum
// stays in proportion to the bytes of the frame.
#ifndef ORMIDEX_SIMULATOR_STATISTICS_H_
#define ORMIDEX_SIMULATOR_STATISTICS_H_

#include <cstdint>

#include "simulator/picture.h"

namespace ormidex::simulator {

inline constexpr std::uint32_t kLongestStatistics = 12;

// Each stores its block and returns the block's length in bytes.
//
// Older controllers, firmware 2.2 to 3.0: sums of red, of both greens, of blue as
// little-endian 32-bit words.
std::uint32_t EncodeLongStatistics(const SiteSums& sums, std::uint8_t* block);
// Older controllers, firmware 3.0 and later: red, green, blue in 13 bits each,
// big-endian; one count is 16384 levels, of both greens 32768.
std::uint32_t EncodeShortStatistics(const SiteSums& sums, std::uint8_t* block);
// Newer controllers: red, green 1, green 2, blue in 16 bits each, big-endian, one
// count is 2048 levels.
std::uint32_t EncodeNewerStatistics(const SiteSums& sums, std::uint8_t* block);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_STATISTICS_H_
