#include <immintrin.h>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

namespace {

struct Avx2Vector {
  static constexpr std::uint32_t kBytes = 32;
  static constexpr std::uint32_t kLeastBytes = kBytes;
  struct Rest;

  __m256i value;

  static Avx2Vector Zero() { return {_mm256_setzero_si256()}; }
  // Puts the vector into a register, whose value the compiler then takes as new.
  void Keep() { __asm__("" : "+x"(value)); }
  // Kept: the compiler would read memory anew for each use, and how many loads there are
  // decides the speed.
  static Avx2Vector Load(const std::uint8_t* data) {
    Avx2Vector loaded{_mm256_loadu_si256(reinterpret_cast<const __m256i*>(data))};
    loaded.Keep();
    return loaded;
  }
  // Of each 16-bit word, as a word, and back up.
  static Avx2Vector UpperBytes(Avx2Vector v) { return {_mm256_srli_epi16(v.value, 8)}; }
  static Avx2Vector BytesUp(Avx2Vector v) { return {_mm256_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word, and one byte up.
  static Avx2Vector EvenWords(Avx2Vector v) {
    return {_mm256_and_si256(v.value, _mm256_set1_epi32(0xFFFF))};
  }
  static Avx2Vector OddWords(Avx2Vector v) { return {_mm256_srli_epi32(v.value, 16)}; }
  static Avx2Vector DoubleBytesUp(Avx2Vector v) { return {_mm256_slli_epi32(v.value, 8)}; }
  static Avx2Vector AddWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_add_epi16(a.value, b.value)};
  }
  static Avx2Vector SubtractWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_sub_epi16(a.value, b.value)};
  }
  static Avx2Vector AddDoubleWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_add_epi32(a.value, b.value)};
  }
  // The sum of each one's eight lanes.
  static SiteSums Totals(Avx2Vector a, Avx2Vector b, Avx2Vector c, Avx2Vector d) {
    const __m256i ab = _mm256_add_epi32(_mm256_unpacklo_epi32(a.value, b.value),
                                        _mm256_unpackhi_epi32(a.value, b.value));
    const __m256i cd = _mm256_add_epi32(_mm256_unpacklo_epi32(c.value, d.value),
                                        _mm256_unpackhi_epi32(c.value, d.value));
    const __m256i all =
        _mm256_add_epi32(_mm256_unpacklo_epi64(ab, cd), _mm256_unpackhi_epi64(ab, cd));
    SiteSums sums;
    static_assert(sizeof(sums) == sizeof(__m128i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&sums),
                     _mm_add_epi32(_mm256_castsi256_si128(all), _mm256_extracti128_si256(all, 1)));
    return sums;
  }
};

constexpr std::uint8_t kLastBytes[2 * Avx2Vector::kBytes] = {
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};

// The end of a row: the row's last vector, of which other bytes become 0.
struct Avx2Vector::Rest {
  __m256i kept;
  std::size_t before;

  explicit Rest(std::uint32_t bytes)
      : kept(Avx2Vector::Load(kLastBytes + bytes).value), before(kBytes - bytes) {}
  Avx2Vector Load(const std::uint8_t* data) const {
    return {_mm256_and_si256(Avx2Vector::Load(data - before).value, kept)};
  }
};

SiteSums Sum8(const SampleRows& samples) {
  return SumSites<Avx2Vector, Samples8<Avx2Vector>>(samples, kSse2SiteSums.sum8);
}
SiteSums Sum16(const SampleRows& samples) {
  return SumSites<Avx2Vector, Samples16<Avx2Vector>>(samples, kSse2SiteSums.sum16);
}

}  // namespace

const SiteSumTier kAvx2SiteSums = {"avx2", Sum8, Sum16};

}  // namespace ormidex::automation
