#include <emmintrin.h>

#include <cstring>

#include "automation/kernels/site_sums_vector.h"

namespace ormidex::automation {

namespace {

struct Sse2Vector {
  static constexpr std::uint32_t kBytes = 16;

  __m128i value;

  static Sse2Vector Zero() { return {_mm_setzero_si128()}; }
  static Sse2Vector Load(const std::uint8_t* data) {
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(data))};
  }
  // The first `bytes` bytes, the others 0; nothing behind them is read.
  static Sse2Vector LoadPart(const std::uint8_t* data, std::uint32_t bytes) {
    std::uint8_t copy[kBytes] = {};
    std::memcpy(copy, data, bytes);
    return Load(copy);
  }
  // Of each 16-bit word, as a word, and back up.
  static Sse2Vector UpperBytes(Sse2Vector v) { return {_mm_srli_epi16(v.value, 8)}; }
  static Sse2Vector BytesUp(Sse2Vector v) { return {_mm_slli_epi16(v.value, 8)}; }
  // Of each 32-bit word, as a 32-bit word.
  static Sse2Vector EvenWords(Sse2Vector v) {
    return {_mm_and_si128(v.value, _mm_set1_epi32(0xFFFF))};
  }
  static Sse2Vector OddWords(Sse2Vector v) { return {_mm_srli_epi32(v.value, 16)}; }
  static Sse2Vector AddWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_add_epi16(a.value, b.value)};
  }
  static Sse2Vector SubtractWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_sub_epi16(a.value, b.value)};
  }
  static Sse2Vector AddDoubleWords(Sse2Vector a, Sse2Vector b) {
    return {_mm_add_epi32(a.value, b.value)};
  }
  static std::uint32_t Total(Sse2Vector v) {
    __m128i sum = _mm_add_epi32(v.value, _mm_shuffle_epi32(v.value, _MM_SHUFFLE(1, 0, 3, 2)));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sum));
  }
};

}  // namespace

const SiteSumTier kSse2SiteSums = {"sse2", SumSites<Sse2Vector, Samples8>,
                                   SumSites<Sse2Vector, Samples16>};

}  // namespace ormidex::automation
