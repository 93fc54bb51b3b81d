#include "convert/tiers.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/processor.h"

namespace ormidex::convert {
namespace {

constexpr int kNotChosen = -1;
std::atomic<int> tier_in_use{kNotChosen};

}  // namespace

const char* TierName(Tier tier) {
  const Kernels* kernels = KernelsOf(tier);
  return kernels != nullptr ? kernels->tier : "scalar";
}

Tier HighestTier() {
  const platform::VectorFeatures features = platform::DetectVectorFeatures();
  if (features.avx512_vbmi) {
    return Tier::kAvx512;
  }
  if (features.avx2) {
    return Tier::kAvx2;
  }
  return features.sse2 && features.ssse3 ? Tier::kSsse3 : Tier::kScalar;
}

Tier TierForWish(const char* wish, Tier highest) {
  if (wish != nullptr) {
    for (const Tier tier : kTiers) {
      if (std::strcmp(wish, TierName(tier)) == 0 && tier < highest) {
        return tier;
      }
    }
  }
  return highest;
}

Tier ActiveTier() {
  int tier = tier_in_use.load(std::memory_order_relaxed);
  if (tier == kNotChosen) {
    // Two threads may choose at once; they choose the same.
    tier = static_cast<int>(TierForWish(std::getenv("ORMIDEX_TIER"), HighestTier()));
    tier_in_use.store(tier, std::memory_order_relaxed);
  }
  return static_cast<Tier>(tier);
}

void UseTier(Tier tier) { tier_in_use.store(static_cast<int>(tier), std::memory_order_relaxed); }

const Kernels* KernelsOf(Tier tier) {
  switch (tier) {
    case Tier::kSsse3:
      return &kSsse3Kernels;
    case Tier::kAvx2:
      return &kAvx2Kernels;
    case Tier::kAvx512:
      return &kAvx512Kernels;
    default:
      return nullptr;
  }
}

const Kernels* LowerTier(const Kernels* kernels) {
  if (kernels == &kAvx512Kernels) {
    return &kAvx2Kernels;
  }
  return kernels == &kAvx2Kernels ? &kSsse3Kernels : nullptr;
}

}  // namespace ormidex::convert
