#include <atomic>
#include <cstdlib>

#include "automation/kernels/site_sums.h"
#include "convert/tiers.h"
#include "platform/processor.h"

namespace ormidex::automation {

namespace {

constexpr const SiteSumTier* kTiers[] = {&kScalarSiteSums, &kSse2SiteSums, &kAvx2SiteSums,
                                         &kAvx512SiteSums, &kAvx512VnniSiteSums};

std::size_t CountTiers() {
  const platform::VectorFeatures features = platform::DetectVectorFeatures();
  if (!features.sse2) return 1;
  if (!features.avx2) return 2;
  if (!features.avx512_vbmi) return 3;
  return features.avx512_vnni ? 5 : 4;
}

// Of the tiers above, those up to a tier of the conversions.
std::size_t CountUpTo(convert::Tier tier) {
  switch (tier) {
    case convert::Tier::kScalar:
      return 1;
    case convert::Tier::kSsse3:
      return 2;
    case convert::Tier::kAvx2:
      return 3;
    default:
      return std::size(kTiers);
  }
}

// Every thread would choose the same, so a race between first calls is harmless.
constinit std::atomic<const SiteSumTier*> tier_in_use{nullptr};

}  // namespace

std::span<const SiteSumTier* const> AvailableSiteSumTiers() {
  // Asked once: in a virtual machine each question costs more than a small frame.
  static constinit std::atomic<std::size_t> known{0};
  std::size_t count = known.load(std::memory_order_relaxed);
  if (count == 0) {
    count = CountTiers();
    known.store(count, std::memory_order_relaxed);
  }
  return {kTiers, count};
}

// The wish is held against the highest tier there is, not against this machine's: one
// with SSE2 alone has no tier of the conversions, but one of these.
const SiteSumTier& SiteSumTierForWish(const char* wish) {
  const auto available = AvailableSiteSumTiers();
  const std::size_t wished = CountUpTo(convert::TierForWish(wish, convert::Tier::kAvx512));
  return *available[(wished < available.size() ? wished : available.size()) - 1];
}

const SiteSumTier& ActiveSiteSumTier() {
  const SiteSumTier* tier = tier_in_use.load(std::memory_order_relaxed);
  if (tier == nullptr) {
    tier = &SiteSumTierForWish(std::getenv("ORMIDEX_TIER"));
    tier_in_use.store(tier, std::memory_order_relaxed);
  }
  return *tier;
}

void UseSiteSumTier(const SiteSumTier* tier) { tier_in_use.store(tier, std::memory_order_relaxed); }

}  // namespace ormidex::automation
