// The reference. It is compiled without automatic vectorisation, so that the
// figures of the other tiers compare with a loop that takes one sample at a time.
#include "automation/kernels/site_sums.h"

namespace ormidex::automation {

namespace {

SiteSums Sum8(const SampleRows& samples) {
  SiteSums sums;
  const std::uint8_t* row = samples.first;
  for (std::uint32_t y = 0; y < samples.rows; ++y, row += samples.stride_bytes) {
    PairSums& sum = sums.rows[y & 1];
    const std::uint8_t* sample = row;
    for (std::uint32_t i = 0; i < samples.pairs; ++i, sample += 2) {
      sum.first += sample[0];
      sum.second += sample[1];
    }
  }
  return sums;
}

// The upper byte of a little-endian sample is the one behind.
SiteSums Sum16(const SampleRows& samples) {
  SiteSums sums;
  const std::uint8_t* row = samples.first;
  for (std::uint32_t y = 0; y < samples.rows; ++y, row += samples.stride_bytes) {
    PairSums& sum = sums.rows[y & 1];
    const std::uint8_t* sample = row;
    for (std::uint32_t i = 0; i < samples.pairs; ++i, sample += 4) {
      sum.first += std::uint32_t{sample[1]} << 8;
      sum.second += std::uint32_t{sample[3]} << 8;
    }
  }
  return sums;
}

}  // namespace

const SiteSumTier kScalarSiteSums = {"scalar", Sum8, Sum16};

}  // namespace ormidex::automation
