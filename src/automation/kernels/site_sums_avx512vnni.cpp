#include "automation/kernels/site_sums_avx512.h"

namespace ormidex::automation {

namespace {

// 8-bit pairs: one instruction widens and adds the upper bytes of two pairs to a
// 32-bit lane. That leaves the sum of the whole words as in the other tiers; two words
// share a lane of upper bytes, so only half as many vectors fit.
struct DotSamples8 {
  static constexpr std::uint32_t kPairBytes = 2;
  static constexpr std::uint32_t kVectorsThatFit = 128;  // two bytes each; 257 fit in a word

  Avx512Vector words = Avx512Vector::Zero();
  Avx512Vector upper = Avx512Vector::Zero();

  [[gnu::always_inline]] void Add(Avx512Vector samples) {
    const __m512i upper_bytes = _mm512_set1_epi16(0x0100);
    words = Avx512Vector::AddWords(words, samples);
    upper = {_mm512_dpbusd_epi32(upper.value, samples.value, upper_bytes)};
  }
  [[gnu::always_inline]] void Keep() {
    words.Keep();
    upper.Keep();
  }
  [[gnu::always_inline]] void Widen(Avx512Vector& first, Avx512Vector& second) const {
    using V = Avx512Vector;
    const V both = V::AddDoubleWords(V::EvenWords(words), V::OddWords(words));
    const V lower = V::EvenWords(V::SubtractDoubleWords(both, V::DoubleBytesUp(upper)));
    first = V::AddDoubleWords(first, lower);
    second = V::AddDoubleWords(second, upper);
  }
};

SiteSums Sum8(const SampleRows& samples) {
  return SumSites<Avx512Vector, DotSamples8>(samples, nullptr);
}
SiteSums Sum16(const SampleRows& samples) {
  return SumSites<Avx512Vector, Samples16<Avx512Vector>>(samples, nullptr);
}

}  // namespace

const SiteSumTier kAvx512VnniSiteSums = {"avx512vnni", Sum8, Sum16};

}  // namespace ormidex::automation
