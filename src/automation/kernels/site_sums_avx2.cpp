#include <immintrin.h>

#include <cstring>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

namespace {

struct Avx2Vector {
  static constexpr std::uint32_t kBytes = 32;

  __m256i value;

  static Avx2Vector Zero() { return {_mm256_setzero_si256()}; }
  static Avx2Vector Load(const std::uint8_t* data) {
    return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(data))};
  }
  // The first `bytes` bytes, the others 0; nothing behind them is read.
  static Avx2Vector LoadPart(const std::uint8_t* data, std::uint32_t bytes) {
    std::uint8_t copy[kBytes] = {};
    std::memcpy(copy, data, bytes);
    return Load(copy);
  }
  // Of each 16-bit word, as a word, and back up.
  static Avx2Vector UpperBytes(Avx2Vector v) { return {_mm256_srli_epi16(v.value, 8)}; }
  static Avx2Vector BytesUp(Avx2Vector v) { return {_mm256_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word.
  static Avx2Vector EvenWords(Avx2Vector v) {
    return {_mm256_and_si256(v.value, _mm256_set1_epi32(0xFFFF))};
  }
  static Avx2Vector OddWords(Avx2Vector v) { return {_mm256_srli_epi32(v.value, 16)}; }
  static Avx2Vector AddWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_add_epi16(a.value, b.value)};
  }
  static Avx2Vector SubtractWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_sub_epi16(a.value, b.value)};
  }
  static Avx2Vector AddDoubleWords(Avx2Vector a, Avx2Vector b) {
    return {_mm256_add_epi32(a.value, b.value)};
  }
  static std::uint32_t Total(Avx2Vector v) {
    __m128i sum =
        _mm_add_epi32(_mm256_castsi256_si128(v.value), _mm256_extracti128_si256(v.value, 1));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(1, 0, 3, 2)));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sum));
  }
};

}  // namespace

const SiteSumTier kAvx2SiteSums = {"avx2", SumSites<Avx2Vector, Samples8>,
                                   SumSites<Avx2Vector, Samples16>};

}  // namespace ormidex::automation
