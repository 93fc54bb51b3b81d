// The vector of the AVX-512 tier (F, BW, DQ, VL, VBMI). Included by its file only;
// everything is local to it.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace ormidex::convert {
namespace {

using Vector = __m512i;
constexpr std::size_t kVectorBytes = 64;

inline Vector Load(const std::uint8_t* p) { return _mm512_loadu_si512(p); }
inline void Store(std::uint8_t* p, Vector v) { _mm512_storeu_si512(p, v); }
// Past the cache, to an aligned place.
inline void StorePast(std::uint8_t* p, Vector v) {
  _mm512_stream_si512(reinterpret_cast<__m512i*>(p), v);
}
template <Way kWay>
inline void Put(std::uint8_t* p, Vector v) {
  if constexpr (kWay == Way::kPastCache) {
    StorePast(p, v);
  } else {
    Store(p, v);
  }
}
inline Vector And(Vector a, Vector b) { return _mm512_and_si512(a, b); }
inline Vector Or(Vector a, Vector b) { return _mm512_or_si512(a, b); }
inline Vector Xor(Vector a, Vector b) { return _mm512_xor_si512(a, b); }
inline Vector AndNot(Vector a, Vector b) { return _mm512_andnot_si512(a, b); }
inline void LeaveVectorMode() { _mm256_zeroupper(); }

// Lane orders for output vector number `part`: where F and own (counted on behind F)
// have the lanes that it takes, where inner has them, and which it takes from inner.
template <typename Lane>
struct alignas(64) SiteOrder {
  static constexpr std::size_t kLanes = kVectorBytes / sizeof(Lane);
  Lane outer_own[kLanes];
  Lane inner[kLanes];
  std::uint64_t takes_inner;
};
template <typename Lane>
constexpr SiteOrder<Lane> MakeSiteOrder(bool has_red, bool odd_sites, std::size_t part) {
  constexpr std::size_t kLanes = SiteOrder<Lane>::kLanes;
  SiteOrder<Lane> order{};
  for (std::size_t i = 0; i < kLanes; ++i) {
    const std::size_t pair = (kLanes * part + i) / 6;
    const From from = SequenceOf(has_red, odd_sites).values[(kLanes * part + i) % 6];
    const auto site = static_cast<std::size_t>(from);
    const std::uint64_t bit = std::uint64_t{1} << i;
    const bool takes_own = site == 2 || site == 4;
    order.outer_own[i] = static_cast<Lane>(takes_own ? kLanes + 2 * pair + (site == 4 ? 1 : 0)
                                                     : 2 * pair + site % 2);
    order.inner[i] = static_cast<Lane>(2 * pair + (site == 5 ? 1 : 0));
    order.takes_inner |= site == 3 || site == 5 ? bit : 0;
  }
  return order;
}
template <typename Lane, bool kHasRed, bool kOddSites, std::size_t kPart>
constexpr SiteOrder<Lane> kSiteOrder = MakeSiteOrder<Lane>(kHasRed, kOddSites, kPart);

// The vector one lane up or down; the lane that has no neighbour takes the reflection
// about the row's first or last sample.
struct alignas(64) Reflections {
  std::uint8_t start[64];
  std::uint8_t end[64];
};
constexpr Reflections MakeReflections(std::size_t lane_bytes) {
  Reflections orders{};
  for (std::size_t i = 0; i < 64; ++i) {
    orders.start[i] = static_cast<std::uint8_t>(i < lane_bytes ? i + lane_bytes : i - lane_bytes);
    const bool is_last = i + lane_bytes >= 64;
    orders.end[i] = static_cast<std::uint8_t>(is_last ? i - lane_bytes : i + lane_bytes);
  }
  return orders;
}
template <std::size_t kLaneBytes>
constexpr Reflections kReflections = MakeReflections(kLaneBytes);
template <std::size_t kLaneBytes>
inline Vector ReflectStart(Vector v) {
  return _mm512_permutexvar_epi8(_mm512_load_si512(kReflections<kLaneBytes>.start), v);
}
template <std::size_t kLaneBytes>
inline Vector ReflectEnd(Vector v) {
  return _mm512_permutexvar_epi8(_mm512_load_si512(kReflections<kLaneBytes>.end), v);
}

// The odd bytes of two vectors.
struct alignas(64) OddBytes {
  std::uint8_t index[64];
};
constexpr OddBytes MakeOddBytes() {
  OddBytes order{};
  for (std::size_t i = 0; i < 64; ++i) {
    order.index[i] = static_cast<std::uint8_t>(2 * i + 1);
  }
  return order;
}
constexpr OddBytes kOddBytes = MakeOddBytes();
inline Vector PackHighBytes(Vector low, Vector high) {
  return _mm512_permutex2var_epi8(low, _mm512_load_si512(kOddBytes.index), high);
}

// Signed lanes of 16 bits, each of which stands for a pair of 8-bit lanes.
struct Wide16 {
  static constexpr int kBits = 16;
  static Vector Set(int value) { return _mm512_set1_epi16(static_cast<short>(value)); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm512_set1_epi16(0x00FF)); }
  static Vector Add(Vector a, Vector b) { return _mm512_add_epi16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm512_sub_epi16(a, b); }
  static Vector Abs(Vector a) { return _mm512_abs_epi16(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm512_srai_epi16(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm512_srli_epi16(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return _mm512_min_epi16(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm512_max_epi16(a, b); }
  using Mask = __mmask32;
  static Mask NotGreater(Vector a, Vector b) { return _mm512_cmple_epi16_mask(a, b); }
  static Vector AddIf(Mask mask, Vector sum, Vector v) {
    return _mm512_mask_add_epi16(sum, mask, sum, v);
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm512_mask_blend_epi16(_mm512_cmpgt_epi16_mask(a, b), otherwise, then);
  }
  // A sum of three samples of 8 bits divided by 3.
  static Vector Third(Vector sum) { return _mm512_mulhi_epu16(sum, _mm512_set1_epi16(21846)); }
  // A difference of sums of up to 8 samples of 8 bits, divided by 1 to 8, toward zero:
  // the product with 32768 / count, rounded up, is exact for them.
  static Vector Quotient(Vector dividend, Vector count) {
    const __m128i table =
        _mm_setr_epi16(static_cast<short>(32768), 16384, 10923, 8192, 6554, 5462, 4682, 4096);
    const Vector bytes = _mm512_mullo_epi16(Sub(count, Set(1)), Set(0x0202));
    const Vector reciprocal =
        _mm512_shuffle_epi8(_mm512_broadcast_i32x4(table), Add(bytes, Set(0x0100)));
    const Vector magnitude = Abs(dividend);
    const Vector quotient = _mm512_mulhi_epu16(Add(magnitude, magnitude), reciprocal);
    const Vector sign = ShiftRight<15>(dividend);
    return Sub(Xor(quotient, sign), sign);
  }
};

// Signed lanes of 32 bits, each of which stands for a pair of 16-bit lanes.
struct Wide32 {
  static constexpr int kBits = 32;
  static Vector Set(int value) { return _mm512_set1_epi32(value); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm512_set1_epi32(0x0000FFFF)); }
  static Vector Add(Vector a, Vector b) { return _mm512_add_epi32(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm512_sub_epi32(a, b); }
  static Vector Abs(Vector a) { return _mm512_abs_epi32(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm512_srai_epi32(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm512_srli_epi32(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return _mm512_min_epi32(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm512_max_epi32(a, b); }
  using Mask = __mmask16;
  static Mask NotGreater(Vector a, Vector b) { return _mm512_cmple_epi32_mask(a, b); }
  static Vector AddIf(Mask mask, Vector sum, Vector v) {
    return _mm512_mask_add_epi32(sum, mask, sum, v);
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm512_mask_blend_epi32(_mm512_cmpgt_epi32_mask(a, b), otherwise, then);
  }
  // Sums of a few 16-bit samples and their quotients by 1 to 8 are far enough from the
  // next integer for single precision.
  static Vector Third(Vector sum) { return Quotient(sum, Set(3)); }
  static Vector Quotient(Vector dividend, Vector count) {
    return _mm512_cvttps_epi32(
        _mm512_div_ps(_mm512_cvtepi32_ps(dividend), _mm512_cvtepi32_ps(count)));
  }
};

// Lane order of output vector number `part` of grey pixels.
template <typename Lane>
struct alignas(64) GreyOrder {
  static constexpr std::size_t kLanes = kVectorBytes / sizeof(Lane);
  Lane index[kLanes];
};
template <typename Lane>
constexpr GreyOrder<Lane> MakeGreyOrder(std::size_t part) {
  GreyOrder<Lane> order{};
  for (std::size_t i = 0; i < GreyOrder<Lane>::kLanes; ++i) {
    order.index[i] = static_cast<Lane>((GreyOrder<Lane>::kLanes * part + i) / 3);
  }
  return order;
}
template <typename Lane, std::size_t kPart>
constexpr GreyOrder<Lane> kGreyOrder = MakeGreyOrder<Lane>(kPart);

#ifdef __i386__
// From memory: g++ makes a constant of two 32-bit stores and one 64-bit load, which
// waits for both.
inline __mmask64 MaskOf(const std::uint64_t& bits) {
  __mmask64 mask;
  __asm__("kmovq %1, %0" : "=k"(mask) : "m"(bits));
  return mask;
}
#else
inline __mmask64 MaskOf(std::uint64_t bits) { return bits; }
#endif

struct Lanes8 {
  // EvenOdd has a form that inverts.
  static constexpr bool kInverts = true;
  static constexpr std::size_t kLaneBytes = 1;
  static constexpr int kMax = 255;
  using Wide = Wide16;
  static Vector Eight() { return _mm512_set1_epi8(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm512_adds_epu8(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm512_subs_epu8(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm512_mask_blend_epi8(_mm512_cmpgt_epu8_mask(a, b), otherwise, then);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    Put<kWay>(out, GreyPart<0>(grey));
    Put<kWay>(out + 64, GreyPart<1>(grey));
    Put<kWay>(out + 128, GreyPart<2>(grey));
  }
  static Vector One() { return _mm512_set1_epi8(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm512_avg_epu8(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm512_sub_epi8(a, b); }
  static Vector ToOdd(Vector v) { return _mm512_slli_epi16(v, 8); }
  static Vector ToEven(Vector v) { return _mm512_srli_epi16(v, 8); }
  // Values from 0 on in wide lanes, limited to the largest sample.
  static Vector Limited(Vector even, Vector odd) {
    const __m128i order = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return _mm512_shuffle_epi8(_mm512_packus_epi16(even, odd), _mm512_broadcast_i32x4(order));
  }
  static Vector EvenOdd(Vector even, Vector odd) {
    return _mm512_ternarylogic_epi64(_mm512_set1_epi16(0x00FF), even, odd, 0xCA);
  }
  static Vector InvertedEvenOdd(Vector even, Vector odd) {
    return _mm512_ternarylogic_epi64(_mm512_set1_epi16(0x00FF), even, odd, 0x35);
  }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    Put<kWay>(out, Part<kHasRed, kOddSites, 0>(outer, own, inner));
    Put<kWay>(out + 64, Part<kHasRed, kOddSites, 1>(outer, own, inner));
    Put<kWay>(out + 128, Part<kHasRed, kOddSites, 2>(outer, own, inner));
  }

 private:
  template <bool kHasRed, bool kOddSites, std::size_t kPart>
  static Vector Part(Vector outer, Vector own, Vector inner) {
    constexpr const auto& kOrder = kSiteOrder<std::uint8_t, kHasRed, kOddSites, kPart>;
    const Vector part = _mm512_permutex2var_epi8(outer, _mm512_load_si512(kOrder.outer_own), own);
    return _mm512_mask_permutexvar_epi8(part, MaskOf(kOrder.takes_inner),
                                        _mm512_load_si512(kOrder.inner), inner);
  }
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    return _mm512_permutexvar_epi8(_mm512_load_si512(kGreyOrder<std::uint8_t, kPart>.index), grey);
  }
};

struct Lanes16 {
  static constexpr bool kInverts = true;
  static constexpr std::size_t kLaneBytes = 2;
  static constexpr int kMax = 65535;
  using Wide = Wide32;
  static Vector Eight() { return _mm512_set1_epi16(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm512_adds_epu16(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm512_subs_epu16(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm512_mask_blend_epi16(_mm512_cmpgt_epu16_mask(a, b), otherwise, then);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    Put<kWay>(out, GreyPart<0>(grey));
    Put<kWay>(out + 64, GreyPart<1>(grey));
    Put<kWay>(out + 128, GreyPart<2>(grey));
  }
  static Vector One() { return _mm512_set1_epi16(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm512_avg_epu16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm512_sub_epi16(a, b); }
  static Vector ToOdd(Vector v) { return _mm512_slli_epi32(v, 16); }
  static Vector ToEven(Vector v) { return _mm512_srli_epi32(v, 16); }
  static Vector Limited(Vector even, Vector odd) {
    const __m128i order = _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    return _mm512_shuffle_epi8(_mm512_packus_epi32(even, odd), _mm512_broadcast_i32x4(order));
  }
  static Vector EvenOdd(Vector even, Vector odd) {
    return _mm512_ternarylogic_epi64(_mm512_set1_epi32(0x0000FFFF), even, odd, 0xCA);
  }
  static Vector InvertedEvenOdd(Vector even, Vector odd) {
    return _mm512_ternarylogic_epi64(_mm512_set1_epi32(0x0000FFFF), even, odd, 0x35);
  }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    Put<kWay>(out, Part<kHasRed, kOddSites, 0>(outer, own, inner));
    Put<kWay>(out + 64, Part<kHasRed, kOddSites, 1>(outer, own, inner));
    Put<kWay>(out + 128, Part<kHasRed, kOddSites, 2>(outer, own, inner));
  }

 private:
  template <bool kHasRed, bool kOddSites, std::size_t kPart>
  static Vector Part(Vector outer, Vector own, Vector inner) {
    constexpr const auto& kOrder = kSiteOrder<std::uint16_t, kHasRed, kOddSites, kPart>;
    const Vector part = _mm512_permutex2var_epi16(outer, _mm512_load_si512(kOrder.outer_own), own);
    return _mm512_mask_permutexvar_epi16(part, static_cast<__mmask32>(kOrder.takes_inner),
                                         _mm512_load_si512(kOrder.inner), inner);
  }
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    return _mm512_permutexvar_epi16(_mm512_load_si512(kGreyOrder<std::uint16_t, kPart>.index),
                                    grey);
  }
};

inline Vector MultiplyAdd(Vector a, Vector b) { return _mm512_madd_epi16(a, b); }
// Words to the 32-bit lanes that PackWords puts in order again.
inline Vector UnpackLowWords(Vector a, Vector b) { return _mm512_unpacklo_epi16(a, b); }
inline Vector UnpackHighWords(Vector a, Vector b) { return _mm512_unpackhi_epi16(a, b); }
inline Vector PackWords(Vector low, Vector high) { return _mm512_packs_epi32(low, high); }
inline Vector PackBytes(Vector first, Vector second) { return _mm512_packus_epi16(first, second); }

// Byte orders for the pixels of 3 bytes: of the 16-bit lanes of channel `index` in the
// bytes 0 to 63 and 32 to 95 of 32 pixels, and of output vector number `index` of 64
// pixels in the bytes of channels 0 and 1 and in those of channel 2.
struct alignas(64) ChannelOrder {
  std::uint8_t widen[64];
  std::uint8_t first_two[64];
  std::uint8_t third[64];
  std::uint64_t takes_third;
};
constexpr ChannelOrder MakeChannelOrder(std::size_t index) {
  ChannelOrder order{};
  for (std::size_t i = 0; i < 64; ++i) {
    const std::size_t from = 3 * (i / 2) + index;
    order.widen[i] = static_cast<std::uint8_t>(from < 64 ? from : 64 + from - 32);
    const std::size_t at = 64 * index + i;
    const std::size_t pixel = at / 3;
    // PackBytes joins the halves, of 32 pixels each, by eights.
    const std::size_t place = pixel % 32 / 8 * 16 + pixel / 32 * 8 + pixel % 8;
    order.first_two[i] = static_cast<std::uint8_t>(at % 3 == 1 ? 64 + place : place);
    order.third[i] = static_cast<std::uint8_t>(place);
    order.takes_third |= at % 3 == 2 ? std::uint64_t{1} << i : 0;
  }
  return order;
}
template <std::size_t kIndex>
constexpr ChannelOrder kChannelOrder = MakeChannelOrder(kIndex);
constexpr __mmask64 kLowBytes = 0x5555555555555555;

// The channels of pixels: in 16-bit lanes those of one half of a vector's pixels, in
// bytes all of them, as PackBytes joins the halves.
struct Channels {
  Vector c0;
  Vector c1;
  Vector c2;
};
template <int kHalf>
inline Channels LoadChannels(const std::uint8_t* p) {
  const Vector first = Load(p + 96 * kHalf);
  const Vector last = Load(p + 96 * kHalf + 32);
  const auto channel = [&](const ChannelOrder& order) {
    return _mm512_maskz_permutex2var_epi8(kLowBytes, first, _mm512_load_si512(order.widen), last);
  };
  return {channel(kChannelOrder<0>), channel(kChannelOrder<1>), channel(kChannelOrder<2>)};
}
inline void StoreChannels(std::uint8_t* p, const Channels& pixels) {
  const auto part = [&](const ChannelOrder& order) {
    const Vector two =
        _mm512_permutex2var_epi8(pixels.c0, _mm512_load_si512(order.first_two), pixels.c1);
    return _mm512_mask_permutexvar_epi8(two, MaskOf(order.takes_third),
                                        _mm512_load_si512(order.third), pixels.c2);
  };
  Store(p, part(kChannelOrder<0>));
  Store(p + 64, part(kChannelOrder<1>));
  Store(p + 128, part(kChannelOrder<2>));
}

}  // namespace
}  // namespace ormidex::convert
