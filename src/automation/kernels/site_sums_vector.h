// The vector kernels, for whatever vector type a tier's file brings along. That
// type stands in an unnamed namespace there, so each file gets code of its own,
// compiled with its own flags.
//
// Samples are added as 16-bit words, so that one addition does a whole vector; the
// words are widened to 32 bits before they can overflow.
#ifndef ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_
#define ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_

#include "automation/kernels/site_sums.h"

namespace ormidex::automation {

// 257 bytes fit in a 16-bit word.
inline constexpr std::uint32_t kVectorsBetweenWidenings = 256;

// Calls add(vector) for `count` vectors. Four to a turn: the loop's own work would
// otherwise cost as much as the additions.
template <typename V, typename Add>
[[gnu::always_inline]] inline void ForEachVector(const std::uint8_t* data, std::uint32_t count,
                                                 const Add& add) {
  for (; count >= 4; count -= 4, data += 4 * V::kBytes) {
    add(V::Load(data));
    add(V::Load(data + V::kBytes));
    add(V::Load(data + 2 * V::kBytes));
    add(V::Load(data + 3 * V::kBytes));
  }
  for (; count != 0; --count, data += V::kBytes) add(V::Load(data));
}

// 8-bit pairs: the first sample of a pair is the lower byte of a word. The sum of
// the whole words, modulo 2^16, less the sum of the upper bytes in its upper half
// leaves the sum of the lower bytes: one operation less than to mask them.
template <typename V>
struct Samples8 {
  static constexpr std::uint32_t kPairBytes = 2;
  static constexpr std::uint32_t kScale = 1;

  V words = V::Zero();
  V upper = V::Zero();

  [[gnu::always_inline]] void Add(V samples) {
    words = V::AddWords(words, samples);
    upper = V::AddWords(upper, V::UpperBytes(samples));
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
  static constexpr std::uint32_t kScale = 256;

  V upper = V::Zero();

  [[gnu::always_inline]] void Add(V samples) { upper = V::AddWords(upper, V::UpperBytes(samples)); }
  [[gnu::always_inline]] void Widen(V& first, V& second) const {
    first = V::AddDoubleWords(first, V::EvenWords(upper));
    second = V::AddDoubleWords(second, V::OddWords(upper));
  }
};

// The sums of every other row.
template <typename V, typename Samples>
class RowSums {
 public:
  [[gnu::always_inline]] void AddRow(const std::uint8_t* row, std::uint32_t pairs) {
    constexpr std::uint32_t kPairsPerVector = V::kBytes / Samples::kPairBytes;
    std::uint32_t vectors = pairs / kPairsPerVector;
    while (vectors != 0) {
      if (room_ == 0) Widen();
      const std::uint32_t count = vectors < room_ ? vectors : room_;
      ForEachVector<V>(row, count, [this](V samples) { words_.Add(samples); });
      row += std::size_t{count} * V::kBytes;
      vectors -= count;
      room_ -= count;
    }
    if (const std::uint32_t rest = pairs % kPairsPerVector; rest != 0) {
      if (room_ == 0) Widen();
      words_.Add(V::LoadPart(row, rest * Samples::kPairBytes));
      --room_;
    }
  }
  [[gnu::always_inline]] PairSums Total() {
    Widen();
    return {V::Total(first_) * Samples::kScale, V::Total(second_) * Samples::kScale};
  }

 private:
  [[gnu::always_inline]] void Widen() {
    words_.Widen(first_, second_);
    words_ = Samples();
    room_ = kVectorsBetweenWidenings;
  }

  Samples words_;
  std::uint32_t room_ = kVectorsBetweenWidenings;  // vectors that still fit
  V first_ = V::Zero();
  V second_ = V::Zero();
};

template <typename V, template <typename> typename Samples>
SiteSums SumSites(const SampleRows& samples) {
  RowSums<V, Samples<V>> even;
  RowSums<V, Samples<V>> odd;
  const std::uint8_t* row = samples.first;
  for (std::uint32_t pair = samples.rows / 2; pair != 0; --pair) {
    even.AddRow(row, samples.pairs);
    odd.AddRow(row + samples.stride_bytes, samples.pairs);
    row += 2 * samples.stride_bytes;
  }
  if ((samples.rows & 1) != 0) even.AddRow(row, samples.pairs);
  return {{even.Total(), odd.Total()}};
}

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_KERNELS_SITE_SUMS_VECTOR_H_
