// The vector of the SSSE3 tier. Included by its file only; everything is local to it.
#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

namespace ormidex::convert {
namespace {

using Vector = __m128i;
constexpr std::size_t kVectorBytes = 16;

inline Vector Load(const std::uint8_t* p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline void Store(std::uint8_t* p, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
// Past the cache, to an aligned place.
inline void StorePast(std::uint8_t* p, Vector v) {
  _mm_stream_si128(reinterpret_cast<__m128i*>(p), v);
}
template <Way kWay>
inline void Put(std::uint8_t* p, Vector v) {
  if constexpr (kWay == Way::kPastCache) {
    StorePast(p, v);
  } else {
    Store(p, v);
  }
}
inline Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
inline Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
inline Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }
inline Vector AndNot(Vector a, Vector b) { return _mm_andnot_si128(a, b); }
inline void LeaveVectorMode() {}

// mask ? b : a, lane by lane.
inline Vector Merge(Vector mask, Vector a, Vector b) { return Or(AndNot(mask, a), And(mask, b)); }

// The vector one lane up or down; the lane that has no neighbour takes the reflection
// about the row's first or last sample.
template <std::size_t kLaneBytes>
inline Vector ReflectStart(Vector v) {
  const Vector second = _mm_slli_si128(v, 16 - 2 * kLaneBytes);
  return _mm_alignr_epi8(v, second, 16 - kLaneBytes);
}
template <std::size_t kLaneBytes>
inline Vector ReflectEnd(Vector v) {
  const Vector last_but_one = _mm_srli_si128(v, 16 - 2 * kLaneBytes);
  return _mm_alignr_epi8(last_but_one, v, kLaneBytes);
}

// The odd bytes of two vectors.
inline Vector PackHighBytes(Vector low, Vector high) {
  return _mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8));
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
  const auto part = [f](Vector u, const HalfOrder& order) {
    const Vector from_f = _mm_shuffle_epi8(f, Load(reinterpret_cast<const std::uint8_t*>(order.f)));
    const Vector from_u = _mm_shuffle_epi8(u, Load(reinterpret_cast<const std::uint8_t*>(order.u)));
    return Or(from_f, from_u);
  };
  Put<kWay>(out, part(low, kHalfOrder<kLaneBytes, kHasRed, kOddSites, 0>));
  Put<kWay>(out + 16,
            part(_mm_alignr_epi8(high, low, 8), kHalfOrder<kLaneBytes, kHasRed, kOddSites, 1>));
  Put<kWay>(out + 32, part(high, kHalfOrder<kLaneBytes, kHasRed, kOddSites, 2>));
}

// Signed lanes of 16 bits, each of which stands for a pair of 8-bit lanes.
struct Wide16 {
  static constexpr int kBits = 16;
  static Vector Set(int value) { return _mm_set1_epi16(static_cast<short>(value)); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm_set1_epi16(0x00FF)); }
  static Vector Add(Vector a, Vector b) { return _mm_add_epi16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
  static Vector Abs(Vector a) { return _mm_abs_epi16(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm_srai_epi16(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm_srli_epi16(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return _mm_min_epi16(a, b); }
  static Vector Max(Vector a, Vector b) { return _mm_max_epi16(a, b); }
  // All bits of a lane where it does not hold.
  using Mask = Vector;
  static Mask NotGreater(Vector a, Vector b) { return _mm_cmpgt_epi16(a, b); }
  static Vector AddIf(Mask unless, Vector sum, Vector v) { return Add(sum, AndNot(unless, v)); }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return Merge(_mm_cmpgt_epi16(a, b), otherwise, then);
  }
  // A sum of three samples of 8 bits divided by 3.
  static Vector Third(Vector sum) { return _mm_mulhi_epu16(sum, _mm_set1_epi16(21846)); }
  // A difference of sums of up to 8 samples of 8 bits, divided by 1 to 8, toward zero:
  // the product with 32768 / count, rounded up, is exact for them.
  static Vector Quotient(Vector dividend, Vector count) {
    const __m128i table =
        _mm_setr_epi16(static_cast<short>(32768), 16384, 10923, 8192, 6554, 5462, 4682, 4096);
    const Vector bytes = _mm_mullo_epi16(Sub(count, Set(1)), Set(0x0202));
    const Vector reciprocal = _mm_shuffle_epi8(table, Add(bytes, Set(0x0100)));
    const Vector magnitude = Abs(dividend);
    const Vector quotient = _mm_mulhi_epu16(Add(magnitude, magnitude), reciprocal);
    const Vector sign = ShiftRight<15>(dividend);
    return Sub(Xor(quotient, sign), sign);
  }
};

// Signed lanes of 32 bits, each of which stands for a pair of 16-bit lanes.
struct Wide32 {
  static constexpr int kBits = 32;
  static Vector Set(int value) { return _mm_set1_epi32(value); }
  // The even lanes of the pairs.
  static Vector Even(Vector v) { return And(v, _mm_set1_epi32(0x0000FFFF)); }
  static Vector Add(Vector a, Vector b) { return _mm_add_epi32(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm_sub_epi32(a, b); }
  static Vector Abs(Vector a) { return _mm_abs_epi32(a); }
  template <int kCount>
  static Vector ShiftRight(Vector v) {
    return _mm_srai_epi32(v, kCount);
  }
  template <int kCount>
  static Vector ShiftRightUnsigned(Vector v) {
    return _mm_srli_epi32(v, kCount);
  }
  static Vector Min(Vector a, Vector b) { return IfGreater(a, b, b, a); }
  static Vector Max(Vector a, Vector b) { return IfGreater(a, b, a, b); }
  // All bits of a lane where it does not hold.
  using Mask = Vector;
  static Mask NotGreater(Vector a, Vector b) { return _mm_cmpgt_epi32(a, b); }
  static Vector AddIf(Mask unless, Vector sum, Vector v) { return Add(sum, AndNot(unless, v)); }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    return Merge(_mm_cmpgt_epi32(a, b), otherwise, then);
  }
  // Sums of a few 16-bit samples and their quotients by 1 to 8 are far enough from the
  // next integer for single precision.
  static Vector Third(Vector sum) { return Quotient(sum, Set(3)); }
  static Vector Quotient(Vector dividend, Vector count) {
    return _mm_cvttps_epi32(_mm_div_ps(_mm_cvtepi32_ps(dividend), _mm_cvtepi32_ps(count)));
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
  static Vector Eight() { return _mm_set1_epi8(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm_subs_epu8(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    const Vector is_not = _mm_cmpeq_epi8(SubSaturated(a, b), _mm_setzero_si128());
    return Merge(is_not, then, otherwise);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    Put<kWay>(out, GreyPart<0>(grey));
    Put<kWay>(out + 16, GreyPart<1>(grey));
    Put<kWay>(out + 32, GreyPart<2>(grey));
  }
  static Vector One() { return _mm_set1_epi8(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm_avg_epu8(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
  static Vector ToOdd(Vector v) { return _mm_slli_epi16(v, 8); }
  static Vector ToEven(Vector v) { return _mm_srli_epi16(v, 8); }
  // Values from 0 on in wide lanes, limited to the largest sample.
  static Vector Limited(Vector even, Vector odd) {
    const __m128i order = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return _mm_shuffle_epi8(_mm_packus_epi16(even, odd), order);
  }
  static Vector EvenOdd(Vector even, Vector odd) {
    return Merge(_mm_set1_epi16(static_cast<short>(0xFF00)), even, odd);
  }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    StoreOuterAndRest<kLaneBytes, kHasRed, kOddSites, kWay>(
        out, outer, _mm_unpacklo_epi8(own, inner), _mm_unpackhi_epi8(own, inner));
  }

 private:
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    return _mm_shuffle_epi8(
        grey, Load(reinterpret_cast<const std::uint8_t*>(kGreyOrder<kLaneBytes, kPart>.index)));
  }
};

struct Lanes16 {
  static constexpr bool kInverts = false;
  static constexpr std::size_t kLaneBytes = 2;
  static constexpr int kMax = 65535;
  using Wide = Wide32;
  static Vector Eight() { return _mm_set1_epi16(8); }
  static Vector AddSaturated(Vector a, Vector b) { return _mm_adds_epu16(a, b); }
  static Vector SubSaturated(Vector a, Vector b) { return _mm_subs_epu16(a, b); }
  static Vector Difference(Vector a, Vector b) {
    return Or(SubSaturated(a, b), SubSaturated(b, a));
  }
  static Vector IfGreater(Vector a, Vector b, Vector then, Vector otherwise) {
    const Vector is_not = _mm_cmpeq_epi16(SubSaturated(a, b), _mm_setzero_si128());
    return Merge(is_not, then, otherwise);
  }
  template <Way kWay = Way::kCached>
  static void StoreGrey(std::uint8_t* out, Vector grey) {
    Put<kWay>(out, GreyPart<0>(grey));
    Put<kWay>(out + 16, GreyPart<1>(grey));
    Put<kWay>(out + 32, GreyPart<2>(grey));
  }
  static Vector One() { return _mm_set1_epi16(1); }
  static Vector MeanUp(Vector a, Vector b) { return _mm_avg_epu16(a, b); }
  static Vector Sub(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
  static Vector ToOdd(Vector v) { return _mm_slli_epi32(v, 16); }
  static Vector ToEven(Vector v) { return _mm_srli_epi32(v, 16); }
  static Vector Limited(Vector even, Vector odd) {
    return Or(Wide::Min(even, Wide::Set(kMax)), ToOdd(Wide::Min(odd, Wide::Set(kMax))));
  }
  static Vector EvenOdd(Vector even, Vector odd) {
    return Merge(_mm_set1_epi32(static_cast<int>(0xFFFF0000u)), even, odd);
  }
  template <bool kHasRed, bool kOddSites = false, Way kWay = Way::kCached>
  static void StoreSites(std::uint8_t* out, Vector outer, Vector own, Vector inner) {
    StoreOuterAndRest<kLaneBytes, kHasRed, kOddSites, kWay>(
        out, outer, _mm_unpacklo_epi16(own, inner), _mm_unpackhi_epi16(own, inner));
  }

 private:
  template <std::size_t kPart>
  static Vector GreyPart(Vector grey) {
    return _mm_shuffle_epi8(
        grey, Load(reinterpret_cast<const std::uint8_t*>(kGreyOrder<kLaneBytes, kPart>.index)));
  }
};

inline Vector MultiplyAdd(Vector a, Vector b) { return _mm_madd_epi16(a, b); }
// Words to the 32-bit lanes that PackWords puts in order again.
inline Vector UnpackLowWords(Vector a, Vector b) { return _mm_unpacklo_epi16(a, b); }
inline Vector UnpackHighWords(Vector a, Vector b) { return _mm_unpackhi_epi16(a, b); }
inline Vector PackWords(Vector low, Vector high) { return _mm_packs_epi32(low, high); }
inline Vector PackBytes(Vector first, Vector second) { return _mm_packus_epi16(first, second); }

inline Vector InOrder(Vector v, const std::int8_t* order) {
  return _mm_shuffle_epi8(v, _mm_loadu_si128(reinterpret_cast<const __m128i*>(order)));
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
  const Vector first = Load(p + 24 * kHalf);
  const Vector last = Load(p + 24 * kHalf + 8);
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
  Store(p, ChannelsPart<0>(pixels));
  Store(p + 16, ChannelsPart<1>(pixels));
  Store(p + 32, ChannelsPart<2>(pixels));
}

}  // namespace
}  // namespace ormidex::convert
