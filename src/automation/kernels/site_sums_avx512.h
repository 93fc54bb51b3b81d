// Vectors of 64 bytes, for the files of the tiers that have them.
#ifndef ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_AVX512_H_
#define ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_AVX512_H_

#include <immintrin.h>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

// A type of each file's own, so that code of one tier is never linked into the other.
namespace {

struct Avx512Vector {
  static constexpr std::uint32_t kBytes = 64;
  static constexpr std::uint32_t kLeastBytes = 0;
  struct Rest;

  __m512i value;

  static Avx512Vector Zero() { return {_mm512_setzero_si512()}; }
  // Puts the vector into a register, whose value the compiler then takes as new.
  void Keep() { __asm__("" : "+v"(value)); }
  // Kept: the compiler would read memory anew for each use, and how many loads there are
  // decides the speed.
  static Avx512Vector Load(const std::uint8_t* data) {
    Avx512Vector loaded{_mm512_loadu_si512(data)};
    loaded.Keep();
    return loaded;
  }
  // Of each 16-bit word, as a word, and back up.
  static Avx512Vector UpperBytes(Avx512Vector v) { return {_mm512_srli_epi16(v.value, 8)}; }
  static Avx512Vector BytesUp(Avx512Vector v) { return {_mm512_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word, and one byte up.
  static Avx512Vector EvenWords(Avx512Vector v) {
    return {_mm512_and_si512(v.value, _mm512_set1_epi32(0xFFFF))};
  }
  static Avx512Vector OddWords(Avx512Vector v) { return {_mm512_srli_epi32(v.value, 16)}; }
  static Avx512Vector DoubleBytesUp(Avx512Vector v) { return {_mm512_slli_epi32(v.value, 8)}; }
  static Avx512Vector AddWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_add_epi16(a.value, b.value)};
  }
  static Avx512Vector SubtractWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_sub_epi16(a.value, b.value)};
  }
  static Avx512Vector AddDoubleWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_add_epi32(a.value, b.value)};
  }
  static Avx512Vector SubtractDoubleWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_sub_epi32(a.value, b.value)};
  }
  // The sum of each one's sixteen lanes.
  static SiteSums Totals(Avx512Vector a, Avx512Vector b, Avx512Vector c, Avx512Vector d) {
    const __m512i ab = _mm512_add_epi32(_mm512_unpacklo_epi32(a.value, b.value),
                                        _mm512_unpackhi_epi32(a.value, b.value));
    const __m512i cd = _mm512_add_epi32(_mm512_unpacklo_epi32(c.value, d.value),
                                        _mm512_unpackhi_epi32(c.value, d.value));
    const __m512i all =
        _mm512_add_epi32(_mm512_unpacklo_epi64(ab, cd), _mm512_unpackhi_epi64(ab, cd));
    const __m256i half =
        _mm256_add_epi32(_mm512_castsi512_si256(all), _mm512_extracti64x4_epi64(all, 1));
    SiteSums sums;
    static_assert(sizeof(sums) == sizeof(__m128i));
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(&sums),
        _mm_add_epi32(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1)));
    return sums;
  }
};

// The end of a row: its first bytes, the others 0; nothing behind them is read.
struct Avx512Vector::Rest {
  __mmask64 kept;

  explicit Rest(std::uint32_t bytes) : kept((__mmask64{1} << bytes) - 1) {}
  Avx512Vector Load(const std::uint8_t* data) const {
    return {_mm512_maskz_loadu_epi8(kept, data)};
  }
};

}  // namespace

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_AVX512_H_
