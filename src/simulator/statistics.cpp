#include "simulator/statistics.h"

#include <algorithm>
#include <cstring>

namespace ormidex::simulator {
namespace {

void PutCount(std::uint64_t count, std::uint64_t limit, std::uint8_t* bytes) {
  const std::uint64_t held = std::min(count, limit);  // the counters stop at their end
  bytes[0] = static_cast<std::uint8_t>(held >> 8);
  bytes[1] = static_cast<std::uint8_t>(held);
}

}  // namespace

std::uint32_t EncodeLongStatistics(const SiteSums& sums, std::uint8_t* block) {
  const std::uint64_t green = sums.Older(kGreen1) + sums.Older(kGreen2);
  const std::uint32_t words[3] = {static_cast<std::uint32_t>(sums.Older(kRed)),
                                  static_cast<std::uint32_t>(green),
                                  static_cast<std::uint32_t>(sums.Older(kBlue))};
  std::memcpy(block, words, sizeof words);
  return sizeof words;
}

std::uint32_t EncodeShortStatistics(const SiteSums& sums, std::uint8_t* block) {
  constexpr std::uint64_t kLimit = 0x1FFF;
  PutCount(sums.Older(kRed) / 16384, kLimit, block);
  PutCount((sums.Older(kGreen1) + sums.Older(kGreen2)) / 32768, kLimit, block + 2);
  PutCount(sums.Older(kBlue) / 16384, kLimit, block + 4);
  return 6;
}

std::uint32_t EncodeNewerStatistics(const SiteSums& sums, std::uint8_t* block) {
  constexpr std::uint64_t kLimit = 0xFFFF;
  PutCount(sums.sum[kRed] / 2048, kLimit, block);
  PutCount(sums.sum[kGreen1] / 2048, kLimit, block + 2);
  PutCount(sums.sum[kGreen2] / 2048, kLimit, block + 4);
  PutCount(sums.sum[kBlue] / 2048, kLimit, block + 6);
  return 8;
}

}  // namespace ormidex::simulator
