#include <atomic>

#include "automation/kernels/site_sums.h"
#include "platform/processor.h"

namespace ormidex::automation {

namespace {

// Asked once: in a virtual machine each question costs more than a small frame.
std::size_t CountTiers() {
  const platform::VectorFeatures features = platform::DetectVectorFeatures();
  if (!features.sse2) return 1;
  if (!features.avx2) return 2;
  return features.avx512_vbmi ? 4 : 3;
}

}  // namespace

std::span<const SiteSumTier* const> AvailableSiteSumTiers() {
  static constexpr const SiteSumTier* kTiers[] = {&kScalarSiteSums, &kSse2SiteSums, &kAvx2SiteSums,
                                                  &kAvx512SiteSums};
  // Every thread would find the same, so a race between first calls is harmless.
  static constinit std::atomic<std::size_t> known{0};
  std::size_t count = known.load(std::memory_order_relaxed);
  if (count == 0) {
    count = CountTiers();
    known.store(count, std::memory_order_relaxed);
  }
  return {kTiers, count};
}

}  // namespace ormidex::automation
