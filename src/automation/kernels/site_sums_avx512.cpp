#include <immintrin.h>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

namespace {

struct Avx512Vector {
  static constexpr std::uint32_t kBytes = 64;

  __m512i value;

  static Avx512Vector Zero() { return {_mm512_setzero_si512()}; }
  static Avx512Vector Load(const std::uint8_t* data) { return {_mm512_loadu_si512(data)}; }
  // The first `bytes` bytes, the others 0; nothing behind them is read.
  static Avx512Vector LoadPart(const std::uint8_t* data, std::uint32_t bytes) {
    return {_mm512_maskz_loadu_epi8((__mmask64{1} << bytes) - 1, data)};
  }
  // Of each 16-bit word, as a word, and back up.
  static Avx512Vector UpperBytes(Avx512Vector v) { return {_mm512_srli_epi16(v.value, 8)}; }
  static Avx512Vector BytesUp(Avx512Vector v) { return {_mm512_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word.
  static Avx512Vector EvenWords(Avx512Vector v) {
    return {_mm512_and_si512(v.value, _mm512_set1_epi32(0xFFFF))};
  }
  static Avx512Vector OddWords(Avx512Vector v) { return {_mm512_srli_epi32(v.value, 16)}; }
  static Avx512Vector AddWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_add_epi16(a.value, b.value)};
  }
  static Avx512Vector SubtractWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_sub_epi16(a.value, b.value)};
  }
  static Avx512Vector AddDoubleWords(Avx512Vector a, Avx512Vector b) {
    return {_mm512_add_epi32(a.value, b.value)};
  }
  static std::uint32_t Total(Avx512Vector v) {
    const __m256i half =
        _mm256_add_epi32(_mm512_castsi512_si256(v.value), _mm512_extracti64x4_epi64(v.value, 1));
    __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(1, 0, 3, 2)));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sum));
  }
};

}  // namespace

const SiteSumTier kAvx512SiteSums = {"avx512", SumSites<Avx512Vector, Samples8>,
                                     SumSites<Avx512Vector, Samples16>};

}  // namespace ormidex::automation
