// The vector kernels, for whatever vector type a tier's file brings along. That
// type stands in an unnamed namespace there, so each file gets code of its own,
// compiled with its own flags.
//
// Samples are added in lanes of 16 bits, so that one addition does a whole vector; the
// lanes are widened to 32 bits before they can overflow.
#ifndef ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_
#define ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_

#include "automation/kernels/site_sums.h"

namespace ormidex::automation {

// Rows that are added in one turn, each in lanes of its own: with rows as short as one
// vector the turn's own work would cost as much as theirs. 32-bit code has eight vector
// registers, enough for two rows.
#if defined(__i386__)
inline constexpr int kRowsPerTurn = 2;
#else
inline constexpr int kRowsPerTurn = 4;
#endif

// 8-bit pairs: the first sample of a pair is the lower byte of a word. The sum of
// the whole words, modulo 2^16, less the sum of the upper bytes in its upper half
// leaves the sum of the lower bytes: one operation less than to mask them.
template <typename V>
struct Samples8 {
  static constexpr std::uint32_t kPairBytes = 2;
  static constexpr std::uint32_t kVectorsThatFit = 256;  // 257 bytes fit in a word

  V words = V::Zero();
  V upper = V::Zero();

  [[gnu::always_inline]] void Add(V samples) {
    words = V::AddWords(words, samples);
    upper = V::AddWords(upper, V::UpperBytes(samples));
  }
  [[gnu::always_inline]] void Keep() {
    words.Keep();
    upper.Keep();
  }
  [[gnu::always_inline]] void Widen(V& first, V& second) const {
    const V lower = V::SubtractWords(words, V::BytesUp(upper));
    first = V::AddDoubleWords(first, V::AddDoubleWords(V::EvenWords(lower), V::OddWords(lower)));
    second = V::AddDoubleWords(second, V::AddDoubleWords(V::EvenWords(upper), V::OddWords(upper)));
  }
};

// 16-bit pairs: first and second samples are in lanes of their own all along.
template <typename V>
struct Samples16 {
  static constexpr std::uint32_t kPairBytes = 4;
  static constexpr std::uint32_t kVectorsThatFit = 256;

  V upper = V::Zero();

  [[gnu::always_inline]] void Add(V samples) { upper = V::AddWords(upper, V::UpperBytes(samples)); }
  [[gnu::always_inline]] void Keep() { upper.Keep(); }
  // The upper byte counts as such.
  [[gnu::always_inline]] void Widen(V& first, V& second) const {
    first = V::AddDoubleWords(first, V::DoubleBytesUp(V::EvenWords(upper)));
    second = V::AddDoubleWords(second, V::DoubleBytesUp(V::OddWords(upper)));
  }
};

// How every row of a rectangle divides into vectors. The rest of a row is taken as a
// vector of which some bytes are 0.
template <typename V>
struct RowShape {
  std::size_t stride;
  std::uint32_t whole;
  std::uint32_t rest_bytes;
  typename V::Rest rest;

  RowShape(const SampleRows& samples, std::uint32_t row_bytes)
      : stride(samples.stride_bytes),
        whole(row_bytes / V::kBytes),
        rest_bytes(row_bytes % V::kBytes),
        rest(rest_bytes) {}
  std::uint32_t Vectors() const { return whole + (rest_bytes != 0 ? 1 : 0); }
};

// (No arrays: the compiler would keep them in memory.)
template <typename V, typename Samples>
class RowSums {
 public:
  [[gnu::always_inline]] explicit RowSums(const RowShape<V>& shape) : shape_(shape) {}

  // Adds rows, the first of which has an even number in the rectangle. No more vectors
  // than fit may be added to a row's lanes before they are widened.
  template <int kRows>
  [[gnu::always_inline]] void Add(const std::uint8_t* rows) {
    for (std::uint32_t i = shape_.whole; i != 0; --i, rows += V::kBytes) {
      AddVectors<kRows>(rows, [](const std::uint8_t* data) { return V::Load(data); });
    }
    Keep<kRows>();
    if (shape_.rest_bytes == 0) return;
    AddVectors<kRows>(rows, [this](const std::uint8_t* data) { return shape_.rest.Load(data); });
  }
  template <int kRows>
  [[gnu::always_inline]] void Widen() {
    even_.Widen(even_first_, even_second_);
    if constexpr (kRows >= 2) odd_.Widen(odd_first_, odd_second_);
    if constexpr (kRows >= 4) {
      even2_.Widen(even_first_, even_second_);
      odd2_.Widen(odd_first_, odd_second_);
    }
    even_ = odd_ = even2_ = odd2_ = Samples();
  }
  [[gnu::always_inline]] SiteSums Total() const {
    return V::Totals(even_first_, even_second_, odd_first_, odd_second_);
  }

