// Sums of the four kinds of sites of a rectangle of samples: one kernel for each
// sample width and instruction set, all with the same results.
#ifndef ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_H_
#define ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_H_

#include <cstddef>
#include <cstdint>
#include <span>

namespace ormidex::automation {

// The rows of a rectangle, whose samples are taken in pairs.
struct SampleRows {
  const std::uint8_t* first = nullptr;  // the rectangle's first sample; any alignment
  std::size_t stride_bytes = 0;
  std::uint32_t rows = 0;
  std::uint32_t pairs = 0;  // in each row
};

// Sums of the first and of the second samples of the pairs, modulo 2^32.
struct PairSums {
  std::uint32_t first = 0;
  std::uint32_t second = 0;
};

// Of the rectangle's rows 0, 2, 4, ... and of its rows 1, 3, 5, ...
struct SiteSums {
  PairSums rows[2];
};

// At 16 bits a sample adds its word masked with 0xFF00.
using SiteSumKernel = SiteSums (*)(const SampleRows&);

struct SiteSumTier {
  const char* name;
  SiteSumKernel sum8;
  SiteSumKernel sum16;
};

extern const SiteSumTier kScalarSiteSums;  // the reference, and for processors without SSE2
extern const SiteSumTier kSse2SiteSums;
extern const SiteSumTier kAvx2SiteSums;
extern const SiteSumTier kAvx512SiteSums;      // needs F and BW
extern const SiteSumTier kAvx512VnniSiteSums;  // needs F, BW and VNNI

// The tiers that this machine can run, the reference first, the fastest last.
std::span<const SiteSumTier* const> AvailableSiteSumTiers();

// The fastest tier of this machine that a value of ORMIDEX_TIER (null: not set)
// leaves: the conversions' names, of which `ssse3` is SSE2 here.
const SiteSumTier& SiteSumTierForWish(const char* wish);
// The tier in use, chosen at the first call by that environment variable.
const SiteSumTier& ActiveSiteSumTier();
// Tests: use this tier; null: choose anew.
void UseSiteSumTier(const SiteSumTier* tier);

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_H_
