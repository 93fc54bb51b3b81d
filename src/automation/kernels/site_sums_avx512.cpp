#include "automation/kernels/site_sums_avx512.h"

namespace ormidex::automation {

namespace {

SiteSums Sum8(const SampleRows& samples) {
  return SumSites<Avx512Vector, Samples8<Avx512Vector>>(samples, nullptr);
}
SiteSums Sum16(const SampleRows& samples) {
  return SumSites<Avx512Vector, Samples16<Avx512Vector>>(samples, nullptr);
}

}  // namespace

const SiteSumTier kAvx512SiteSums = {"avx512", Sum8, Sum16};

}  // namespace ormidex::automation
