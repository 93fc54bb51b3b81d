// The vector of the AVX2 tier. Included by its file only; everything is local to it.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace ormidex::convert {
namespace {

using Vector = __m256i;
constexpr std::size_t kVectorBytes = 32;

inline Vector Load(const std::uint8_t* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
inline void Store(std::uint8_t* p, Vector v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}
// Past the cache, to an aligned place.
inline void StorePast(std::uint8_t* p, Vector v) {
  _mm256_stream_si256(reinterpret_cast<__m256i*>(p), v);
}
template <Way kWay>
inline void Put(std::uint8_t* p, Vector v) {
  if constexpr (kWay == Way::kPastCache) {
    StorePast(p, v);
  } else {
    Store(p, v);
  }
}
inline Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
inline Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
inline Vector Xor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
inline Vector AndNot(Vector a, Vector b) { return _mm256_andnot_si256(a, b); }
inline void LeaveVectorMode() { _mm256_zeroupper(); }

// The vector one lane up or down; the lane that has no neighbour takes the reflection
// about the row's first or last sample.
template <std::size_t kLaneBytes>
inline Vector ReflectStart(Vector v) {
  const __m128i low = _mm256_castsi256_si128(v);
  const __m128i second = _mm_slli_si128(low, 16 - 2 * kLaneBytes);
  return _mm256_alignr_epi8(v, _mm256_set_m128i(low, second), 16 - kLaneBytes);
}
template <std::size_t kLaneBytes>
inline Vector ReflectEnd(Vector v) {
  const __m128i high = _mm256_extracti128_si256(v, 1);
  const __m128i last_but_one = _mm_srli_si128(high, 16 - 2 * kLaneBytes);
  return _mm256_alignr_epi8(_mm256_set_m128i(last_but_one, high), v, kLaneBytes);
}

// Per 128-bit half: three stores in the order of memory.
template <Way kWay = Way::kCached>
inline void StoreHalves(std::uint8_t* out, Vector v0, Vector v1, Vector v2) {
  Put<kWay>(out, _mm256_permute2x128_si256(v0, v1, 0x20));
  Put<kWay>(out + 32, _mm256_blend_epi32(v2, v0, 0xF0));
  Put<kWay>(out + 64, _mm256_permute2x128_si256(v1, v2, 0x31));
}

// The odd bytes of two vectors.
inline Vector PackHighBytes(Vector low, Vector high) {
  const Vector packed = _mm256_packus_epi16(_mm256_srli_epi16(low, 8), _mm256_srli_epi16(high, 8));
  return _mm256_permute4x64_epi64(packed, _MM_SHUFFLE(3, 1, 2, 0));
}

// Byte orders for the 16-byte output number `part` of 8 x 2 (or 4 x 2) pixels: of F,
// and of the 16 bytes of U from byte 8 * part on. -128 leaves a nought.
struct HalfOrder {
  std::int8_t f[16];
  std::int8_t u[16];
};
constexpr HalfOrder MakeHalfOrder(std::size_t lane_bytes, bool has_red, bool odd_sites,
                                  std::size_t part) {
  HalfOrder order{};
  for (std::size_t i = 0; i < 16; ++i) {
    const std::size_t lane = (16 * part + i) / lane_bytes;
    const std::size_t byte = i % lane_bytes;
    const std::size_t pair = lane / 6;
    const From from = SequenceOf(has_red, odd_sites).values[lane % 6];
    const auto site = static_cast<std::size_t>(from);
    const std::size_t f = (2 * pair + site) * lane_bytes + byte;
    const std::size_t u = (4 * pair + site - 2) * lane_bytes + byte - 8 * part;
    order.f[i] = static_cast<std::int8_t>(site < 2 ? static_cast<int>(f) : -128);
    order.u[i] = static_cast<std::int8_t>(site < 2 ? -128 : static_cast<int>(u));
  }
  return order;
}
template <std::size_t kLaneBytes, bool kHasRed, bool kOddSites, std::size_t kPart>
constexpr HalfOrder kHalfOrder = MakeHalfOrder(kLaneBytes, kHasRed, kOddSites, kPart);

// Interleaves F with U, whose bytes stand in `low` and `high`.
template <std::size_t kLaneBytes, bool kHasRed, bool kOddSites, Way kWay>
inline void StoreOuterAndRest(std::uint8_t* out, Vector f, Vector low, Vector high) {
  const auto in_halves = [](const std::int8_t* order) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(order)));
  };
  const auto part = [f, in_halves](Vector u, const HalfOrder& order) {
    return Or(_mm256_shuffle_epi8(f, in_halves(order.f)),
              _mm256_shuffle_epi8(u, in_halves(order.u)));
  };
  StoreHalves<kWay>(
      out, part(low, kHalfOrder<kLaneBytes, kHasRed, kOddSites, 0>),
      part(_mm256_alignr_epi8(high, low, 8), kHalfOrder<kLaneBytes, kHasRed, kOddSites, 1>),
      part(high, kHalfOrder<kLaneBytes, kHasRed, kOddSites, 2>));
}

