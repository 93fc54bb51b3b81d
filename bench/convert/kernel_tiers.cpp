// Prints the tier that computes each conversion on this machine: for reports of slow
// or wrong pictures. ORMIDEX_TIER=scalar|ssse3|avx2|avx512 forces a lower tier.
#include <cstdio>
#include <initializer_list>

#include "convert/tiers.h"
#include "platform/processor.h"

int main() {
  using namespace ormidex;
  using convert::ActiveTier;
  using convert::TierName;
  std::printf("processor: MMX %d, extended MMX %d, highest tier %s\n", platform::HasMmx(),
              platform::HasExtendedMmx(), TierName(convert::HighestTier()));
  const char* const rounding8 = platform::HasExtendedMmx() ? "extended" : "MMX";
  const char* const tier = TierName(ActiveTier());
  std::printf("%-34s %-8s %s\n", "conversion", "tier", "rounding at widths of 4 n");
  std::printf("%-34s %-8s %s\n", "code 1, 8 to 24", tier,
              platform::HasMmx() ? rounding8 : "portable");
  std::printf("%-34s %-8s %s\n", "code 1, 16 to 24", tier, platform::HasMmx() ? "MMX" : "portable");
  std::printf("%-34s %-8s %s\n", "code 1, 16 to 48", tier, "portable");
  for (const char* name : {"code 0", "code 2", "code 3", "code 4", "code 5", "code 16", "code 17",
                           "code 18", "code 255", "monochrome, 8 to 24", "monochrome, 16 to 24"}) {
    std::printf("%-34s %s\n", name, tier);
  }
  std::printf("%-34s %s\n", "colour correction, 24-bit", tier);
  std::printf("%-34s %s\n", "colour correction, 48-bit", "scalar");
  return 0;
}
