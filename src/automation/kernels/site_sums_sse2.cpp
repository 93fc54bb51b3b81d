#include <emmintrin.h>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

namespace {

struct Sse2Vector {
  static constexpr std::uint32_t kBytes = 16;
  static constexpr std::uint32_t kLeastBytes = kBytes;
  struct Rest;

  __m128i value;

  static Sse2Vector Zero() { return {_mm_setzero_si128()}; }
  // Puts the vector into a register, whose value the compiler then takes as new.
  void Keep() { __asm__("" : "+x"(value)); }
  // Kept: the compiler would read memory anew for each use, and how many loads there are
  // decides the speed.
  static Sse2Vector Load(const std::uint8_t* data) {
    Sse2Vector loaded{_mm_loadu_si128(reinterpret_cast<const __m128i*>(data))};
    loaded.Keep();
    return loaded;
  }
  // Of each 16-bit word, as a word, and back up.
  static Sse2Vector UpperBytes(Sse2Vector v) { return {_mm_srli_epi16(v.value, 8)}; }
  static Sse2Vector BytesUp(Sse2Vector v) { return {_mm_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word, and one byte up.
  static Sse2Vector EvenWords(Sse2Vector v) {
    return {_mm_and_si128(v.value, _mm_set1_epi32(0xFFFF))};
  }
  static Sse2Vector OddWords(Sse2Vector v) { return {_mm_srli_epi32(v.value, 16)}; }
  static Sse2Vector DoubleBytesUp(Sse2Vector v) { return {_mm_slli_epi32(v.value, 8)}; }
  static Sse2Vector AddWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_add_epi16(a.value, b.value)};
  }
  static Sse2Vector SubtractWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_sub_epi16(a.value, b.value)};
  }
  static Sse2Vector AddDoubleWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_add_epi32(a.value, b.value)};
  }
  // The sum of each one's four lanes.
  static SiteSums Totals(Sse2Vector a, Sse2Vector b, Sse2Vector c, Sse2Vector d) {
    const __m128i ab =
        _mm_add_epi32(_mm_unpacklo_epi32(a.value, b.value), _mm_unpackhi_epi32(a.value, b.value));
    const __m128i cd =
        _mm_add_epi32(_mm_unpacklo_epi32(c.value, d.value), _mm_unpackhi_epi32(c.value, d.value));
    SiteSums sums;
    static_assert(sizeof(sums) == sizeof(__m128i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&sums),
                     _mm_add_epi32(_mm_unpacklo_epi64(ab, cd), _mm_unpackhi_epi64(ab, cd)));
    return sums;
  }
};

constexpr std::uint8_t kLastBytes[2 * Sse2Vector::kBytes] = {
    0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,   0,
    255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};

// The end of a row: the row's last vector, of which other bytes become 0.
struct Sse2Vector::Rest {
  __m128i kept;
  std::size_t before;

  explicit Rest(std::uint32_t bytes)
      : kept(Sse2Vector::Load(kLastBytes + bytes).value), before(kBytes - bytes) {}
  Sse2Vector Load(const std::uint8_t* data) const {
    return {_mm_and_si128(Sse2Vector::Load(data - before).value, kept)};
  }
};

SiteSums Sum8(const SampleRows& samples) {
  return SumSites<Sse2Vector, Samples8<Sse2Vector>>(samples, kScalarSiteSums.sum8);
}
SiteSums Sum16(const SampleRows& samples) {
  return SumSites<Sse2Vector, Samples16<Sse2Vector>>(samples, kScalarSiteSums.sum16);
}

}  // namespace

const SiteSumTier kSse2SiteSums = {"sse2", Sum8, Sum16};

}  // namespace ormidex::automation