 private:
  // One of each row.
  template <int kRows, typename Load>
  [[gnu::always_inline]] void AddVectors(const std::uint8_t* data, const Load& load) {
    even_.Add(load(data));
    if constexpr (kRows >= 2) odd_.Add(load(data + shape_.stride));
    if constexpr (kRows >= 4) {
      even2_.Add(load(data + 2 * shape_.stride));
      odd2_.Add(load(data + 3 * shape_.stride));
    }
  }

  // To the compiler the sums behind the loop are others than those in it. Otherwise it
  // copies each of them on every turn.
  template <int kRows>
  [[gnu::always_inline]] void Keep() {
    even_.Keep();
    if constexpr (kRows >= 2) odd_.Keep();
    if constexpr (kRows >= 4) {
      even2_.Keep();
      odd2_.Keep();
    }
  }

  RowShape<V> shape_;
  Samples even_, odd_, even2_, odd2_;
  V even_first_ = V::Zero(), even_second_ = V::Zero();
  V odd_first_ = V::Zero(), odd_second_ = V::Zero();
};

// Rows of at least one and at most as many vectors as fit in the lanes.
template <typename V, typename Samples>
SiteSums SumStrip(const SampleRows& samples) {
  const RowShape<V> shape(samples, samples.pairs * Samples::kPairBytes);
  const std::uint32_t turns_that_fit = Samples::kVectorsThatFit / shape.Vectors();
  RowSums<V, Samples> sums(shape);
  const std::uint8_t* row = samples.first;
  for (std::uint32_t left = samples.rows / kRowsPerTurn; left != 0;) {
    std::uint32_t turns = left < turns_that_fit ? left : turns_that_fit;
    left -= turns;
    for (; turns != 0; --turns, row += kRowsPerTurn * samples.stride_bytes) {
      sums.template Add<kRowsPerTurn>(row);
    }
    sums.template Widen<kRowsPerTurn>();
  }
  if (kRowsPerTurn > 2 && (samples.rows & 2) != 0) {
    sums.template Add<2>(row);
    sums.template Widen<2>();
    row += 2 * samples.stride_bytes;
  }
  if ((samples.rows & 1) != 0) {
    sums.template Add<1>(row);
    sums.template Widen<1>();
  }
  return sums.Total();
}

// (Inlined, so that no other file's code, for another processor, is linked in its place.)
[[gnu::always_inline]] inline void AddSums(SiteSums& sums, const SiteSums& more) {
  for (int parity = 0; parity < 2; ++parity) {
    sums.rows[parity].first += more.rows[parity].first;
    sums.rows[parity].second += more.rows[parity].second;
  }
}

// Rows too long for the lanes are summed in strips; what is too narrow for a vector is
// left to `narrower`.
template <typename V, typename Samples>
SiteSums SumSites(const SampleRows& samples, SiteSumKernel narrower) {
  constexpr std::uint32_t kLeastPairs = V::kLeastBytes / Samples::kPairBytes;
  constexpr std::uint32_t kStripBytes = Samples::kVectorsThatFit * V::kBytes;
  constexpr std::uint32_t kStripPairs = kStripBytes / Samples::kPairBytes;
  if (samples.pairs == 0) return {};
  const auto sum = [narrower](const SampleRows& rows) {
    return rows.pairs < kLeastPairs ? narrower(rows) : SumStrip<V, Samples>(rows);
  };
  if (samples.pairs <= kStripPairs) return sum(samples);
  SiteSums sums;
  SampleRows strip = samples;
  for (std::uint32_t left = samples.pairs; left != 0; left -= strip.pairs) {
    strip.pairs = left < kStripPairs ? left : kStripPairs;
    AddSums(sums, sum(strip));
    strip.first += kStripBytes;
  }
  return sums;
}

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_
