// The choice of the instruction-set tier that computes the conversions.
//
// The tier decides how fast a result comes, never which: all tiers agree bit for bit.
// It is chosen once, by what the processor and the operating system support; the
// environment variable ORMIDEX_TIER (scalar, ssse3, avx2 or avx512) forces a lower one.
#ifndef ORMIDEX_CONVERT_TIERS_H_
#define ORMIDEX_CONVERT_TIERS_H_

#include "convert/kernels/kernels.h"

namespace ormidex::convert {

enum class Tier { kScalar, kSsse3, kAvx2, kAvx512 };
inline constexpr Tier kTiers[] = {Tier::kScalar, Tier::kSsse3, Tier::kAvx2, Tier::kAvx512};

const char* TierName(Tier tier);
// The highest tier that this machine can run.
Tier HighestTier();
// The tier that a value of ORMIDEX_TIER (null: not set) selects on a machine.
Tier TierForWish(const char* wish, Tier highest);
// The tier in use.
Tier ActiveTier();
// Tests and benchmarks: use this tier; the machine must have it.
void UseTier(Tier tier);

// The kernels of a tier; null for the scalar one.
const Kernels* KernelsOf(Tier tier);

// The next lower tier's kernels, or null; for rows too narrow for a tier.
const Kernels* LowerTier(const Kernels* kernels);

}  // namespace ormidex::convert

#endif  // ORMIDEX_CONVERT_TIERS_H_