// Signed lanes of 16 bits, each of which stands for a pair of 8-bit lanes.
struct Wide16 {
  static constexpr int kBits = 16;
  static Vector Set(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm256_set1_epi16(0x00FF)); }
  static Vector Add(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
  static Vector Abs(Vector a) { return _mm256_abs_epi16(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm256_srai_epi16(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm256_srli_epi16(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return _mm256_min_epi16(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm256_max_epi16(a, b); }
  // All bits of a lane where it does not hold.
  using Mask = Vector;
  static Mask NotGreater(Vector a, Vector b) { return _mm256_cmpgt_epi16(a, b); }
  static Vector AddIf(Mask unless, Vector sum, Vector v) { return Add(sum, AndNot(unless, v)); }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm256_blendv_epi8(otherwise, then, _mm256_cmpgt_epi16(a, b));
  }
  // A sum of three samples of 8 bits divided by 3.
  static Vector Third(Vector sum) { return _mm256_mulhi_epu16(sum, _mm256_set1_epi16(21846)); }
  // A difference of sums of up to 8 samples of 8 bits, divided by 1 to 8, toward zero:
  // the product with 32768 / count, rounded up, is exact for them.
  static Vector Quotient(Vector dividend, Vector count) {
    const __m128i table =
        _mm_setr_epi16(static_cast<short>(32768), 16384, 10923, 8192, 6554, 5462, 4682, 4096);
    const Vector bytes = _mm256_mullo_epi16(Sub(count, Set(1)), Set(0x0202));
    const Vector reciprocal =
        _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(table), Add(bytes, Set(0x0100)));
    const Vector magnitude = Abs(dividend);
    const Vector quotient = _mm256_mulhi_epu16(Add(magnitude, magnitude), reciprocal);
    const Vector sign = ShiftRight<15>(dividend);
    return Sub(Xor(quotient, sign), sign);
  }
};

// Signed lanes of 32 bits, each of which stands for a pair of 16-bit lanes.
struct Wide32 {
  static constexpr int kBits = 32;
  static Vector Set(int value) { return _mm256_set1_epi32(value); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm256_set1_epi32(0x0000FFFF)); }
  static Vector Add(Vector a, Vector b) { return _mm256_add_epi32(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm256_sub_epi32(a, b); }
  static Vector Abs(Vector a) { return _mm256_abs_epi32(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm256_srai_epi32(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm256_srli_epi32(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return _mm256_min_epi32(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm256_max_epi32(a, b); }
  // All bits of a lane where it does not hold.
  using Mask = Vector;
  static Mask NotGreater(Vector a, Vector b) { return _mm256_cmpgt_epi32(a, b); }
  static Vector AddIf(Mask unless, Vector sum, Vector v) { return Add(sum, AndNot(unless, v)); }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return _mm256_blendv_epi8(otherwise, then, _mm256_cmpgt_epi32(a, b));
  }
  // Sums of a few 16-bit samples and their quotients by 1 to 8 are far enough from the
  // next integer for single precision.
  static Vector Third(Vector sum) { return Quotient(sum, Set(3)); }
  static Vector Quotient(Vector dividend, Vector count) {
    return _mm256_cvttps_epi32(
        _mm256_div_ps(_mm256_cvtepi32_ps(dividend), _mm256_cvtepi32_ps(count)));
  }
};

// Byte order of the 16-byte output number `part` of grey pixels.
struct GreyOrder {
  std::int8_t index[16];
};
constexpr GreyOrder MakeGreyOrder(std::size_t lane_bytes, std::size_t part) {
  GreyOrder order{};
  for (std::size_t i = 0; i < 16; ++i) {
    const std::size_t pixel = (16 * part + i) / (3 * lane_bytes);
    order.index[i] = static_cast<std::int8_t>(pixel * lane_bytes + i % lane_bytes);
  }
  return order;
}
template <std::size_t kLaneBytes, std::size_t kPart>
constexpr GreyOrder kGreyOrder = MakeGreyOrder(kLaneBytes, kPart);

struct Lanes8 {
  // EvenOdd has a form that inverts.
  static constexpr bool kInverts = false;
  static constexpr std::size_t kLaneBytes = 1;
  static constexpr int kMax = 255;
  using Wide = Wide16;
  static Vector Eight() { return _mm256_set1_epi8(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm256_subs_epu8(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    const Vector is_not = _mm256_cmpeq_epi8(SubSaturated(a, b), _mm256_setzero_si256());
    return _mm256_blendv_epi8(then, otherwise, is_not);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    StoreHalves<kWay>(out, GreyPart<0>(grey), GreyPart<1>(grey), GreyPart<2>(grey));
  }
  static Vector One() { return _mm256_set1_epi8(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm256_avg_epu8(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm256_sub_epi8(a, b); }
  static Vector ToOdd(Vector v) { return _mm256_slli_epi16(v, 8); }
  static Vector ToEven(Vector v) { return _mm256_srli_epi16(v, 8); }
  // Values from 0 on in wide lanes, limited to the largest sample.
  static Vector Limited(Vector even, Vector odd) {
    const __m128i order = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return _mm256_shuffle_epi8(_mm256_packus_epi16(even, odd), _mm256_broadcastsi128_si256(order));
  }
  static Vector EvenOdd(Vector even, Vector odd) {
    return _mm256_blendv_epi8(even, odd, _mm256_set1_epi16(static_cast<short>(0xFF00)));
  }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    StoreOuterAndRest<kLaneBytes, kHasRed, kOddSites, kWay>(
        out, outer, _mm256_unpacklo_epi8(own, inner), _mm256_unpackhi_epi8(own, inner));
  }

 private:
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    const auto* order = reinterpret_cast<const __m128i*>(kGreyOrder<kLaneBytes, kPart>.index);
    return _mm256_shuffle_epi8(grey, _mm256_broadcastsi128_si256(_mm_loadu_si128(order)));
  }
};

struct Lanes16 {
  static constexpr bool kInverts = false;
  static constexpr std::size_t kLaneBytes = 2;
  static constexpr int kMax = 65535;
  using Wide = Wide32;
  static Vector Eight() { return _mm256_set1_epi16(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm256_adds_epu16(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm256_subs_epu16(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    const Vector is_not = _mm256_cmpeq_epi16(SubSaturated(a, b), _mm256_setzero_si256());
    return _mm256_blendv_epi8(then, otherwise, is_not);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    StoreHalves<kWay>(out, GreyPart<0>(grey), GreyPart<1>(grey), GreyPart<2>(grey));
  }
  static Vector One() { return _mm256_set1_epi16(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm256_avg_epu16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
  static Vector ToOdd(Vector v) { return _mm256_slli_epi32(v, 16); }
  static Vector ToEven(Vector v) { return _mm256_srli_epi32(v, 16); }
  static Vector Limited(Vector even, Vector odd) {
    const __m128i order = _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    return _mm256_shuffle_epi8(_mm256_packus_epi32(even, odd), _mm256_broadcastsi128_si256(order));
  }
  static Vector EvenOdd(Vector even, Vector odd) { return _mm256_blend_epi16(even, odd, 0xAA); }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    StoreOuterAndRest<kLaneBytes, kHasRed, kOddSites, kWay>(
        out, outer, _mm256_unpacklo_epi16(own, inner), _mm256_unpackhi_epi16(own, inner));
  }

 private:
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    const auto* order = reinterpret_cast<const __m128i*>(kGreyOrder<kLaneBytes, kPart>.index);
    return _mm256_shuffle_epi8(grey, _mm256_broadcastsi128_si256(_mm_loadu_si128(order)));
  }
};

inline Vector MultiplyAdd(Vector a, Vector b) { return _mm256_madd_epi16(a, b); }
// Words to the 32-bit lanes that PackWords puts in order again.
inline Vector UnpackLowWords(Vector a, Vector b) { return _mm256_unpacklo_epi16(a, b); }
inline Vector UnpackHighWords(Vector a, Vector b) { return _mm256_unpackhi_epi16(a, b); }
inline Vector PackWords(Vector low, Vector high) { return _mm256_packs_epi32(low, high); }
inline Vector PackBytes(Vector first, Vector second) { return _mm256_packus_epi16(first, second); }

inline Vector InOrder(Vector v, const std::int8_t* order) {
  return _mm256_shuffle_epi8(
      v, _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(order))));
}

// The channels of pixels: in 16-bit lanes those of one half of a vector's pixels, in
// bytes all of them, in the order in which PackBytes joins the halves.
struct Channels {
  Vector c0;
  Vector c1;
  Vector c2;
};
template <int kHalf>
inline Channels LoadChannels(const std::uint8_t* p) {
  const auto load = [](const std::uint8_t* at) {
    return _mm256_set_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at + 48)),
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
  };
  const Vector first = load(p + 24 * kHalf);
  const Vector last = load(p + 24 * kHalf + 8);
  const auto channel = [&](const WidenOrder& order) {
    return Or(InOrder(first, order.first), InOrder(last, order.last));
  };
  return {channel(kWidenOrder<0>), channel(kWidenOrder<1>), channel(kWidenOrder<2>)};
}
template <int kPart>
inline Vector ChannelsPart(const Channels& pixels) {
  return Or(InOrder(pixels.c0, kChannelOrder<0, kPart>.index),
            Or(InOrder(pixels.c1, kChannelOrder<1, kPart>.index),
               InOrder(pixels.c2, kChannelOrder<2, kPart>.index)));
}
inline void StoreChannels(std::uint8_t* p, const Channels& pixels) {
  StoreHalves(p, ChannelsPart<0>(pixels), ChannelsPart<1>(pixels), ChannelsPart<2>(pixels));
}

}  // namespace
}  // namespace ormidex::convert
