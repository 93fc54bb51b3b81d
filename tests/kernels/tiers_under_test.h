// The tiers that the machine has and the forms of the conversions, for tests that
// compare the one on the others.
#ifndef ORMIDEX_TESTS_KERNELS_TIERS_UNDER_TEST_H_
#define ORMIDEX_TESTS_KERNELS_TIERS_UNDER_TEST_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "convert/convert.h"
#include "convert/tiers.h"

namespace ormidex::convert {

// Sanitizers make large images take long, and speeds mean nothing.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// Printed and settable: ORMIDEX_TEST_SEED=1234. Each test begins with the seed anew, so
// that one alone repeats what it did among the others.
inline unsigned Seed() {
  static const unsigned seed = [] {
    const char* given = std::getenv("ORMIDEX_TEST_SEED");
    const unsigned chosen = given != nullptr ? static_cast<unsigned>(std::atoi(given)) : 20010917u;
    std::printf("ORMIDEX_TEST_SEED=%u\n", chosen);
    return chosen;
  }();
  return seed;
}

using Routine = Status (*)(const std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t*,
                           std::uint32_t, std::uint32_t);
struct Form {
  const char* name;
  Routine routine;
  std::size_t sample_bytes;
  std::size_t pixel_bytes;
};
inline constexpr Form kForms[] = {{"8 to 24", DemosaicTo24From8, 1, 3},
                                  {"16 to 24", DemosaicTo24From16, 2, 3},
                                  {"16 to 48", DemosaicTo48From16, 2, 6}};

inline constexpr std::uint32_t kCodes[] = {0, 1, 2, 3, 4, 5, 16, 17, 18, 255};

inline std::vector<Tier> VectorTiers() {
  std::vector<Tier> tiers;
  for (const Tier tier : kTiers) {
    if (tier != Tier::kScalar && tier <= HighestTier()) tiers.push_back(tier);
  }
  return tiers;
}

class TierUsed {
 public:
  explicit TierUsed(Tier tier) : before_(ActiveTier()) { UseTier(tier); }
  TierUsed(const TierUsed&) = delete;
  TierUsed& operator=(const TierUsed&) = delete;
  ~TierUsed() { UseTier(before_); }

 private:
  Tier before_;
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_TESTS_KERNELS_TIERS_UNDER_TEST_H_
